// SMS-DELIVER decoding: Sms::decode on the modem's hexadecimal text and
// SmsPduDecoder on raw octets, then everything a caller reads from the
// parts and from the messages joined out of them.
//
// Input: first byte selects the form (even: the rest as hexadecimal text,
// odd: as raw octets); the rest is split at 0xFF bytes into several PDUs,
// as one modem listing gives several messages.
#include "fuzzcommon.h"

#include "sms.h"
#include "smspart.h"
#include "smspdudecoder.h"

#include <QDebug>

ZML_FUZZ_INIT

namespace {

void readPart(const SmsPart& part)
{
    QString sink;
    QDebug(&sink) << part;
    SmsPart copy = part;
    QDebug(&sink) << &copy;
    // A part that reads as invalid says why, except when decoding stopped on
    // the two reads that fail without a text (service centre, protocol id,
    // 8-bit/UCS2 text): then the text is still the default or decoded one.
    if (part.isValid())
        ZML_FUZZ_CHECK(part.getErrorString().isEmpty());
    ZML_FUZZ_CHECK(part.getPartCount() >= 0 && part.getPartCount() <= 255);
    ZML_FUZZ_CHECK(part.getPartNumber() >= -1 && part.getPartNumber() <= 254);
    ZML_FUZZ_CHECK(part.getPartId().size() <= 2);
    (void)part.getDateTime().isValid();
    (void)part.getSenderAddress().size();
    (void)part.getMessageType();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const bool hexText = (data[0] & 1) == 0;
    const QByteArray input(reinterpret_cast<const char*>(data) + 1, int(size - 1));

    QList<SmsPart> parts;
    for (const QByteArray& chunk : input.split('\xff')) {
        SmsPart part;
        if (hexText) {
            part = Sms::decode(QString::fromLatin1(chunk.constData(), chunk.size()));
            // The decoder sees the same octets either way.
            SmsPduDecoder decoder;
            const SmsPart same = decoder.decodeMessage(QByteArray::fromHex(chunk));
            ZML_FUZZ_CHECK(same.isValid() == part.isValid());
            ZML_FUZZ_CHECK(same.getText() == part.getText());
            ZML_FUZZ_CHECK(same.getSenderAddress() == part.getSenderAddress());
        } else {
            SmsPduDecoder decoder;
            part = decoder.decodeMessage(chunk);
        }
        readPart(part);
        parts << part;
    }

    const QList<Sms> messages = Sms::join(parts);
    int stored = 0;
    for (const Sms& sms : messages) {
        QString sink;
        QDebug(&sink) << sms;
        Sms copy;
        copy = sms;
        QDebug(&sink) << &copy;
        (void)sms.getText();
        (void)sms.getDateTime();
        (void)sms.getErrorString();
        ZML_FUZZ_CHECK(sms.getSize() >= 0);
        if (sms.isValid())
            ZML_FUZZ_CHECK(sms.getErrorString() == QLatin1String("Sms()"));
        for (int i = -1; i <= sms.getSize(); ++i)
            (void)sms[i].getText();
        ++stored;
    }
    ZML_FUZZ_CHECK(stored <= parts.size());

    // The unpacker on its own, with a count from the input.
    const int count = input.isEmpty() ? 0 : int(uchar(input.at(0))) * 2 - 16;
    const QByteArray septets = SmsPduDecoder::septetsToOctets(input, count);
    ZML_FUZZ_CHECK(septets.size() <= qMax(count, 0));
    ZML_FUZZ_CHECK(septets.size() <= input.size() + input.size() / 7 + 1);
    for (const char c : septets)
        ZML_FUZZ_CHECK((uchar(c) & 0x80) == 0);
    return 0;
}
