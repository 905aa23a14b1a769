#pragma once
#include <QString>

// One line of live progress at the bottom of a terminal, redrawn in place.
// Draws nothing when disabled (output not a terminal, or JSON asked for).
class ProgressLine
{
public:
    explicit ProgressLine(bool enabled);
    ~ProgressLine();

    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    bool enabled() const { return m_enabled; }
    // Replaces the line with `text` (cut to the terminal's width).
    void show(const QString& text);
    // Removes the line, so that what follows starts on a clean one.
    void clear();

private:
    int width() const;

    bool m_enabled;
    bool m_shown = false;
};
