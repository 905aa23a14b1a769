#pragma once
#include "zelmodemslib_export.h"

#include <QSharedDataPointer>
#include <QString>

namespace zelmodems {

class StoredPduData;

/// One entry of a modem's SMS store as the modem lists it in PDU mode
/// (AT+CMGL / AT+CMGR, 3GPP TS 27.005): where it is, its status, and the PDU
/// in hexadecimal with the service-centre part in front. Decoding the PDU is
/// the SMS codec's job; this is what the store said, unchanged.
///
/// An entry the listing could not read completely (a header whose PDU line
/// is missing or not hexadecimal, an index that is not a number) is kept
/// with its problem() set, so that a caller can show it and never act on an
/// index it could not read.
class ZELMODEMSLIB_EXPORT StoredPdu
{
public:
    /// `<stat>` of the listing.
    enum Status {
        UnknownStatus = -1,
        Unread = 0,     ///< received, not yet read
        Read = 1,       ///< received and read
        Unsent = 2,     ///< stored outgoing, not sent
        Sent = 3,       ///< stored outgoing, sent
    };

    StoredPdu();
    StoredPdu(int index, Status status, const QString& pdu);
    StoredPdu(const StoredPdu& other);
    StoredPdu(StoredPdu&& other) noexcept;
    StoredPdu& operator=(const StoredPdu& other);
    StoredPdu& operator=(StoredPdu&& other) noexcept;
    ~StoredPdu();

    bool operator==(const StoredPdu& other) const;
    bool operator!=(const StoredPdu& other) const { return !(*this == other); }

    /// The index in the store; -1 when the listing gave none that can be used.
    int index() const;
    void setIndex(int index);
    Status status() const;
    void setStatus(Status status);
    /// "SM" (SIM), "ME" (modem) and so on; empty when the modem did not say.
    QString storage() const;
    void setStorage(const QString& storage);
    /// The `<alpha>` field (a phone-book name for the address), mostly empty.
    QString alpha() const;
    void setAlpha(const QString& alpha);
    /// The TPDU length the modem announced, -1 when it gave none.
    int tpduLength() const;
    void setTpduLength(int length);
    /// The PDU in upper-case hexadecimal, service-centre part in front.
    QString pdu() const;
    void setPdu(const QString& pdu);
    /// Why the entry cannot be used; empty for a complete entry.
    QString problem() const;
    void setProblem(const QString& problem);

    /// A complete entry: an index and a PDU.
    bool isComplete() const;
    /// "unread", "read", "unsent", "sent" or "unknown".
    static QString statusName(Status status);

private:
    QSharedDataPointer<StoredPduData> d;
};

} // namespace zelmodems
