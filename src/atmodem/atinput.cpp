// Checks of numbers, USSD codes and SMS texts before they go on an AT line.
#include "atinput.h"

#include <QCoreApplication>

namespace zelmodems {

namespace {

// "U+001A" for a character, as a person can read it in an error message.
QString codeOf(QChar c)
{
    return QStringLiteral("U+%1").arg(c.unicode(), 4, 16, QLatin1Char('0')).toUpper();
}

bool isControl(QChar c)
{
    return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0);
}

} // namespace

QString AtInput::checkArgument(const QString& value)
{
    for (const QChar c : value) {
        if (isControl(c))
            return tr("the value holds the control character %1").arg(codeOf(c));
        if (c == QLatin1Char('"'))
            return tr("the value holds a double quote");
    }
    return QString();
}

QString AtInput::checkNumber(const QString& number)
{
    if (number.isEmpty())
        return tr("the number is empty");
    for (int i = 0; i < number.size(); ++i) {
        const QChar c = number.at(i);
        if (c.isDigit() && c.unicode() < 0x80)
            continue;
        if (c == QLatin1Char('*') || c == QLatin1Char('#') || (c == QLatin1Char('+') && i == 0))
            continue;
        return isControl(c) ? tr("the number holds the control character %1").arg(codeOf(c))
                            : tr("the number holds \"%1\"; only digits, * and #, after an optional +, can be dialled")
                                  .arg(c);
    }
    return QString();
}

QString AtInput::checkRecipient(const QString& number)
{
    if (number.isEmpty())
        return tr("the number is empty");
    for (int i = 0; i < number.size(); ++i) {
        const QChar c = number.at(i);
        if ((c.isDigit() && c.unicode() < 0x80) || (c == QLatin1Char('+') && i == 0))
            continue;
        return isControl(c) ? tr("the number holds the control character %1").arg(codeOf(c))
                            : tr("the number holds \"%1\"; a recipient is digits after an optional +").arg(c);
    }
    return number == QLatin1String("+") ? tr("the number has no digits") : QString();
}

QString AtInput::checkUssdCode(const QString& code)
{
    if (code.isEmpty())
        return tr("the USSD code is empty");
    for (const QChar c : code) {
        if (isControl(c))
            return tr("the USSD code holds the control character %1").arg(codeOf(c));
        if (c == QLatin1Char('"'))
            return tr("the USSD code holds a double quote");
    }
    return QString();
}

QString AtInput::checkSmsText(const QString& text)
{
    for (const QChar c : text) {
        if (c == QLatin1Char('\r') || c == QLatin1Char('\n'))
            continue;
        if (c.unicode() == 0x1A)
            return tr("the text holds Ctrl-Z (U+001A), which would end the message early");
        if (c.unicode() == 0x1B)
            return tr("the text holds ESC (U+001B), which would cancel the message");
        if (isControl(c))
            return tr("the text holds the control character %1").arg(codeOf(c));
    }
    return QString();
}

} // namespace zelmodems
