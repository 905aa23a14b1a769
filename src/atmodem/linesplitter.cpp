// Lines out of the modem's byte stream.
#include "linesplitter_p.h"

#include <cstring>

namespace zelmodems {

namespace {

bool isBreak(char c)
{
    return c == '\r' || c == '\n';
}

} // namespace

bool LineSplitter::takeLine(QByteArray& line)
{
    for (;;) {
        // Line breaks before the line are no part of it.
        int start = 0;
        while (start < m_pending.size() && isBreak(m_pending.at(start)))
            ++start;
        // (Only the start of a line is scanned ahead of: m_scanFrom is 0
        // whenever line breaks lead the held bytes.)
        m_pending.remove(0, start);
        if (m_pending.isEmpty())
            return false;
        // Only a +CUSD line's text may hold line breaks: the line ends where
        // its quotes close.
        // (Blanks before it are looked past in place: trimming would copy
        // all the held bytes once per line.)
        int first = 0;
        while (first < m_pending.size() && std::strchr(" \t\v\f\r\n", m_pending.at(first)) && m_pending.at(first))
            ++first;
        const bool quotedText = qstrncmp(m_pending.constData() + first, "+CUSD:", 6) == 0;
        int quotes = 0;
        if (quotedText) {
            for (int i = 0; i < m_scanFrom; ++i)
                quotes += m_pending.at(i) == '"';
        }
        int end = -1;
        for (int i = m_scanFrom; i < m_pending.size(); ++i) {
            const char c = m_pending.at(i);
            if (c == '"')
                ++quotes;
            else if (isBreak(c) && !(quotedText && quotes % 2 != 0)) {
                end = i;
                break;
            }
        }
        m_overlong = false;
        if (end < 0) {
            if (m_pending.size() <= MaxLineBytes) {
                m_scanFrom = m_pending.size();
                return false;
            }
            end = MaxLineBytes;
            m_overlong = true;
        }
        line = m_pending.left(end).trimmed();
        m_pending.remove(0, end);
        m_scanFrom = 0;
        if (!line.isEmpty())
            return true;
    }
}

bool LineSplitter::atPrompt() const
{
    int i = 0;
    while (i < m_pending.size() && isBreak(m_pending.at(i)))
        ++i;
    return i < m_pending.size() && m_pending.at(i) == '>';
}

} // namespace zelmodems
