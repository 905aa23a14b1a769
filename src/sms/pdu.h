#pragma once
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <QSharedDataPointer>
#include <QString>

// PDU toolkit: SMS-SUBMIT generation for modems in PDU mode (AT+CMGF=0) and
// readable explanations of status reports and user-data headers, after
// 3GPP TS 23.040 (TPDU layout) and TS 23.038 (alphabets). The library's own
// SMS reception does not use it; it is here for callers that need more than
// the modem's text mode: long messages, Cyrillic and other non-GSM text,
// delivery reports, validity periods.
//
// Sending a message, one AT+CMGS per part:
//
//     QString error;
//     const QList<PDU> parts = encodeSmsSubmit("+79161234567", QStringLiteral("Привет"),
//                                              PDU::SubmitOptions(), &error);
//     if (parts.isEmpty())
//         qWarning() << error;
//     for (const PDU& pdu : parts) {
//         // AT+CMGS=<TPDU length>, wait for "> ", then the text and Ctrl-Z.
//         const QByteArray command = "AT+CMGS=" + QByteArray::number(pdu.tpduLength()) + "\r";
//         const QByteArray body = pdu.toHex().toLatin1() + "\x1A";
//         ...
//     }
//
// Asking for a delivery report and explaining it when the modem shows it
// (+CDS, or +CMGL with a status report in it):
//
//     PDU::SubmitOptions options;
//     options.statusReport = true;            ///< TP-SRR
//     options.validityMinutes = 24 * 60;      ///< relative validity, one day
//     encodeSmsSubmit("89161234567", "Test", options);
//     ...
//     qInfo().noquote() << explainStatusReport(pduTextFromModem);
//     // SMS-STATUS-REPORT
//     //   Message reference: 42
//     //   Recipient: +79161234567 (international)
//     //   ...
//     //   Status: 0x00 (transaction completed): Short message received by the SME
//
// Explaining a user-data header (its first octet is the header length):
//
//     explainUserDataHeader(QByteArray::fromHex("050003cc0201"));
//     // User data header, 5 octets
//     //   Concatenated short messages, 8-bit reference: reference 204, part 1 of 2
//
// All functions are reentrant; bad input gives an error text, never a crash.

namespace zelmodems {

class PduData;
class PduSubmitOptionsData;
class PduSubmitData;
class PduStatusReportData;

/// One generated SMS-SUBMIT PDU: the service-centre part that AT+CMGS in PDU
/// mode expects in front (a single 00 octet for "the SMSC stored in the
/// modem") and the TPDU, whose length in octets is the number to give AT+CMGS.
class ZELMODEMSLIB_EXPORT PDU
{
    Q_DECLARE_TR_FUNCTIONS(PDU)

public:
    enum Alphabet {
        AutoAlphabet,   ///< GSM 7-bit when the text fits it, otherwise UCS2
        Gsm7Alphabet,   ///< GSM 7-bit default alphabet with its extension table
        EightBitAlphabet,
        Ucs2Alphabet,   ///< UTF-16BE (characters beyond the BMP as surrogate pairs)
    };

    enum NumberType {
        AutoNumberType,      ///< "+..." international, otherwise unknown (dialled as is)
        InternationalNumber, ///< type of address 0x91
        NationalNumber,      ///< type of address 0xA1
        UnknownNumberType,   ///< type of address 0x81
    };

    /// Meaning of the TP-Status values by their range.
    enum StatusClass {
        StatusCompleted,          ///< 0x00-0x1F: transaction completed
        StatusTemporaryRetrying,  ///< 0x20-0x3F: temporary error, the SC still tries
        StatusPermanentError,     ///< 0x40-0x5F: permanent error, no more attempts
        StatusTemporaryGivenUp,   ///< 0x60-0x7F: temporary error, no more attempts
        StatusReserved,           ///< 0x80-0xFF and invalid values
    };

    /// What encodeSmsSubmit() is asked to build.
    class ZELMODEMSLIB_EXPORT SubmitOptions
    {
    public:
        SubmitOptions();
        SubmitOptions(const PduSubmitOptionsData& data);
        SubmitOptions(const SubmitOptions& other);
        SubmitOptions& operator=(const SubmitOptions& other);
        ~SubmitOptions();
        bool operator==(const SubmitOptions& other) const;
        bool operator!=(const SubmitOptions& other) const { return !(*this == other); }

        /// The alphabet: GSM 7-bit when the text fits it, otherwise UCS2 (AutoAlphabet)
        Alphabet alphabet() const;
        void setAlphabet(Alphabet value);
        /// The recipient's type of number.
        NumberType numberType() const;
        void setNumberType(NumberType value);
        /// TP-SRR: ask the service centre for a status report.
        bool statusReport() const;
        void setStatusReport(bool value);
        /// Relative validity in minutes, rounded up to what the field can express (5 minutes to 63 weeks); 0 or less: no validity field.
        int validityMinutes() const;
        void setValidityMinutes(int value);
        /// Concatenation reference of a long message; negative: the next value of a process-wide counter that starts at a random value.
        int concatReference() const;
        void setConcatReference(int value);
        /// 16-bit concatenation references (one septet/character less per part)
        bool reference16Bit() const;
        void setReference16Bit(bool value);
        /// Service centre to put in front; empty: the modem's stored one.
        QString serviceCentre() const;
        void setServiceCentre(const QString& value);

    private:
        QSharedDataPointer<PduSubmitOptionsData> d;
    };

    /// An SMS-SUBMIT read back (to check what is about to be sent).
    class ZELMODEMSLIB_EXPORT Submit
    {
    public:
        Submit();
        Submit(const PduSubmitData& data);
        Submit(const Submit& other);
        Submit& operator=(const Submit& other);
        ~Submit();
        bool operator==(const Submit& other) const;
        bool operator!=(const Submit& other) const { return !(*this == other); }

        bool valid() const;
        void setValid(bool value);
        QString error() const;
        void setError(const QString& value);
        int messageReference() const;
        void setMessageReference(int value);
        QString recipient() const;
        void setRecipient(const QString& value);
        /// Type-of-address octet.
        int recipientType() const;
        void setRecipientType(int value);
        bool statusReport() const;
        void setStatusReport(bool value);
        /// Relative validity only; 0: none.
        int validityMinutes() const;
        void setValidityMinutes(int value);
        int dataCodingScheme() const;
        void setDataCodingScheme(int value);
        Alphabet alphabet() const;
        void setAlphabet(Alphabet value);
        /// User-data header, length octet first.
        QByteArray header() const;
        void setHeader(const QByteArray& value);
        /// -1 without a concatenation element.
        int concatReference() const;
        void setConcatReference(int value);
        /// 1-based, as in the header.
        int partNumber() const;
        void setPartNumber(int value);
        int partCount() const;
        void setPartCount(int value);
        /// 8-bit data comes as Latin-1.
        QString text() const;
        void setText(const QString& value);

    private:
        QSharedDataPointer<PduSubmitData> d;
    };

    /// An SMS-STATUS-REPORT: what happened to a message sent with a status report requested.
    class ZELMODEMSLIB_EXPORT StatusReport
    {
    public:
        StatusReport();
        StatusReport(const PduStatusReportData& data);
        StatusReport(const StatusReport& other);
        StatusReport& operator=(const StatusReport& other);
        ~StatusReport();
        bool operator==(const StatusReport& other) const;
        bool operator!=(const StatusReport& other) const { return !(*this == other); }

        bool valid() const;
        void setValid(bool value);
        QString error() const;
        void setError(const QString& value);
        /// TP-MR of the message the report is about.
        int messageReference() const;
        void setMessageReference(int value);
        QString recipient() const;
        void setRecipient(const QString& value);
        int recipientType() const;
        void setRecipientType(int value);
        /// TP-SCTS, with its zone as UTC offset.
        QDateTime serviceCentreTime() const;
        void setServiceCentreTime(const QDateTime& value);
        /// TP-DT.
        QDateTime dischargeTime() const;
        void setDischargeTime(const QDateTime& value);
        /// TP-ST.
        int status() const;
        void setStatus(int value);

    private:
        QSharedDataPointer<PduStatusReportData> d;
    };

    PDU();
    PDU(const QByteArray& serviceCentre, const QByteArray& tpdu, int partNumber = 1,
        int partCount = 1);
    PDU(const PDU& other);
    PDU& operator=(const PDU& other);
    ~PDU();

    bool isNull() const;
    /// Service-centre part, its length octet first (a single 00 by default).
    QByteArray serviceCentre() const;
    QByteArray tpdu() const;
    /// Octets of the TPDU: the length argument of AT+CMGS in PDU mode.
    int tpduLength() const;
    /// Service-centre part and TPDU as upper-case hexadecimal text.
    QString toHex() const;
    /// Place of this PDU in its message (1-based) and the number of parts.
    int partNumber() const;
    int partCount() const;

    bool operator==(const PDU& other) const;
    bool operator!=(const PDU& other) const;

    /// --- GSM 7-bit alphabet (TS 23.038 6.2.1 and its extension table) ---

    /// Septets the text takes in the default alphabet (extension characters
    /// count two); -1 when some character is not in it.
    static int gsm7Length(const QString& text);
    /// One septet per byte, extension characters as escape (0x1B) pairs;
    /// *ok (if given) is false and the result empty when a character is missing.
    static QByteArray toGsm7(const QString& text, bool* ok = nullptr);
    /// The reverse; an unknown escape pair reads as its second septet, a
    /// trailing escape is dropped.
    static QString fromGsm7(const QByteArray& septets);
    /// Packs septets least significant bit first after `fillBits` zero bits.
    static QByteArray packSeptets(const QByteArray& septets, int fillBits = 0);
    /// Unpacks `count` septets starting `fillBits` bits into `packed` (fewer
    /// when the octets run out).
    static QByteArray unpackSeptets(const QByteArray& packed, int count, int fillBits = 0);

    /// --- Fields ---

    /// Address field: digit count, type of address, semi-octets. Accepts
    /// digits, '*', '#', and blanks, dashes, dots and parentheses (dropped);
    /// empty with *ok false on anything else or more than 20 digits.
    static QByteArray encodeAddress(const QString& number, NumberType type = AutoNumberType,
                                    bool* ok = nullptr);
    /// TP-VP (relative) for at least `minutes`, and the minutes an octet means.
    static int validityOctet(int minutes);
    static int validityMinutes(int octet);
    /// The alphabet a data coding scheme octet selects.
    static Alphabet alphabetOfDcs(int dcs);
    /// TP-Status in words, e.g. "Short message received by the SME".
    static QString statusMeaning(int status);
    static StatusClass statusClass(int status);
    /// A time stamp in ISO 8601 with its zone offset always written
    /// (2026-11-24T09:57:42+03:00, 2026-11-24T06:57:42+00:00); empty when
    /// invalid. Every time the toolkit and the tools print is written so.
    static QString isoTime(const QDateTime& time);

private:
    QSharedDataPointer<PduData> d;
};

/// Builds the SMS-SUBMIT PDUs for `text` to `recipient`: one PDU when the
/// text fits one message (160 GSM septets or 70 UCS2 characters), otherwise a
/// concatenated series with user-data headers (153/67 per part, 152/66 with
/// 16-bit references; escape pairs and surrogate pairs are never split).
/// Returns an empty list and sets *error on a bad number, a text that the
/// chosen alphabet cannot carry, or one that needs more than 255 parts.
ZELMODEMSLIB_EXPORT QList<PDU> encodeSmsSubmit(const QString& recipient, const QString& text,
                                               const PDU::SubmitOptions& options = PDU::SubmitOptions(),
                                               QString* error = nullptr);

/// Reads back an SMS-SUBMIT given as hexadecimal text (blanks allowed), with
/// the service-centre part in front unless `withServiceCentre` is false.
ZELMODEMSLIB_EXPORT PDU::Submit decodeSmsSubmit(const QString& hexPdu, bool withServiceCentre = true);

/// Reads an SMS-STATUS-REPORT as the modem shows it (hexadecimal text, with
/// the service-centre part unless `withServiceCentre` is false).
ZELMODEMSLIB_EXPORT PDU::StatusReport decodeStatusReport(const QString& hexPdu,
                                                         bool withServiceCentre = true);

/// The status report in readable lines: reference, recipient, both times and
/// the status with its meaning; or a line that says why it cannot be read.
ZELMODEMSLIB_EXPORT QString explainStatusReport(const QString& hexPdu, bool withServiceCentre = true);

/// A user-data header (its length octet first) in readable lines, one per
/// information element: concatenation (8- and 16-bit references), port
/// addressing, national language shift tables, special message indication;
/// other elements by name (or as unknown) with their octets in hexadecimal.
ZELMODEMSLIB_EXPORT QString explainUserDataHeader(const QByteArray& header);

} // namespace zelmodems

/// The toolkit's class under its earlier global name.
using PDU = zelmodems::PDU;
