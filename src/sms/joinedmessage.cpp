// Joining the parts of long messages.
#include "joinedmessage.h"

#include <QHash>
#include <QMap>
#include <QSet>
#include <QStringList>

namespace zelmodems {

class JoinedMessageData : public QSharedData
{
public:
    QMap<int, ShortMessage> parts;      // by part number
    QMap<int, int> positions;           // part number -> place in the input
    int partCount = 1;
    bool ambiguous = false;
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
    // A part number seen twice under one key means two messages share it
    // (a sender that reuses its reference byte, a resent part): which half
    // belongs to which cannot be told, so none of them is joined.
    // Each part's key; empty for a part that stands alone (unreadable, or
    // not a part of a longer message).
    QStringList keys;
    keys.reserve(parts.size());
    QHash<QString, QSet<int>> seen;
    QSet<QString> ambiguous;
    for (const ShortMessage& part : parts) {
        const bool single = !part.isValid() || part.concatReference() < 0;
        keys << (single ? QString() : keyOf(part));
        if (single)
            continue;
        QSet<int>& numbers = seen[keys.last()];
        if (numbers.contains(part.partNumber()))
            ambiguous.insert(keys.last());
        numbers.insert(part.partNumber());
    }

    QList<JoinedMessage> messages;
    // Key -> the message still collecting parts under it.
    QHash<QString, int> open;
    for (int i = 0; i < parts.size(); ++i) {
        const ShortMessage& part = parts.at(i);
        const QString& key = keys.at(i);
        const bool single = key.isEmpty();
        const bool alone = !single && ambiguous.contains(key);
        // Parts left unjoined are never opened under their key.
        auto it = single ? open.end() : open.find(key);
        if (it == open.end()) {
            JoinedMessage message;
            message.d->partCount = single ? 1 : part.partCount();
            message.d->ambiguous = alone;
            const int number = single ? 1 : part.partNumber();
            message.d->parts.insert(number, part);
            message.d->positions.insert(number, i);
            if (!single && !alone)
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
bool JoinedMessage::isAmbiguous() const { return d->ambiguous; }

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
