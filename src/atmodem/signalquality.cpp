#include "signalquality.h"

#include "atmodem.h"
#include "linechannel_p.h"

#include <QRegularExpression>

namespace zelmodems {

namespace {
const int CSQ_TIMEOUT_MS = 1000;
}

SignalQuality SignalQuality::read(AtModem* modem)
{
    SignalQuality signal;
    if (!modem) {
        signal.m_failure = Failure(Failure::NotOpen, tr("no modem given"));
        return signal;
    }
    LineChannel channel(modem);
    const LineChannel::Answer answer = channel.command("+CSQ", CSQ_TIMEOUT_MS);
    if (!answer.ok()) {
        signal.m_failure = answer.failure(tr("the modem did not report the signal level: %1").arg(answer.reason()));
        return signal;
    }
    signal = fromAnswer(answer.text());
    if (!signal.isAnswered())
        signal.m_failure = Failure(Failure::Malformed, tr("the modem did not report the signal level: no +CSQ in its answer"));
    return signal;
}

SignalQuality SignalQuality::fromAnswer(const QByteArray& answer)
{
    static const QRegularExpression csq(QStringLiteral("\\+CSQ:\\s*(\\d{1,3})\\s*,\\s*(\\d{1,3})"));
    SignalQuality signal;
    const QRegularExpressionMatch match = csq.match(QString::fromLatin1(answer));
    if (match.hasMatch()) {
        signal.m_rssi = match.captured(1).toInt();
        signal.m_ber = match.captured(2).toInt();
    }
    return signal;
}

SignalQuality::Rating SignalQuality::rating() const
{
    if (!isKnown())
        return Unknown;
    const int level = dbm();
    if (level >= -70)
        return Excellent;
    if (level >= -85)
        return Good;
    if (level >= -100)
        return Fair;
    return Poor;
}

QString SignalQuality::ratingName(Rating rating)
{
    switch (rating) {
    case Excellent: return QStringLiteral("excellent");
    case Good: return QStringLiteral("good");
    case Fair: return QStringLiteral("fair");
    case Poor: return QStringLiteral("poor");
    case Unknown: break;
    }
    return QStringLiteral("unknown");
}

QString SignalQuality::ratingText(Rating rating)
{
    switch (rating) {
    case Excellent: return tr("excellent");
    case Good: return tr("good");
    case Fair: return tr("fair");
    case Poor: return tr("poor");
    case Unknown: break;
    }
    return tr("unknown");
}

} // namespace zelmodems
