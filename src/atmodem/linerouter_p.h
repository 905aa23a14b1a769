#pragma once
// Decides what each line from the modem is: part of the running command's
// answer, its final result code, its echo, or an unsolicited result code
// that belongs to whoever listens for events. Knows nothing of ports, so
// that the decision is the same for every reader and can be fed anything.
#include <QByteArray>

namespace zelmodems {

class LineRouter
{
public:
    enum class Kind {
        Echo,          // the command line itself, echoed
        Final,         // a final result code: the command's answer ends
        Intermediate,  // a line of the command's answer
        Unsolicited,   // an unsolicited result code
        UnsolicitedPdu,// the PDU line that follows +CMT, +CDS or +CBM
        Stray,         // a late line of a command that ended without its result code
    };

    // A command starts: its echo and the prefix of its own answer lines
    // ("+CREG:" for AT+CREG?), which are never taken as unsolicited.
    void begin(const QByteArray& echo, const QByteArray& ownPrefix);
    // The command ended without a final result code (timed out, cancelled):
    // the rest of its answer may still come and is not an event.
    void abandon();
    bool inCommand() const { return m_inCommand; }

    Kind route(const QByteArray& line);

    // Whether `line` is a final result code (V.250 5.7.1, 27.007 9.2,
    // 27.005 3.2.5, and the vendor words that end an answer).
    static bool isFinal(const QByteArray& line);
    // Whether `line` is a known unsolicited result code (for a command whose
    // own answer lines begin with `ownPrefix`, which are never taken as one).
    static bool isUnsolicited(const QByteArray& line, const QByteArray& ownPrefix = QByteArray());
    // Unsolicited codes followed by a second line that belongs to them.
    static bool hasPduLine(const QByteArray& line);
    // The prefix of a command's own answer lines: "+CMGL:" for "+CMGL=4".
    static QByteArray ownPrefixOf(const QByteArray& command);

private:
    QByteArray m_echo;
    QByteArray m_ownPrefix;
    bool m_inCommand = false;
    bool m_draining = false;
    bool m_pduFollows = false;
};

} // namespace zelmodems
