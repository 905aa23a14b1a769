#include "report.h"
#include "console.h"

#include <QJsonDocument>
#include <QPair>

void Report::line(const QString& text)
{
    m_lines << text;
}

void Report::field(const QString& label, const QString& value)
{
    // A label longer than the column (a translated one) still keeps a space
    // before its value.
    m_lines << (label + QLatin1Char(':')).leftJustified(LABEL_WIDTH - 1) + QLatin1Char(' ') + value;
}

void Report::lines(const QStringList& text)
{
    m_lines << text;
}

void Report::fail(const QString& message, Status status, zelmodems::Failure::Code code)
{
    m_error = message;
    m_status = status == Success ? Failure : status;
    m_code = m_status == UsageError ? zelmodems::Failure::BadInput : code;
    m_errorNumber = -1;
}

void Report::fail(const zelmodems::Failure& why, const QString& message)
{
    fail(message.isEmpty() ? why.text() : message, Failure, why.code());
    m_errorNumber = why.number();
}

namespace {

QPair<QString, QString> deviceAlias;

QString aliased(QString text)
{
    if (!deviceAlias.first.isEmpty())
        text.replace(deviceAlias.first, deviceAlias.second);
    return text;
}

} // namespace

void Report::setDeviceAlias(const QString& device, const QString& port)
{
    deviceAlias = qMakePair(device, port);
}

void Report::setHelp(const QString& text)
{
    m_help = text;
}

QString Report::escaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if ((u < 0x20 && u != '\t') || (u >= 0x7F && u < 0xA0))
            result += QStringLiteral("\\x%1").arg(u, 2, 16, QLatin1Char('0'));
        // Bidirectional embeddings, overrides and isolates reorder what a
        // terminal shows after them: a sender could make its text read as
        // another number or another message.
        else if ((u >= 0x202A && u <= 0x202E) || (u >= 0x2066 && u <= 0x2069))
            result += QStringLiteral("\\u%1").arg(u, 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result;
}

namespace {

QString escapedLines(const QStringList& lines)
{
    // Line breaks are the lines' own; every other control character is shown.
    QStringList shown;
    for (const QString& line : lines) {
        for (const QString& part : line.split(QLatin1Char('\n')))
            shown << Report::escaped(aliased(part));
    }
    return shown.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

// Standard output took everything; otherwise the reason is on standard error.
int checkedOutput(const QString& who, int status)
{
    QString why;
    if (!Console::flushOut(&why)) {
        Console::err() << who << ": cannot write the output: " << why << '\n';
        Console::err().flush();
        return Report::Failure;
    }
    return status;
}

} // namespace

int Report::print(const QString& who) const
{
    const bool asJson = m_jsonOutput;
    if (isHelp()) {
        Console::out() << m_help;
        return checkedOutput(who, m_status);
    }
    if (failed()) {
        // Whatever was gathered before the failure is still worth showing
        // to a person; a program gets it too, with "error" and "exitStatus"
        // added, on standard output as well.
        if (!asJson && !m_lines.isEmpty() && !m_printed)
            Console::out() << escapedLines(m_lines);
        // A program reading JSON gets the failure as JSON too.
        if (asJson && !m_printed) {
            QJsonObject failure = m_json;
            failure.insert(QStringLiteral("error"), aliased(m_error));
            failure.insert(QStringLiteral("errorCode"), zelmodems::Failure::codeName(m_code));
            if (m_errorNumber >= 0)
                failure.insert(QStringLiteral("errorNumber"), m_errorNumber);
            failure.insert(QStringLiteral("exitStatus"), m_status);
            Console::out() << QJsonDocument(failure).toJson(QJsonDocument::Indented);
        }
        checkedOutput(who, m_status);
        Console::err() << who << ": " << escaped(aliased(m_error)) << '\n';
        Console::err().flush();
        return m_status;
    }
    if (m_printed)
        return checkedOutput(who, m_status);
    if (asJson)
        Console::out() << QJsonDocument(m_json).toJson(QJsonDocument::Indented);
    else if (!m_lines.isEmpty())
        Console::out() << escapedLines(m_lines);
    return checkedOutput(who, m_status);
}
