// SMS-SUBMIT: building the PDUs of a message and reading one back.
#include "gsm7_p.h"
#include "pdu_p.h"

#include <QStringList>

namespace zelmodems {

namespace pduinternal {

// ---------------------------------------------------------------------------
// Splitting text into parts.

// GSM: the septets of each part; escape pairs stay together.
QList<QByteArray> splitGsm7(const QByteArray& septets, int capacity)
{
    QList<QByteArray> parts;
    int pos = 0;
    while (pos < septets.size()) {
        int end = qMin(pos + capacity, septets.size());
        // Never end a part between an escape and its character.
        if (end < septets.size() && end > pos && septets.at(end - 1) == gsm7::Escape) {
            int escapes = 0;
            for (int i = end - 1; i >= pos && septets.at(i) == gsm7::Escape; --i)
                ++escapes;
            // An odd run of escapes ending here means the last one starts a pair.
            if (escapes % 2 == 1)
                --end;
        }
        parts.append(septets.mid(pos, end - pos));
        pos = end;
    }
    return parts;
}

// UCS2: UTF-16 code units of each part; surrogate pairs stay together.
QList<QString> splitUcs2(const QString& text, int capacity)
{
    QList<QString> parts;
    int pos = 0;
    while (pos < text.size()) {
        int end = qMin(pos + capacity, text.size());
        if (end < text.size() && end - pos > 1 && text.at(end - 1).isHighSurrogate())
            --end;
        parts.append(text.mid(pos, end - pos));
        pos = end;
    }
    return parts;
}

} // namespace pduinternal

using namespace pduinternal;

QList<PDU> encodeSmsSubmit(const QString& recipient, const QString& text,
                           const PDU::SubmitOptions& options, QString* error)
{
    bool ok = false;
    const QByteArray address = PDU::encodeAddress(recipient, options.numberType(), &ok);
    if (!ok) {
        setError(error, PDU::tr("Invalid recipient number \"%1\"").arg(recipient));
        return {};
    }

    QByteArray serviceCentre(1, '\0');
    if (!options.serviceCentre().isEmpty()) {
        const QByteArray field = PDU::encodeAddress(options.serviceCentre(), PDU::AutoNumberType, &ok);
        if (!ok) {
            setError(error, PDU::tr("Invalid service centre number \"%1\"").arg(options.serviceCentre()));
            return {};
        }
        // Here the length counts octets (type of address included), not digits.
        serviceCentre = field.mid(1);
        serviceCentre.prepend(static_cast<char>(serviceCentre.size()));
    }

    PDU::Alphabet alphabet = options.alphabet();
    if (alphabet == PDU::EightBitAlphabet) {
        setError(error, PDU::tr("Text messages are sent in the GSM 7-bit or UCS2 alphabet"));
        return {};
    }
    const QByteArray septets = PDU::toGsm7(text, &ok);
    if (alphabet == PDU::AutoAlphabet)
        alphabet = ok ? PDU::Gsm7Alphabet : PDU::Ucs2Alphabet;
    if (alphabet == PDU::Gsm7Alphabet && !ok) {
        setError(error, PDU::tr("The text has characters outside the GSM 7-bit alphabet"));
        return {};
    }
    const bool gsm = alphabet == PDU::Gsm7Alphabet;

    // Split only when one message cannot hold the text.
    const int headerOctets = options.reference16Bit() ? 7 : 6;
    QList<QByteArray> gsmParts;
    QList<QString> ucs2Parts;
    if (gsm) {
        if (septets.size() <= MAX_SEPTETS)
            gsmParts.append(septets);
        else
            gsmParts = splitGsm7(septets, (MAX_UCS2_OCTETS - headerOctets) * 8 / 7);
    } else {
        if (text.size() * 2 <= MAX_UCS2_OCTETS)
            ucs2Parts.append(text);
        else
            ucs2Parts = splitUcs2(text, (MAX_UCS2_OCTETS - headerOctets) / 2);
    }
    const int count = gsm ? gsmParts.size() : ucs2Parts.size();
    if (count > MAX_PARTS) {
        setError(error, PDU::tr("The text needs %1 messages, more than %2").arg(count).arg(MAX_PARTS));
        return {};
    }

    const bool concatenated = count > 1;
    int reference = options.concatReference() >= 0 ? options.concatReference() : nextConcatReference();
    reference &= options.reference16Bit() ? 0xFFFF : 0xFF;
    const int validity = PDU::validityOctet(options.validityMinutes());

    QList<PDU> result;
    // An empty text still makes one (empty) message.
    const int total = qMax(count, 1);
    for (int i = 0; i < total; ++i) {
        QByteArray header;
        if (concatenated) {
            if (options.reference16Bit()) {
                header = QByteArray::fromHex("060804");
                header.append(static_cast<char>(reference >> 8));
                header.append(static_cast<char>(reference & 0xFF));
            } else {
                header = QByteArray::fromHex("050003");
                header.append(static_cast<char>(reference));
            }
            header.append(static_cast<char>(count));
            header.append(static_cast<char>(i + 1));
        }

        uchar firstOctet = MTI_SUBMIT;
        if (validity >= 0)
            firstOctet |= VPF_RELATIVE;
        if (options.statusReport())
            firstOctet |= SRR;
        if (concatenated)
            firstOctet |= UDHI;

        QByteArray tpdu;
        tpdu.append(static_cast<char>(firstOctet));
        tpdu.append('\0'); // TP-MR: the modem puts its own
        tpdu.append(address);
        tpdu.append('\0'); // TP-PID: plain short message
        tpdu.append(static_cast<char>(gsm ? DCS_GSM7 : DCS_UCS2));
        if (validity >= 0)
            tpdu.append(static_cast<char>(validity));

        if (gsm) {
            const QByteArray partSeptets = gsmParts.value(i);
            // After a header the septets start on a septet boundary.
            const int headerBits = header.size() * 8;
            const int fill = (7 - headerBits % 7) % 7;
            const int udl = (headerBits + fill) / 7 + partSeptets.size();
            tpdu.append(static_cast<char>(udl));
            tpdu.append(header);
            tpdu.append(PDU::packSeptets(partSeptets, fill));
        } else {
            const QByteArray octets = toUtf16BigEndian(ucs2Parts.value(i));
            tpdu.append(static_cast<char>(header.size() + octets.size()));
            tpdu.append(header);
            tpdu.append(octets);
        }
        result.append(PDU(serviceCentre, tpdu, i + 1, total));
    }
    setError(error, QString());
    return result;
}

PDU::Submit decodeSmsSubmit(const QString& hexPdu, bool withServiceCentre)
{
    PduSubmitData submit;
    QByteArray octets;
    if (!parseHex(hexPdu, &octets, &submit.error))
        return submit;

    OctetReader reader(octets);
    if (withServiceCentre)
        skipServiceCentre(reader);
    uchar first = 0;
    if (reader.octet(&first, PDU::tr("the first octet")) && (first & 0x03) != MTI_SUBMIT)
        reader.fail(PDU::tr("Not an SMS-SUBMIT (message type indicator %1)").arg(first & 0x03));

    uchar mr = 0;
    uchar pid = 0;
    uchar dcs = 0;
    reader.octet(&mr, PDU::tr("the message reference"));
    if (!reader.failed())
        readAddress(reader, PDU::tr("the destination address"), &submit.recipient, &submit.recipientType);
    reader.octet(&pid, PDU::tr("the protocol identifier"));
    reader.octet(&dcs, PDU::tr("the data coding scheme"));
    const int vpf = (first >> 3) & 0x03;
    if (vpf == 2) {
        uchar vp = 0;
        if (reader.octet(&vp, PDU::tr("the validity period")))
            submit.validityMinutes = PDU::validityMinutes(vp);
    } else if (vpf != 0) {
        QByteArray vp;
        reader.octets(7, &vp, PDU::tr("the validity period"));
    }
    uchar udl = 0;
    reader.octet(&udl, PDU::tr("the user data length"));
    if (reader.failed()) {
        submit.error = reader.error();
        return submit;
    }

    submit.messageReference = mr;
    submit.statusReport = (first & SRR) != 0;
    submit.dataCodingScheme = dcs;
    submit.alphabet = PDU::alphabetOfDcs(dcs);

    const bool gsm = submit.alphabet == PDU::Gsm7Alphabet;
    const int udOctets = gsm ? (udl * 7 + 7) / 8 : udl;
    QByteArray userData;
    if (!reader.octets(udOctets, &userData, PDU::tr("the user data"))) {
        submit.error = reader.error();
        return submit;
    }

    int headerSize = 0;
    if (first & UDHI) {
        headerSize = userData.isEmpty() ? 1 : static_cast<uchar>(userData.at(0)) + 1;
        if (headerSize > userData.size()) {
            submit.error = PDU::tr("The user data header (%1 octets) is longer than the user data (%2)")
                               .arg(headerSize)
                               .arg(userData.size());
            return submit;
        }
        submit.header = userData.left(headerSize);
        const HeaderInfo info = concatenationOf(submit.header);
        submit.concatReference = info.reference;
        submit.partNumber = info.partNumber;
        submit.partCount = info.partCount;
    }

    if (gsm) {
        const int headerBits = headerSize * 8;
        const int fill = (7 - headerBits % 7) % 7;
        const int headerSeptets = (headerBits + fill) / 7;
        submit.text = PDU::fromGsm7(
            PDU::unpackSeptets(userData.mid(headerSize), udl - headerSeptets, fill));
    } else if (submit.alphabet == PDU::Ucs2Alphabet) {
        submit.text = fromUtf16BigEndian(userData.mid(headerSize));
    } else {
        submit.text = QString::fromLatin1(userData.mid(headerSize));
    }
    submit.valid = true;
    return submit;
}
} // namespace zelmodems
