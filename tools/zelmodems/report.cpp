#include "report.h"
#include "console.h"

#include <QJsonDocument>

void Report::line(const QString& text)
{
    m_lines << text;
}

void Report::field(const QString& label, const QString& value)
{
    m_lines << (label + QLatin1Char(':')).leftJustified(LABEL_WIDTH) + value;
}

void Report::lines(const QStringList& text)
{
    m_lines << text;
}

void Report::fail(const QString& message, Status status)
{
    m_error = message;
    m_status = status == Success ? Failure : status;
}

void Report::setHelp(const QString& text)
{
    m_help = text;
}

int Report::print(const QString& who) const
{
    const bool asJson = m_jsonOutput;
    if (isHelp()) {
        Console::out() << m_help;
        Console::out().flush();
        return m_status;
    }
    if (failed()) {
        // Whatever was gathered before the failure is still worth showing
        // to a person; a program gets the message and the status only.
        if (!asJson && !m_lines.isEmpty())
            Console::out() << m_lines.join(QLatin1Char('\n')) << '\n';
        Console::out().flush();
        Console::err() << who << ": " << m_error << '\n';
        Console::err().flush();
        return m_status;
    }
    if (asJson)
        Console::out() << QJsonDocument(m_json).toJson(QJsonDocument::Indented);
    else if (!m_lines.isEmpty())
        Console::out() << m_lines.join(QLatin1Char('\n')) << '\n';
    Console::out().flush();
    return m_status;
}
