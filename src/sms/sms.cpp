#include "sms.h"
#include "smspdudecoder.h"

SmsData::SmsData() = default;

SmsData::SmsData(const SmsData& other) = default;

SmsData::~SmsData() = default;

bool SmsData::setPart(int number, SmsPart part)
{
    if (parts.contains(number))
        return false;
    parts.insert(number, part);
    return true;
}

Sms::Sms()
    : d(new SmsData)
{
}

Sms::Sms(const Sms& other) = default;

Sms& Sms::operator=(const Sms& other)
{
    // Assignment deliberately does not share: the target gets its own copy.
    d = new SmsData(*other.d);
    return *this;
}

Sms::~Sms() = default;

SmsPart Sms::decode(const QString& pdu)
{
    SmsPduDecoder decoder;
    return decoder.decodeMessage(QByteArray::fromHex(pdu.toLatin1()));
}

QList<Sms> Sms::join(QList<SmsPart> parts)
{
    QList<Sms> result;
    QHash<QByteArray, Sms> concatenated;
    for (const SmsPart& part : qAsConst(parts)) {
        if (part.getPartCount() == 1) {
            Sms single;
            single.addPart(part);
            result.append(single);
        } else {
            concatenated[part.getPartId()].addPart(part);
        }
    }
    for (auto it = concatenated.cbegin(); it != concatenated.cend(); ++it)
        result.append(it.value());
    return result;
}

SmsPart& Sms::addPart(const SmsPart& part)
{
    if (d->size == 0 && part.isValid()) {
        d->size = part.getPartCount();
        d->senderAddress = part.getSenderAddress();
    }
    SmsPart& stored = d->parts[part.getPartNumber()];
    stored = part;
    return stored;
}

int Sms::getSize() const { return d->size; }

QString Sms::getSenderAddress() const { return d->senderAddress; }

SmsPart Sms::operator[](int number) const { return getPart(number); }

SmsPart Sms::getPart(int number) const
{
    return d->parts.value(number, SmsPart());
}

QDateTime Sms::getDateTime() const
{
    const SmsPart first = getPart(0);
    return first.isValid() ? first.getDateTime() : QDateTime();
}

QString Sms::getText() const
{
    QString text;
    for (int number = 0; number < d->size; ++number) {
        const SmsPart part = getPart(number);
        text += part.isValid() ? part.getText() : QStringLiteral("[missing part]");
    }
    return text;
}

bool Sms::isValid() const
{
    for (int number = 0; number < d->size; ++number) {
        if (!getPart(number).isValid())
            return false;
    }
    return true;
}

QString Sms::getErrorString() const
{
    QString text = QStringLiteral("Sms(");
    for (int number = 0; number < d->size; ++number) {
        const SmsPart part = getPart(number);
        if (!part.isValid())
            text += QStringLiteral("[invalid part %1: %2]").arg(QString::number(number), part.getErrorString());
    }
    text += QLatin1Char(')');
    return text;
}

QDebug operator<<(QDebug dbg, const Sms& sms)
{
    QDebugStateSaver saver(dbg);
    dbg.nospace();
    if (sms.isValid()) {
        dbg << "Sms(" << sms.getSize() << ", " << sms.getText() << ", " << sms.getSenderAddress()
            << ", " << sms.getDateTime().toString(QStringLiteral("dd.MM.yyyy hh:mm:ss")) << ")";
    } else {
        dbg << "Sms(" << sms.getErrorString() << ")";
    }
    return dbg;
}

QDebug operator<<(QDebug dbg, Sms* sms)
{
    QDebugStateSaver saver(dbg);
    dbg.nospace();
    if (sms)
        dbg << sms->getText();
    else
        dbg << "Sms(nullptr)";
    return dbg;
}
