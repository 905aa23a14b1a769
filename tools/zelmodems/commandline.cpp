#include "commandline.h"
#include "tooltext.h"
#include "report.h"

namespace {

const QString JSON = QStringLiteral("json");
const QString VERBOSE = QStringLiteral("verbose");
const QString BAUD = QStringLiteral("baud");
const QString ATTEMPTS = QStringLiteral("attempts");

// How the usage line shows a positional: NAME, [NAME], NAME... (one or more)
// or [NAME...] (any number).
QString positionalSyntax(const QString& name, bool required, bool repeated)
{
    const QString shown = repeated ? name + QStringLiteral("...") : name;
    return required ? shown : QStringLiteral("[%1]").arg(shown);
}

} // namespace

CommandLine::CommandLine(const QString& command, const QString& description) : m_command(command)
{
    m_parser.setApplicationDescription(description);
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    // Qt's own help option would add --help-all (Qt's options), which this
    // tool does not take.
    m_parser.addOption(QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")},
                                          Tool::tr("Show this help.")));
    m_parser.addOption(QCommandLineOption(QStringList{QStringLiteral("j"), JSON},
                                          Tool::tr("Print the result as JSON.")));
    m_parser.addOption(QCommandLineOption(QStringList{QStringLiteral("v"), VERBOSE},
                                          Tool::tr("Show the library's log (the AT dialogue) on "
                                                         "standard error.")));
}

void CommandLine::addPositional(const QString& name, const QString& help, bool required, bool repeated)
{
    m_positionals.append({name, required, repeated});
    m_parser.addPositionalArgument(name, help, positionalSyntax(name, required, repeated));
}

void CommandLine::addOption(const QCommandLineOption& option)
{
    m_parser.addOption(option);
}

void CommandLine::addModemArguments()
{
    // Called before any other positional argument: PORT comes first.
    m_modem = true;
    m_positionals.append({QStringLiteral("PORT"), true, false});
    m_parser.addPositionalArgument(QStringLiteral("PORT"),
                                   Tool::tr("The modem's serial port: a device path (/dev/ttyUSB2) "
                                                  "or a bare name (ttyUSB2)."));
    m_parser.addOption(QCommandLineOption(BAUD, Tool::tr("Line speed (default 115200)."),
                                          QStringLiteral("rate"), QStringLiteral("115200")));
    m_parser.addOption(QCommandLineOption(ATTEMPTS,
                                          Tool::tr("Attempts to open the port and get an answer "
                                                         "(default 3; a silent port costs about 6 s each)."),
                                          QStringLiteral("n"), QStringLiteral("3")));
    m_parser.addOption(QCommandLineOption(QStringLiteral("record"),
                                          Tool::tr("Write the whole dialogue with the modem (bytes, timings, "
                                                         "line speeds) to <file>; modemsim --replay plays it back."),
                                          QStringLiteral("file")));
}

bool CommandLine::parse(const QStringList& args, Report& report)
{
    const QString seeHelp = Tool::tr(" (see zelmodems %1 --help)").arg(m_command);
    // Even a command line that cannot be parsed gets its error as JSON when asked.
    report.setJsonOutput(args.contains(QStringLiteral("--json")));
    if (!m_parser.parse(QStringList{QStringLiteral("zelmodems")} + args)) {
        report.fail(m_parser.errorText() + seeHelp, Report::UsageError);
        return false;
    }
    report.setJsonOutput(json());
    if (m_parser.isSet(QStringLiteral("help"))) {
        report.setHelp(helpText());
        return false;
    }

    const QStringList given = m_parser.positionalArguments();
    int required = 0;
    bool repeated = false;
    for (const Positional& p : qAsConst(m_positionals)) {
        required += p.required ? 1 : 0;
        repeated |= p.repeated;
    }
    if (given.size() < required) {
        const QString missing = m_positionals.value(given.size()).name;
        report.fail(Tool::tr("%1 is missing").arg(missing) + seeHelp, Report::UsageError);
        return false;
    }
    if (!repeated && given.size() > m_positionals.size()) {
        report.fail(Tool::tr("unexpected argument \"%1\"").arg(given.at(m_positionals.size())) + seeHelp,
                    Report::UsageError);
        return false;
    }
    for (int i = 0; i < given.size() && i < m_positionals.size(); ++i) {
        if (m_positionals.at(i).required && given.at(i).isEmpty()) {
            report.fail(Tool::tr("%1 is empty").arg(m_positionals.at(i).name) + seeHelp, Report::UsageError);
            return false;
        }
    }

    if (m_modem) {
        bool ok = false;
        m_baud = m_parser.value(BAUD).toInt(&ok);
        if (!ok || m_baud <= 0) {
            report.fail(Tool::tr("--baud takes a positive number, not \"%1\"").arg(m_parser.value(BAUD)),
                        Report::UsageError);
            return false;
        }
        m_attempts = m_parser.value(ATTEMPTS).toInt(&ok);
        if (!ok || m_attempts < 1 || m_attempts > 10) {
            report.fail(Tool::tr("--attempts takes a number from 1 to 10, not \"%1\"")
                            .arg(m_parser.value(ATTEMPTS)),
                        Report::UsageError);
            return false;
        }
    }
    return true;
}

bool CommandLine::json() const
{
    return m_parser.isSet(JSON);
}

bool CommandLine::isSet(const QString& name) const
{
    return m_parser.isSet(name);
}

QString CommandLine::value(const QString& name) const
{
    return m_parser.value(name);
}

QStringList CommandLine::values(const QString& name) const
{
    return m_parser.values(name);
}

QStringList CommandLine::positional() const
{
    return m_parser.positionalArguments();
}

QString CommandLine::positional(int index) const
{
    return m_parser.positionalArguments().value(index);
}

QString CommandLine::port() const
{
    return m_modem ? positional(0) : QString();
}

QString CommandLine::helpText() const
{
    // Qt's help begins with a usage line naming the program file; the tool
    // names the command instead.
    QString text = m_parser.helpText();
    const int end = text.indexOf(QLatin1Char('\n'));
    QStringList syntax;
    for (const Positional& p : m_positionals)
        syntax << positionalSyntax(p.name, p.required, p.repeated);
    const QString usage = QStringLiteral("Usage: zelmodems %1 [options]%2%3")
                              .arg(m_command, syntax.isEmpty() ? QString() : QStringLiteral(" "),
                                   syntax.join(QLatin1Char(' ')));
    text.replace(0, end < 0 ? text.size() : end, usage);
    return text;
}
