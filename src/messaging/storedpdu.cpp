// One entry of a modem's SMS store as listed in PDU mode.
#include "storedpdu.h"

namespace zelmodems {

class StoredPduData : public QSharedData
{
public:
    int index = -1;
    StoredPdu::Status status = StoredPdu::UnknownStatus;
    QString storage;
    QString alpha;
    int tpduLength = -1;
    QString pdu;
    QString problem;
};

StoredPdu::StoredPdu() : d(new StoredPduData) {}

StoredPdu::StoredPdu(int index, Status status, const QString& pdu) : d(new StoredPduData)
{
    d->index = index;
    d->status = status;
    d->pdu = pdu.toUpper();
}

StoredPdu::StoredPdu(const StoredPdu& other) = default;
StoredPdu::StoredPdu(StoredPdu&& other) noexcept = default;
StoredPdu& StoredPdu::operator=(const StoredPdu& other) = default;
StoredPdu& StoredPdu::operator=(StoredPdu&& other) noexcept = default;
StoredPdu::~StoredPdu() = default;

bool StoredPdu::operator==(const StoredPdu& other) const
{
    return d == other.d
        || (d->index == other.d->index && d->status == other.d->status && d->storage == other.d->storage
            && d->alpha == other.d->alpha && d->tpduLength == other.d->tpduLength && d->pdu == other.d->pdu
            && d->problem == other.d->problem);
}

int StoredPdu::index() const { return d->index; }
void StoredPdu::setIndex(int index) { d->index = index; }
StoredPdu::Status StoredPdu::status() const { return d->status; }
void StoredPdu::setStatus(Status status) { d->status = status; }
QString StoredPdu::storage() const { return d->storage; }
void StoredPdu::setStorage(const QString& storage) { d->storage = storage; }
QString StoredPdu::alpha() const { return d->alpha; }
void StoredPdu::setAlpha(const QString& alpha) { d->alpha = alpha; }
int StoredPdu::tpduLength() const { return d->tpduLength; }
void StoredPdu::setTpduLength(int length) { d->tpduLength = length; }
QString StoredPdu::pdu() const { return d->pdu; }
void StoredPdu::setPdu(const QString& pdu) { d->pdu = pdu.toUpper(); }
QString StoredPdu::problem() const { return d->problem; }
void StoredPdu::setProblem(const QString& problem) { d->problem = problem; }

bool StoredPdu::isComplete() const
{
    return d->index >= 0 && !d->pdu.isEmpty() && d->problem.isEmpty();
}

QString StoredPdu::statusName(Status status)
{
    switch (status) {
    case Unread: return QStringLiteral("unread");
    case Read: return QStringLiteral("read");
    case Unsent: return QStringLiteral("unsent");
    case Sent: return QStringLiteral("sent");
    case UnknownStatus: break;
    }
    return QStringLiteral("unknown");
}

} // namespace zelmodems
