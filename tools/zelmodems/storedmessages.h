#pragma once
#include "shortmessage.h"
#include "storedpdu.h"

#include <QDateTime>
#include <QList>
#include <QString>

// One message of the modem's store as the tool shows it: the entries that
// hold its parts, what kind of message it is, who it is from or to, when,
// its text or data, and whether it is whole. The kind is the TPDU's own
// (what the modem's <stat> says is only its bookkeeping). A long message's
// parts are grouped by address, concatenation reference and part count, so
// two senders' messages that happen to share a reference stay apart; a
// part number that comes twice leaves that set unjoined.
struct StoredMessage
{
    QList<int> indexes;              // store indexes of the parts present, in part order
    zelmodems::StoredPdu::Status status = zelmodems::StoredPdu::UnknownStatus;
    QString storage;
    zelmodems::ShortMessage::Type type = zelmodems::ShortMessage::InvalidType;
    QString address;                 // the sender; the recipient of an outgoing message or a report
    QDateTime time;                  // the service centre's time stamp; invalid for outgoing
    QString text;
    bool data = false;               // 8-bit data: `userData` holds it, `text` is empty
    QByteArray userData;             // the data of the parts present, joined
    int destinationPort = -1;        // application ports of a data message
    int originatorPort = -1;
    int reference = -1;              // a report's TP-MR: the message it is about
    QDateTime dischargeTime;         // a report's TP-DT
    int reportStatus = -1;           // a report's TP-ST
    int partCount = 1;
    QList<int> partsPresent;         // 1-based part numbers
    bool ambiguous = false;          // a part number came twice: not joined
    bool decoded = false;            // every part present could be read
    QString problem;                 // why not, or why the entry is unusable

    // A stored SMS-SUBMIT, whatever its <stat>.
    bool outgoing() const { return type == zelmodems::ShortMessage::Submit; }
    // Decoded, with every part.
    bool complete() const { return decoded && partsPresent.size() == partCount; }
};

// The messages of a store listing, in the order of their first entry.
QList<StoredMessage> groupStoredMessages(const QList<zelmodems::StoredPdu>& entries);

// A time stamp in ISO 8601 with its zone offset (2026-11-24T09:57:42+03:00,
// 2026-11-24T06:57:42+00:00).
QString isoTime(const QDateTime& time);
