// Sending SMS in PDU mode, each part confirmed by the modem.
#include "smssender.h"

#include "atinput.h"
#include "atmodem.h"
#include "atmodemlog_p.h"
#include "pdu.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace zelmodems {

namespace {

const int SHORT_TIMEOUT_MS = 1000;
// The "> " prompt is no result code, so its command always runs to this
// time-out; modems prompt within a few tens of milliseconds.
const int PROMPT_TIMEOUT_MS = 500;

QString tr(const char* text)
{
    return QCoreApplication::translate("zelmodems::SmsSender", text);
}

} // namespace

class SmsSenderPrivate
{
public:
    AtModem* modem = nullptr;
    int confirmTimeoutMs = 30000;
    QList<int> references;
    int partCount = 0;
    bool unconfirmed = false;
    QString lastError;

    bool fail(const QString& error)
    {
        lastError = error;
        qCWarning(AT_MODEM()).noquote() << error;
        return false;
    }

    // What the parts before `part` came to, for an error about `part`.
    QString sentSoFar(int part) const
    {
        if (part <= 1)
            return QString();
        QStringList refs;
        for (const int r : references)
            refs << QString::number(r);
        return tr(" (parts 1 to %1 were sent, references %2)").arg(part - 1).arg(refs.join(QLatin1String(", ")));
    }

    static QString reason(const QByteArray& answer, const QString& fallback)
    {
        for (const QByteArray& line : answer.split('\n')) {
            if (line.contains("ERROR"))
                return QString::fromLatin1(line.trimmed());
        }
        return fallback;
    }
};

SmsSender::SmsSender(AtModem* modem) : d(new SmsSenderPrivate)
{
    d->modem = modem;
}

SmsSender::~SmsSender() = default;

void SmsSender::setConfirmTimeout(int ms)
{
    d->confirmTimeoutMs = qMax(1, ms);
}

int SmsSender::confirmTimeout() const
{
    return d->confirmTimeoutMs;
}

QList<int> SmsSender::references() const
{
    return d->references;
}

int SmsSender::partCount() const
{
    return d->partCount;
}

bool SmsSender::unconfirmed() const
{
    return d->unconfirmed;
}

QString SmsSender::lastError() const
{
    return d->lastError;
}

bool SmsSender::send(const QString& number, const QString& text)
{
    d->references.clear();
    d->partCount = 0;
    d->unconfirmed = false;
    d->lastError.clear();

    QString problem = AtInput::checkNumber(number);
    if (problem.isEmpty())
        problem = AtInput::checkSmsText(text);
    if (!problem.isEmpty())
        return d->fail(tr("refused, nothing sent: %1").arg(problem));
    QString error;
    const QList<PDU> parts = encodeSmsSubmit(number, text, PDU::SubmitOptions(), &error);
    if (parts.isEmpty())
        return d->fail(tr("refused, nothing sent: %1").arg(error));
    d->partCount = parts.size();

    QByteArray answer;
    if (!d->modem->sendCommand("+CMGF=0", answer, SHORT_TIMEOUT_MS))
        return d->fail(tr("the modem refused PDU mode (AT+CMGF=0): %1")
                           .arg(SmsSenderPrivate::reason(answer, d->modem->lastError())));

    static const QRegularExpression confirmation(QStringLiteral("\\+CMGS:\\s*(\\d+)"));
    for (int i = 0; i < parts.size(); ++i) {
        const PDU& part = parts.at(i);
        const int number1 = i + 1;
        d->modem->sendCommand("+CMGS=" + QByteArray::number(part.tpduLength()), answer, PROMPT_TIMEOUT_MS);
        if (!answer.contains('>'))
            return d->fail(tr("part %1 of %2: the modem gave no prompt for the PDU: %3%4")
                               .arg(number1).arg(parts.size())
                               .arg(SmsSenderPrivate::reason(answer, d->modem->lastError()))
                               .arg(d->sentSoFar(number1)));
        const bool ended = d->modem->sendRawCommand(part.toHex().toLatin1() + "\x1A", answer, d->confirmTimeoutMs);
        const QRegularExpressionMatch match = confirmation.match(QString::fromLatin1(answer));
        if (ended && match.hasMatch()) {
            d->references.append(match.captured(1).toInt());
            continue;
        }
        // No answer in time: the PDU went out, so the network may still take
        // it. Saying so keeps a caller from sending the message twice.
        if (!ended && !answer.contains("ERROR")) {
            d->unconfirmed = true;
            return d->fail(tr("part %1 of %2 not confirmed within %3 s — it may still arrive; check before "
                              "sending again%4")
                               .arg(number1).arg(parts.size())
                               .arg((d->confirmTimeoutMs + 999) / 1000)
                               .arg(d->sentSoFar(number1)));
        }
        return d->fail(tr("part %1 of %2 was refused: %3%4")
                           .arg(number1).arg(parts.size())
                           .arg(SmsSenderPrivate::reason(answer, d->modem->lastError()))
                           .arg(d->sentSoFar(number1)));
    }
    return true;
}

} // namespace zelmodems
