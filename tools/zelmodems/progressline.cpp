#include "progressline.h"
#include "console.h"

#include <sys/ioctl.h>
#include <unistd.h>

ProgressLine::ProgressLine(bool enabled) : m_enabled(enabled) {}

ProgressLine::~ProgressLine()
{
    clear();
}

void ProgressLine::show(const QString& text)
{
    if (!m_enabled)
        return;
    QString line = text;
    const int columns = width();
    if (line.size() >= columns)
        line = line.left(columns - 2) + QChar(0x2026);
    // Back to the line's start, the text, the rest of the old line erased.
    Console::out() << '\r' << line << "\x1b[K";
    Console::out().flush();
    m_shown = true;
}

void ProgressLine::clear()
{
    if (!m_enabled || !m_shown)
        return;
    Console::out() << "\r\x1b[K";
    Console::out().flush();
    m_shown = false;
}

int ProgressLine::width() const
{
    struct winsize size;
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 10)
        return size.ws_col;
    return 80;
}
