// The messages of a modem's store: its entries decoded and grouped.
#include "storedmessage.h"

#include "joinedmessage.h"
#include "pdu.h"

namespace zelmodems {

class StoredMessageData : public QSharedData
{
public:
    QList<int> indexes;
    StoredPdu::Status status = StoredPdu::UnknownStatus;
    QString storage;
    ShortMessage::Type type = ShortMessage::InvalidType;
    QString address;
    QDateTime time;
    QString text;
    bool data = false;
    QByteArray userData;
    int destinationPort = -1;
    int originatorPort = -1;
    int reference = -1;
    QDateTime dischargeTime;
    int reportStatus = -1;
    int partCount = 1;
    QList<int> partsPresent;
    bool ambiguous = false;
    bool decoded = false;
    QString problem;
};

StoredMessage::StoredMessage() : d(new StoredMessageData) {}
StoredMessage::StoredMessage(const StoredMessage& other) = default;
StoredMessage::StoredMessage(StoredMessage&& other) noexcept = default;
StoredMessage& StoredMessage::operator=(const StoredMessage& other) = default;
StoredMessage& StoredMessage::operator=(StoredMessage&& other) noexcept = default;
StoredMessage::~StoredMessage() = default;

QList<StoredMessage> StoredMessage::group(const QList<StoredPdu>& entries)
{
    // An entry the listing could not read stays an invalid part: a message of
    // its own that keeps the listing's complaint. A message the modem passed
    // on without storing it (+CMT, +CDS) has a PDU and no index.
    const auto readable = [](const StoredPdu& entry) {
        return !entry.pdu().isEmpty() && entry.problem().isEmpty();
    };
    QList<ShortMessage> parts;
    parts.reserve(entries.size());
    for (const StoredPdu& entry : entries)
        parts << (readable(entry) ? ShortMessage::decode(entry.pdu()) : ShortMessage());

    QList<StoredMessage> messages;
    for (const JoinedMessage& joined : JoinedMessage::join(parts)) {
        const QList<int> positions = joined.sourcePositions();
        const StoredPdu& first = entries.at(positions.first());
        const ShortMessage sms = joined.first();
        StoredMessage message;
        StoredMessageData& m = *message.d;
        m.status = first.status();
        m.storage = first.storage();
        m.type = sms.type();
        m.ambiguous = joined.isAmbiguous();
        m.data = sms.isValid() && sms.alphabet() == PDU::EightBitAlphabet;
        for (const int position : positions) {
            const StoredPdu& entry = entries.at(position);
            if (entry.index() >= 0)
                m.indexes << entry.index();
            if (entry.status() == StoredPdu::Unread)
                m.status = StoredPdu::Unread;
        }
        m.decoded = true;
        for (const ShortMessage& part : joined.parts()) {
            if (!part.isValid())
                m.decoded = false;
            m.partsPresent << part.partNumber();
            if (m.data)
                m.userData += part.userData();
        }
        m.problem = !readable(first) ? first.problem() : sms.error();
        m.address = sms.address();
        m.time = joined.serviceCentreTime();
        m.text = joined.text();
        m.partCount = joined.partCount();
        m.destinationPort = sms.destinationPort();
        m.originatorPort = sms.originatorPort();
        if (sms.type() == ShortMessage::StatusReport) {
            m.reference = sms.messageReference();
            m.dischargeTime = sms.dischargeTime();
            m.reportStatus = sms.status();
        }
        messages << message;
    }
    return messages;
}

QList<int> StoredMessage::indexes() const { return d->indexes; }
StoredPdu::Status StoredMessage::status() const { return d->status; }
QString StoredMessage::storage() const { return d->storage; }
ShortMessage::Type StoredMessage::type() const { return d->type; }
QString StoredMessage::address() const { return d->address; }
QDateTime StoredMessage::time() const { return d->time; }
QString StoredMessage::text() const { return d->text; }
bool StoredMessage::isData() const { return d->data; }
QByteArray StoredMessage::userData() const { return d->userData; }
int StoredMessage::destinationPort() const { return d->destinationPort; }
int StoredMessage::originatorPort() const { return d->originatorPort; }
int StoredMessage::reportReference() const { return d->reference; }
QDateTime StoredMessage::dischargeTime() const { return d->dischargeTime; }
int StoredMessage::reportStatus() const { return d->reportStatus; }
int StoredMessage::partCount() const { return d->partCount; }
QList<int> StoredMessage::partsPresent() const { return d->partsPresent; }
bool StoredMessage::isAmbiguous() const { return d->ambiguous; }
bool StoredMessage::isDecoded() const { return d->decoded; }
QString StoredMessage::problem() const { return d->problem; }

bool StoredMessage::isOutgoing() const
{
    return d->type == ShortMessage::Submit;
}

bool StoredMessage::isComplete() const
{
    return d->decoded && d->partsPresent.size() == d->partCount;
}

bool StoredMessage::mayBeTaken() const
{
    return isComplete() && (d->type == ShortMessage::Deliver || d->type == ShortMessage::StatusReport);
}

} // namespace zelmodems
