#pragma once
#include "simmodem.h"

#include <QList>
#include <QString>

// A modem dialogue written by `zelmodems --record`, played back as a modem:
// each command the client sends is answered with the bytes the real modem
// sent after the same command in the recording (echo included), with the
// recorded pause before them; what the modem sent on its own later (a
// USSD reply after the OK) follows with its recorded delay. Commands are
// matched in the recorded order, a repeated command getting the next
// recorded answer; a command the recording never saw gets ERROR. The modem
// answers only at the line speeds the recording used. A recording that
// ends with the device gone ends the same way: the modem vanishes at the
// recorded moment of the command under way.
class RecordedDialogue
{
public:
    // Reads the file; false with *error when it is not a recording.
    bool load(const QString& path, QString* error);
    // Makes `modem` answer from the recording (echo off: the recorded bytes
    // hold the real modem's echo).
    void apply(zelmodems::sim::SimModem& modem) const;
    int exchangeCount() const { return m_exchanges.size(); }

    struct Exchange {
        QByteArray command;                     // after "AT", as sent
        zelmodems::sim::Reply reply;
        int vanishAfterMs = -1;                 // the device went away this long after the command
    };

private:
    QList<Exchange> m_exchanges;
    QList<qint32> m_speeds;
};
