// The messages of the modem's store: its entries decoded and grouped.
#include "storedmessages.h"

#include "joinedmessage.h"
#include "shortmessage.h"

using zelmodems::StoredPdu;

QString isoTime(const QDateTime& time)
{
    if (!time.isValid())
        return QString();
    // Always the offset, +00:00 included (Qt writes "Z" for UTC).
    const int offset = time.offsetFromUtc();
    const int minutes = qAbs(offset) / 60;
    return time.toOffsetFromUtc(offset).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"))
         + QStringLiteral("%1%2:%3")
               .arg(offset < 0 ? QLatin1Char('-') : QLatin1Char('+'))
               .arg(minutes / 60, 2, 10, QLatin1Char('0'))
               .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QList<StoredMessage> groupStoredMessages(const QList<StoredPdu>& entries)
{
    // An entry the listing could not read stays an invalid part: a message of
    // its own that keeps the listing's complaint.
    QList<zelmodems::ShortMessage> parts;
    parts.reserve(entries.size());
    for (const StoredPdu& entry : entries)
        parts << (entry.isComplete() ? zelmodems::ShortMessage::decode(entry.pdu()) : zelmodems::ShortMessage());

    QList<StoredMessage> messages;
    for (const zelmodems::JoinedMessage& joined : zelmodems::JoinedMessage::join(parts)) {
        const QList<int> positions = joined.sourcePositions();
        const StoredPdu& first = entries.at(positions.first());
        const zelmodems::ShortMessage sms = joined.first();
        StoredMessage message;
        message.status = first.status();
        message.storage = first.storage();
        message.type = sms.type();
        message.ambiguous = joined.isAmbiguous();
        message.data = sms.isValid() && sms.alphabet() == zelmodems::PDU::EightBitAlphabet;
        for (const int position : positions) {
            const StoredPdu& entry = entries.at(position);
            if (entry.index() >= 0)
                message.indexes << entry.index();
            if (entry.status() == StoredPdu::Unread)
                message.status = StoredPdu::Unread;
        }
        message.decoded = true;
        for (const zelmodems::ShortMessage& part : joined.parts()) {
            if (!part.isValid())
                message.decoded = false;
            message.partsPresent << part.partNumber();
            if (message.data)
                message.userData += part.userData();
        }
        message.problem = !first.isComplete() ? first.problem() : sms.error();
        message.address = sms.address();
        message.time = joined.serviceCentreTime();
        message.text = joined.text();
        message.partCount = joined.partCount();
        message.destinationPort = sms.destinationPort();
        message.originatorPort = sms.originatorPort();
        if (sms.type() == zelmodems::ShortMessage::StatusReport) {
            message.reference = sms.messageReference();
            message.dischargeTime = sms.dischargeTime();
            message.reportStatus = sms.status();
        }
        messages << message;
    }
    return messages;
}
