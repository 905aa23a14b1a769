#pragma once
#include "zelmodemslib_export.h"
#include "smspart.h"

#include <QDateTime>
#include <QDebug>
#include <QHash>
#include <QList>
#include <QSharedData>
#include <QSharedDataPointer>
#include <QString>

// The parts of one message, keyed by their 0-based part number, and what the
// first valid part said about the whole message.
class ZELMODEMSLIB_EXPORT SmsData : public QSharedData
{
public:
    SmsData();
    SmsData(const SmsData& other);
    virtual ~SmsData();

    /// Stores the part under `number` only if that number is still free;
    /// returns false (leaving the stored part alone) when it is taken.
    bool setPart(int number, SmsPart part);

    QHash<int, SmsPart> parts;
    /// Expected number of parts, from the first valid part added; 0 until then.
    qint32 size = 0;
    QString senderAddress;
};

/// A received SMS assembled from its parts, as the appliance's modems service
/// reads it (SMS-DELIVER only, UCS2 through the platform's codec). For any
/// kind of stored message, national language tables and a join that never
/// splices two messages, use zelmodems::ShortMessage and
/// zelmodems::JoinedMessage (or zelmodems::StoredMessage for a store).
///
/// Copy construction shares the data; assignment gives the target its own
/// copy of the source's data.
///
///     QList<SmsPart> parts;
///     for (const QString& pdu : listedPdus)
///         parts << Sms::decode(pdu);
///     for (const Sms& sms : Sms::join(parts))
///         if (sms.isValid())
///             qDebug() << sms.getSenderAddress() << sms.getText();
class ZELMODEMSLIB_EXPORT Sms
{
public:
    Sms();
    Sms(const Sms& other);
    Sms& operator=(const Sms& other);
    virtual ~Sms();

    /// One SMS-DELIVER PDU in hexadecimal text, as the modem lists it in PDU
    /// mode (characters that are not hexadecimal digits are skipped).
    static SmsPart decode(const QString& pdu);
    /// Groups parts into messages: single parts first, in input order, then
    /// the concatenated messages (grouped by part id, in no defined order).
    static QList<Sms> join(QList<SmsPart> parts);

    /// Stores the part under its part number, replacing any stored there.
    /// The first valid part fixes the message's size and sender.
    SmsPart& addPart(const SmsPart& part);

    int getSize() const;
    QString getSenderAddress() const;
    /// The stored part, or a default (valid, "[missing text]") part.
    SmsPart operator[](int number) const;
    SmsPart getPart(int number) const;

    /// Part 0's time stamp if part 0 is valid, else an invalid date-time.
    QDateTime getDateTime() const;
    /// The parts' texts in order; "[missing part]" for an invalid part and
    /// "[missing text]" for one that never arrived.
    QString getText() const;
    /// True unless one of parts 0 .. size - 1 is invalid.
    bool isValid() const;
    /// "Sms(" + "[invalid part `<n>`: `<error>`]" for each invalid part + ")".
    QString getErrorString() const;

private:
    QSharedDataPointer<SmsData> d;
};

/// "Sms(`<size>`, `<text>`, `<sender>`, `<date-time>`)" for a valid message,
/// "Sms(`<error text>`)" for an invalid one.
ZELMODEMSLIB_EXPORT QDebug operator<<(QDebug dbg, const Sms& sms);
/// The message's text only.
ZELMODEMSLIB_EXPORT QDebug operator<<(QDebug dbg, Sms* sms);
