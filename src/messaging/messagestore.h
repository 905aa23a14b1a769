#pragma once
#include "storedpdu.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QList>
#include <QScopedPointer>
#include <QString>

class AtModem;

namespace zelmodems {

class MessageStorePrivate;

// A modem's SMS store, read without being emptied (3GPP TS 27.005 in PDU
// mode): list every entry, read one, delete the ones the caller names and
// learn whether each deletion happened. Nothing here deletes on its own,
// so a message that cannot be decoded, an outgoing one or the lone first
// half of a long message stays on the modem until someone decides.
//
//     AtModem modem(nullptr);
//     modem.open("/dev/ttyUSB2", 115200, 3);
//     zelmodems::MessageStore store(&modem);
//     QList<zelmodems::StoredPdu> entries;
//     if (!store.list(entries))
//         qWarning() << store.lastError();
//     for (const zelmodems::StoredPdu& entry : entries)
//         if (entry.isComplete() && handled(entry) && !store.remove(entry.index()))
//             qWarning() << entry.index() << store.lastError();
//
// The modem must be open; the calls block the caller's thread like every
// AtModem command.
class ZELMODEMSLIB_EXPORT MessageStore
{
public:
    // A listing larger than this cannot come from a real store (a full
    // store of a thousand messages lists in under half of it) and is refused.
    static constexpr int MaxListingBytes = 1024 * 1024;
    // Store indexes have at most this many digits.
    static constexpr int MaxIndex = 999999;

    explicit MessageStore(AtModem* modem);
    ~MessageStore();
    MessageStore(const MessageStore&) = delete;
    MessageStore& operator=(const MessageStore&) = delete;

    // Every entry of the current store (AT+CMGF=0, AT+CMGL=4), read and
    // unread, received and outgoing, in the modem's order. Listing marks
    // unread messages read, as the modem does for any listing. False when
    // the modem refused or the listing did not end; `entries` then holds
    // what was read before.
    bool list(QList<StoredPdu>& entries);
    // The entry at `index` (AT+CMGR). False when the slot is empty or the
    // modem refused.
    bool read(int index, StoredPdu& entry);
    // Deletes the entry at `index` (AT+CMGD). True only when the modem
    // confirmed it; an index outside 0..MaxIndex is refused unsent.
    bool remove(int index);

    // Why the last call failed.
    QString lastError() const;

    // The entries of an AT+CMGL answer, line by line in linear time. Lines
    // that are not entries (echo, result codes, unsolicited codes) are
    // skipped; an entry without its PDU line or with an unreadable index is
    // kept with its problem set. False, with `error`, for a listing larger
    // than MaxListingBytes.
    static bool parseListing(const QByteArray& answer, QList<StoredPdu>& entries, QString* error = nullptr);

private:
    QScopedPointer<MessageStorePrivate> d;
};

} // namespace zelmodems
