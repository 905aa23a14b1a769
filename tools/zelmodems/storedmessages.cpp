// The messages of the modem's store: its entries decoded and grouped.
#include "storedmessages.h"

#include "pdu.h"
#include "sms.h"
#include "smspart.h"

#include <QMap>

using zelmodems::StoredPdu;

namespace {

bool isOutgoing(StoredPdu::Status status)
{
    return status == StoredPdu::Unsent || status == StoredPdu::Sent;
}

} // namespace

QString isoTime(const QDateTime& time)
{
    if (!time.isValid())
        return QString();
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate);
}

QList<StoredMessage> groupStoredMessages(const QList<StoredPdu>& entries)
{
    QList<StoredMessage> messages;
    // Key of a long message -> its place in `messages`.
    QMap<QString, int> longMessages;
    // Texts of the parts of each long message, by part number.
    QMap<int, QMap<int, QString>> partTexts;
    QMap<int, QMap<int, int>> partIndexes;

    for (const StoredPdu& entry : entries) {
        StoredMessage message;
        message.status = entry.status();
        message.storage = entry.storage();
        message.outgoing = isOutgoing(entry.status());
        if (entry.index() >= 0)
            message.indexes << entry.index();
        if (!entry.isComplete()) {
            message.problem = entry.problem();
            messages << message;
            continue;
        }
        if (message.outgoing) {
            const PDU::Submit submit = zelmodems::decodeSmsSubmit(entry.pdu());
            message.decoded = submit.valid();
            message.problem = submit.error();
            message.address = submit.recipient();
            message.text = submit.text();
            message.partCount = submit.partCount();
            message.partsPresent << submit.partNumber();
            messages << message;
            continue;
        }
        const SmsPart part = Sms::decode(entry.pdu());
        message.decoded = part.isValid();
        message.problem = part.getErrorString();
        message.address = part.getSenderAddress();
        message.time = part.getDateTime();
        message.text = part.getText();
        message.partCount = qMax(1, part.getPartCount());
        const int number = part.getPartNumber();
        if (!message.decoded || message.partCount == 1) {
            message.partsPresent << 1;
            messages << message;
            continue;
        }
        const QString key = message.address + QLatin1Char('\n') + QString::fromLatin1(part.getPartId().toHex())
                          + QLatin1Char('\n') + QString::number(message.partCount);
        auto known = longMessages.constFind(key);
        if (known == longMessages.constEnd() || partTexts[*known].contains(number)) {
            // A new message, or a second copy of a part: kept as its own.
            message.partsPresent << number;
            longMessages.insert(key, messages.size());
            partTexts[messages.size()].insert(number, message.text);
            partIndexes[messages.size()].insert(number, entry.index());
            messages << message;
            continue;
        }
        StoredMessage& whole = messages[*known];
        partTexts[*known].insert(number, message.text);
        partIndexes[*known].insert(number, entry.index());
        if (message.status == StoredPdu::Unread)
            whole.status = StoredPdu::Unread;
        if (message.time.isValid() && (!whole.time.isValid() || message.time < whole.time))
            whole.time = message.time;
    }
    // Long messages: parts in order, text joined from what is there.
    for (auto it = partTexts.cbegin(); it != partTexts.cend(); ++it) {
        StoredMessage& message = messages[it.key()];
        message.partsPresent = it.value().keys();
        message.indexes = partIndexes.value(it.key()).values();
        message.text = QStringList(it.value().values()).join(QString());
    }
    return messages;
}
