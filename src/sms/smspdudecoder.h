#pragma once
#include "zelmodemslib_export.h"
#include "smspart.h"

#include <QByteArray>

class SmsPduDecoderPrivate;

/// zelmodems::ShortMessage::decode reads every TPDU kind to the standard;
/// this decoder keeps the appliance's reading.
///
/// Decodes one SMS-DELIVER PDU, as a modem lists it in PDU mode (service
/// centre address first), into an SmsPart. Decoding reads the PDU front to
/// back and stops at the first field it cannot read; the part then is invalid
/// and carries an error text. Nothing is thrown.
///
/// What is read, and how (the receiving side of this library relies on it):
/// - the sender is kept only for the international (+), network-specific and
///   subscriber types (semi-octets, shown with "+") and for the alphanumeric
///   and unknown types (7-bit text); other types make the part invalid;
/// - the time stamp is taken as local time, its zone octet is skipped;
/// - 7-bit text is unpacked without an alphabet table or fill bits and ends at
///   the first septet 0; 8-bit text is taken as UTF-8; UCS2 as UTF-16BE;
/// - only a first header element for concatenation (8- or 16-bit reference)
///   is understood.
///
/// A decoder is used by one thread at a time.
class ZELMODEMSLIB_EXPORT SmsPduDecoder
{
public:
    SmsPduDecoder();
    virtual ~SmsPduDecoder();

    /// `pdu` holds octets, not hexadecimal text (Sms::decode converts the
    /// modem's text). Always returns a part; see SmsPart::isValid().
    SmsPart decodeMessage(const QByteArray& pdu);

    /// Unpacks GSM 7-bit packed octets (least significant bit first) into one
    /// byte per septet, at most `count` of them. No character translation.
    static QByteArray septetsToOctets(const QByteArray& packed, int count);

private:
    Q_DISABLE_COPY(SmsPduDecoder)
    SmsPduDecoderPrivate* d;
};
