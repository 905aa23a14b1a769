// Explainers: SMS-STATUS-REPORT and user-data headers in readable lines.
#include "pdu_p.h"

#include <QStringList>

namespace zelmodems {

namespace pduinternal {

// ---------------------------------------------------------------------------
// User-data headers (TS 23.040 9.2.3.24).

QString elementName(uchar iei)
{
    switch (iei) {
    case 0x00: return PDU::tr("Concatenated short messages, 8-bit reference");
    case 0x01: return PDU::tr("Special SMS message indication");
    case 0x04: return PDU::tr("Application port addressing, 8-bit address");
    case 0x05: return PDU::tr("Application port addressing, 16-bit address");
    case 0x06: return PDU::tr("SMSC control parameters");
    case 0x07: return PDU::tr("UDH source indicator");
    case 0x08: return PDU::tr("Concatenated short messages, 16-bit reference");
    case 0x09: return PDU::tr("Wireless control message protocol");
    case 0x0A: return PDU::tr("Text formatting");
    case 0x0B: return PDU::tr("Predefined sound");
    case 0x0C: return PDU::tr("User defined sound");
    case 0x0D: return PDU::tr("Predefined animation");
    case 0x0E: return PDU::tr("Large animation");
    case 0x0F: return PDU::tr("Small animation");
    case 0x10: return PDU::tr("Large picture");
    case 0x11: return PDU::tr("Small picture");
    case 0x12: return PDU::tr("Variable picture");
    case 0x13: return PDU::tr("User prompt indicator");
    case 0x14: return PDU::tr("Extended object");
    case 0x15: return PDU::tr("Reused extended object");
    case 0x16: return PDU::tr("Compression control");
    case 0x17: return PDU::tr("Object distribution indicator");
    case 0x18: return PDU::tr("Standard WVG object");
    case 0x19: return PDU::tr("Character size WVG object");
    case 0x1A: return PDU::tr("Extended object data request command");
    case 0x20: return PDU::tr("RFC 822 e-mail header");
    case 0x21: return PDU::tr("Hyperlink format element");
    case 0x22: return PDU::tr("Reply address element");
    case 0x23: return PDU::tr("Enhanced voice mail information");
    case 0x24: return PDU::tr("National language single shift");
    case 0x25: return PDU::tr("National language locking shift");
    default: break;
    }
    return QString();
}

QString unknownElementKind(uchar iei)
{
    if (iei >= 0x70 && iei <= 0x7F)
        return PDU::tr("SIM toolkit security header");
    if (iei >= 0x80 && iei <= 0x9F)
        return PDU::tr("SME to SME specific use");
    if (iei >= 0xC0 && iei <= 0xDF)
        return PDU::tr("SC specific use");
    return PDU::tr("reserved");
}

QString languageName(uchar id)
{
    // TS 23.038 6.2.1.2.4.
    static const char* const names[] = { nullptr,   "Turkish", "Spanish",  "Portuguese", "Bengali",
                                         "Gujarati", "Hindi",   "Kannada",  "Malayalam",  "Oriya",
                                         "Punjabi",  "Tamil",   "Telugu",   "Urdu" };
    if (id > 0 && id < sizeof(names) / sizeof(names[0]))
        return QString::fromLatin1(names[id]);
    return PDU::tr("reserved language");
}

QString describeSpecialIndication(const QByteArray& v)
{
    const uchar type = static_cast<uchar>(v.at(0));
    QString kind;
    switch (type & 0x03) {
    case 0: kind = PDU::tr("voice message waiting"); break;
    case 1: kind = PDU::tr("fax message waiting"); break;
    case 2: kind = PDU::tr("electronic mail message waiting"); break;
    default: kind = PDU::tr("other message waiting"); break;
    }
    return PDU::tr("%1, %2 waiting, %3")
        .arg(kind)
        .arg(static_cast<uchar>(v.at(1)))
        .arg((type & 0x80) ? PDU::tr("store the message") : PDU::tr("discard the message"));
}

QString describeConcatenation(int reference, int total, int sequence)
{
    QString text = PDU::tr("reference %1, part %2 of %3").arg(reference).arg(sequence).arg(total);
    if (total == 0 || sequence == 0 || sequence > total)
        text += PDU::tr(" (inconsistent: the part is to be ignored)");
    return text;
}

// Interprets one element whose length is right; an empty result means the
// element is only named.
QString describeElement(uchar iei, const QByteArray& v, bool* lengthOk)
{
    const auto at = [&v](int i) { return static_cast<uchar>(v.at(i)); };
    *lengthOk = true;
    switch (iei) {
    case 0x00:
        if (v.size() != 3)
            break;
        return describeConcatenation(at(0), at(1), at(2));
    case 0x08:
        if (v.size() != 4)
            break;
        return describeConcatenation((at(0) << 8) | at(1), at(2), at(3));
    case 0x04:
        if (v.size() != 2)
            break;
        return PDU::tr("destination port %1, originator port %2").arg(at(0)).arg(at(1));
    case 0x05:
        if (v.size() != 4)
            break;
        return PDU::tr("destination port %1, originator port %2")
            .arg((at(0) << 8) | at(1))
            .arg((at(2) << 8) | at(3));
    case 0x24:
    case 0x25:
        if (v.size() != 1)
            break;
        return PDU::tr("%1 (%2)").arg(languageName(at(0))).arg(at(0));
    case 0x01:
        if (v.size() != 2)
            break;
        return describeSpecialIndication(v);
    default:
        return QString();
    }
    *lengthOk = false;
    return QString();
}

int expectedElementLength(uchar iei)
{
    switch (iei) {
    case 0x00: return 3;
    case 0x08: return 4;
    case 0x04: return 2;
    case 0x05: return 4;
    case 0x24:
    case 0x25: return 1;
    case 0x01: return 2;
    default: return -1;
    }
}

// Concatenation fields of a well-formed header (length octet first).
HeaderInfo concatenationOf(const QByteArray& header)
{
    HeaderInfo info;
    int pos = 1;
    while (pos + 2 <= header.size()) {
        const uchar iei = static_cast<uchar>(header.at(pos));
        const int len = static_cast<uchar>(header.at(pos + 1));
        if (pos + 2 + len > header.size())
            break;
        const QByteArray v = header.mid(pos + 2, len);
        const auto at = [&v](int i) { return static_cast<uchar>(v.at(i)); };
        if (iei == 0x00 && len == 3) {
            info.reference = at(0);
            info.partCount = at(1);
            info.partNumber = at(2);
        } else if (iei == 0x08 && len == 4) {
            info.reference = (at(0) << 8) | at(1);
            info.partCount = at(2);
            info.partNumber = at(3);
        }
        pos += 2 + len;
    }
    return info;
}

} // namespace pduinternal

using namespace pduinternal;


namespace {

// The report and its two raw time stamps (shown as they are when invalid).
PduStatusReportData readStatusReport(const QString& hexPdu, bool withServiceCentre, QByteArray* scts,
                                   QByteArray* dt)
{
    PduStatusReportData report;
    QByteArray octets;
    if (!parseHex(hexPdu, &octets, &report.error))
        return report;

    OctetReader reader(octets);
    if (withServiceCentre)
        skipServiceCentre(reader);
    uchar first = 0;
    if (reader.octet(&first, PDU::tr("the first octet")) && (first & 0x03) != 0x02) {
        static const char* const names[] = { "SMS-DELIVER", "SMS-SUBMIT", "SMS-STATUS-REPORT",
                                             "reserved" };
        reader.fail(PDU::tr("Not an SMS-STATUS-REPORT (message type indicator %1, %2)")
                        .arg(first & 0x03)
                        .arg(QLatin1String(names[first & 0x03])));
    }
    uchar mr = 0;
    reader.octet(&mr, PDU::tr("the message reference"));
    if (!reader.failed())
        readAddress(reader, PDU::tr("the recipient address"), &report.recipient, &report.recipientType);
    uchar status = 0;
    reader.octets(7, scts, PDU::tr("the service centre time stamp"));
    reader.octets(7, dt, PDU::tr("the discharge time"));
    reader.octet(&status, PDU::tr("the status"));
    // Optional parameters (TP-PI and what it announces) may follow; they are
    // not needed to tell what happened to the message.
    if (reader.failed()) {
        report.error = reader.error();
        return report;
    }
    report.messageReference = mr;
    report.serviceCentreTime = decodeTimestamp(*scts);
    report.dischargeTime = decodeTimestamp(*dt);
    report.status = status;
    report.valid = true;
    return report;
}

} // namespace

PDU::StatusReport decodeStatusReport(const QString& hexPdu, bool withServiceCentre)
{
    QByteArray scts;
    QByteArray dt;
    return readStatusReport(hexPdu, withServiceCentre, &scts, &dt);
}

QString explainStatusReport(const QString& hexPdu, bool withServiceCentre)
{
    QByteArray scts;
    QByteArray dt;
    const PduStatusReportData report = readStatusReport(hexPdu, withServiceCentre, &scts, &dt);
    if (!report.valid)
        return PDU::tr("Invalid SMS-STATUS-REPORT: %1").arg(report.error);

    QString classText;
    switch (PDU::statusClass(report.status)) {
    case PDU::StatusCompleted: classText = PDU::tr("transaction completed"); break;
    case PDU::StatusTemporaryRetrying: classText = PDU::tr("temporary error, the SC is still trying"); break;
    case PDU::StatusPermanentError: classText = PDU::tr("permanent error, no more attempts"); break;
    case PDU::StatusTemporaryGivenUp: classText = PDU::tr("temporary error, no more attempts"); break;
    case PDU::StatusReserved: classText = PDU::tr("reserved"); break;
    }

    QStringList lines;
    lines << QStringLiteral("SMS-STATUS-REPORT");
    lines << PDU::tr("  Message reference: %1").arg(report.messageReference);
    lines << PDU::tr("  Recipient: %1 (%2)")
                 .arg(report.recipient, describeNumberType(report.recipientType));
    lines << PDU::tr("  Service centre time stamp: %1").arg(describeTime(report.serviceCentreTime, scts));
    lines << PDU::tr("  Discharge time: %1").arg(describeTime(report.dischargeTime, dt));
    lines << PDU::tr("  Status: 0x%1 (%2): %3")
                 .arg(report.status, 2, 16, QLatin1Char('0'))
                 .arg(classText, PDU::statusMeaning(report.status));
    return lines.join(QLatin1Char('\n'));
}

QString explainUserDataHeader(const QByteArray& header)
{
    if (header.isEmpty())
        return PDU::tr("Empty user data header");

    const int declared = static_cast<uchar>(header.at(0));
    const int present = header.size() - 1;
    QStringList lines;
    if (present < declared)
        lines << PDU::tr("User data header, %1 octets declared, only %2 present").arg(declared).arg(present);
    else
        lines << PDU::tr("User data header, %1 octets").arg(declared);
    if (present > declared)
        lines << PDU::tr("  (%1 further octets are not part of the header)").arg(present - declared);

    const QByteArray elements = header.mid(1, declared);
    int pos = 0;
    while (pos < elements.size()) {
        const uchar iei = static_cast<uchar>(elements.at(pos));
        if (pos + 1 >= elements.size()) {
            lines << PDU::tr("  Element 0x%1 truncated: its length octet is missing")
                         .arg(iei, 2, 16, QLatin1Char('0'));
            break;
        }
        const int length = static_cast<uchar>(elements.at(pos + 1));
        const QByteArray value = elements.mid(pos + 2, length);
        const QString idText = QStringLiteral("0x%1").arg(iei, 2, 16, QLatin1Char('0'));
        QString name = elementName(iei);
        if (value.size() < length) {
            lines << PDU::tr("  %1 (%2) truncated: %3 octets declared, %4 present%5")
                         .arg(name.isEmpty() ? PDU::tr("Element") : name, idText)
                         .arg(length)
                         .arg(value.size())
                         .arg(octetList(value));
            break;
        }
        if (name.isEmpty()) {
            lines << PDU::tr("  Unknown element %1 (%2), %3 octets%4")
                         .arg(idText, unknownElementKind(iei))
                         .arg(length)
                         .arg(octetList(value));
        } else {
            bool lengthOk = true;
            const QString meaning = describeElement(iei, value, &lengthOk);
            if (!lengthOk) {
                lines << PDU::tr("  %1 (%2): wrong length %3 (%4 expected)%5")
                             .arg(name, idText)
                             .arg(length)
                             .arg(expectedElementLength(iei))
                             .arg(octetList(value));
            } else if (meaning.isEmpty()) {
                lines << PDU::tr("  %1 (%2), %3 octets%4")
                             .arg(name, idText)
                             .arg(length)
                             .arg(octetList(value));
            } else {
                lines << PDU::tr("  %1: %2").arg(name, meaning);
            }
        }
        pos += 2 + length;
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace zelmodems
