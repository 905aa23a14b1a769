#pragma once
#include "zelmodemslib_export.h"

#include <QList>
#include <QScopedPointer>
#include <QString>

class AtModem;

namespace zelmodems {

class SmsSenderPrivate;

// Sends an SMS in PDU mode (3GPP TS 27.005 AT+CMGS with SMS-SUBMIT PDUs): any
// text, in the GSM 7-bit alphabet when it fits and in UCS2 otherwise, as a
// concatenated message when it is longer than one. A send counts as done
// only when the modem confirmed every part with "+CMGS: <reference>".
//
//     zelmodems::SmsSender sender(&modem);
//     if (sender.send("+79161234567", QStringLiteral("Привет")))
//         qInfo() << "sent, references" << sender.references();
//     else if (sender.unconfirmed())
//         qWarning() << sender.lastError();   // may still arrive: do not resend blindly
//     else
//         qWarning() << sender.lastError();   // refused: nothing more was sent
//
// The number and the text are checked first (zelmodems::AtInput); what
// fails the check is refused and nothing goes to the modem.
class ZELMODEMSLIB_EXPORT SmsSender
{
public:
    explicit SmsSender(AtModem* modem);
    ~SmsSender();
    SmsSender(const SmsSender&) = delete;
    SmsSender& operator=(const SmsSender&) = delete;

    // How long to wait for the network's confirmation of one part (30 s).
    void setConfirmTimeout(int ms);
    int confirmTimeout() const;

    // Sends `text` to `number`. True when every part was confirmed.
    bool send(const QString& number, const QString& text);

    // The message references the modem gave, one per confirmed part.
    QList<int> references() const;
    // Parts of the last message, and how many the modem confirmed.
    int partCount() const;
    // True when the last send failed because a confirmation did not come
    // in time: the message may still arrive.
    bool unconfirmed() const;
    QString lastError() const;

private:
    QScopedPointer<SmsSenderPrivate> d;
};

} // namespace zelmodems
