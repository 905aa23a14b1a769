// The reader of TPDU fields (3GPP TS 23.040) that every non-fixed path of
// the toolkit uses: hexadecimal text, semi-octets, addresses, time stamps
// and UCS2 text.
#include "gsm7_p.h"
#include "pdu_p.h"

namespace zelmodems {
namespace pduinternal {

namespace {
const char SEMI_OCTET_DIGITS[] = "0123456789*#abc";
}

// Strict hexadecimal: blanks and line ends between the digits are allowed,
// nothing else.
bool parseHex(const QString& text, QByteArray* octets, QString* error)
{
    QByteArray digits;
    digits.reserve(text.size());
    for (const QChar c : text) {
        if (c.isSpace())
            continue;
        const ushort u = c.unicode();
        const bool hex = (u >= '0' && u <= '9') || (u >= 'a' && u <= 'f') || (u >= 'A' && u <= 'F');
        if (!hex) {
            *error = PDU::tr("Not hexadecimal text: character '%1' after %2 digits")
                         .arg(QString(c))
                         .arg(digits.size());
            return false;
        }
        digits.append(static_cast<char>(u));
    }
    if (digits.size() % 2 != 0) {
        *error = PDU::tr("Odd number of hexadecimal digits (%1)").arg(digits.size());
        return false;
    }
    if (digits.isEmpty()) {
        *error = PDU::tr("Empty PDU");
        return false;
    }
    *octets = QByteArray::fromHex(digits);
    return true;
}

QString hexOctets(const QByteArray& octets)
{
    return QString::fromLatin1(octets.toHex(' ').toUpper());
}

// ": AA BB" after an element's description; nothing for no octets.
QString octetList(const QByteArray& octets)
{
    return octets.isEmpty() ? QString() : QStringLiteral(": ") + hexOctets(octets);
}

// Semi-octets (low nibble first) to digits; 0xF ends the number.
QString decodeSemiOctets(const QByteArray& octets, int digits)
{
    QString number;
    for (int i = 0; i < octets.size() && number.size() < digits; ++i) {
        const uchar o = static_cast<uchar>(octets.at(i));
        for (const uchar nibble : { uchar(o & 0x0F), uchar(o >> 4) }) {
            if (nibble == 0x0F || number.size() >= digits)
                return number;
            number.append(QLatin1Char(SEMI_OCTET_DIGITS[nibble]));
        }
    }
    return number;
}

// Address field (TS 23.040 9.1.2.5): digit count, type of address, value.
bool readAddress(OctetReader& reader, const QString& field, QString* number, int* type)
{
    uchar digits = 0;
    uchar toa = 0;
    QByteArray value;
    if (!reader.octet(&digits, field) || !reader.octet(&toa, field)
        || !reader.octets((digits + 1) / 2, &value, field))
        return false;
    *type = toa;
    const int typeOfNumber = (toa >> 4) & 0x07;
    if (typeOfNumber == 5) {
        // Alphanumeric: GSM 7-bit text in as many semi-octets as said.
        *number = PDU::fromGsm7(PDU::unpackSeptets(value, digits * 4 / 7));
    } else {
        *number = decodeSemiOctets(value, digits);
        if (typeOfNumber == 1)
            number->prepend(QLatin1Char('+'));
    }
    return true;
}

QString describeNumberType(int toa)
{
    switch ((toa >> 4) & 0x07) {
    case 0: return PDU::tr("unknown type");
    case 1: return PDU::tr("international");
    case 2: return PDU::tr("national");
    case 3: return PDU::tr("network specific");
    case 4: return PDU::tr("subscriber");
    case 5: return PDU::tr("alphanumeric");
    case 6: return PDU::tr("abbreviated");
    default: return PDU::tr("reserved type");
    }
}

// Service-centre time stamp format (TS 23.040 9.2.3.11): semi-octets, the
// zone in quarters of an hour with its sign in bit 3.
QDateTime decodeTimestamp(const QByteArray& octets)
{
    if (octets.size() != 7)
        return QDateTime();
    int fields[6];
    for (int i = 0; i < 6; ++i) {
        const uchar o = static_cast<uchar>(octets.at(i));
        const int low = o & 0x0F;
        const int high = o >> 4;
        if (low > 9 || high > 9)
            return QDateTime();
        fields[i] = low * 10 + high;
    }
    const uchar zone = static_cast<uchar>(octets.at(6));
    const int tens = zone & 0x07;
    const int units = zone >> 4;
    if (units > 9)
        return QDateTime();
    int offset = (tens * 10 + units) * 15 * 60;
    if (zone & 0x08)
        offset = -offset;
    const QDate date(2000 + fields[0], fields[1], fields[2]);
    const QTime time(fields[3], fields[4], fields[5]);
    if (!date.isValid() || !time.isValid())
        return QDateTime();
    return QDateTime(date, time, Qt::OffsetFromUTC, offset);
}

QString describeTime(const QDateTime& time, const QByteArray& raw)
{
    if (!time.isValid())
        return PDU::tr("invalid (%1)").arg(hexOctets(raw));
    return PDU::isoTime(time);
}

QByteArray toUtf16BigEndian(const QString& text)
{
    QByteArray octets;
    octets.reserve(text.size() * 2);
    for (const QChar c : text) {
        octets.append(static_cast<char>(c.unicode() >> 8));
        octets.append(static_cast<char>(c.unicode() & 0xFF));
    }
    return octets;
}

QString fromUtf16BigEndian(const QByteArray& octets)
{
    QString text;
    text.reserve(octets.size() / 2);
    for (int i = 0; i + 1 < octets.size(); i += 2) {
        text.append(QChar(static_cast<ushort>((static_cast<uchar>(octets.at(i)) << 8)
                                              | static_cast<uchar>(octets.at(i + 1)))));
    }
    return text;
}

void setError(QString* error, const QString& text)
{
    if (error)
        *error = text;
}

void skipServiceCentre(OctetReader& reader)
{
    uchar length = 0;
    QByteArray centre;
    reader.octet(&length, PDU::tr("the service centre address"));
    reader.octets(length, &centre, PDU::tr("the service centre address"));
}

} // namespace pduinternal
} // namespace zelmodems
