#pragma once
#include "simmodem.h"

#include <QList>
#include <QPair>
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
//   answer +CGMR Revision: 1.0      the answer body of a command ("\n" starts a
//                                   new line; no body: a bare OK)
//   error +COPS? [CODE]             "ERROR" for a command, or CODE: +CME ERROR: 10,
//                                   +CME ERROR: SIM PIN required, +CMS ERROR: 321
//   silent +CSQ                     no answer to a command
//   latency 300                     pause before every answer, in ms
//   vanish-after 12                 the device disappears after 12 commands
//   no-sms-confirmation             sent messages get no +CMGS
//
// and events, which happen when the statement is applied (at start, after
// a delay, or typed on standard input with --control):
//
//   incoming-sms +79161234567 Hi    a message arrives (+CMTI)
//   delivery-report 42 +7916... [0] a delivery report (+CDS) for message 42
//   registration roaming            home, roaming, denied, searching, none (+CREG)
//   network-ussd Text               the network sends USSD (+CUSD: 0)
//   ussd-menu 1 Balance 2 Exit      a USSD menu that waits for an answer (+CUSD: 1)
//   signal-change 12                a new level (+CSQ, and ^RSSI from a Huawei)
//   ring +79161234567               RING and the caller's number
//   vanish / return                 the device goes away / comes back
//   after 2000 <statement>          the statement, 2 s after start
class SimScript
{
public:
    // Checks and remembers a statement; false with *error for a bad one.
    bool add(const QString& statement, QString* error);
    // Reads a file of statements; false with *error naming the line.
    bool addFile(const QString& path, QString* error);
    // Applies every statement but the delayed ones to a started modem.
    void apply(zelmodems::sim::SimModem& modem) const;
    // The delayed statements: (milliseconds after start, statement).
    QList<QPair<int, QString>> delayed() const;
    // Applies one checked statement.
    static void applyOne(const QString& statement, zelmodems::sim::SimModem& modem);

private:
    QStringList m_statements;
};
