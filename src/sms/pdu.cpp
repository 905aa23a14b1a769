// The PDU value class, its options and submit/report views, and the
// toolkit's members over the shared alphabet (gsm7.cpp) and field readers
// (tpdufields.cpp).
#include "gsm7_p.h"
#include "pdu_p.h"
#include <QAtomicInt>
#include <QRandomGenerator>
#include <QStringList>

namespace zelmodems {

namespace pduinternal {

int nextConcatReference()
{
    static QAtomicInt counter(static_cast<int>(QRandomGenerator::global()->bounded(0x10000u)));
    return counter.fetchAndAddRelaxed(1);
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
    return gsm7::length(text);
}

QByteArray PDU::toGsm7(const QString& text, bool* ok)
{
    return gsm7::encode(text, ok);
}

QString PDU::fromGsm7(const QByteArray& septets)
{
    return gsm7::decode(septets);
}

QByteArray PDU::packSeptets(const QByteArray& septets, int fillBits)
{
    return gsm7::pack(septets, fillBits);
}

QByteArray PDU::unpackSeptets(const QByteArray& packed, int count, int fillBits)
{
    return gsm7::unpack(packed, count, fillBits);
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
