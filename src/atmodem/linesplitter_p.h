#pragma once
// Cuts the bytes a modem writes into lines. V.250 ends every line with CR
// (and usually LF); a line break inside a quoted USSD text (+CUSD: 0,"line
// one<CR><LF>line two",15) does not end the line. The bytes held while a
// line is incomplete are bounded, so a device that never ends a line
// cannot take the caller's memory.
#include <QByteArray>

namespace zelmodems {

class LineSplitter
{
public:
    // A line longer than this is no modem's: what was held is handed out
    // as one line (marked overlong) and the splitter goes on after it.
    static const int MaxLineBytes = 64 * 1024;

    void feed(const QByteArray& bytes) { m_pending += bytes; }
    // The next whole line, trimmed (empty lines are passed over); false
    // while none is whole yet.
    bool takeLine(QByteArray& line);
    // The last line taken was cut at MaxLineBytes.
    bool lastWasOverlong() const { return m_overlong; }
    // The held bytes begin with the "> " prompt of message entry, which no
    // line break follows.
    bool atPrompt() const;
    // Drops what is held.
    void clear() { m_pending.clear(); m_scanFrom = 0; }
    int pendingSize() const { return m_pending.size(); }

private:
    QByteArray m_pending;
    // Where the search for a line end resumes: the held bytes before it hold
    // no line end outside quotes, so a line that comes in many small reads
    // is scanned once, not once per read.
    int m_scanFrom = 0;
    bool m_overlong = false;
};

} // namespace zelmodems
