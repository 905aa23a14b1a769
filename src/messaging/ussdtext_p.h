#pragma once
// The text of a "+CUSD: <m>,"<str>",<dcs>" line as the network sent it.
// Huawei sticks, which take the request packed in GSM 7-bit septets and
// written in hexadecimal, present the reply the same way; AtModem's reading
// keeps such a reply as the hexadecimal it was written in. Here it is
// unpacked (3GPP TS 23.038 6.1.2.3: a carriage return that fills the last
// octet is padding, not text).
#include "atmodem.h"
#include "pdu.h"

#include <QByteArray>
#include <QString>

namespace zelmodems {

inline QString ussdText(AtModem* modem, const QByteArray& line)
{
    QString text;
    if (!modem || !modem->getCUSDMessage(line, text))
        return QString();
    if (modem->dialect() != AtModem::HUAWEI || text.isEmpty() || text.size() % 2 != 0)
        return text;
    // The <dcs> after the closing quote: the GSM 7-bit ones only (the
    // default alphabet with or without a language: groups 0000, 0001 and
    // 0100 without the 8-bit or UCS2 bits).
    const int quote = line.lastIndexOf('"');
    bool ok = false;
    const int dcs = quote < 0 ? -1 : line.mid(quote + 1).replace(',', ' ').trimmed().toInt(&ok);
    const bool sevenBit = ok && (((dcs & 0xF0) == 0x00) || dcs == 0x10 || ((dcs & 0xFC) == 0x40 && (dcs & 0x0C) == 0));
    if (!sevenBit)
        return text;
    for (const QChar c : text) {
        if (!isxdigit(c.toLatin1()))
            return text;
    }
    const QByteArray octets = QByteArray::fromHex(text.toLatin1());
    QByteArray septets = PDU::unpackSeptets(octets, octets.size() * 8 / 7);
    if (!septets.isEmpty() && (septets.endsWith('\0') || (septets.size() % 8 == 0 && septets.endsWith('\r'))))
        septets.chop(1);
    return PDU::fromGsm7(septets);
}

} // namespace zelmodems
