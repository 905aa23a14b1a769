// The grouping that decides what `zelmodems sms take` deletes: the modem's
// store entries decoded and joined into messages. Whatever the store holds,
// no entry belongs to two messages, a whole message of several parts is
// one sender's one reference with each part once (never a splice of two
// messages), and only a whole received message or report is taken.
//
// Input: entries, each from a mode byte: a part of a long message from one
// of three senders (reference, part and count from the next bytes), or a
// PDU of raw bytes; the store status of each from the mode byte.
#include "fuzzcommon.h"

#include "shortmessage.h"
#include "simmodem.h"
#include "storedmessage.h"

#include <QSet>

ZML_FUZZ_INIT

using zelmodems::ShortMessage;
using zelmodems::StoredMessage;
using zelmodems::StoredPdu;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 16 * 1024)
        return 0;
    zmlfuzz::Input in(data, size);
    static const QByteArray senders[] = { "+79161234567", "+79031112233", "Bank" };
    static const QDateTime time(QDate(2026, 11, 24), QTime(9, 57, 42), Qt::UTC);
    QList<StoredPdu> entries;
    while (in.remaining() > 0 && entries.size() < 64) {
        const uint8_t mode = in.byte();
        QByteArray pdu;
        if (mode & 0x80) {
            pdu = zmlfuzz::bytes(in.string(200)).toHex().toUpper();
        } else {
            const int reference = in.range(0, 3);
            const int total = in.range(1, 3);
            const int part = in.range(0, 3);
            pdu = zelmodems::sim::DeliverPdu::ucs2(senders[mode % 3], time, QStringLiteral("p%1").arg(part), reference,
                                                   part, total);
        }
        const StoredPdu::Status status = StoredPdu::Status(((mode >> 2) % 5) - 1);
        entries << StoredPdu(entries.size() + 1, status, QString::fromLatin1(pdu));
    }

    QSet<int> seen;
    for (const StoredMessage& message : StoredMessage::group(entries)) {
        for (const int index : message.indexes()) {
            ZML_FUZZ_CHECK(!seen.contains(index));
            seen.insert(index);
        }
        if (message.mayBeTaken())
            ZML_FUZZ_CHECK(message.isComplete() && !message.isOutgoing());
        if (!message.isComplete())
            continue;
        const QList<int> parts = message.partsPresent();
        ZML_FUZZ_CHECK(message.indexes().size() == message.partCount());
        ZML_FUZZ_CHECK(QSet<int>(parts.begin(), parts.end()).size() == message.partCount());
        const ShortMessage first = ShortMessage::decode(entries.at(message.indexes().first() - 1).pdu());
        for (const int index : message.indexes()) {
            const ShortMessage part = ShortMessage::decode(entries.at(index - 1).pdu());
            ZML_FUZZ_CHECK(part.isValid() && part.type() == message.type());
            ZML_FUZZ_CHECK(part.address() == first.address());
            ZML_FUZZ_CHECK(part.concatReference() == first.concatReference());
        }
        // What take deletes is what it can print in full: a whole report
        // names its message and its outcome.
        if (message.type() == ShortMessage::StatusReport)
            ZML_FUZZ_CHECK(message.reportReference() >= 0 && message.reportStatus() >= 0);
    }
    return 0;
}
