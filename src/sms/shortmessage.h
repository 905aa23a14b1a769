#pragma once
#include "pdu.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QSharedDataPointer>
#include <QString>

namespace zelmodems {

class ShortMessageData;

/// One short message as a modem stores or shows it in PDU mode, read after
/// 3GPP TS 23.040 and TS 23.038: a received SMS-DELIVER, a stored outgoing
/// SMS-SUBMIT, or an SMS-STATUS-REPORT.
///
/// Text in the GSM 7-bit alphabet is read with its extension table and with
/// the national language single and locking shift tables that the user-data
/// header names (Turkish, Spanish, Portuguese and the Indian languages and
/// Urdu of TS 23.038 Annex A); UCS2 keeps surrogate pairs (a pair split
/// between two parts is whole again once the parts are joined); 8-bit data
/// is given as octets. The header's concatenation (8- and 16-bit
/// references), port addressing and language elements are read.
///
///     const zelmodems::ShortMessage sms = zelmodems::ShortMessage::decode(pduFromCmgl);
///     if (!sms.isValid())
///         qWarning() << sms.error();
///     else
///         qInfo() << sms.address() << sms.serviceCentreTime() << sms.text();
///
/// A PDU that cannot be read gives an invalid message whose error() says
/// what is wrong and where; decoding never reads past its input.
class ZELMODEMSLIB_EXPORT ShortMessage
{
    Q_DECLARE_TR_FUNCTIONS(ShortMessage)

public:
    enum Type {
        InvalidType,
        Deliver,        ///< received: address() is the sender
        Submit,         ///< outgoing: address() is the recipient
        StatusReport,   ///< what became of a sent message: address() is its recipient
    };

    ShortMessage();
    ShortMessage(const ShortMessage& other);
    ShortMessage& operator=(const ShortMessage& other);
    ~ShortMessage();
    bool operator==(const ShortMessage& other) const;
    bool operator!=(const ShortMessage& other) const { return !(*this == other); }

    /// Reads a PDU given as hexadecimal text (blanks allowed), with the
    /// service-centre part in front as AT+CMGL and AT+CMGR show it, unless
    /// `withServiceCentre` is false.
    static ShortMessage decode(const QString& hexPdu, bool withServiceCentre = true);
    /// The same from octets.
    static ShortMessage decode(const QByteArray& pdu, bool withServiceCentre = true);

    bool isValid() const;
    /// Why the PDU could not be read; empty for a valid message.
    QString error() const;

    Type type() const;
    /// "SMS-DELIVER", "SMS-SUBMIT", "SMS-STATUS-REPORT" or "invalid".
    static QString typeName(Type type);

    /// Service centre in front of the TPDU; empty when none was given.
    QString serviceCentre() const;
    /// Sender of a received message, recipient otherwise: "+" and digits for
    /// international numbers, text for an alphanumeric sender.
    QString address() const;
    /// Type-of-address octet of address().
    int addressType() const;
    bool isAlphanumericAddress() const;

    /// TP-MR of an outgoing message or of the message a report is about; -1 otherwise.
    int messageReference() const;
    /// TP-PID and TP-DCS; -1 when the PDU has none (a status report without them).
    int protocolIdentifier() const;
    int dataCodingScheme() const;
    PDU::Alphabet alphabet() const;
    /// 0 (flash) to 3, or -1 when the coding scheme gives no class.
    int messageClass() const;

    /// TP-SCTS of a received message or report, with its zone as an offset
    /// from UTC; invalid otherwise.
    QDateTime serviceCentreTime() const;
    /// TP-DT and TP-ST of a status report; invalid and -1 otherwise.
    QDateTime dischargeTime() const;
    int status() const;
    /// Relative validity of an outgoing message in minutes (0: none or not relative).
    int validityMinutes() const;
    /// TP-SRI of a received message, TP-SRR of an outgoing one, TP-SRQ of a report.
    bool statusReportFlag() const;

    /// User-data header with its length octet first; empty without one.
    QByteArray header() const;
    /// Concatenation: -1 when the message is not a part of a longer one.
    int concatReference() const;
    bool isReference16Bit() const;
    /// 1-based, as in the header; 1 of 1 for a message on its own.
    int partNumber() const;
    int partCount() const;
    /// Application ports (-1 without port addressing).
    int destinationPort() const;
    int originatorPort() const;
    /// National language tables in use: 0 is the default alphabet.
    int lockingShiftLanguage() const;
    int singleShiftLanguage() const;

    /// The text (empty for 8-bit data).
    QString text() const;
    /// User data after the header, as octets for 8-bit data and UCS2, as
    /// septets (one per octet) for GSM 7-bit text.
    QByteArray userData() const;

    /// GSM 7-bit septets to text with the given national language tables
    /// (0: default alphabet and extension table). An escape to a septet the
    /// single shift table leaves empty reads as the locking table's
    /// character; escape-escape reads as a space; a trailing escape is dropped.
    static QString fromGsm7(const QByteArray& septets, int lockingShift = 0, int singleShift = 0);

private:
    QSharedDataPointer<ShortMessageData> d;
};

} // namespace zelmodems
