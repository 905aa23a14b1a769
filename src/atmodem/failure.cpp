#include "failure.h"

namespace zelmodems {

class FailureData : public QSharedData
{
public:
    Failure::Code code = Failure::NoFailure;
    int number = -1;
    QString text;
};

Failure::Failure() : d(new FailureData) {}

Failure::Failure(Code code, const QString& text, int number) : d(new FailureData)
{
    d->code = code;
    d->text = text;
    // Only the modem's numbered errors carry a number.
    d->number = (code == CmeError || code == CmsError) ? number : -1;
}

Failure::Failure(const Failure& other) = default;
Failure::Failure(Failure&& other) noexcept = default;
Failure& Failure::operator=(const Failure& other) = default;
Failure& Failure::operator=(Failure&& other) noexcept = default;
Failure::~Failure() = default;

bool Failure::operator==(const Failure& other) const
{
    return d->code == other.d->code && d->number == other.d->number && d->text == other.d->text;
}

bool Failure::isFailure() const { return d->code != NoFailure; }
Failure::Code Failure::code() const { return d->code; }
int Failure::number() const { return d->number; }
QString Failure::text() const { return d->text; }

QString Failure::codeName(Code code)
{
    switch (code) {
    case NoFailure: return QStringLiteral("none");
    case BadInput: return QStringLiteral("bad-input");
    case NotOpen: return QStringLiteral("not-open");
    case Busy: return QStringLiteral("busy");
    case Gone: return QStringLiteral("gone");
    case NoAnswer: return QStringLiteral("no-answer");
    case Unconfirmed: return QStringLiteral("unconfirmed");
    case Refused: return QStringLiteral("refused");
    case CmeError: return QStringLiteral("cme-error");
    case CmsError: return QStringLiteral("cms-error");
    case NotSupported: return QStringLiteral("not-supported");
    case Malformed: return QStringLiteral("malformed");
    case NotFound: return QStringLiteral("not-found");
    case SystemError: return QStringLiteral("system-error");
    }
    return QStringLiteral("unknown");
}

} // namespace zelmodems
