#include "smspart.h"

namespace {
const char DEBUG_DATE_FORMAT[] = "dd.MM.yyyy hh:mm:ss";
}

SmsPartData::SmsPartData()
    : text(QStringLiteral("[missing text]"))
{
}

SmsPartData::SmsPartData(const SmsPartData& other) = default;

SmsPartData::~SmsPartData() = default;

SmsPart::SmsPart()
    : d(new SmsPartData)
{
}

SmsPart::SmsPart(SmsPartData* data)
    : d(data ? data : new SmsPartData)
{
}

SmsPart::SmsPart(const SmsPart& other) = default;

SmsPart& SmsPart::operator=(const SmsPart& other) = default;

SmsPart::~SmsPart() = default;

QString SmsPart::getSenderAddress() const { return d->senderAddress; }
QString SmsPart::getText() const { return d->text; }
QDateTime SmsPart::getDateTime() const { return d->dateTime; }
bool SmsPart::isValid() const { return !d->error; }
QString SmsPart::getErrorString() const { return d->errorString; }
int SmsPart::getMessageType() const { return d->messageType; }
int SmsPart::getPartNumber() const { return d->partNumber; }
int SmsPart::getPartCount() const { return d->partCount; }
QByteArray SmsPart::getPartId() const { return d->partId; }

namespace {

void writeValidPart(QDebug& dbg, const SmsPart& part)
{
    dbg << "SmsPart([" << part.getPartNumber() << "/" << part.getPartCount() << "] "
        << part.getText() << ", " << part.getSenderAddress() << ", "
        << part.getDateTime().toString(QLatin1String(DEBUG_DATE_FORMAT)) << ")";
}

} // namespace

QDebug operator<<(QDebug dbg, const SmsPart& part)
{
    QDebugStateSaver saver(dbg);
    dbg.nospace();
    if (part.isValid())
        writeValidPart(dbg, part);
    else
        dbg << "SmsPart(" << part.getErrorString() << ")";
    return dbg;
}

QDebug operator<<(QDebug dbg, SmsPart* part)
{
    QDebugStateSaver saver(dbg);
    dbg.nospace();
    if (!part)
        dbg << "SmsPart(nullptr)";
    else if (part->isValid())
        writeValidPart(dbg, *part);
    else
        dbg << "SmsPart(invalid message: " << part->getErrorString() << ")";
    return dbg;
}
