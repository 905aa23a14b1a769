#pragma once
#include "shortmessage.h"
#include "zelmodemslib_export.h"

#include <QList>
#include <QSharedDataPointer>
#include <QString>

namespace zelmodems {

class JoinedMessageData;

/// A long message put together from its parts (TS 23.040 9.2.3.24.1).
/// Parts belong together when they have the same type, the same sender (or
/// recipient), the same concatenation reference of the same width and the
/// same part count, so that two senders who happen to pick the same
/// reference byte never share a message. A set with parts missing is kept
/// and says which. When a part number comes twice under one sender and
/// reference, no part of that set is joined: each stays a message of its
/// own, isAmbiguous(), since which halves belong together
/// cannot be told and a join would splice two messages into one.
///
///     QList<zelmodems::ShortMessage> parts;
///     for (const zelmodems::StoredPdu& entry : entries)
///         parts << zelmodems::ShortMessage::decode(entry.pdu());
///     for (const zelmodems::JoinedMessage& message : zelmodems::JoinedMessage::join(parts))
///         if (message.isComplete())
///             qInfo() << message.first().address() << message.text();
///         else
///             qInfo() << "incomplete, missing parts" << message.missingParts();
class ZELMODEMSLIB_EXPORT JoinedMessage
{
public:
    JoinedMessage();
    JoinedMessage(const JoinedMessage& other);
    JoinedMessage& operator=(const JoinedMessage& other);
    ~JoinedMessage();

    /// Groups `parts` into messages, in the order of each message's first part
    /// in the list. An invalid part is a message of its own.
    static QList<JoinedMessage> join(const QList<ShortMessage>& parts);

    /// The parts present, in part order.
    QList<ShortMessage> parts() const;
    /// Where each of parts() was in the list given to join().
    QList<int> sourcePositions() const;
    /// The first part present (the message itself when it stands alone).
    ShortMessage first() const;
    int partCount() const;
    /// 1-based numbers of the parts not present.
    QList<int> missingParts() const;
    /// Every part present and readable.
    bool isComplete() const;
    /// A part that came with a twin of its number under the same sender and
    /// reference, and so was left unjoined: incomplete unless it is a
    /// message of one part.
    bool isAmbiguous() const;
    /// The texts of the parts present, in order.
    QString text() const;
    /// The earliest service centre time stamp of the parts.
    QDateTime serviceCentreTime() const;

private:
    QSharedDataPointer<JoinedMessageData> d;
};

} // namespace zelmodems
