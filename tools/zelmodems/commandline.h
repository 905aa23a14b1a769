#pragma once
#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

class Report;

// The arguments of one subcommand ("info", "sms send", ...): its own
// QCommandLineParser with the options every command takes (--json,
// --verbose, --help), and for commands that talk to a modem the port and
// the line settings.
class CommandLine
{
public:
    // `command` as the user types it ("sms list"); `description` opens the
    // command's help.
    CommandLine(const QString& command, const QString& description);

    // A positional argument. Optional ones come after the required ones;
    // a `repeated` one, last, takes all that remain: at least one when it is
    // `required` (sms delete's indexes), any number when not (find's ports).
    void addPositional(const QString& name, const QString& help, bool required = true,
                       bool repeated = false);
    void addOption(const QCommandLineOption& option);
    // PORT as the first positional argument (call this before adding any
    // other), and --baud and --attempts.
    void addModemArguments();

    // Parses `args` (the words after the command). False when the command
    // must not run: the help was asked for (set in `report`) or the
    // arguments are wrong (a usage error in `report`).
    bool parse(const QStringList& args, Report& report);

    QString command() const { return m_command; }
    bool json() const;
    bool isSet(const QString& name) const;
    QString value(const QString& name) const;
    // Every value of a repeated option, in order.
    QStringList values(const QString& name) const;
    QStringList positional() const;
    QString positional(int index) const;

    // For commands with modem arguments.
    QString port() const;
    qint32 baud() const { return m_baud; }
    int attempts() const { return m_attempts; }

    QString helpText() const;

private:
    struct Positional
    {
        QString name;
        bool required;
        bool repeated;
    };

    QString m_command;
    QCommandLineParser m_parser;
    QList<Positional> m_positionals;
    bool m_modem = false;
    qint32 m_baud = 115200;
    int m_attempts = 3;
};
