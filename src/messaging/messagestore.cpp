// The modem's SMS store in PDU mode: listing, reading and deleting entries.
#include "messagestore.h"

#include "atmodem.h"
#include "modemaccess_p.h"
#include "atmodemlog_p.h"
#include "linechannel_p.h"

#include <QCoreApplication>

namespace zelmodems {

namespace {

const int SHORT_TIMEOUT_MS = 1000;
const int LIST_TIMEOUT_MS = 5000;

bool isHexLine(const QByteArray& line)
{
    if (line.isEmpty() || line.size() % 2 != 0)
        return false;
    for (const char c : line) {
        if (!((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f')))
            return false;
    }
    return true;
}

// The comma-separated fields after "+CMGL:" or "+CMGR:"; a quoted field may
// hold commas and keeps its text without the quotes.
QList<QByteArray> fields(const QByteArray& text)
{
    QList<QByteArray> result;
    QByteArray field;
    bool quoted = false;
    for (const char c : text) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            result.append(field.trimmed()), field.clear();
        else
            field.append(c);
    }
    result.append(field.trimmed());
    return result;
}

// A store index: decimal digits only, within MaxIndex.
int parseIndex(const QByteArray& text)
{
    if (text.isEmpty() || text.size() > 6)
        return -1;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return -1;
    }
    return text.toInt();
}

StoredPdu::Status parseStatus(const QByteArray& text)
{
    const int value = parseIndex(text);
    return value >= StoredPdu::Unread && value <= StoredPdu::Sent ? StoredPdu::Status(value)
                                                                  : StoredPdu::UnknownStatus;
}

// The lines of an answer, empty ones left out.
QList<QByteArray> lines(const QByteArray& answer)
{
    QList<QByteArray> result;
    int start = 0;
    for (int i = 0; i <= answer.size(); ++i) {
        if (i == answer.size() || answer.at(i) == '\r' || answer.at(i) == '\n') {
            if (i > start)
                result.append(answer.mid(start, i - start).trimmed());
            start = i + 1;
        }
    }
    result.removeAll(QByteArray());
    return result;
}

// Fills `entry` from the fields of a header line, starting at the status
// (`fields` without the index for +CMGL, as they are for +CMGR).
void applyHeader(const QList<QByteArray>& header, StoredPdu& entry)
{
    entry.setStatus(parseStatus(header.value(0)));
    // <stat>,[<alpha>],<length>: the length is the last field.
    if (header.size() >= 3)
        entry.setAlpha(QString::fromUtf8(header.value(1)));
    const QByteArray length = header.size() >= 2 ? header.last() : QByteArray();
    entry.setTpduLength(parseIndex(length));
}

} // namespace

class MessageStorePrivate
{
public:
    AtModem* modem = nullptr;
    Modem* live = nullptr;   // the live modem the calls run on, if any
    Failure failure;

    bool fail(const Failure& why)
    {
        failure = why;
        qCWarning(AT_MODEM()).noquote() << why.text();
        return false;
    }

    // PDU mode, then the store in use ("SM", "ME"; empty when the modem
    // does not say). False, with the error set, when PDU mode is refused.
    static QString tr(const char* text) { return MessageStore::tr(text); }

    bool prepare(LineChannel& channel, QString& storage)
    {
        const LineChannel::Answer mode = channel.command("+CMGF=0", SHORT_TIMEOUT_MS);
        if (!mode.ok())
            return fail(mode.failure(tr("the modem refused PDU mode (AT+CMGF=0): %1").arg(mode.reason())));
        const LineChannel::Answer store = channel.command("+CPMS?", SHORT_TIMEOUT_MS);
        storage.clear();
        for (const QByteArray& line : store.lines) {
            if (store.ok() && line.startsWith("+CPMS:")) {
                storage = QString::fromLatin1(fields(line.mid(6)).value(0));
                break;
            }
        }
        return true;
    }
};

MessageStore::MessageStore(AtModem* modem) : d(new MessageStorePrivate)
{
    d->modem = modem;
}

MessageStore::MessageStore(Modem* modem) : d(new MessageStorePrivate)
{
    d->live = modem;
}

MessageStore::~MessageStore() = default;

QString MessageStore::lastError() const
{
    return d->failure.text();
}

Failure MessageStore::failure() const
{
    return d->failure;
}

bool MessageStore::parseListing(const QByteArray& answer, QList<StoredPdu>& entries, QString* error)
{
    entries.clear();
    if (answer.size() > MaxListingBytes) {
        if (error)
            *error = tr("the listing of %1 bytes is larger than any message store holds; refused")
                         .arg(answer.size());
        return false;
    }
    const QList<QByteArray> all = lines(answer);
    for (int i = 0; i < all.size(); ++i) {
        const QByteArray& line = all.at(i);
        if (!line.startsWith("+CMGL:"))
            continue;
        const QList<QByteArray> header = fields(line.mid(6));
        StoredPdu entry;
        entry.setIndex(parseIndex(header.value(0)));
        applyHeader(header.mid(1), entry);
        if (entry.index() < 0)
            entry.setProblem(tr("the index \"%1\" is not a store index").arg(QString::fromLatin1(header.value(0))));
        if (i + 1 < all.size() && isHexLine(all.at(i + 1))) {
            entry.setPdu(QString::fromLatin1(all.at(i + 1)));
            ++i;
        } else if (entry.problem().isEmpty()) {
            entry.setProblem(tr("no PDU line follows the entry"));
        }
        entries.append(entry);
    }
    return true;
}

bool MessageStore::list(QList<StoredPdu>& entries)
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return list(entries); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        });
    entries.clear();
    d->failure = Failure();
    // Result codes count only as lines of their own, so an "OK" inside a
    // name or a text, or a RING between two entries, never cuts the list.
    LineChannel channel(d->modem);
    QString storage;
    if (!d->prepare(channel, storage))
        return false;
    const LineChannel::Answer answer = channel.command("+CMGL=4", LIST_TIMEOUT_MS);
    QString error;
    if (!parseListing(answer.text(), entries, &error))
        return d->fail(Failure(Failure::Malformed, error));
    for (StoredPdu& entry : entries)
        entry.setStorage(storage);
    if (!answer.ok())
        return d->fail(answer.failure(tr("the listing did not end (AT+CMGL=4): %1").arg(answer.reason())));
    return true;
}

bool MessageStore::read(int index, StoredPdu& entry)
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return read(index, entry); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        });
    entry = StoredPdu();
    d->failure = Failure();
    if (index < 0 || index > MaxIndex)
        return d->fail(Failure(Failure::BadInput, tr("%1 is not a store index").arg(index)));
    LineChannel channel(d->modem);
    QString storage;
    if (!d->prepare(channel, storage))
        return false;
    const LineChannel::Answer answer = channel.command("+CMGR=" + QByteArray::number(index), SHORT_TIMEOUT_MS);
    if (!answer.ok())
        return d->fail(answer.failure(tr("reading message %1 failed: %2").arg(index).arg(answer.reason())));
    const QList<QByteArray>& all = answer.lines;
    for (int i = 0; i + 1 < all.size(); ++i) {
        if (all.at(i).startsWith("+CMGR:") && isHexLine(all.at(i + 1))) {
            entry.setIndex(index);
            applyHeader(fields(all.at(i).mid(6)), entry);
            entry.setStorage(storage);
            entry.setPdu(QString::fromLatin1(all.at(i + 1)));
            return true;
        }
    }
    return d->fail(Failure(Failure::NotFound, tr("there is no message at index %1").arg(index)));
}

bool MessageStore::remove(int index)
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return remove(index); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        });
    d->failure = Failure();
    if (index < 0 || index > MaxIndex)
        return d->fail(Failure(Failure::BadInput, tr("%1 is not a store index").arg(index)));
    LineChannel channel(d->modem);
    const LineChannel::Answer answer = channel.command("+CMGD=" + QByteArray::number(index), SHORT_TIMEOUT_MS);
    if (!answer.ok())
        return d->fail(answer.failure(tr("deleting message %1 failed: %2").arg(index).arg(answer.reason())));
    return true;
}

bool MessageStore::listMessages(QList<StoredMessage>& messages)
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return listMessages(messages); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        });
    messages.clear();
    QList<StoredPdu> entries;
    if (!list(entries))
        return false;
    messages = StoredMessage::group(entries);
    return true;
}

bool MessageStore::remove(const QList<int>& indexes)
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return remove(indexes); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        });
    Failure first;
    for (const int index : indexes) {
        if (!remove(index) && !first.isFailure())
            first = d->failure;
    }
    d->failure = first;
    return !first.isFailure();
}

} // namespace zelmodems
