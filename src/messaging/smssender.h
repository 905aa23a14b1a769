#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QCoreApplication>
#include <QList>
#include <QScopedPointer>
#include <QString>

#include <functional>

class AtModem;

namespace zelmodems {

class Modem;

class SmsSenderPrivate;

/// Sends an SMS in PDU mode (3GPP TS 27.005 AT+CMGS with SMS-SUBMIT PDUs): any
/// text, in the GSM 7-bit alphabet when it fits and in UCS2 otherwise, as a
/// concatenated message when it is longer than one. A send counts as done
/// only when the modem confirmed every part with "+CMGS: <reference>".
///
///     zelmodems::SmsSender sender(&modem);
///     if (sender.send("+79161234567", QStringLiteral("Привет")))
///         qInfo() << "sent, references" << sender.references();
///     else if (sender.unconfirmed())
///         qWarning() << sender.lastError();   // may still arrive: do not resend blindly
///     else
///         qWarning() << sender.lastError();   // refused: nothing more was sent
///
/// The number and the text are checked first (zelmodems::AtInput); what
/// fails the check is refused and nothing goes to the modem. Each part ends
/// in one of three ways, told apart in partStates(): confirmed ("+CMGS:"),
/// refused (ERROR or "+CMS ERROR: n", with errorCode() and errorMeaning()),
/// or unconfirmed (no answer in time: the network may still deliver it).
/// A modem that does not prompt for the PDU in time is sent ESC, so that it
/// leaves message entry and the next command is read as a command.
class ZELMODEMSLIB_EXPORT SmsSender
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::SmsSender)

public:
    enum PartState {
        NotSent,        ///< not handed to the modem (an earlier part failed)
        Sent,           ///< confirmed with a message reference
        Refused,        ///< the modem or the network said no: it will not arrive
        Unconfirmed,    ///< handed over, no answer in time: it may still arrive
    };

    explicit SmsSender(AtModem* modem);
    /// The same service on a live modem: each call runs on the modem's
    /// thread in its turn in the queue (after the operations queued before
    /// it), while the calling thread waits. Never call it from a slot of the
    /// modem's thread. (Handlers set here are called on the modem's thread.)
    explicit SmsSender(Modem* modem);
    ~SmsSender();
    SmsSender(const SmsSender&) = delete;
    SmsSender& operator=(const SmsSender&) = delete;

    /// How long to wait for the network's confirmation of one part (30 s).
    void setConfirmTimeout(int ms);
    int confirmTimeout() const;

    /// Sends `text` to `number`. True when every part was confirmed.
    bool send(const QString& number, const QString& text);

    /// The message references the modem gave, one per confirmed part.
    QList<int> references() const;
    /// Parts of the last message, and how many the modem confirmed.
    int partCount() const;
    /// True when the last send failed because a confirmation did not come
    /// in time: the message may still arrive.
    bool unconfirmed() const;
    /// Why the last send failed: bad input, a refusal (cms-error with its
    /// number), no prompt, unconfirmed or gone; no failure after a send
    /// that worked.
    Failure failure() const;
    /// failure().text().
    QString lastError() const;

    /// The state of each part of the last message, in order.
    QList<PartState> partStates() const;
    /// "sent", "refused", "unconfirmed", "not sent".
    static QString stateName(PartState state);
    /// The n of "+CMS ERROR: n" that refused a part; -1 otherwise.
    int errorCode() const;
    /// What a +CMS ERROR code means (3GPP TS 27.005 3.2.5, with the network
    /// causes of TS 24.011 and TS 23.040 below 256).
    static QString errorMeaning(int code);
    /// Called as each part ends (1-based part, its state, its reference or -1),
    /// so that a caller can tell how far a send got if it is cut short.
    void setPartHandler(const std::function<void(int part, PartState state, int reference)>& handler);

private:
    QScopedPointer<SmsSenderPrivate> d;
};

} // namespace zelmodems
