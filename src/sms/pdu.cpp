// The PDU toolkit's shared reader and tables: the GSM 7-bit alphabet, hex and
// semi-octet fields, addresses, time stamps, header elements, and the PDU value.
#include "pdu_p.h"
#include <QAtomicInt>
#include <QHash>
#include <QRandomGenerator>
#include <QStringList>
#include <QTimeZone>

namespace zelmodems {

namespace pduinternal {

// ---------------------------------------------------------------------------
// GSM 7-bit default alphabet and its extension table (TS 23.038 6.2.1).

const ushort GSM7_ESCAPE = 0x1B;

const ushort GSM7_DEFAULT[128] = {
    0x0040, 0x00A3, 0x0024, 0x00A5, 0x00E8, 0x00E9, 0x00F9, 0x00EC, // @ £ $ ¥ è é ù ì
    0x00F2, 0x00C7, 0x000A, 0x00D8, 0x00F8, 0x000D, 0x00C5, 0x00E5, // ò Ç LF Ø ø CR Å å
    0x0394, 0x005F, 0x03A6, 0x0393, 0x039B, 0x03A9, 0x03A0, 0x03A8, // Δ _ Φ Γ Λ Ω Π Ψ
    0x03A3, 0x0398, 0x039E, 0x00A0, 0x00C6, 0x00E6, 0x00DF, 0x00C9, // Σ Θ Ξ ESC Æ æ ß É
    0x0020, 0x0021, 0x0022, 0x0023, 0x00A4, 0x0025, 0x0026, 0x0027, //   ! " # ¤ % & '
    0x0028, 0x0029, 0x002A, 0x002B, 0x002C, 0x002D, 0x002E, 0x002F, // ( ) * + , - . /
    0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037, // 0 - 7
    0x0038, 0x0039, 0x003A, 0x003B, 0x003C, 0x003D, 0x003E, 0x003F, // 8 9 : ; < = > ?
    0x00A1, 0x0041, 0x0042, 0x0043, 0x0044, 0x0045, 0x0046, 0x0047, // ¡ A - G
    0x0048, 0x0049, 0x004A, 0x004B, 0x004C, 0x004D, 0x004E, 0x004F, // H - O
    0x0050, 0x0051, 0x0052, 0x0053, 0x0054, 0x0055, 0x0056, 0x0057, // P - W
    0x0058, 0x0059, 0x005A, 0x00C4, 0x00D6, 0x00D1, 0x00DC, 0x00A7, // X Y Z Ä Ö Ñ Ü §
    0x00BF, 0x0061, 0x0062, 0x0063, 0x0064, 0x0065, 0x0066, 0x0067, // ¿ a - g
    0x0068, 0x0069, 0x006A, 0x006B, 0x006C, 0x006D, 0x006E, 0x006F, // h - o
    0x0070, 0x0071, 0x0072, 0x0073, 0x0074, 0x0075, 0x0076, 0x0077, // p - w
    0x0078, 0x0079, 0x007A, 0x00E4, 0x00F6, 0x00F1, 0x00FC, 0x00E0, // x y z ä ö ñ ü à
};

const ExtensionEntry GSM7_EXTENSION[] = {
    { 0x0A, 0x000C }, // form feed (page break)
    { 0x14, 0x005E }, // ^
    { 0x28, 0x007B }, // {
    { 0x29, 0x007D }, // }
    { 0x2F, 0x005C }, // backslash
    { 0x3C, 0x005B }, // [
    { 0x3D, 0x007E }, // ~
    { 0x3E, 0x005D }, // ]
    { 0x40, 0x007C }, // |
    { 0x65, 0x20AC }, // euro sign
};

// Character -> septet (0x00-0x7F) or escape pair (0x1B00 | septet).
const QHash<ushort, ushort>& gsm7Reverse()
{
    static const QHash<ushort, ushort> table = [] {
        QHash<ushort, ushort> t;
        for (ushort septet = 0; septet < 128; ++septet) {
            if (septet != GSM7_ESCAPE)
                t.insert(GSM7_DEFAULT[septet], septet);
        }
        for (const ExtensionEntry& e : GSM7_EXTENSION)
            t.insert(e.character, static_cast<ushort>((GSM7_ESCAPE << 8) | e.septet));
        return t;
    }();
    return table;
}

const char SEMI_OCTET_DIGITS[] = "0123456789*#abc";

int nextConcatReference()
{
    static QAtomicInt counter(static_cast<int>(QRandomGenerator::global()->bounded(0x10000u)));
    return counter.fetchAndAddRelaxed(1);
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
        if (end < septets.size() && end > pos && septets.at(end - 1) == GSM7_ESCAPE) {
            int escapes = 0;
            for (int i = end - 1; i >= pos && septets.at(i) == GSM7_ESCAPE; --i)
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

using namespace pduinternal;

// ---------------------------------------------------------------------------
// PDU

PDU::PDU() : d(new PduData) {}

PDU::PDU(const QByteArray& serviceCentre, const QByteArray& tpdu, int partNumber, int partCount)
    : d(new PduData)
{
    d->serviceCentre = serviceCentre;
    d->tpdu = tpdu;
    d->partNumber = partNumber;
    d->partCount = partCount;
}

PDU::PDU(const PDU& other) = default;
PDU& PDU::operator=(const PDU& other) = default;
PDU::~PDU() = default;

bool PDU::isNull() const { return d->tpdu.isEmpty(); }
QByteArray PDU::serviceCentre() const { return d->serviceCentre; }
QByteArray PDU::tpdu() const { return d->tpdu; }
int PDU::tpduLength() const { return d->tpdu.size(); }
int PDU::partNumber() const { return d->partNumber; }
int PDU::partCount() const { return d->partCount; }

QString PDU::toHex() const
{
    return QString::fromLatin1((d->serviceCentre + d->tpdu).toHex().toUpper());
}

bool PDU::operator==(const PDU& other) const
{
    return d->serviceCentre == other.d->serviceCentre && d->tpdu == other.d->tpdu
        && d->partNumber == other.d->partNumber && d->partCount == other.d->partCount;
}

bool PDU::operator!=(const PDU& other) const { return !(*this == other); }

int PDU::gsm7Length(const QString& text)
{
    const QHash<ushort, ushort>& reverse = gsm7Reverse();
    int septets = 0;
    for (const QChar c : text) {
        const auto it = reverse.constFind(c.unicode());
        if (it == reverse.constEnd())
            return -1;
        septets += (it.value() > 0x7F) ? 2 : 1;
    }
    return septets;
}

QByteArray PDU::toGsm7(const QString& text, bool* ok)
{
    const QHash<ushort, ushort>& reverse = gsm7Reverse();
    QByteArray septets;
    septets.reserve(text.size());
    for (const QChar c : text) {
        const auto it = reverse.constFind(c.unicode());
        if (it == reverse.constEnd()) {
            if (ok)
                *ok = false;
            return QByteArray();
        }
        if (it.value() > 0x7F)
            septets.append(static_cast<char>(GSM7_ESCAPE));
        septets.append(static_cast<char>(it.value() & 0x7F));
    }
    if (ok)
        *ok = true;
    return septets;
}

QString PDU::fromGsm7(const QByteArray& septets)
{
    QString text;
    text.reserve(septets.size());
    for (int i = 0; i < septets.size(); ++i) {
        const uchar septet = static_cast<uchar>(septets.at(i)) & 0x7F;
        if (septet != GSM7_ESCAPE) {
            text.append(QChar(GSM7_DEFAULT[septet]));
            continue;
        }
        if (++i >= septets.size())
            break;
        const uchar next = static_cast<uchar>(septets.at(i)) & 0x7F;
        ushort character = GSM7_DEFAULT[next];
        for (const ExtensionEntry& e : GSM7_EXTENSION) {
            if (e.septet == next) {
                character = e.character;
                break;
            }
        }
        text.append(QChar(character));
    }
    return text;
}

QByteArray PDU::packSeptets(const QByteArray& septets, int fillBits)
{
    fillBits = qBound(0, fillBits, 6);
    const int bits = fillBits + 7 * septets.size();
    QByteArray packed((bits + 7) / 8, '\0');
    int bit = fillBits;
    for (const char s : septets) {
        const uint value = static_cast<uchar>(s) & 0x7F;
        const int index = bit / 8;
        const int shift = bit % 8;
        packed[index] = static_cast<char>(static_cast<uchar>(packed.at(index)) | ((value << shift) & 0xFF));
        if (shift > 1)
            packed[index + 1] = static_cast<char>(value >> (8 - shift));
        bit += 7;
    }
    return packed;
}

QByteArray PDU::unpackSeptets(const QByteArray& packed, int count, int fillBits)
{
    fillBits = qBound(0, fillBits, 6);
    const int available = (packed.size() * 8 - fillBits) / 7;
    count = qBound(0, count, qMax(available, 0));
    QByteArray septets(count, '\0');
    int bit = fillBits;
    for (int i = 0; i < count; ++i) {
        const int index = bit / 8;
        const int shift = bit % 8;
        uint word = static_cast<uchar>(packed.at(index));
        if (index + 1 < packed.size())
            word |= static_cast<uint>(static_cast<uchar>(packed.at(index + 1))) << 8;
        septets[i] = static_cast<char>((word >> shift) & 0x7F);
        bit += 7;
    }
    return septets;
}

QByteArray PDU::encodeAddress(const QString& number, NumberType type, bool* ok)
{
    if (ok)
        *ok = false;
    QString digits;
    bool international = false;
    for (int i = 0; i < number.size(); ++i) {
        const QChar c = number.at(i);
        if (c.isSpace() || c == QLatin1Char('-') || c == QLatin1Char('.') || c == QLatin1Char('(')
            || c == QLatin1Char(')'))
            continue;
        if (c == QLatin1Char('+') && digits.isEmpty() && !international) {
            international = true;
            continue;
        }
        if (!(c.isDigit() && c.unicode() < 0x80) && c != QLatin1Char('*') && c != QLatin1Char('#'))
            return QByteArray();
        digits.append(c);
    }
    if (digits.isEmpty() || digits.size() > MAX_ADDRESS_DIGITS)
        return QByteArray();

    uchar toa = 0x81;
    switch (type) {
    case AutoNumberType: toa = international ? 0x91 : 0x81; break;
    case InternationalNumber: toa = 0x91; break;
    case NationalNumber: toa = 0xA1; break;
    case UnknownNumberType: toa = 0x81; break;
    }

    QByteArray field;
    field.append(static_cast<char>(digits.size()));
    field.append(static_cast<char>(toa));
    for (int i = 0; i < digits.size(); i += 2) {
        const auto nibble = [](QChar c) -> uchar {
            if (c == QLatin1Char('*'))
                return 0x0A;
            if (c == QLatin1Char('#'))
                return 0x0B;
            return static_cast<uchar>(c.unicode() - '0');
        };
        const uchar low = nibble(digits.at(i));
        const uchar high = (i + 1 < digits.size()) ? nibble(digits.at(i + 1)) : 0x0F;
        field.append(static_cast<char>(static_cast<uchar>((high << 4) | low)));
    }
    if (ok)
        *ok = true;
    return field;
}

int PDU::validityMinutes(int octet)
{
    // TS 23.040 9.2.3.12.1.
    octet &= 0xFF;
    if (octet <= 143)
        return (octet + 1) * 5;
    if (octet <= 167)
        return 12 * 60 + (octet - 143) * 30;
    if (octet <= 196)
        return (octet - 166) * 24 * 60;
    return (octet - 192) * 7 * 24 * 60;
}

int PDU::validityOctet(int minutes)
{
    if (minutes <= 0)
        return -1;
    for (int octet = 0; octet <= 255; ++octet) {
        if (validityMinutes(octet) >= minutes)
            return octet;
    }
    return 255;
}

PDU::Alphabet PDU::alphabetOfDcs(int dcs)
{
    // TS 23.038 4: coding groups.
    dcs &= 0xFF;
    const int group = dcs >> 4;
    if (group <= 0x07) {
        switch ((dcs >> 2) & 0x03) {
        case 1: return EightBitAlphabet;
        case 2: return Ucs2Alphabet;
        default: return Gsm7Alphabet;
        }
    }
    if (group == 0x0E)
        return Ucs2Alphabet;
    if (group == 0x0F)
        return (dcs & 0x04) ? EightBitAlphabet : Gsm7Alphabet;
    return Gsm7Alphabet;
}

QString PDU::isoTime(const QDateTime& time)
{
    if (!time.isValid())
        return QString();
    // Always the offset, +00:00 included (Qt writes "Z" for UTC).
    const int offset = time.offsetFromUtc();
    const int minutes = qAbs(offset) / 60;
    return time.toOffsetFromUtc(offset).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"))
         + QStringLiteral("%1%2:%3")
               .arg(offset < 0 ? QLatin1Char('-') : QLatin1Char('+'))
               .arg(minutes / 60, 2, 10, QLatin1Char('0'))
               .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

PDU::StatusClass PDU::statusClass(int status)
{
    if (status < 0 || status > 0x7F)
        return StatusReserved;
    switch (status >> 5) {
    case 0: return StatusCompleted;
    case 1: return StatusTemporaryRetrying;
    case 2: return StatusPermanentError;
    default: return StatusTemporaryGivenUp;
    }
}

QString PDU::statusMeaning(int status)
{
    // TS 23.040 9.2.3.15.
    if (status < 0 || status > 0xFF)
        return tr("Invalid status value");
    if (status > 0x7F)
        return tr("Reserved");
    const int low = status & 0x1F;
    switch (statusClass(status)) {
    case StatusCompleted:
        switch (status) {
        case 0x00: return tr("Short message received by the SME");
        case 0x01:
            return tr("Short message forwarded by the SC to the SME but the SC is unable to "
                      "confirm delivery");
        case 0x02: return tr("Short message replaced by the SC");
        default: break;
        }
        break;
    case StatusPermanentError:
        switch (low) {
        case 0x00: return tr("Remote procedure error");
        case 0x01: return tr("Incompatible destination");
        case 0x02: return tr("Connection rejected by SME");
        case 0x03: return tr("Not obtainable");
        case 0x04: return tr("Quality of service not available");
        case 0x05: return tr("No interworking available");
        case 0x06: return tr("SM validity period expired");
        case 0x07: return tr("SM deleted by originating SME");
        case 0x08: return tr("SM deleted by SC administration");
        case 0x09: return tr("SM does not exist");
        default: break;
        }
        break;
    default: // both temporary classes share their values
        switch (low) {
        case 0x00: return tr("Congestion");
        case 0x01: return tr("SME busy");
        case 0x02: return tr("No response from SME");
        case 0x03: return tr("Service rejected");
        case 0x04: return tr("Quality of service not available");
        case 0x05: return tr("Error in SME");
        default: break;
        }
        break;
    }
    return low >= 0x10 ? tr("Specific to the service centre") : tr("Reserved");
}

// ---------------------------------------------------------------------------
// Free functions

PDU::SubmitOptions::SubmitOptions() : d(new PduSubmitOptionsData) {}
PDU::SubmitOptions::SubmitOptions(const PduSubmitOptionsData& data) : d(new PduSubmitOptionsData(data)) {}
PDU::SubmitOptions::SubmitOptions(const SubmitOptions& other) = default;
PDU::SubmitOptions& PDU::SubmitOptions::operator=(const SubmitOptions& other) = default;
PDU::SubmitOptions::~SubmitOptions() = default;
bool PDU::SubmitOptions::operator==(const PDU::SubmitOptions& other) const { return d == other.d || *d == *other.d; }
PDU::Alphabet PDU::SubmitOptions::alphabet() const { return d->alphabet; }
void PDU::SubmitOptions::setAlphabet(PDU::Alphabet value) { d->alphabet = value; }
PDU::NumberType PDU::SubmitOptions::numberType() const { return d->numberType; }
void PDU::SubmitOptions::setNumberType(PDU::NumberType value) { d->numberType = value; }
bool PDU::SubmitOptions::statusReport() const { return d->statusReport; }
void PDU::SubmitOptions::setStatusReport(bool value) { d->statusReport = value; }
int PDU::SubmitOptions::validityMinutes() const { return d->validityMinutes; }
void PDU::SubmitOptions::setValidityMinutes(int value) { d->validityMinutes = value; }
int PDU::SubmitOptions::concatReference() const { return d->concatReference; }
void PDU::SubmitOptions::setConcatReference(int value) { d->concatReference = value; }
bool PDU::SubmitOptions::reference16Bit() const { return d->reference16Bit; }
void PDU::SubmitOptions::setReference16Bit(bool value) { d->reference16Bit = value; }
QString PDU::SubmitOptions::serviceCentre() const { return d->serviceCentre; }
void PDU::SubmitOptions::setServiceCentre(const QString& value) { d->serviceCentre = value; }

PDU::Submit::Submit() : d(new PduSubmitData) {}
PDU::Submit::Submit(const PduSubmitData& data) : d(new PduSubmitData(data)) {}
PDU::Submit::Submit(const Submit& other) = default;
PDU::Submit& PDU::Submit::operator=(const Submit& other) = default;
PDU::Submit::~Submit() = default;
bool PDU::Submit::operator==(const PDU::Submit& other) const { return d == other.d || *d == *other.d; }
bool PDU::Submit::valid() const { return d->valid; }
void PDU::Submit::setValid(bool value) { d->valid = value; }
QString PDU::Submit::error() const { return d->error; }
void PDU::Submit::setError(const QString& value) { d->error = value; }
int PDU::Submit::messageReference() const { return d->messageReference; }
void PDU::Submit::setMessageReference(int value) { d->messageReference = value; }
QString PDU::Submit::recipient() const { return d->recipient; }
void PDU::Submit::setRecipient(const QString& value) { d->recipient = value; }
int PDU::Submit::recipientType() const { return d->recipientType; }
void PDU::Submit::setRecipientType(int value) { d->recipientType = value; }
bool PDU::Submit::statusReport() const { return d->statusReport; }
void PDU::Submit::setStatusReport(bool value) { d->statusReport = value; }
int PDU::Submit::validityMinutes() const { return d->validityMinutes; }
void PDU::Submit::setValidityMinutes(int value) { d->validityMinutes = value; }
int PDU::Submit::dataCodingScheme() const { return d->dataCodingScheme; }
void PDU::Submit::setDataCodingScheme(int value) { d->dataCodingScheme = value; }
PDU::Alphabet PDU::Submit::alphabet() const { return d->alphabet; }
void PDU::Submit::setAlphabet(PDU::Alphabet value) { d->alphabet = value; }
QByteArray PDU::Submit::header() const { return d->header; }
void PDU::Submit::setHeader(const QByteArray& value) { d->header = value; }
int PDU::Submit::concatReference() const { return d->concatReference; }
void PDU::Submit::setConcatReference(int value) { d->concatReference = value; }
int PDU::Submit::partNumber() const { return d->partNumber; }
void PDU::Submit::setPartNumber(int value) { d->partNumber = value; }
int PDU::Submit::partCount() const { return d->partCount; }
void PDU::Submit::setPartCount(int value) { d->partCount = value; }
QString PDU::Submit::text() const { return d->text; }
void PDU::Submit::setText(const QString& value) { d->text = value; }

PDU::StatusReport::StatusReport() : d(new PduStatusReportData) {}
PDU::StatusReport::StatusReport(const PduStatusReportData& data) : d(new PduStatusReportData(data)) {}
PDU::StatusReport::StatusReport(const StatusReport& other) = default;
PDU::StatusReport& PDU::StatusReport::operator=(const StatusReport& other) = default;
PDU::StatusReport::~StatusReport() = default;
bool PDU::StatusReport::operator==(const PDU::StatusReport& other) const { return d == other.d || *d == *other.d; }
bool PDU::StatusReport::valid() const { return d->valid; }
void PDU::StatusReport::setValid(bool value) { d->valid = value; }
QString PDU::StatusReport::error() const { return d->error; }
void PDU::StatusReport::setError(const QString& value) { d->error = value; }
int PDU::StatusReport::messageReference() const { return d->messageReference; }
void PDU::StatusReport::setMessageReference(int value) { d->messageReference = value; }
QString PDU::StatusReport::recipient() const { return d->recipient; }
void PDU::StatusReport::setRecipient(const QString& value) { d->recipient = value; }
int PDU::StatusReport::recipientType() const { return d->recipientType; }
void PDU::StatusReport::setRecipientType(int value) { d->recipientType = value; }
QDateTime PDU::StatusReport::serviceCentreTime() const { return d->serviceCentreTime; }
void PDU::StatusReport::setServiceCentreTime(const QDateTime& value) { d->serviceCentreTime = value; }
QDateTime PDU::StatusReport::dischargeTime() const { return d->dischargeTime; }
void PDU::StatusReport::setDischargeTime(const QDateTime& value) { d->dischargeTime = value; }
int PDU::StatusReport::status() const { return d->status; }
void PDU::StatusReport::setStatus(int value) { d->status = value; }


} // namespace zelmodems
