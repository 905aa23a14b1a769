#include "networkoperator.h"

#include "atmodem.h"
#include "linechannel_p.h"

#include <QList>

namespace zelmodems {

namespace {
const int COPS_TIMEOUT_MS = 3000;
}

void NetworkOperator::take(const QByteArray& answer)
{
    for (const QByteArray& raw : answer.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (!line.startsWith("+COPS:"))
            continue;
        // The name may hold a comma: the quoted field is taken whole.
        const QByteArray rest = line.mid(6).trimmed();
        const int open = rest.indexOf('"');
        const int close = open < 0 ? -1 : rest.indexOf('"', open + 1);
        const QList<QByteArray> head = (open < 0 ? rest : rest.left(open)).split(',');
        bool ok = false;
        const int mode = head.value(0).trimmed().toInt(&ok);
        if (ok)
            m_mode = mode;
        if (open < 0 || close < 0)
            continue;
        const int format = head.value(1).trimmed().toInt(&ok);
        const QString oper = QString::fromLatin1(rest.mid(open + 1, close - open - 1)).trimmed();
        if (!ok || oper.isEmpty())
            continue;
        if (format == 2) {
            bool digits = oper.size() == 5 || oper.size() == 6;
            for (const QChar c : oper)
                digits = digits && c.isDigit();
            if (digits)
                m_numeric = oper;
        } else if (m_name.isEmpty() || format == 0) {
            m_name = oper;
        }
        const QList<QByteArray> tail = rest.mid(close + 1).split(',');
        const int act = tail.value(1).trimmed().toInt(&ok);
        if (ok)
            m_act = act;
    }
}

NetworkOperator NetworkOperator::read(AtModem* modem)
{
    NetworkOperator network;
    if (!modem) {
        network.m_failure = Failure(Failure::NotOpen, tr("no modem given"));
        return network;
    }
    LineChannel channel(modem);
    LineChannel::Answer last;
    // Modems that know no numeric format refuse AT+COPS=3,2 and keep theirs.
    for (const QByteArray& format : {QByteArray("+COPS=3,2"), QByteArray("+COPS=3,0")}) {
        channel.command(format, COPS_TIMEOUT_MS);
        last = channel.command("+COPS?", COPS_TIMEOUT_MS);
        if (last.end == LineChannel::End::PortGone || last.end == LineChannel::End::TimedOut)
            break;
        if (last.ok())
            network.take(last.text());
    }
    if (!last.ok() && !network.isKnown())
        network.m_failure = last.failure(tr("the modem did not name its network: %1").arg(last.reason()));
    return network;
}

int NetworkOperator::mcc() const
{
    return m_numeric.isEmpty() ? -1 : m_numeric.left(3).toInt();
}

int NetworkOperator::mnc() const
{
    return m_numeric.isEmpty() ? -1 : m_numeric.mid(3).toInt();
}

bool NetworkOperator::isForeignTo(const QString& imsi) const
{
    if (m_numeric.isEmpty() || imsi.size() < 6)
        return false;
    return !imsi.startsWith(m_numeric);
}

} // namespace zelmodems
