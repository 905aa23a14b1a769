// Reading short messages as modems store them: the three TPDU layouts of
// TS 23.040 that a store or an unsolicited report can hold, their user-data
// headers and the alphabets of TS 23.038.
#include "shortmessage.h"

#include "gsm7_p.h"
#include "gsm7tables_p.h"
#include "pdu_p.h"

namespace zelmodems {

class ShortMessageData : public QSharedData
{
public:
    QString error;
    ShortMessage::Type type = ShortMessage::InvalidType;
    QString serviceCentre;
    QString address;
    int addressType = 0;
    int messageReference = -1;
    int protocolIdentifier = -1;
    int dataCodingScheme = -1;
    PDU::Alphabet alphabet = PDU::Gsm7Alphabet;
    int messageClass = -1;
    QDateTime serviceCentreTime;
    QDateTime dischargeTime;
    int status = -1;
    int validityMinutes = 0;
    bool statusReportFlag = false;
    QByteArray header;
    int concatReference = -1;
    bool reference16Bit = false;
    int partNumber = 1;
    int partCount = 1;
    int destinationPort = -1;
    int originatorPort = -1;
    int lockingShift = 0;
    int singleShift = 0;
    QString text;
    QByteArray userData;

    bool operator==(const ShortMessageData& o) const
    {
        return error == o.error && type == o.type && serviceCentre == o.serviceCentre
            && address == o.address && addressType == o.addressType
            && messageReference == o.messageReference && protocolIdentifier == o.protocolIdentifier
            && dataCodingScheme == o.dataCodingScheme && serviceCentreTime == o.serviceCentreTime
            && dischargeTime == o.dischargeTime && status == o.status
            && validityMinutes == o.validityMinutes && statusReportFlag == o.statusReportFlag
            && header == o.header && text == o.text && userData == o.userData;
    }
};

namespace {

using namespace pduinternal;

const uchar MTI_MASK = 0x03;
const uchar MTI_DELIVER = 0x00;
const uchar MTI_STATUS_REPORT = 0x02;

// Coding groups of the data coding scheme (TS 23.038 4): alphabet, class
// and whether the text is compressed.
struct Coding {
    PDU::Alphabet alphabet = PDU::Gsm7Alphabet;
    int messageClass = -1;
    bool compressed = false;
};

Coding codingOf(int dcs)
{
    Coding coding;
    coding.alphabet = PDU::alphabetOfDcs(dcs);
    const int group = dcs >> 4;
    if (group <= 0x07) {
        coding.compressed = (dcs & 0x20) != 0;
        if (dcs & 0x10)
            coding.messageClass = dcs & 0x03;
    } else if (group == 0x0F) {
        coding.messageClass = dcs & 0x03;
    }
    return coding;
}

// The information elements of a user-data header (its length octet first)
// that change how the message is read or joined.
bool readHeader(const QByteArray& header, ShortMessageData& m)
{
    int pos = 1;
    while (pos < header.size()) {
        if (pos + 2 > header.size()) {
            m.error = ShortMessage::tr("The user data header ends inside an element at octet %1").arg(pos);
            return false;
        }
        const uchar iei = static_cast<uchar>(header.at(pos));
        const int length = static_cast<uchar>(header.at(pos + 1));
        if (pos + 2 + length > header.size()) {
            m.error = ShortMessage::tr("The user data header element 0x%1 needs %2 octets, %3 are left")
                          .arg(iei, 2, 16, QLatin1Char('0'))
                          .arg(length)
                          .arg(header.size() - pos - 2);
            return false;
        }
        const auto at = [&header, pos](int i) { return static_cast<uchar>(header.at(pos + 2 + i)); };
        switch (iei) {
        case 0x00: // concatenation, 8-bit reference
        case 0x08: // concatenation, 16-bit reference
            if (length == (iei == 0x00 ? 3 : 4)) {
                const int o = iei == 0x00 ? 1 : 2;
                const int count = at(o);
                const int number = at(o + 1);
                // A part numbered 0 or past the count is to be read on its own.
                if (count >= 1 && number >= 1 && number <= count) {
                    m.concatReference = iei == 0x00 ? at(0) : (at(0) << 8) | at(1);
                    m.reference16Bit = iei == 0x08;
                    m.partCount = count;
                    m.partNumber = number;
                }
            }
            break;
        case 0x04: // application ports, 8-bit
            if (length == 2) {
                m.destinationPort = at(0);
                m.originatorPort = at(1);
            }
            break;
        case 0x05: // application ports, 16-bit
            if (length == 4) {
                m.destinationPort = (at(0) << 8) | at(1);
                m.originatorPort = (at(2) << 8) | at(3);
            }
            break;
        case 0x24: // national language single shift
            if (length == 1 && at(0) < gsm7tables::LanguageCount)
                m.singleShift = at(0);
            break;
        case 0x25: // national language locking shift
            if (length == 1 && at(0) < gsm7tables::LanguageCount)
                m.lockingShift = at(0);
            break;
        default:
            break;
        }
        pos += 2 + length;
    }
    return true;
}

// TP-UDL and TP-UD: the header, then the text in the message's alphabet.
bool readUserData(OctetReader& reader, bool hasHeader, ShortMessageData& m)
{
    uchar udl = 0;
    if (!reader.octet(&udl, ShortMessage::tr("the user data length")))
        return false;
    const bool gsm = m.alphabet == PDU::Gsm7Alphabet;
    if ((gsm && udl > MAX_SEPTETS) || (!gsm && udl > MAX_UCS2_OCTETS)) {
        reader.fail(ShortMessage::tr("User data length %1 is more than a message can hold (%2)")
                        .arg(udl)
                        .arg(gsm ? MAX_SEPTETS : MAX_UCS2_OCTETS));
        return false;
    }
    QByteArray data;
    if (!reader.octets(gsm ? (udl * 7 + 7) / 8 : udl, &data, ShortMessage::tr("the user data")))
        return false;

    int headerSize = 0;
    if (hasHeader) {
        headerSize = data.isEmpty() ? 1 : static_cast<uchar>(data.at(0)) + 1;
        if (headerSize > data.size()) {
            reader.fail(ShortMessage::tr("The user data header (%1 octets) is longer than the user data (%2)")
                            .arg(headerSize)
                            .arg(data.size()));
            return false;
        }
        m.header = data.left(headerSize);
        if (!readHeader(m.header, m))
            return false;
    }
    if (gsm) {
        // Septets start at the first septet boundary after the header.
        const int headerBits = headerSize * 8;
        const int fill = (7 - headerBits % 7) % 7;
        const int headerSeptets = (headerBits + fill) / 7;
        if (udl < headerSeptets) {
            reader.fail(ShortMessage::tr("User data length %1 is shorter than its header (%2 septets)")
                            .arg(udl)
                            .arg(headerSeptets));
            return false;
        }
        m.userData = PDU::unpackSeptets(data.mid(headerSize), udl - headerSeptets, fill);
        m.text = ShortMessage::fromGsm7(m.userData, m.lockingShift, m.singleShift);
    } else {
        m.userData = data.mid(headerSize);
        if (m.alphabet == PDU::Ucs2Alphabet)
            m.text = fromUtf16BigEndian(m.userData);
    }
    return true;
}

bool readServiceCentre(OctetReader& reader, ShortMessageData& m)
{
    const QString field = ShortMessage::tr("the service centre address");
    uchar length = 0;
    QByteArray value;
    if (!reader.octet(&length, field) || !reader.octets(length, &value, field))
        return false;
    if (length > 0) {
        const uchar toa = static_cast<uchar>(value.at(0));
        m.serviceCentre = decodeSemiOctets(value.mid(1), (length - 1) * 2);
        if (((toa >> 4) & 0x07) == 1)
            m.serviceCentre.prepend(QLatin1Char('+'));
    }
    return true;
}

bool readTimestamp(OctetReader& reader, const QString& field, QDateTime* time)
{
    QByteArray raw;
    if (!reader.octets(7, &raw, field))
        return false;
    *time = decodeTimestamp(raw);
    if (!time->isValid()) {
        reader.fail(ShortMessage::tr("Invalid time stamp in %1: %2").arg(field, hexOctets(raw)));
        return false;
    }
    return true;
}

void readCoding(OctetReader& reader, ShortMessageData& m)
{
    uchar pid = 0;
    uchar dcs = 0;
    if (!reader.octet(&pid, ShortMessage::tr("the protocol identifier"))
        || !reader.octet(&dcs, ShortMessage::tr("the data coding scheme")))
        return;
    m.protocolIdentifier = pid;
    m.dataCodingScheme = dcs;
    const Coding coding = codingOf(dcs);
    m.alphabet = coding.alphabet;
    m.messageClass = coding.messageClass;
    if (coding.compressed)
        reader.fail(ShortMessage::tr("Compressed user data (data coding scheme 0x%1) cannot be read")
                        .arg(dcs, 2, 16, QLatin1Char('0')));
}

void readDeliver(OctetReader& reader, uchar first, ShortMessageData& m)
{
    m.statusReportFlag = first & 0x20;
    if (!readAddress(reader, ShortMessage::tr("the originating address"), &m.address, &m.addressType))
        return;
    readCoding(reader, m);
    if (!reader.failed() && readTimestamp(reader, ShortMessage::tr("the service centre time stamp"), &m.serviceCentreTime))
        readUserData(reader, first & UDHI, m);
}

void readSubmit(OctetReader& reader, uchar first, ShortMessageData& m)
{
    m.statusReportFlag = first & SRR;
    uchar mr = 0;
    if (!reader.octet(&mr, ShortMessage::tr("the message reference")))
        return;
    m.messageReference = mr;
    if (!readAddress(reader, ShortMessage::tr("the destination address"), &m.address, &m.addressType))
        return;
    readCoding(reader, m);
    const int vpf = (first >> 3) & 0x03;
    if (vpf == 2) {
        uchar vp = 0;
        if (reader.octet(&vp, ShortMessage::tr("the validity period")))
            m.validityMinutes = PDU::validityMinutes(vp);
    } else if (vpf != 0) {
        QByteArray vp;
        reader.octets(7, &vp, ShortMessage::tr("the validity period"));
    }
    if (!reader.failed())
        readUserData(reader, first & UDHI, m);
}

void readStatusReport(OctetReader& reader, uchar first, ShortMessageData& m)
{
    m.statusReportFlag = first & 0x20;
    uchar mr = 0;
    uchar st = 0;
    if (!reader.octet(&mr, ShortMessage::tr("the message reference"))
        || !readAddress(reader, ShortMessage::tr("the recipient address"), &m.address, &m.addressType)
        || !readTimestamp(reader, ShortMessage::tr("the service centre time stamp"), &m.serviceCentreTime)
        || !readTimestamp(reader, ShortMessage::tr("the discharge time"), &m.dischargeTime)
        || !reader.octet(&st, ShortMessage::tr("the status")))
        return;
    m.messageReference = mr;
    m.status = st;
    // TP-PI and the optional fields it announces; modems often pad the
    // report with octets that are not there, so a missing TP-PI is fine.
    uchar pi = 0;
    if (reader.remaining() == 0 || !reader.octet(&pi, ShortMessage::tr("the parameter indicator")))
        return;
    if (pi & 0x80)
        return; // extended indicators: nothing after them is read
    if (pi & 0x01) {
        uchar pid = 0;
        if (reader.octet(&pid, ShortMessage::tr("the protocol identifier")))
            m.protocolIdentifier = pid;
    }
    if (pi & 0x02) {
        uchar dcs = 0;
        if (reader.octet(&dcs, ShortMessage::tr("the data coding scheme"))) {
            m.dataCodingScheme = dcs;
            const Coding coding = codingOf(dcs);
            m.alphabet = coding.alphabet;
            m.messageClass = coding.messageClass;
        }
    }
    if ((pi & 0x04) && !reader.failed())
        readUserData(reader, first & UDHI, m);
}

} // namespace

ShortMessage::ShortMessage() : d(new ShortMessageData) {}
ShortMessage::ShortMessage(const ShortMessage& other) = default;
ShortMessage& ShortMessage::operator=(const ShortMessage& other) = default;
ShortMessage::~ShortMessage() = default;
bool ShortMessage::operator==(const ShortMessage& other) const { return d == other.d || *d == *other.d; }

ShortMessage ShortMessage::decode(const QString& hexPdu, bool withServiceCentre)
{
    QByteArray octets;
    QString error;
    if (!parseHex(hexPdu, &octets, &error)) {
        ShortMessage invalid;
        invalid.d->error = error;
        return invalid;
    }
    return decode(octets, withServiceCentre);
}

ShortMessage ShortMessage::decode(const QByteArray& pdu, bool withServiceCentre)
{
    ShortMessage message;
    ShortMessageData& m = *message.d;
    OctetReader reader(pdu);
    if (pdu.isEmpty())
        reader.fail(tr("Empty PDU"));
    if (withServiceCentre)
        readServiceCentre(reader, m);
    uchar first = 0;
    if (reader.octet(&first, tr("the first octet"))) {
        switch (first & MTI_MASK) {
        case MTI_DELIVER: readDeliver(reader, first, m); break;
        case MTI_SUBMIT: readSubmit(reader, first, m); break;
        case MTI_STATUS_REPORT: readStatusReport(reader, first, m); break;
        default: reader.fail(tr("Reserved message type indicator 3 in the first octet")); break;
        }
    }
    if (reader.failed()) {
        m.error = reader.error();
    } else if (m.error.isEmpty()) {
        const uchar mti = first & MTI_MASK;
        m.type = mti == MTI_DELIVER ? Deliver : mti == MTI_SUBMIT ? Submit : StatusReport;
        return message;
    }
    // An unreadable PDU keeps nothing but its error.
    ShortMessage invalid;
    invalid.d->error = m.error;
    return invalid;
}

QString ShortMessage::fromGsm7(const QByteArray& septets, int lockingShift, int singleShift)
{
    return gsm7::decode(septets, lockingShift, singleShift);
}

bool ShortMessage::isValid() const { return d->type != InvalidType; }
QString ShortMessage::error() const { return d->error; }
ShortMessage::Type ShortMessage::type() const { return d->type; }

QString ShortMessage::typeName(Type type)
{
    switch (type) {
    case Deliver: return QStringLiteral("SMS-DELIVER");
    case Submit: return QStringLiteral("SMS-SUBMIT");
    case StatusReport: return QStringLiteral("SMS-STATUS-REPORT");
    case InvalidType: break;
    }
    return QStringLiteral("invalid");
}

QString ShortMessage::serviceCentre() const { return d->serviceCentre; }
QString ShortMessage::address() const { return d->address; }
int ShortMessage::addressType() const { return d->addressType; }
bool ShortMessage::isAlphanumericAddress() const { return ((d->addressType >> 4) & 0x07) == 5; }
int ShortMessage::messageReference() const { return d->messageReference; }
int ShortMessage::protocolIdentifier() const { return d->protocolIdentifier; }
int ShortMessage::dataCodingScheme() const { return d->dataCodingScheme; }
PDU::Alphabet ShortMessage::alphabet() const { return d->alphabet; }
int ShortMessage::messageClass() const { return d->messageClass; }
QDateTime ShortMessage::serviceCentreTime() const { return d->serviceCentreTime; }
QDateTime ShortMessage::dischargeTime() const { return d->dischargeTime; }
int ShortMessage::status() const { return d->status; }
int ShortMessage::validityMinutes() const { return d->validityMinutes; }
bool ShortMessage::statusReportFlag() const { return d->statusReportFlag; }
QByteArray ShortMessage::header() const { return d->header; }
int ShortMessage::concatReference() const { return d->concatReference; }
bool ShortMessage::isReference16Bit() const { return d->reference16Bit; }
int ShortMessage::partNumber() const { return d->partNumber; }
int ShortMessage::partCount() const { return d->partCount; }
int ShortMessage::destinationPort() const { return d->destinationPort; }
int ShortMessage::originatorPort() const { return d->originatorPort; }
int ShortMessage::lockingShiftLanguage() const { return d->lockingShift; }
int ShortMessage::singleShiftLanguage() const { return d->singleShift; }
QString ShortMessage::text() const { return d->text; }
QByteArray ShortMessage::userData() const { return d->userData; }

} // namespace zelmodems
