// Joining the parts of long messages.
#include "joinedmessage.h"

#include <QHash>
#include <QMap>

namespace zelmodems {

class JoinedMessageData : public QSharedData
{
public:
    QMap<int, ShortMessage> parts;      // by part number
    QMap<int, int> positions;           // part number -> place in the input
    int partCount = 1;
};

namespace {

// What makes parts one message.
QString keyOf(const ShortMessage& part)
{
    return QString::number(part.type()) + QLatin1Char('\n') + part.address() + QLatin1Char('\n')
         + QString::number(part.concatReference()) + QLatin1Char(part.isReference16Bit() ? 'w' : 'b')
         + QString::number(part.partCount());
}

} // namespace

JoinedMessage::JoinedMessage() : d(new JoinedMessageData) {}
JoinedMessage::JoinedMessage(const JoinedMessage& other) = default;
JoinedMessage& JoinedMessage::operator=(const JoinedMessage& other) = default;
JoinedMessage::~JoinedMessage() = default;

QList<JoinedMessage> JoinedMessage::join(const QList<ShortMessage>& parts)
{
    QList<JoinedMessage> messages;
    // Key -> the message still collecting parts under it.
    QHash<QString, int> open;
    for (int i = 0; i < parts.size(); ++i) {
        const ShortMessage& part = parts.at(i);
        const bool single = !part.isValid() || part.concatReference() < 0;
        const QString key = single ? QString() : keyOf(part);
        auto it = single ? open.end() : open.find(key);
        if (it == open.end() || messages.at(*it).d->parts.contains(part.partNumber())) {
            JoinedMessage message;
            message.d->partCount = single ? 1 : part.partCount();
            const int number = single ? 1 : part.partNumber();
            message.d->parts.insert(number, part);
            message.d->positions.insert(number, i);
            if (!single)
                open.insert(key, messages.size());
            messages << message;
            continue;
        }
        JoinedMessageData& message = *messages[*it].d;
        message.parts.insert(part.partNumber(), part);
        message.positions.insert(part.partNumber(), i);
    }
    return messages;
}

QList<ShortMessage> JoinedMessage::parts() const { return d->parts.values(); }
QList<int> JoinedMessage::sourcePositions() const { return d->positions.values(); }
ShortMessage JoinedMessage::first() const { return d->parts.isEmpty() ? ShortMessage() : d->parts.first(); }
int JoinedMessage::partCount() const { return d->partCount; }

QList<int> JoinedMessage::missingParts() const
{
    QList<int> missing;
    for (int number = 1; number <= d->partCount; ++number) {
        if (!d->parts.contains(number))
            missing << number;
    }
    return missing;
}

bool JoinedMessage::isComplete() const
{
    if (d->parts.size() != d->partCount)
        return false;
    for (const ShortMessage& part : d->parts) {
        if (!part.isValid())
            return false;
    }
    return true;
}

QString JoinedMessage::text() const
{
    QString text;
    for (const ShortMessage& part : d->parts)
        text += part.text();
    return text;
}

QDateTime JoinedMessage::serviceCentreTime() const
{
    QDateTime earliest;
    for (const ShortMessage& part : d->parts) {
        const QDateTime t = part.serviceCentreTime();
        if (t.isValid() && (!earliest.isValid() || t < earliest))
            earliest = t;
    }
    return earliest;
}

} // namespace zelmodems
