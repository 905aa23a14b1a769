#include "storeuse.h"

#include "atmodem.h"
#include "linechannel_p.h"

namespace zelmodems {

namespace {
const int CPMS_TIMEOUT_MS = 2000;
}

StoreUse StoreUse::fromAnswer(const QByteArray& answer)
{
    StoreUse use;
    for (const QByteArray& raw : answer.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (!line.startsWith("+CPMS:"))
            continue;
        const QList<QByteArray> fields = line.mid(6).split(',');
        // Three roles in order (read, write, receive), three fields each;
        // older modems name only the first one or two.
        for (int role = 0; role < 3 && role * 3 + 2 < fields.size(); ++role) {
            QByteArray name = fields.at(role * 3).trimmed();
            name.replace('"', "");
            bool usedOk = false;
            bool totalOk = false;
            const int used = fields.at(role * 3 + 1).trimmed().toInt(&usedOk);
            const int total = fields.at(role * 3 + 2).trimmed().toInt(&totalOk);
            if (name.isEmpty() || !usedOk || !totalOk || used < 0 || total < 0)
                break;
            const QString store = QString::fromLatin1(name);
            int i = 0;
            while (i < use.m_stores.size() && use.m_stores.at(i).name != store)
                ++i;
            if (i == use.m_stores.size()) {
                use.m_stores.append(Store{store, used, total, 0});
            }
            use.m_stores[i].roles |= 1 << role;
        }
        break;
    }
    return use;
}

StoreUse StoreUse::read(AtModem* modem)
{
    StoreUse use;
    if (!modem) {
        use.m_failure = Failure(Failure::NotOpen, tr("no modem given"));
        return use;
    }
    LineChannel channel(modem);
    const LineChannel::Answer answer = channel.command("+CPMS?", CPMS_TIMEOUT_MS);
    if (answer.ok())
        use = fromAnswer(answer.text());
    if (!use.isRead())
        use.m_failure = answer.ok() ? Failure(Failure::Malformed, tr("the modem's answer to AT+CPMS? names no store"))
                                    : answer.failure(tr("the modem did not say how full its message stores are: %1")
                                                         .arg(answer.reason()));
    return use;
}

bool StoreUse::isReceivingFull() const
{
    for (const Store& store : m_stores) {
        if ((store.roles & Receiving) && store.isFull())
            return true;
    }
    return false;
}

} // namespace zelmodems
