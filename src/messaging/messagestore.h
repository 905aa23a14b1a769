#pragma once
#include "failure.h"
#include "storedmessage.h"
#include "storedpdu.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QScopedPointer>
#include <QString>

class AtModem;

namespace zelmodems {

class Modem;

class MessageStorePrivate;

/// A modem's SMS store, read without being emptied (3GPP TS 27.005 in PDU
/// mode): list every entry, read one, delete the ones the caller names and
/// learn whether each deletion happened. Nothing here deletes on its own,
/// so a message that cannot be decoded, an outgoing one or the lone first
/// half of a long message stays on the modem until someone decides.
///
///     AtModem modem(nullptr);
///     modem.open("/dev/ttyUSB2", 115200, 3);
///     zelmodems::MessageStore store(&modem);
///     QList<zelmodems::StoredMessage> messages;
///     if (!store.listMessages(messages))
///         qWarning() << store.failure().text();
///     for (const zelmodems::StoredMessage& message : messages)
///         if (message.mayBeTaken() && handled(message) && !store.remove(message.indexes()))
///             qWarning() << message.indexes() << store.failure().text();
///
/// The modem must be open; the calls block the caller's thread like every
/// AtModem command.
class ZELMODEMSLIB_EXPORT MessageStore
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::MessageStore)

public:
    /// A listing larger than this cannot come from a real store (a full
    /// store of a thousand messages lists in under half of it) and is refused.
    static constexpr int MaxListingBytes = 1024 * 1024;
    /// Store indexes have at most this many digits.
    static constexpr int MaxIndex = 999999;

    explicit MessageStore(AtModem* modem);
    /// The same service on a live modem: each call runs on the modem's
    /// thread in its turn in the queue (after the operations queued before
    /// it), while the calling thread waits. Never call it from a slot of the
    /// modem's thread. (Handlers set here are called on the modem's thread.)
    explicit MessageStore(Modem* modem);
    ~MessageStore();
    MessageStore(const MessageStore&) = delete;
    MessageStore& operator=(const MessageStore&) = delete;

    /// Every entry of the current store (AT+CMGF=0, AT+CMGL=4), read and
    /// unread, received and outgoing, in the modem's order. Listing marks
    /// unread messages read, as the modem does for any listing. False when
    /// the modem refused or the listing did not end; `entries` then holds
    /// what was read before.
    bool list(QList<StoredPdu>& entries);
    /// The same listing as messages a person sees: entries decoded and the
    /// parts of long messages joined (StoredMessage::group).
    bool listMessages(QList<StoredMessage>& messages);
    /// The entry at `index` (AT+CMGR). False when the slot is empty or the
    /// modem refused.
    bool read(int index, StoredPdu& entry);
    /// Deletes the entry at `index` (AT+CMGD). True only when the modem
    /// confirmed it; an index outside 0..MaxIndex is refused unsent.
    bool remove(int index);
    /// Deletes each of `indexes` (a message's parts), going on after a
    /// failure; true when every deletion was confirmed, else the failure of
    /// the first that was not.
    bool remove(const QList<int>& indexes);

    /// Why the last call failed; no failure after a call that worked.
    Failure failure() const;
    /// failure().text().
    QString lastError() const;

    /// The entries of an AT+CMGL answer, line by line in linear time. Lines
    /// that are not entries (echo, result codes, unsolicited codes) are
    /// skipped; an entry without its PDU line or with an unreadable index is
    /// kept with its problem set. False, with `error`, for a listing larger
    /// than MaxListingBytes.
    static bool parseListing(const QByteArray& answer, QList<StoredPdu>& entries, QString* error = nullptr);

private:
    QScopedPointer<MessageStorePrivate> d;
};

} // namespace zelmodems
