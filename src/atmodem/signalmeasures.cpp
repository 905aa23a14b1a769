#include "signalmeasures.h"

#include "atmodem.h"
#include "linechannel_p.h"

#include <QList>

namespace zelmodems {

namespace {
const int TIMEOUT_MS = 1000;

// The numeric fields after "<prefix>:"; -1 for a field that is no number.
QList<int> numbers(const QByteArray& line, int from)
{
    QList<int> values;
    for (const QByteArray& field : line.mid(from).split(',')) {
        bool ok = false;
        const int n = field.trimmed().toInt(&ok);
        values << (ok ? n : -1);
    }
    return values;
}

// The line of `answer` that begins with `prefix`.
QByteArray lineOf(const QByteArray& answer, const QByteArray& prefix)
{
    for (const QByteArray& raw : answer.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.startsWith(prefix))
            return line;
    }
    return QByteArray();
}
} // namespace

SignalMeasures::SignalMeasures()
{
    for (double& v : m_values)
        v = 0;
}

void SignalMeasures::set(Measure measure, double value)
{
    m_values[measure] = value;
    m_known |= 1u << measure;
}

bool SignalMeasures::has(Measure measure) const
{
    return (m_known & (1u << measure)) != 0;
}

double SignalMeasures::value(Measure measure) const
{
    return has(measure) ? m_values[measure] : 0;
}

SignalMeasures SignalMeasures::fromCesq(const QByteArray& answer)
{
    SignalMeasures m;
    const QByteArray line = lineOf(answer, "+CESQ:");
    if (line.isEmpty())
        return m;
    const QList<int> v = numbers(line, 6);
    if (v.size() < 6)
        return m;
    m.m_answered = true;
    // TS 27.007 8.69: each scale starts below its lowest step; 99 and 255
    // are "not known or not detectable".
    const auto in = [](int value, int most) { return value >= 0 && value <= most; };
    if (in(v.at(0), 63))
        m.set(Rssi, v.at(0) - 111);          // 0: < -110 dBm, 63: >= -48 dBm
    if (in(v.at(1), 7))
        m.set(Ber, v.at(1));
    if (in(v.at(2), 96))
        m.set(Rscp, v.at(2) - 121);          // 0: < -120 dBm, 96: >= -25 dBm
    if (in(v.at(3), 49))
        m.set(EcNo, -24.5 + 0.5 * v.at(3));  // 0: < -24 dB, 49: >= -0.5 dB
    if (in(v.at(4), 34))
        m.set(Rsrq, -20 + 0.5 * v.at(4));    // 0: < -19.5 dB, 34: >= -3 dB
    if (in(v.at(5), 97))
        m.set(Rsrp, v.at(5) - 141);          // 0: < -140 dBm, 97: >= -44 dBm
    if (m.has(Rsrp) || m.has(Rsrq))
        m.m_technology = QStringLiteral("LTE");
    else if (m.has(Rscp) || m.has(EcNo))
        m.m_technology = QStringLiteral("UMTS");
    else if (m.has(Rssi))
        m.m_technology = QStringLiteral("GSM");
    return m;
}

SignalMeasures SignalMeasures::fromHcsq(const QByteArray& answer)
{
    SignalMeasures m;
    const QByteArray line = lineOf(answer, "^HCSQ:");
    if (line.isEmpty())
        return m;
    const int comma = line.indexOf(',');
    QByteArray mode = (comma < 0 ? line.mid(6) : line.mid(6, comma - 6)).trimmed();
    mode.replace('"', "");
    m.m_answered = true;
    if (comma < 0)
        return m;   // "NOSERVICE"
    const QList<int> v = numbers(line, comma + 1);
    const auto in = [](int value, int most) { return value >= 0 && value <= most; };
    // Huawei's scales: RSSI and RSCP 0..96 from -120 dBm, RSRP 0..97 from
    // -140 dBm, Ec/Io 0..65 from -32 dB, RSRQ 0..34 from -20 dB, SINR
    // 0..251 from -20 dB in steps of 0.2 dB; 255 is not known.
    if (in(v.value(0, -1), 96))
        m.set(Rssi, v.at(0) - 121);
    if (mode == "LTE") {
        m.m_technology = QStringLiteral("LTE");
        if (in(v.value(1, -1), 97))
            m.set(Rsrp, v.at(1) - 141);
        if (in(v.value(2, -1), 251))
            m.set(Sinr, -20 + 0.2 * v.at(2));
        if (in(v.value(3, -1), 34))
            m.set(Rsrq, -20 + 0.5 * v.at(3));
    } else if (mode == "WCDMA" || mode == "TD-SCDMA") {
        m.m_technology = QStringLiteral("UMTS");
        if (in(v.value(1, -1), 96))
            m.set(Rscp, v.at(1) - 121);
        if (in(v.value(2, -1), 65))
            m.set(EcNo, -32.5 + 0.5 * v.at(2));
    } else if (mode == "GSM") {
        m.m_technology = QStringLiteral("GSM");
    }
    return m;
}

SignalMeasures SignalMeasures::read(AtModem* modem)
{
    SignalMeasures m;
    if (!modem) {
        m.m_failure = Failure(Failure::NotOpen, tr("no modem given"));
        return m;
    }
    LineChannel channel(modem);
    const LineChannel::Answer cesq = channel.command("+CESQ", TIMEOUT_MS);
    if (cesq.ok())
        m = fromCesq(cesq.text());
    if (cesq.end == LineChannel::End::PortGone) {
        m.m_failure = cesq.failure(tr("the modem did not report its measurements: %1").arg(cesq.reason()));
        return m;
    }
    if (m.m_known == 0 && (modem->dialect() == AtModem::HUAWEI || modem->dialect() == AtModem::HSPA)) {
        const LineChannel::Answer hcsq = channel.command("^HCSQ?", TIMEOUT_MS);
        if (hcsq.ok()) {
            const SignalMeasures huawei = fromHcsq(hcsq.text());
            if (huawei.isAnswered())
                return huawei;
        }
    }
    if (!m.isAnswered())
        m.m_failure = cesq.failure(tr("the modem did not report its measurements: %1").arg(cesq.reason()));
    return m;
}

QString SignalMeasures::measureName(Measure measure)
{
    switch (measure) {
    case Rssi: return QStringLiteral("rssi");
    case Ber: return QStringLiteral("ber");
    case Rscp: return QStringLiteral("rscp");
    case EcNo: return QStringLiteral("ecno");
    case Rsrp: return QStringLiteral("rsrp");
    case Rsrq: return QStringLiteral("rsrq");
    case Sinr: return QStringLiteral("sinr");
    }
    return QString();
}

QString SignalMeasures::unit(Measure measure)
{
    switch (measure) {
    case Rssi:
    case Rscp:
    case Rsrp: return QStringLiteral("dBm");
    case EcNo:
    case Rsrq:
    case Sinr: return QStringLiteral("dB");
    case Ber: break;
    }
    return QString();
}

} // namespace zelmodems
