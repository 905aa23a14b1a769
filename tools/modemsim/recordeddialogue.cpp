#include "recordeddialogue.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>
#include <mutex>

using namespace zelmodems::sim;

namespace {

// The reply is whole once a final result code (or the SMS prompt) arrived.
bool endsReply(const QByteArray& bytes)
{
    for (const char* final : { "OK\r\n", "ERROR\r\n", "NO CARRIER\r\n", "> " }) {
        if (bytes.contains(final))
            return true;
    }
    return bytes.contains("+CME ERROR") || bytes.contains("+CMS ERROR");
}

struct Chunk {
    qint64 ms;
    QByteArray bytes;
};

struct Pending {
    QByteArray command;
    qint64 sentMs = 0;
    QList<Chunk> chunks;
    qint64 goneMs = -1;     // the device went away then
};

// An event's time since the start; a time no recording can hold (negative,
// not a number, past a year) reads as 0.
qint64 millisecondsOf(const QJsonObject& event)
{
    const double ms = event.value(QStringLiteral("ms")).toDouble();
    return ms >= 0 && ms <= 365.0 * 24 * 3600 * 1000 ? qint64(ms) : 0;
}

RecordedDialogue::Exchange finish(const Pending& p)
{
    RecordedDialogue::Exchange e;
    e.command = p.command;
    int i = 0;
    QByteArray now;
    qint64 lastMs = p.sentMs;
    for (; i < p.chunks.size(); ++i) {
        if (i == 0)
            e.reply.delayMs = int(qBound<qint64>(0, p.chunks.at(0).ms - p.sentMs, 10000));
        now += p.chunks.at(i).bytes;
        lastMs = p.chunks.at(i).ms;
        if (endsReply(now)) {
            ++i;
            break;
        }
    }
    e.reply.bytes = now;
    if (p.goneMs >= 0)
        e.vanishAfterMs = int(qBound<qint64>(0, p.goneMs - p.sentMs, 60000));
    if (i < p.chunks.size()) {
        e.reply.followUpDelayMs = int(qBound<qint64>(0, p.chunks.at(i).ms - lastMs, 60000));
        for (; i < p.chunks.size(); ++i)
            e.reply.followUp += p.chunks.at(i).bytes;
    }
    return e;
}

} // namespace

bool RecordedDialogue::load(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    const QJsonObject header = QJsonDocument::fromJson(file.readLine()).object();
    if (header.value(QStringLiteral("zelmodemsRecording")).toInt() != 1) {
        *error = QStringLiteral("%1 is not a recording of zelmodems --record").arg(path);
        return false;
    }
    m_exchanges.clear();
    m_speeds.clear();
    QByteArray line;               // what the client is typing
    std::unique_ptr<Pending> current;
    int number = 1;
    while (!file.atEnd()) {
        ++number;
        const QByteArray text = file.readLine().trimmed();
        if (text.isEmpty())
            continue;
        const QJsonObject event = QJsonDocument::fromJson(text).object();
        if (event.value(QStringLiteral("event")).toString() == QLatin1String("gone")) {
            // The device went away during the command under way (or before
            // any: then at the first one).
            if (!current) {
                current = std::make_unique<Pending>();
                current->command = QByteArray();
            }
            current->goneMs = millisecondsOf(event);
            break;
        }
        const QString dir = event.value(QStringLiteral("dir")).toString();
        if (event.isEmpty() || (dir != QLatin1String(">") && dir != QLatin1String("<"))) {
            *error = QStringLiteral("%1:%2: not an event of the recording").arg(path).arg(number);
            return false;
        }
        const qint64 ms = millisecondsOf(event);
        const QByteArray bytes = QByteArray::fromHex(event.value(QStringLiteral("hex")).toString().toLatin1());
        const qint32 speed = event.value(QStringLiteral("speed")).toInt();
        if (speed > 0 && !m_speeds.contains(speed))
            m_speeds << speed;
        if (dir == QLatin1String("<")) {
            if (current)
                current->chunks.append({ ms, bytes });
            continue;
        }
        for (const char c : bytes) {
            if (c == '\n' && line.isEmpty())
                continue;
            if (c != '\r') {
                line.append(c);
                continue;
            }
            // A command line is complete: the modem acts on what follows "AT".
            const int at = line.toUpper().indexOf("AT");
            if (at >= 0) {
                if (current)
                    m_exchanges << finish(*current);
                current = std::make_unique<Pending>();
                current->command = line.mid(at + 2);
                current->sentMs = ms;
            }
            line.clear();
        }
    }
    if (current)
        m_exchanges << finish(*current);
    if (m_exchanges.isEmpty()) {
        *error = QStringLiteral("%1 holds no command").arg(path);
        return false;
    }
    return true;
}

void RecordedDialogue::apply(SimModem& modem) const
{
    modem.setEcho(false);
    if (!m_speeds.isEmpty())
        modem.setAcceptedLineSpeeds(m_speeds);
    struct State {
        std::mutex mutex;
        int next = 0;
    };
    auto state = std::make_shared<State>();
    const QList<Exchange> exchanges = m_exchanges;
    SimModem* device = &modem;
    modem.addHandler([state, exchanges, device](const QByteArray& command) -> std::optional<Reply> {
        std::lock_guard<std::mutex> lock(state->mutex);
        const QByteArray wanted = command.toUpper();
        for (int pass = 0; pass < 2; ++pass) {
            const int from = pass == 0 ? state->next : 0;
            for (int i = from; i < exchanges.size(); ++i) {
                if (exchanges.at(i).command.toUpper() == wanted) {
                    state->next = i + 1;
                    // The recorded modem went away here: so does this one.
                    if (exchanges.at(i).vanishAfterMs >= 0)
                        device->vanishAfter(exchanges.at(i).vanishAfterMs);
                    return exchanges.at(i).reply;
                }
            }
        }
        return Reply::error();
    });
}
