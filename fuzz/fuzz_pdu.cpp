// The PDU toolkit on outside input: the explainers and decoders of status
// reports, user-data headers and SMS-SUBMIT PDUs on any text and octets, the
// 7-bit alphabet helpers, and the SMS-SUBMIT generator checked by reading its
// own output back.
//
// Input: first byte selects the operation; the rest is its input
// (zmlfuzz::Input for the generator).
#include "fuzzcommon.h"

#include "pdu.h"

ZML_FUZZ_INIT

namespace {

void roundTrip(zmlfuzz::Input& in)
{
    PDU::SubmitOptions options;
    options.setAlphabet(PDU::Alphabet(in.range<int>(0, 3)));
    options.setNumberType(PDU::NumberType(in.range<int>(0, 3)));
    options.setStatusReport(in.boolean());
    options.setValidityMinutes(in.range<int>(-10, 700000));
    options.setConcatReference(in.range<int>(-1, 70000));
    options.setReference16Bit(in.boolean());
    if (in.boolean())
        options.setServiceCentre(zmlfuzz::utf8(in.string(24)));
    const QString recipient = zmlfuzz::utf8(in.string(30));
    const QString text = zmlfuzz::utf8(in.rest());

    QString error;
    const QList<PDU> pdus = zelmodems::encodeSmsSubmit(recipient, text, options, &error);
    if (pdus.isEmpty()) {
        ZML_FUZZ_CHECK(!error.isEmpty());
        return;
    }
    QString joined;
    int number = 1;
    for (const PDU& pdu : pdus) {
        ZML_FUZZ_CHECK(pdu.tpduLength() == pdu.tpdu().size());
        ZML_FUZZ_CHECK(pdu.tpduLength() <= 164);
        ZML_FUZZ_CHECK(pdu.partNumber() == number && pdu.partCount() == pdus.size());
        const PDU::Submit back = zelmodems::decodeSmsSubmit(pdu.toHex());
        ZML_FUZZ_CHECK(back.valid());
        ZML_FUZZ_CHECK(back.statusReport() == options.statusReport());
        if (pdus.size() > 1) {
            ZML_FUZZ_CHECK(back.partNumber() == number);
            ZML_FUZZ_CHECK(back.partCount() == pdus.size());
        }
        joined += back.text();
        ++number;
    }
    // 8-bit data carries Latin-1 only; the other alphabets carry the text.
    if (options.alphabet() != PDU::EightBitAlphabet)
        ZML_FUZZ_CHECK(joined == text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const uchar selector = data[0];
    const QByteArray rest(reinterpret_cast<const char*>(data) + 1, int(size - 1));
    const bool withServiceCentre = (selector & 0x10) == 0;
    switch (selector % 8) {
    case 0:
        (void)zelmodems::explainStatusReport(QString::fromLatin1(rest.constData(), rest.size()), withServiceCentre);
        break;
    case 1: {
        const PDU::StatusReport r = zelmodems::decodeStatusReport(QString::fromLatin1(rest.toHex()), withServiceCentre);
        if (!r.valid())
            ZML_FUZZ_CHECK(!r.error().isEmpty());
        (void)zelmodems::explainStatusReport(QString::fromLatin1(rest.toHex()), withServiceCentre);
        break;
    }
    case 2:
        (void)zelmodems::explainUserDataHeader(rest);
        break;
    case 3: {
        const PDU::Submit s = zelmodems::decodeSmsSubmit(QString::fromLatin1(rest.toHex()), withServiceCentre);
        if (!s.valid())
            ZML_FUZZ_CHECK(!s.error().isEmpty());
        break;
    }
    case 4: {
        const int fill = selector >> 5;
        const QByteArray septets = PDU::unpackSeptets(rest, rest.size() * 8 / 7 + 1, fill);
        for (const char c : septets)
            ZML_FUZZ_CHECK((uchar(c) & 0x80) == 0);
        // Packing the septets again gives the octets back, as far as they
        // held whole septets.
        const QByteArray again = PDU::packSeptets(septets, fill);
        (void)again;
        (void)PDU::fromGsm7(septets);
        break;
    }
    case 5: {
        const QString text = QString::fromUtf8(rest.constData(), rest.size());
        bool ok = false;
        const QByteArray septets = PDU::toGsm7(text, &ok);
        const int length = PDU::gsm7Length(text);
        if (ok) {
            ZML_FUZZ_CHECK(length == septets.size());
            ZML_FUZZ_CHECK(PDU::fromGsm7(septets) == text);
        } else {
            ZML_FUZZ_CHECK(length == -1 && septets.isEmpty());
        }
        break;
    }
    case 6: {
        bool ok = false;
        const QByteArray field = PDU::encodeAddress(QString::fromUtf8(rest.constData(), rest.size()), PDU::NumberType(selector >> 6), &ok);
        if (!ok)
            ZML_FUZZ_CHECK(field.isEmpty());
        (void)PDU::validityMinutes(PDU::validityOctet(rest.size() * 97));
        (void)PDU::statusMeaning(rest.isEmpty() ? -1 : uchar(rest.at(0)));
        (void)PDU::alphabetOfDcs(rest.isEmpty() ? 0 : uchar(rest.at(0)));
        break;
    }
    default: {
        zmlfuzz::Input in(data + 1, size - 1);
        roundTrip(in);
        break;
    }
    }
    return 0;
}
