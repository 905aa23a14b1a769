// Explainers: SMS-STATUS-REPORT and user-data headers in readable lines.
#include "pdu_p.h"

#include <QStringList>

namespace zelmodems {

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
