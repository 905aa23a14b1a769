// Sending SMS in PDU mode, each part confirmed by the modem.
#include "smssender.h"
#include "modemerror.h"

#include "atinput.h"
#include "atmodem.h"
#include "modemaccess_p.h"
#include "atmodemlog_p.h"
#include "linechannel_p.h"
#include "pdu.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace zelmodems {

namespace {

const int SHORT_TIMEOUT_MS = 1000;
// Modems prompt for the PDU within a few tens of milliseconds.
const int PROMPT_TIMEOUT_MS = 2000;
// ESC ends message entry; the modem answers it at once.
const int ESCAPE_TIMEOUT_MS = 1000;

} // namespace

class SmsSenderPrivate
{
public:
    AtModem* modem = nullptr;
    Modem* live = nullptr;   // the live modem the calls run on, if any
    int confirmTimeoutMs = 30000;
    QList<int> references;
    int partCount = 0;
    Failure failure;
    QList<SmsSender::PartState> states;
    int errorCode = -1;
    std::function<void(int, SmsSender::PartState, int)> handler;

    void setState(int part, SmsSender::PartState state, int reference = -1)
    {
        states[part - 1] = state;
        if (handler)
            handler(part, state, reference);
    }

    static QString tr(const char* text) { return SmsSender::tr(text); }

    bool fail(const Failure& why)
    {
        failure = why;
        qCWarning(AT_MODEM()).noquote() << why.text();
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

};

SmsSender::SmsSender(AtModem* modem) : d(new SmsSenderPrivate)
{
    d->modem = modem;
}

SmsSender::SmsSender(Modem* modem) : d(new SmsSenderPrivate)
{
    d->live = modem;
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
    return d->states.contains(Unconfirmed);
}

QString SmsSender::lastError() const
{
    return d->failure.text();
}

Failure SmsSender::failure() const
{
    return d->failure;
}

QList<SmsSender::PartState> SmsSender::partStates() const
{
    return d->states;
}

int SmsSender::errorCode() const
{
    return d->errorCode;
}

void SmsSender::setPartHandler(const std::function<void(int, PartState, int)>& handler)
{
    d->handler = handler;
}

QString SmsSender::stateName(PartState state)
{
    switch (state) {
    case Sent: return QStringLiteral("sent");
    case Refused: return QStringLiteral("refused");
    case Unconfirmed: return QStringLiteral("unconfirmed");
    case NotSent: break;
    }
    return QStringLiteral("not sent");
}

QString SmsSender::errorMeaning(int code)
{
    return ModemError::cmsMeaning(code);
}

bool SmsSender::send(const QString& number, const QString& text)
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return send(number, text); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        });
    d->references.clear();
    d->partCount = 0;
    d->failure = Failure();
    d->states.clear();
    d->errorCode = -1;

    QString problem = AtInput::checkNumber(number);
    if (problem.isEmpty())
        problem = AtInput::checkSmsText(text);
    if (!problem.isEmpty())
        return d->fail(Failure(Failure::BadInput, tr("refused, nothing sent: %1").arg(problem)));
    QString error;
    const QList<PDU> parts = encodeSmsSubmit(number, text, PDU::SubmitOptions(), &error);
    if (parts.isEmpty())
        return d->fail(Failure(Failure::BadInput, tr("refused, nothing sent: %1").arg(error)));
    d->partCount = parts.size();
    for (int i = 0; i < parts.size(); ++i)
        d->states << NotSent;

    LineChannel channel(d->modem);
    const LineChannel::Answer mode = channel.command("+CMGF=0", SHORT_TIMEOUT_MS);
    if (!mode.ok())
        return d->fail(mode.failure(tr("the modem refused PDU mode (AT+CMGF=0): %1").arg(mode.reason())));

    for (int i = 0; i < parts.size(); ++i) {
        const PDU& part = parts.at(i);
        const int number1 = i + 1;
        const LineChannel::Answer prompt =
            channel.command("+CMGS=" + QByteArray::number(part.tpduLength()), PROMPT_TIMEOUT_MS, true);
        if (prompt.end != LineChannel::End::Prompt) {
            // A prompt that comes late would leave the modem taking the next
            // command as message text: ESC ends message entry unsent.
            if (prompt.end != LineChannel::End::Final && prompt.end != LineChannel::End::PortGone)
                channel.write("\x1B", ESCAPE_TIMEOUT_MS);
            d->errorCode = prompt.errorCode();
            return d->fail(prompt.failure(
                tr("part %1 of %2: the modem gave no prompt for the PDU, nothing of it was sent: %3%4")
                    .arg(number1).arg(parts.size())
                    .arg(prompt.reason())
                    .arg(d->sentSoFar(number1))));
        }
        const LineChannel::Answer answer = channel.write(part.toHex().toLatin1() + "\x1A", d->confirmTimeoutMs);
        if (answer.ok()) {
            int reference = -1;
            for (const QByteArray& line : answer.lines) {
                if (line.startsWith("+CMGS:")) {
                    bool ok = false;
                    reference = line.mid(6).trimmed().toInt(&ok);
                    if (!ok)
                        reference = -1;
                }
            }
            if (reference >= 0) {
                d->references.append(reference);
                d->setState(number1, Sent, reference);
                continue;
            }
            // OK without a reference is no confirmation, and is said as it is.
            d->setState(number1, Unconfirmed);
            return d->fail(Failure(Failure::Unconfirmed,
                                   tr("part %1 of %2: the modem said OK without a message reference — it may "
                                      "still arrive; check before sending again%3")
                                       .arg(number1).arg(parts.size()).arg(d->sentSoFar(number1))));
        }
        if (answer.end == LineChannel::End::Final) {
            // ERROR, +CMS ERROR: the message will not arrive.
            d->errorCode = answer.errorCode();
            d->setState(number1, Refused);
            return d->fail(answer.failure(tr("part %1 of %2 was refused: %3%4")
                                              .arg(number1).arg(parts.size())
                                              .arg(answer.reason())
                                              .arg(d->sentSoFar(number1))));
        }
        // No answer in time: the PDU went out, so the network may still take
        // it. Saying so keeps a caller from sending the message twice.
        d->setState(number1, Unconfirmed);
        return d->fail(Failure(answer.end == LineChannel::End::PortGone ? Failure::Gone : Failure::Unconfirmed,
                               tr("part %1 of %2 not confirmed within %3 s — it may still arrive; check before "
                                  "sending again: %4%5")
                                   .arg(number1).arg(parts.size())
                                   .arg((d->confirmTimeoutMs + 999) / 1000)
                                   .arg(answer.reason())
                                   .arg(d->sentSoFar(number1))));
    }
    return true;
}

} // namespace zelmodems
