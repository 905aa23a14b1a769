// The simulator's builders: result codes, USSD reply lines with GSM 7-bit packing, SMS-DELIVER PDUs.
#include "simmodem.h"

#include <QDateTime>

namespace zelmodems::sim {

Reply Reply::ok(const QByteArray& body)
{
    Reply r;
    r.bytes = body.isEmpty() ? QByteArray("\r\nOK\r\n") : "\r\n" + body + "\r\n\r\nOK\r\n";
    return r;
}

Reply Reply::error()
{
    return raw("\r\nERROR\r\n");
}

Reply Reply::noCarrier()
{
    return raw("\r\nNO CARRIER\r\n");
}

Reply Reply::raw(const QByteArray& bytes)
{
    Reply r;
    r.bytes = bytes;
    return r;
}

QByteArray Ussd::plain(const QByteArray& text, int dcs, int status)
{
    return "+CUSD: " + QByteArray::number(status) + ",\"" + text + "\"," + QByteArray::number(dcs);
}

QByteArray Ussd::ucs2(const QString& text, int status)
{
    QByteArray hex;
    for (QChar c : text)
        hex += QByteArray::number(c.unicode(), 16).rightJustified(4, '0').toUpper();
    return plain(hex, 72, status);
}

QByteArray Ussd::packed(const QByteArray& text, int status)
{
    return plain(pack(text).toHex().toUpper(), 15, status);
}

QByteArray Ussd::statusOnly(int status)
{
    return "+CUSD: " + QByteArray::number(status);
}

QByteArray Ussd::pack(const QByteArray& septets)
{
    QByteArray out;
    quint32 acc = 0;
    int bits = 0;
    for (char c : septets) {
        acc |= quint32(uchar(c) & 0x7f) << bits;
        bits += 7;
        while (bits >= 8) {
            out.append(char(acc & 0xff));
            acc >>= 8;
            bits -= 8;
        }
    }
    if (bits > 0)
        out.append(char(acc & 0xff));
    return out;
}

QByteArray Ussd::unpack(const QByteArray& octets)
{
    QByteArray out;
    quint32 acc = 0;
    int bits = 0;
    for (char c : octets) {
        acc |= quint32(uchar(c)) << bits;
        bits += 8;
        while (bits >= 7) {
            out.append(char(acc & 0x7f));
            acc >>= 7;
            bits -= 7;
        }
    }
    if (out.endsWith('\0'))
        out.chop(1);
    return out;
}

namespace {

// Digits in semi-octets, low nibble first, "F" filling an odd count.
QByteArray semiOctets(QByteArray digits)
{
    if (digits.size() % 2)
        digits.append('F');
    QByteArray out;
    for (int i = 0; i < digits.size(); i += 2)
        out += digits.mid(i + 1, 1) + digits.mid(i, 1);
    return out;
}

QByteArray octet(int value)
{
    return QByteArray::number(value & 0xff, 16).rightJustified(2, '0').toUpper();
}

QByteArray deliverHeader(const QByteArray& sender, bool udh)
{
    QByteArray pdu = "07919730071111F1";   // service centre +79037011111
    pdu += udh ? "44" : "04";               // SMS-DELIVER, no more messages
    bool letters = false;
    for (char c : sender)
        letters |= QChar::fromLatin1(c).isLetter();
    if (letters) {
        const QByteArray packed = Ussd::pack(sender);
        pdu += octet((sender.size() * 7 + 3) / 4) + "D0" + packed.toHex().toUpper();
    } else {
        const bool international = sender.startsWith('+');
        const QByteArray digits = international ? sender.mid(1) : sender;
        pdu += octet(digits.size()) + (international ? "91" : "81") + semiOctets(digits);
    }
    return pdu + "00";   // protocol identifier
}

QByteArray timestamp(const QDateTime& time)
{
    return semiOctets(time.toString(QStringLiteral("yyMMddHHmmss")).toLatin1()) + "00";
}

} // namespace

QByteArray DeliverPdu::gsm7(const QByteArray& sender, const QDateTime& time, const QByteArray& text)
{
    return deliverHeader(sender, false) + "00" + timestamp(time) + octet(text.size())
        + Ussd::pack(text).toHex().toUpper();
}

QByteArray DeliverPdu::ucs2(const QByteArray& sender, const QDateTime& time, const QString& text, int reference,
                            int part, int total)
{
    QByteArray data;
    if (total > 1)
        data += QByteArray::fromHex("050003") + char(reference) + char(total) + char(part);
    for (QChar c : text)
        data += char(c.unicode() >> 8) + QByteArray(1, char(c.unicode() & 0xff));
    return deliverHeader(sender, total > 1) + "08" + timestamp(time) + octet(data.size()) + data.toHex().toUpper();
}

QByteArray StatusReportPdu::build(int reference, const QByteArray& recipient, const QDateTime& time, int status)
{
    const bool international = recipient.startsWith('+');
    const QByteArray digits = international ? recipient.mid(1) : recipient;
    // SMS-STATUS-REPORT, no more messages; the reference, the recipient,
    // the service centre's time, the discharge time and the status.
    return "07919730071111F1" + octet(0x06) + octet(reference) + octet(digits.size())
        + (international ? "91" : "81") + semiOctets(digits) + timestamp(time) + timestamp(time) + octet(status);
}

} // namespace zelmodems::sim
