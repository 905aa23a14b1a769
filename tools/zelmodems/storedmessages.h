#pragma once
#include "storedpdu.h"

#include <QDateTime>
#include <QList>
#include <QString>

// One message of the modem's store as the tool shows it: the entries that
// hold its parts, who it is from or to, when, its text, and whether it is
// whole. A long message's parts are grouped by address, concatenation
// reference and part count, so two senders' messages that happen to share a
// reference stay apart.
struct StoredMessage
{
    QList<int> indexes;              // store indexes of the parts present, in part order
    zelmodems::StoredPdu::Status status = zelmodems::StoredPdu::UnknownStatus;
    QString storage;
    bool outgoing = false;           // a stored SMS-SUBMIT (status unsent or sent)
    QString address;                 // the sender, or the recipient of an outgoing one
    QDateTime time;                  // the service centre's time stamp; invalid for outgoing
    QString text;
    int partCount = 1;
    QList<int> partsPresent;         // 1-based part numbers
    bool decoded = false;            // every part present could be read
    QString problem;                 // why not, or why the entry is unusable

    // Decoded, with every part.
    bool complete() const { return decoded && partsPresent.size() == partCount; }
};

// The messages of a store listing, in the order of their first entry.
QList<StoredMessage> groupStoredMessages(const QList<zelmodems::StoredPdu>& entries);

// A time stamp in ISO 8601 with its zone offset (2026-11-24T09:57:42+03:00,
// 2026-11-24T06:57:42+00:00).
QString isoTime(const QDateTime& time);
