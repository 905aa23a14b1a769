#pragma once
#include "simmodem.h"

#include <QString>
#include <QStringList>

// What a support engineer tells modemsim to do, one statement a line, from
// --set or from a --script file ('#' starts a comment):
//
//   signal 20,99                    +CSQ answer (rssi,ber; 99,99 is "no signal")
//   ussd *100# Balance 12.50 rub    USSD reply text (status 0)
//   ussd-status *100# 4 [text]      reply with that status (2 ended, 4 not supported)
//   sms +79161234567 Hello          a received message in the SMS store
//   sms-pdu 0791... [stat]          a stored PDU as given (stat 0 unread .. 3 sent)
//   answer +CGMR Revision: 1.0      the answer body of a command
//   error +COPS?                    "ERROR" for a command
//   silent +CSQ                     no answer to a command
//   latency 300                     pause before every answer, in ms
//   vanish-after 12                 the device disappears after 12 commands
//   no-sms-confirmation             sent messages get no +CMGS
class SimScript
{
public:
    // Checks and remembers a statement; false with *error for a bad one.
    bool add(const QString& statement, QString* error);
    // Reads a file of statements; false with *error naming the line.
    bool addFile(const QString& path, QString* error);
    // Applies every statement to a started modem.
    void apply(zelmodems::sim::SimModem& modem) const;

private:
    QStringList m_statements;
};
