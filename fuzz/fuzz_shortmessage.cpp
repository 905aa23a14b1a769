// Reading stored messages: ShortMessage::decode on hexadecimal text and on
// octets, every field a caller reads, and the joining of the parts.
//
// Input: first byte selects the form (bit 0 clear: the rest as hexadecimal
// text, set: as raw octets; bit 1 set: no service-centre part in front); the
// rest is split at 0xFF bytes into several PDUs, as one listing holds several.
#include "fuzzcommon.h"

#include "joinedmessage.h"
#include "shortmessage.h"

ZML_FUZZ_INIT

using zelmodems::JoinedMessage;
using zelmodems::ShortMessage;

namespace {

void readMessage(const ShortMessage& m)
{
    if (!m.isValid()) {
        ZML_FUZZ_CHECK(!m.error().isEmpty());
        ZML_FUZZ_CHECK(m.text().isEmpty() && m.address().isEmpty() && m.header().isEmpty());
        return;
    }
    ZML_FUZZ_CHECK(m.error().isEmpty());
    ZML_FUZZ_CHECK(m.partNumber() >= 1 && m.partNumber() <= m.partCount() && m.partCount() <= 255);
    ZML_FUZZ_CHECK(m.concatReference() <= 0xFFFF);
    // A message holds at most 160 septets or 140 octets of user data.
    ZML_FUZZ_CHECK(m.userData().size() <= 160 && m.text().size() <= 160);
    ZML_FUZZ_CHECK(m.messageClass() >= -1 && m.messageClass() <= 3);
    ZML_FUZZ_CHECK(m.type() != ShortMessage::StatusReport || m.dischargeTime().isValid());
    ZML_FUZZ_CHECK(m.type() != ShortMessage::Deliver || m.serviceCentreTime().isValid());
    ZML_FUZZ_CHECK(m.lockingShiftLanguage() >= 0 && m.singleShiftLanguage() >= 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const bool octets = data[0] & 1;
    const bool withServiceCentre = !(data[0] & 2);
    const QByteArray rest(reinterpret_cast<const char*>(data + 1), int(size - 1));
    QList<ShortMessage> parts;
    for (const QByteArray& piece : rest.split('\xff')) {
        const ShortMessage m = octets ? ShortMessage::decode(piece, withServiceCentre)
                                      : ShortMessage::decode(QString::fromLatin1(piece.constData(), piece.size()), withServiceCentre);
        readMessage(m);
        parts << m;
    }
    const QList<JoinedMessage> joined = JoinedMessage::join(parts);
    int total = 0;
    for (const JoinedMessage& message : joined) {
        const QList<ShortMessage> present = message.parts();
        total += present.size();
        ZML_FUZZ_CHECK(present.size() == message.sourcePositions().size());
        ZML_FUZZ_CHECK(present.size() + message.missingParts().size() == message.partCount()
                       || !message.first().isValid());
        QString text;
        for (const ShortMessage& part : present)
            text += part.text();
        ZML_FUZZ_CHECK(text == message.text());
        ZML_FUZZ_CHECK(!message.isComplete() || message.missingParts().isEmpty());
    }
    ZML_FUZZ_CHECK(total == parts.size());
    return 0;
}
