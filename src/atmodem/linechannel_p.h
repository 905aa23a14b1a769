#pragma once
// The AT dialogue as the standards have it (V.250, 3GPP TS 27.007 and
// 27.005), for the project's own services over an AtModem: an answer ends
// at a final result code on a line of its own, intermediate lines are kept
// line by line, unsolicited result codes are set apart instead of mixed in,
// and nothing that arrives is thrown away: bytes after a final result code
// wait for the next read (only what was on the line before the channel's
// first command, other than unsolicited codes, is dropped as stale). The
// fixed AtModem calls keep their own rules. On a watched modem (LiveChannel)
// the unread bytes and the router's state are the live channel's, and every
// unsolicited code also goes to its listener as soon as it is read.
#include "failure.h"
#include "linerouter_p.h"
#include "linesplitter_p.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QList>

class AtModem;

namespace zelmodems {

class LineChannel
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::LineChannel)

public:
    enum class End {
        Final,      // a final result code ended the answer
        Prompt,     // the "> " of message entry
        TimedOut,
        PortGone,   // the port closed or the device went away
        Overflow,   // more than any modem's answer without a result code
        Canceled,   // the operation was cancelled while it waited
    };

    struct Answer
    {
        End end = End::TimedOut;
        QList<QByteArray> lines;         // intermediate lines, in order, without the echo
        QByteArray final;                // the final result code line ("OK", "+CMS ERROR: 38")
        QList<QByteArray> unsolicited;   // unsolicited result codes that came meanwhile
        qint64 elapsedMs = 0;

        bool ok() const { return end == End::Final && final == "OK"; }
        // The answer's lines joined by CR LF, the final code last: the form
        // the answer parsers read.
        QByteArray text() const;
        // What went wrong, for a message: the modem's result code, or the
        // channel's reason.
        QString reason() const;
        // n of "+CMS ERROR: n" / "+CME ERROR: n"; -1 for others.
        int errorCode() const;
        // The failure this answer is, told as `text`.
        Failure failure(const QString& text) const;
    };

    explicit LineChannel(AtModem* modem);

    // Sends "AT" + command + CR and collects the answer. With
    // `promptEnds`, the "> " prompt ends it too.
    Answer command(const QByteArray& command, int timeoutMs, bool promptEnds = false);
    // Writes `bytes` as they are (a PDU and Ctrl-Z, ESC) and collects the answer.
    Answer write(const QByteArray& bytes, int timeoutMs);
    // Waits for an unsolicited line that begins with `prefix`; true with the
    // line (a quoted text that spans lines whole) in `line`. The lines
    // before it are passed over.
    bool waitFor(const QByteArray& prefix, int timeoutMs, QByteArray& line);

    // The most a modem's answer may hold; past it the answer ends.
    static const int MaxAnswerBytes = 2 * 1024 * 1024;

private:
    Answer collect(const QByteArray& echo, const QByteArray& ownPrefix, int timeoutMs, bool promptEnds);
    // Reads what the port has, waiting at most `ms`; false when the port is gone.
    bool readMore(int ms);
    // A routed line handed to the live channel's listener, when there is one.
    void pass(LineRouter::Kind kind, const QByteArray& line);

    // Before the first command: what the port holds from before (the late
    // "OK" of a command that timed out, say) is dropped, unsolicited codes
    // are kept.
    void settle();

    AtModem* m_modem;
    class LiveChannel* m_live;
    LineSplitter m_ownSplitter;
    LineRouter m_ownRouter;
    LineSplitter& m_splitter;
    LineRouter& m_router;
    bool m_settled = false;
};

} // namespace zelmodems
