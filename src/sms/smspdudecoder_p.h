#pragma once

#include "smspart.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

// Reading state of SmsPduDecoder: the PDU, the index of the next octet and
// the part being filled. The readers run in PDU order; each returns false
// when its field cannot be read, which ends the decoding.
class SmsPduDecoderPrivate
{
    Q_DECLARE_TR_FUNCTIONS(SmsPduDecoder)

public:
    SmsPduDecoderPrivate();
    virtual ~SmsPduDecoderPrivate();

    SmsPart decode(const QByteArray& pdu);

    bool readServiceNumber();
    bool readMessageType();
    bool readSenderAddress();
    bool readProtocolIdentifier();
    bool readDataCodingScheme();
    bool readTimestamp();
    bool readUserData();
    bool readUserDataHeader();

    // One octet. Never takes the PDU's final octet.
    bool read(uchar* out);
    // `n` octets (n > 0); empty, with the error flag set, when they are not there.
    QByteArray read(int n);
    // Steps over one octet if one remains before the final one.
    void skipOctet();
    // Octets that hold `n` packed septets.
    static int septetsSize(int n);
    // Sets the error flag and "SmsPduDecoder: <message>"; returns false.
    bool reportError(const QString& message);
    // Semi-octets to "+<digits>", without the trailing filler.
    static QString decodeInternationalNumber(const QByteArray& octets);

    qint32 position = 0;
    QByteArray data;
    SmsPartData* part = nullptr;

private:
    Q_DISABLE_COPY(SmsPduDecoderPrivate)
};
