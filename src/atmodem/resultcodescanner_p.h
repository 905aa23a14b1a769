#pragma once
#include <QByteArray>
#include <QList>

#include <algorithm>
#include <initializer_list>

// Watches a modem's answer grow for the result codes that end it. Each look
// covers only what arrived since the last one, plus the few bytes before it
// where a code may have begun, so an answer that trickles in over thousands
// of read cycles costs time in proportion to its length, not its square.
class ResultCodeScanner
{
public:
    explicit ResultCodeScanner(std::initializer_list<const char*> codes)
    {
        for (const char* code : codes) {
            m_codes << QByteArray(code);
            m_overlap = std::max(m_overlap, int(m_codes.last().size()) - 1);
        }
    }

    // Whether one of the codes occurs anywhere in `answer`, which must be
    // the answer of the previous call with bytes appended.
    bool found(const QByteArray& answer)
    {
        const int from = std::max(0, m_checked - m_overlap);
        m_checked = int(answer.size());
        for (const QByteArray& code : m_codes)
            if (answer.indexOf(code, from) >= 0)
                return true;
        return false;
    }

private:
    QList<QByteArray> m_codes;
    int m_overlap = 0;
    int m_checked = 0;
};
