#pragma once
// Shared by the PDU toolkit's files: the octet reader, the limits and
// first-octet bits of TS 23.040, the helpers of the encoders and explainers,
// and the private data of the toolkit's value types.
#include "pdu.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSharedData>
#include <QString>

namespace zelmodems {

class PduData : public QSharedData
{
public:
    QByteArray serviceCentre;
    QByteArray tpdu;
    int partNumber = 1;
    int partCount = 1;
};

class PduSubmitOptionsData : public QSharedData
{
public:
    PDU::Alphabet alphabet = PDU::AutoAlphabet;
    PDU::NumberType numberType = PDU::AutoNumberType;
    bool statusReport = false;
    int validityMinutes = 0;
    int concatReference = -1;
    bool reference16Bit = false;
    QString serviceCentre;

    bool operator==(const PduSubmitOptionsData& o) const
    {
        return alphabet == o.alphabet
            && numberType == o.numberType
            && statusReport == o.statusReport
            && validityMinutes == o.validityMinutes
            && concatReference == o.concatReference
            && reference16Bit == o.reference16Bit
            && serviceCentre == o.serviceCentre;
    }
};

class PduSubmitData : public QSharedData
{
public:
    bool valid = false;
    QString error;
    int messageReference = 0;
    QString recipient;
    int recipientType = 0;
    bool statusReport = false;
    int validityMinutes = 0;
    int dataCodingScheme = 0;
    PDU::Alphabet alphabet = PDU::Gsm7Alphabet;
    QByteArray header;
    int concatReference = -1;
    int partNumber = 1;
    int partCount = 1;
    QString text;

    bool operator==(const PduSubmitData& o) const
    {
        return valid == o.valid
            && error == o.error
            && messageReference == o.messageReference
            && recipient == o.recipient
            && recipientType == o.recipientType
            && statusReport == o.statusReport
            && validityMinutes == o.validityMinutes
            && dataCodingScheme == o.dataCodingScheme
            && alphabet == o.alphabet
            && header == o.header
            && concatReference == o.concatReference
            && partNumber == o.partNumber
            && partCount == o.partCount
            && text == o.text;
    }
};

class PduStatusReportData : public QSharedData
{
public:
    bool valid = false;
    QString error;
    int messageReference = -1;
    QString recipient;
    int recipientType = 0;
    QDateTime serviceCentreTime;
    QDateTime dischargeTime;
    int status = -1;

    bool operator==(const PduStatusReportData& o) const
    {
        return valid == o.valid
            && error == o.error
            && messageReference == o.messageReference
            && recipient == o.recipient
            && recipientType == o.recipientType
            && serviceCentreTime == o.serviceCentreTime
            && dischargeTime == o.dischargeTime
            && status == o.status;
    }
};


namespace pduinternal {

// ---------------------------------------------------------------------------
// Limits (TS 23.040 9.2.3.24): 140 octets of user data.

const int MAX_SEPTETS = 160;
const int MAX_UCS2_OCTETS = 140;
const int MAX_PARTS = 255;
const int MAX_ADDRESS_DIGITS = 20;

// First-octet bits of SMS-SUBMIT.
const uchar MTI_SUBMIT = 0x01;
const uchar VPF_RELATIVE = 0x10;
const uchar SRR = 0x20;
const uchar UDHI = 0x40;

const uchar DCS_GSM7 = 0x00;
const uchar DCS_UCS2 = 0x08;

// Bounds-checked reading of a TPDU; the first failure is remembered with the
// name of the field that ran short.
class OctetReader
{
public:
    explicit OctetReader(const QByteArray& data)
        : m_data(data)
    {
    }

    bool octet(uchar* out, const QString& field)
    {
        QByteArray one;
        if (!octets(1, &one, field))
            return false;
        *out = static_cast<uchar>(one.at(0));
        return true;
    }

    bool octets(int n, QByteArray* out, const QString& field)
    {
        if (m_failed)
            return false;
        if (n < 0 || n > m_data.size() - m_pos) {
            m_failed = true;
            m_error = PDU::tr("Truncated in %1 at octet %2 (%3 needed, %4 left)")
                          .arg(field)
                          .arg(m_pos)
                          .arg(n)
                          .arg(m_data.size() - m_pos);
            return false;
        }
        *out = m_data.mid(m_pos, n);
        m_pos += n;
        return true;
    }

    void fail(const QString& error)
    {
        if (!m_failed) {
            m_failed = true;
            m_error = error;
        }
    }

    int remaining() const { return m_data.size() - m_pos; }
    bool failed() const { return m_failed; }
    QString error() const { return m_error; }

private:
    QByteArray m_data;
    int m_pos = 0;
    bool m_failed = false;
    QString m_error;
};

struct HeaderInfo {
    int reference = -1;
    int partNumber = 1;
    int partCount = 1;
};

int nextConcatReference();
bool parseHex(const QString& text, QByteArray* octets, QString* error);
QString hexOctets(const QByteArray& octets);
QString octetList(const QByteArray& octets);
// Semi-octets (low nibble first) to digits; 0xF ends the number.
QString decodeSemiOctets(const QByteArray& octets, int digits);
bool readAddress(OctetReader& reader, const QString& field, QString* number, int* type);
QString describeNumberType(int toa);
QDateTime decodeTimestamp(const QByteArray& octets);
QString describeTime(const QDateTime& time, const QByteArray& raw);
QString elementName(uchar iei);
QString unknownElementKind(uchar iei);
QString languageName(uchar id);
QString describeSpecialIndication(const QByteArray& v);
QString describeConcatenation(int reference, int total, int sequence);
QString describeElement(uchar iei, const QByteArray& v, bool* lengthOk);
int expectedElementLength(uchar iei);
HeaderInfo concatenationOf(const QByteArray& header);
QList<QByteArray> splitGsm7(const QByteArray& septets, int capacity);
QList<QString> splitUcs2(const QString& text, int capacity);
QByteArray toUtf16BigEndian(const QString& text);
QString fromUtf16BigEndian(const QByteArray& octets);
void setError(QString* error, const QString& text);
// Reads past the service-centre address in front of a TPDU.
void skipServiceCentre(OctetReader& reader);

} // namespace pduinternal
} // namespace zelmodems
