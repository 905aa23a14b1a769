#include "smspdudecoder.h"
#include "smspdudecoder_p.h"
#include "gsm7_p.h"

#include <QDateTime>
#include <QTextCodec>
#include <QtMath>

#include <ctime>

namespace {

// Type of number (bits 4-6 of the type-of-address octet), 3GPP TS 23.040 9.1.2.5.
enum TypeOfNumber : quint8 {
    TON_UNKNOWN = 0x00,
    TON_INTERNATIONAL = 0x10,
    TON_NATIONAL = 0x20,
    TON_NETWORK_SPECIFIC = 0x30,
    TON_SUBSCRIBER = 0x40,
    TON_ALPHANUMERIC = 0x50,
    TON_ABBREVIATED = 0x60,
};

// Information element identifiers of the concatenation headers.
const uchar IEI_CONCAT_8BIT = 0x00;
const uchar IEI_CONCAT_16BIT = 0x08;

enum DataCoding { CODING_7BIT = 0, CODING_8BIT = 4, CODING_UCS2 = 8 };

// Bytes up to the first zero byte, as UTF-8.
QString utf8UpToZero(const QByteArray& bytes)
{
    const int zero = bytes.indexOf('\0');
    return QString::fromUtf8(bytes.constData(), zero < 0 ? bytes.size() : zero);
}

// Swaps the two semi-octets of every octet (BCD fields are sent low digit first).
QByteArray swapNibbles(const QByteArray& octets)
{
    QByteArray swapped(octets);
    for (char& c : swapped) {
        const uchar o = static_cast<uchar>(c);
        c = static_cast<char>(static_cast<uchar>((o << 4) | (o >> 4)));
    }
    return swapped;
}

// True when the zone's offset from UTC is the same all through the day and a
// half around the local time `localAsUtc` (the local fields counted as if
// they were UTC, in seconds): then that local time exists exactly once. An
// offset change near it makes the time skipped or repeated. Sampled every
// eight hours; no zone changes its offset twice within eight hours.
bool steadyOffsetAround(qint64 localAsUtc)
{
    long offset = 0;
    for (int i = -2; i <= 2; ++i) {
        const time_t instant = time_t(localAsUtc + i * 8 * 3600);
        tm parts;
        if (!localtime_r(&instant, &parts))
            return false;
        if (i > -2 && parts.tm_gmtoff != offset)
            return false;
        offset = parts.tm_gmtoff;
    }
    return true;
}

// The time stamp text "yyyyMMddHHmmss" as QDateTime::fromString reads it: a
// local date-time, or an invalid one. fromString converts through the C
// library's mktime several times per call, and glibc looks at the zone file
// again on every mktime when TZ is not set; that made up most of the
// decoder's time. A text of plain digits naming a local time that exists
// exactly once is what fromString gives for it, and is built here directly
// with a single mktime. Every other text (hexadecimal letters, impossible
// dates, a time skipped or repeated by a daylight-saving change, whose
// reading depends on the C library's earlier conversions) still goes
// through fromString.
QDateTime localTimestamp(const QString& text)
{
    static const int widths[] = {4, 2, 2, 2, 2, 2};
    if (text.size() == 14) {
        int fields[6] = {};
        int pos = 0;
        bool digits = true;
        for (int f = 0; f < 6 && digits; ++f) {
            for (int i = 0; i < widths[f]; ++i, ++pos) {
                const ushort c = text.at(pos).unicode();
                if (c < '0' || c > '9') {
                    digits = false;
                    break;
                }
                fields[f] = fields[f] * 10 + (c - '0');
            }
        }
        if (digits) {
            const QDate date(fields[0], fields[1], fields[2]);
            const QTime time(fields[3], fields[4], fields[5]);
            if (date.isValid() && time.isValid()) {
                // Built first: its mktime also brings the C library's zone
                // rules up to date for the look around it.
                const QDateTime local(date, time);
                const qint64 localAsUtc = (date.toJulianDay() - 2440588) * 86400 + time.msecsSinceStartOfDay() / 1000;
                if (local.isValid() && local.date() == date && local.time() == time
                    && steadyOffsetAround(localAsUtc))
                    return local;
            }
        }
    }
    return QDateTime::fromString(text, QStringLiteral("yyyyMMddHHmmss"));
}

} // namespace

// ---------------------------------------------------------------------------
// SmsPduDecoder

SmsPduDecoder::SmsPduDecoder()
    : d(new SmsPduDecoderPrivate)
{
}

SmsPduDecoder::~SmsPduDecoder()
{
    delete d;
}

SmsPart SmsPduDecoder::decodeMessage(const QByteArray& pdu)
{
    return d->decode(pdu);
}

QByteArray SmsPduDecoder::septetsToOctets(const QByteArray& packed, int count)
{
    // Every septet the octets hold, at most `count`: the standard unpacking.
    return zelmodems::gsm7::unpack(packed, count, 0);
}

// ---------------------------------------------------------------------------
// SmsPduDecoderPrivate

SmsPduDecoderPrivate::SmsPduDecoderPrivate() = default;

SmsPduDecoderPrivate::~SmsPduDecoderPrivate()
{
    delete part;
}

SmsPart SmsPduDecoderPrivate::decode(const QByteArray& pdu)
{
    position = 0;
    data = pdu;
    delete part;
    part = new SmsPartData;

    // Each reader runs only when all before it succeeded.
    readServiceNumber() && readMessageType() && readSenderAddress() && readProtocolIdentifier()
        && readDataCodingScheme() && readTimestamp() && readUserData();

    SmsPart result(part);
    part = nullptr;
    return result;
}

bool SmsPduDecoderPrivate::read(uchar* out)
{
    if (!out)
        return false;
    // The final octet is never taken by a single-octet read.
    if (position < data.size() - 1) {
        *out = static_cast<uchar>(data.at(position++));
        return true;
    }
    part->error = true;
    return false;
}

QByteArray SmsPduDecoderPrivate::read(int n)
{
    if (n > 0 && position <= data.size() - n) {
        const QByteArray octets = data.mid(position, n);
        position += n;
        return octets;
    }
    part->error = true;
    return QByteArray();
}

void SmsPduDecoderPrivate::skipOctet()
{
    if (position < data.size() - 1)
        ++position;
}

int SmsPduDecoderPrivate::septetsSize(int n)
{
    return static_cast<int>(qCeil(n * 0.875));
}

bool SmsPduDecoderPrivate::reportError(const QString& message)
{
    part->error = true;
    part->errorString = QStringLiteral("SmsPduDecoder: %1").arg(message);
    return false;
}

QString SmsPduDecoderPrivate::decodeInternationalNumber(const QByteArray& octets)
{
    QString digits = QString::fromLatin1(swapNibbles(octets).toHex());
    if (digits.endsWith(QLatin1Char('f'), Qt::CaseInsensitive))
        digits.chop(1);
    return QLatin1Char('+') + digits;
}

bool SmsPduDecoderPrivate::readServiceNumber()
{
    uchar length = 0;
    if (!read(&length))
        return reportError(tr("Error reading service number."));
    // The service centre's number is not kept. A zero length fails here too:
    // the modem always lists the centre it received the message from.
    const QByteArray number = read(static_cast<int>(length));
    return length > 0 && !number.isEmpty();
}

bool SmsPduDecoderPrivate::readMessageType()
{
    uchar octet = 0;
    if (!read(&octet))
        return reportError(tr("Error reading message type."));
    part->messageType = octet & 0x02;
    part->userDataHeader = (octet & 0x40) != 0;
    return true;
}

bool SmsPduDecoderPrivate::readSenderAddress()
{
    uchar digits = 0;
    if (!read(&digits))
        return reportError(tr("Error reading address length."));
    uchar type = 0;
    if (!read(&type))
        return reportError(tr("Error reading address type."));

    // The length counts semi-octets; the sum wraps in 8 bits like the field.
    const quint8 rounded = static_cast<quint8>(digits + (digits & 1));
    const quint8 octetCount = rounded / 2;

    const quint8 typeOfNumber = type & 0x70;
    switch (typeOfNumber) {
    case TON_INTERNATIONAL:
    case TON_NETWORK_SPECIFIC:
    case TON_SUBSCRIBER: {
        const QByteArray octets = read(static_cast<int>(octetCount));
        if (octets.isEmpty())
            return reportError(tr("Error reading sender address."));
        part->senderAddress = decodeInternationalNumber(octets);
        return true;
    }
    case TON_ALPHANUMERIC:
    case TON_UNKNOWN: {
        const QByteArray octets = read(static_cast<int>(octetCount));
        if (octets.isEmpty())
            return reportError(tr("Error reading sender address."));
        part->senderAddress = utf8UpToZero(SmsPduDecoder::septetsToOctets(octets, octetCount));
        return true;
    }
    default:
        return reportError(tr("Error reading address type %1.").arg(typeOfNumber));
    }
}

bool SmsPduDecoderPrivate::readProtocolIdentifier()
{
    uchar pid = 0;
    return read(&pid);
}

bool SmsPduDecoderPrivate::readDataCodingScheme()
{
    uchar dcs = 0;
    if (!read(&dcs))
        return reportError(tr("Error reading data coding scheme."));
    part->dataCoding = dcs & 0x0C;
    return true;
}

bool SmsPduDecoderPrivate::readTimestamp()
{
    const QByteArray octets = read(6);
    if (octets.isEmpty())
        return reportError(tr("Error reading timestamp."));
    // The time-zone octet: the modem's clock is the appliance's local time.
    skipOctet();
    const QString text = QLatin1String("20") + QString::fromLatin1(swapNibbles(octets).toHex());
    part->dateTime = localTimestamp(text);
    return true;
}

bool SmsPduDecoderPrivate::readUserData()
{
    uchar length = 0;
    if (!read(&length))
        return reportError(tr("Error reading user data length."));

    if (readUserDataHeader())
        length = static_cast<uchar>(length - 1 - part->headerLength);
    else if (part->error)
        return false;

    switch (part->dataCoding) {
    case CODING_7BIT: {
        const QByteArray packed = read(septetsSize(length));
        if (packed.isEmpty())
            return reportError(tr("Error reading text of message."));
        part->text = utf8UpToZero(SmsPduDecoder::septetsToOctets(packed, length));
        return true;
    }
    case CODING_UCS2: {
        const QByteArray octets = read(static_cast<int>(length));
        QTextCodec* codec = QTextCodec::codecForName("UTF-16BE");
        part->text = codec ? codec->toUnicode(octets) : QString();
        return !octets.isEmpty();
    }
    default: {
        const QByteArray octets = read(static_cast<int>(length));
        part->text = utf8UpToZero(octets);
        return !octets.isEmpty();
    }
    }
}

bool SmsPduDecoderPrivate::readUserDataHeader()
{
    if (!part->userDataHeader) {
        part->partCount = 1;
        part->partId.clear();
        part->partNumber = 0;
        return false;
    }

    // Only the first information element is looked at, and only when it is a
    // concatenation element; anything after it is left to the text.
    const QString failure = QStringLiteral("Error reading user header data.");
    uchar headerLength = 0;
    if (!read(&headerLength))
        return reportError(failure);
    part->headerLength = headerLength;

    uchar iei = 0;
    uchar elementLength = 0;
    if (!read(&iei) || !read(&elementLength))
        return reportError(failure);
    if (iei != IEI_CONCAT_8BIT && iei != IEI_CONCAT_16BIT)
        return reportError(failure);

    part->partId = read(iei == IEI_CONCAT_8BIT ? 1 : 2);
    if (part->partId.isEmpty())
        return reportError(failure);
    uchar total = 0;
    if (!read(&total))
        return reportError(failure);
    part->partCount = total;
    uchar sequence = 0;
    if (!read(&sequence))
        return reportError(failure);
    part->partNumber = static_cast<int>(sequence) - 1;
    return true;
}
