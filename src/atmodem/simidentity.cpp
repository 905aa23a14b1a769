#include "simidentity.h"

#include "atmodem.h"
#include "linechannel_p.h"

namespace zelmodems {

namespace {
const int CIMI_TIMEOUT_MS = 1000;

bool isImsi(const QByteArray& line)
{
    if (line.size() < 6 || line.size() > 15)
        return false;
    for (const char c : line) {
        if (c < '0' || c > '9')
            return false;
    }
    return true;
}
} // namespace

SimIdentity SimIdentity::read(AtModem* modem)
{
    SimIdentity sim;
    if (!modem) {
        sim.m_failure = Failure(Failure::NotOpen, tr("no modem given"));
        return sim;
    }
    LineChannel channel(modem);
    const LineChannel::Answer answer = channel.command("+CIMI", CIMI_TIMEOUT_MS);
    QList<QByteArray> said = answer.lines;
    if (!answer.final.isEmpty())
        said << answer.final;
    sim.m_answer = QString::fromLatin1(said.join(' ').simplified());
    if (!answer.ok()) {
        sim.m_failure = answer.failure(tr("the modem gave no IMSI: %1").arg(answer.reason()));
        return sim;
    }
    for (const QByteArray& line : answer.lines) {
        if (isImsi(line.trimmed())) {
            sim.m_imsi = QString::fromLatin1(line.trimmed());
            return sim;
        }
    }
    sim.m_failure = Failure(Failure::Malformed, tr("the modem gave no IMSI: %1").arg(sim.m_answer));
    return sim;
}

} // namespace zelmodems
