#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QCoreApplication>
#include <QScopedPointer>
#include <QString>
#include <QStringList>

class AtModem;

namespace zelmodems {

class OwnNumberPrivate;

/// The SIM's own telephone number, asked of the operator with its code
/// (the operator table's selfNumberPhone()): the reply comes as a USSD
/// text or, with some operators, as an SMS a little later.
///
///     zelmodems::OwnNumber own(&modem);
///     if (entry.selfNumberFromSms() ? own.bySms(entry.selfNumberPhone()) : own.byUssd(entry.selfNumberPhone()))
///         qInfo() << own.number();
///     else
///         qWarning() << own.failure().text();
///
/// By SMS nothing else is touched: the store is listed before the request,
/// only a new, whole, received message that holds a number is the answer,
/// and only that message is deleted. (AtModem::requestSelfNumber, the
/// appliance's call, reads the store with takeMessages, which deletes
/// every message it lists.)
class ZELMODEMSLIB_EXPORT OwnNumber
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::OwnNumber)

public:
    explicit OwnNumber(AtModem* modem);
    ~OwnNumber();
    OwnNumber(const OwnNumber&) = delete;
    OwnNumber& operator=(const OwnNumber&) = delete;

    /// Sends `code` as USSD and reads the number from the reply.
    bool byUssd(const QString& code);
    /// Sends `code` as USSD and waits up to `waitMs` for the operator's
    /// SMS, looking at the store every `pollMs`.
    bool bySms(const QString& code, int waitMs = 30000, int pollMs = 2000);

    /// The national number found (ten digits), empty before a success.
    QString number() const;
    /// The reply's text (USSD) or the message's (SMS) the number was read from.
    QString source() const;
    /// What was left undone on the way to a success (an operator's message
    /// that could not be deleted), for the caller to pass on.
    QStringList notes() const;
    /// Why the last call failed; no failure after a success.
    Failure failure() const;

    /// The national number (ten digits) in an operator's text: the ten
    /// digits after the country or trunk digit of an eleven-digit run, else
    /// a run of ten. A run at the very start does not count: operators'
    /// texts begin with words, and leading digits are a code or a date.
    static QString nationalNumberIn(const QString& text);

private:
    QScopedPointer<OwnNumberPrivate> d;
};

} // namespace zelmodems
