// Sending SMS in PDU mode, each part confirmed by the modem.
#include "smssender.h"

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

    // The modem's refusal with its meaning: "+CMS ERROR: 38 (network out of order)".
    static QString refusal(const LineChannel::Answer& answer)
    {
        const int code = answer.errorCode();
        if (code < 0)
            return answer.reason();
        return QStringLiteral("%1 (%2)").arg(answer.reason(), SmsSender::errorMeaning(code));
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
    switch (code) {
    // Network causes (TS 24.011 8.2.5.4) and TP-FCS (TS 23.040 9.2.3.22).
    case 1: return tr("unassigned (unallocated) number");
    case 8: return tr("operator determined barring");
    case 10: return tr("call barred");
    case 21: return tr("short message transfer rejected");
    case 27: return tr("destination out of service");
    case 28: return tr("unidentified subscriber");
    case 29: return tr("facility rejected");
    case 30: return tr("unknown subscriber");
    case 38: return tr("network out of order");
    case 41: return tr("temporary failure");
    case 42: return tr("congestion");
    case 47: return tr("resources unavailable");
    case 50: return tr("requested facility not subscribed");
    case 69: return tr("requested facility not implemented");
    case 81: return tr("invalid short message transfer reference value");
    case 95: return tr("invalid message");
    case 96: return tr("invalid mandatory information");
    case 97: return tr("message type non-existent or not implemented");
    case 98: return tr("message not compatible with short message protocol state");
    case 99: return tr("information element non-existent or not implemented");
    case 111: return tr("protocol error");
    case 127: return tr("interworking error");
    case 128: return tr("telematic interworking not supported");
    case 176: return tr("TPDU not supported");
    case 192: return tr("SC busy");
    case 193: return tr("no SC subscription");
    case 194: return tr("SC system failure");
    case 195: return tr("invalid SME address");
    case 196: return tr("destination SME barred");
    case 208: return tr("SIM SMS storage full");
    case 255: return tr("unspecified error cause");
    // TS 27.005 3.2.5.
    case 300: return tr("ME failure");
    case 301: return tr("SMS service of ME reserved");
    case 302: return tr("operation not allowed");
    case 303: return tr("operation not supported");
    case 304: return tr("invalid PDU mode parameter");
    case 305: return tr("invalid text mode parameter");
    case 310: return tr("SIM not inserted");
    case 311: return tr("SIM PIN required");
    case 312: return tr("PH-SIM PIN required");
    case 313: return tr("SIM failure");
    case 314: return tr("SIM busy");
    case 315: return tr("SIM wrong");
    case 316: return tr("SIM PUK required");
    case 317: return tr("SIM PIN2 required");
    case 318: return tr("SIM PUK2 required");
    case 320: return tr("memory failure");
    case 321: return tr("invalid memory index");
    case 322: return tr("memory full");
    case 330: return tr("SMSC address unknown");
    case 331: return tr("no network service");
    case 332: return tr("network timeout");
    case 340: return tr("no +CNMA acknowledgement expected");
    case 500: return tr("unknown error");
    default: break;
    }
    if (code >= 512)
        return tr("manufacturer specific");
    return tr("unknown cause");
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
                    .arg(SmsSenderPrivate::refusal(prompt))
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
                                              .arg(SmsSenderPrivate::refusal(answer))
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
