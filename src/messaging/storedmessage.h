#pragma once
#include "shortmessage.h"
#include "storedpdu.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QSharedDataPointer>
#include <QString>

namespace zelmodems {

class StoredMessageData;

/// One message of a modem's SMS store as a person sees it: the store
/// entries that hold its parts, what kind of message it is, who it is from
/// or to, when, its text or data, and whether it is whole.
///
/// The kind is the TPDU's own (the modem's `<stat>` is only its
/// bookkeeping). The parts of a long message are grouped by address,
/// concatenation reference and part count, so that two senders' messages
/// that happen to share a reference stay apart; a part number that comes
/// twice leaves the whole set unjoined (isAmbiguous()), never spliced.
///
///     zelmodems::MessageStore store(&modem);
///     QList<zelmodems::StoredMessage> messages;
///     if (!store.listMessages(messages))
///         qWarning() << store.failure().text();
///     for (const zelmodems::StoredMessage& message : messages)
///         if (message.mayBeTaken() && handled(message))
///             store.remove(message.indexes());
///
/// An implicitly shared value.
class ZELMODEMSLIB_EXPORT StoredMessage
{
public:
    StoredMessage();
    StoredMessage(const StoredMessage& other);
    StoredMessage(StoredMessage&& other) noexcept;
    StoredMessage& operator=(const StoredMessage& other);
    StoredMessage& operator=(StoredMessage&& other) noexcept;
    ~StoredMessage();

    /// The messages of a store listing, in the order of their first entry.
    /// Every entry belongs to exactly one message; an entry the listing
    /// could not read is a message of its own that keeps its problem.
    static QList<StoredMessage> group(const QList<StoredPdu>& entries);

    /// Store indexes of the parts present, in part order.
    QList<int> indexes() const;
    /// Unread when any part is unread; otherwise the first part's status.
    StoredPdu::Status status() const;
    /// The storage the first part was listed from ("SM", "ME"), or empty.
    QString storage() const;
    ShortMessage::Type type() const;
    /// The sender; the recipient of an outgoing message or of a report.
    QString address() const;
    /// The service centre's time stamp; invalid for an outgoing message.
    QDateTime time() const;
    /// The text of the parts present, joined; empty for data.
    QString text() const;
    /// 8-bit data: userData() holds it and text() is empty.
    bool isData() const;
    QByteArray userData() const;
    /// Application ports of a data message, -1 when none.
    int destinationPort() const;
    int originatorPort() const;
    /// A status report's TP-MR (the message it is about), -1 otherwise.
    int reportReference() const;
    /// A status report's TP-DT, invalid otherwise.
    QDateTime dischargeTime() const;
    /// A status report's TP-ST, -1 otherwise.
    int reportStatus() const;
    int partCount() const;
    /// The 1-based numbers of the parts present.
    QList<int> partsPresent() const;
    /// A part number came twice under one sender and reference: not joined.
    bool isAmbiguous() const;
    /// Every part present could be read.
    bool isDecoded() const;
    /// Why the message could not be read, or why an entry is unusable.
    QString problem() const;

    /// A stored SMS-SUBMIT, whatever its `<stat>`.
    bool isOutgoing() const;
    /// Decoded, with every part.
    bool isComplete() const;
    /// What a reader that shows a message in full may delete after showing
    /// it: a whole received message or status report. Never an outgoing
    /// message, a lone or doubtful part, or one that could not be read.
    bool mayBeTaken() const;

private:
    QSharedDataPointer<StoredMessageData> d;
};

} // namespace zelmodems
