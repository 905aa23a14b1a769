// The own number by USSD or by the operator's SMS.
#include "ownnumber.h"

#include "atmodem_p.h"
#include "messagestore.h"
#include "storedmessage.h"
#include "ussdrequest.h"

#include <QElapsedTimer>
#include <QSet>
#include <QThread>

namespace zelmodems {

class OwnNumberPrivate
{
public:
    AtModem* modem = nullptr;
    QString number;
    QString source;
    QStringList notes;
    Failure failure;

    void reset()
    {
        number.clear();
        source.clear();
        notes.clear();
        failure = Failure();
    }

    bool fail(const Failure& why)
    {
        failure = why;
        return false;
    }

    // Sends the request; a menu the network keeps open is closed again.
    bool request(UssdRequest& ussd, const QString& code)
    {
        const bool sent = ussd.send(code);
        if (ussd.status() == 1)
            ussd.cancel();
        if (!sent)
            return fail(Failure(ussd.failure().code(),
                                OwnNumber::tr("the request %1 did not go through: %2").arg(code, ussd.failure().text()),
                                ussd.failure().number()));
        return true;
    }
};

OwnNumber::OwnNumber(AtModem* modem) : d(new OwnNumberPrivate)
{
    d->modem = modem;
}

OwnNumber::~OwnNumber() = default;

QString OwnNumber::number() const { return d->number; }
QString OwnNumber::source() const { return d->source; }
QStringList OwnNumber::notes() const { return d->notes; }
Failure OwnNumber::failure() const { return d->failure; }

QString OwnNumber::nationalNumberIn(const QString& text)
{
    return atmodeminternal::nationalNumberIn(text);
}

bool OwnNumber::byUssd(const QString& code)
{
    d->reset();
    UssdRequest ussd(d->modem);
    if (!d->request(ussd, code))
        return false;
    d->source = ussd.text();
    // Operators write the number for people: "+7 (926) 123-45-67".
    QString digits = d->source;
    digits.remove(QLatin1Char('(')).remove(QLatin1Char(')')).remove(QLatin1Char(' ')).remove(QLatin1Char('-'));
    d->number = nationalNumberIn(digits);
    if (d->number.isEmpty())
        return d->fail(Failure(Failure::Malformed,
                               tr("the operator's reply holds no telephone number (the network may have refused the "
                                  "request); it said: \"%1\"")
                                   .arg(d->source)));
    return true;
}

bool OwnNumber::bySms(const QString& code, int waitMs, int pollMs)
{
    d->reset();
    MessageStore store(d->modem);
    QList<StoredPdu> entries;
    if (!store.list(entries))
        return d->fail(Failure(store.failure().code(),
                               tr("cannot list the stored messages: %1").arg(store.failure().text()),
                               store.failure().number()));
    // What was there before the request is never the answer.
    QSet<QString> before;
    for (const StoredPdu& entry : qAsConst(entries))
        before.insert(QString::number(entry.index()) + QLatin1Char(' ') + entry.pdu());

    // The number comes by SMS whatever the network says to the request
    // itself (many answer "not supported" and send the message anyway); a
    // request that never reached the network is the end.
    UssdRequest ussd(d->modem);
    if (!d->request(ussd, code) && ussd.status() < 0)
        return false;
    d->failure = Failure();
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        if (!store.list(entries))
            return d->fail(Failure(store.failure().code(),
                                   tr("cannot list the stored messages: %1").arg(store.failure().text()),
                                   store.failure().number()));
        QList<StoredPdu> fresh;
        for (const StoredPdu& entry : qAsConst(entries)) {
            if (!before.contains(QString::number(entry.index()) + QLatin1Char(' ') + entry.pdu()))
                fresh << entry;
        }
        for (const StoredMessage& message : StoredMessage::group(fresh)) {
            if (!message.mayBeTaken() || message.type() != ShortMessage::Deliver)
                continue;
            const QString number = nationalNumberIn(message.text());
            if (number.isEmpty())
                continue;
            d->number = number;
            d->source = message.text();
            for (const int index : message.indexes()) {
                if (!store.remove(index))
                    d->notes << tr("the operator's message %1 stays on the modem: %2").arg(index).arg(store.lastError());
            }
            return true;
        }
        if (clock.elapsed() >= waitMs)
            break;
        QThread::msleep(qBound(0, pollMs, int(qMax<qint64>(0, waitMs - clock.elapsed()))));
    }
    return d->fail(Failure(Failure::NoAnswer,
                           tr("no message with a telephone number came within %1 s of %2").arg(waitMs / 1000).arg(code)));
}

} // namespace zelmodems
