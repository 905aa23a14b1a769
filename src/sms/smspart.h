#pragma once
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QDateTime>
#include <QDebug>
#include <QExplicitlySharedDataPointer>
#include <QSharedData>
#include <QString>

// The fields of one decoded SMS-DELIVER PDU. The decoder fills them in PDU
// order and stops at the first field it cannot read, so a failed part keeps
// the fields read before the failure and the defaults below after it.
class ZELMODEMSLIB_EXPORT SmsPartData : public QSharedData
{
public:
    SmsPartData();
    SmsPartData(const SmsPartData& other);
    virtual ~SmsPartData();

    /// Concatenation reference (1 or 2 octets); empty for a single message.
    QByteArray partId;
    /// 0-based position of this part within its message.
    qint32 partNumber = 0;
    /// Number of parts of the message.
    qint32 partCount = 1;
    QString senderAddress;
    /// Service-centre time stamp, local time, zone not applied.
    QDateTime dateTime;
    /// First octet AND 2: 0 for SMS-DELIVER; 3 until the octet was read.
    qint32 messageType = 3;
    /// TP-DCS AND 0x0C: 0 7-bit, 4 8-bit, 8 UCS2, 12 reserved.
    qint32 dataCoding = 0;
    QString text;
    bool error = false;
    QString errorString;
    /// TP-UDHI and the header's length octet (UDHL).
    bool userDataHeader = false;
    quint8 headerLength = 0;
};

/// One segment of a (possibly concatenated) received SMS. Copies share one
/// SmsPartData; a default part is valid and reads "[missing text]".
class ZELMODEMSLIB_EXPORT SmsPart
{
public:
    SmsPart();
    /// Takes the data (the decoder hands its result over this way). A null
    /// pointer gives a default part.
    SmsPart(SmsPartData* data);
    SmsPart(const SmsPart& other);
    SmsPart& operator=(const SmsPart& other);
    virtual ~SmsPart();

    QString getSenderAddress() const;
    QString getText() const;
    QDateTime getDateTime() const;
    bool isValid() const;
    QString getErrorString() const;
    int getMessageType() const;
    int getPartNumber() const;
    int getPartCount() const;
    QByteArray getPartId() const;

private:
    QExplicitlySharedDataPointer<SmsPartData> d;
};

/// "SmsPart([`<number>`/`<count>`] `<text>`, `<sender>`, `<date-time>`)" for a valid
/// part, "SmsPart(`<error>`)" for an invalid one.
ZELMODEMSLIB_EXPORT QDebug operator<<(QDebug dbg, const SmsPart& part);
/// As above; an invalid part reads "SmsPart(invalid message: `<error>`)".
ZELMODEMSLIB_EXPORT QDebug operator<<(QDebug dbg, SmsPart* part);
