#pragma once
#include "commandline.h"
#include "report.h"

#include <QString>
#include <QStringList>

#include <functional>

class ModemSession;

// A subcommand that talks to one modem. Holds the part every such command
// shares: its command line with PORT, --baud and --attempts, the parsing of
// the words, and the opening of the port. The command itself only adds its
// own arguments and does its work on the opened session.
class ModemCommand
{
public:
    // The command's work on the opened modem: results, or the failure, go
    // into `report`.
    using Work = std::function<void(ModemSession& session, const CommandLine& commandLine, Report& report)>;
    // A test of the parsed arguments made before the port is opened: false
    // (with `report` failed) ends the command.
    using Check = std::function<bool(const CommandLine& commandLine, Report& report)>;

    // `name` as the user types it ("sms list"); `help` opens the command's
    // help.
    ModemCommand(const QString& name, const QString& help);

    ModemCommand(const ModemCommand&) = delete;
    ModemCommand& operator=(const ModemCommand&) = delete;

    // For the command's own options and positional arguments (they follow
    // PORT).
    CommandLine& commandLine() { return m_commandLine; }

    void setCheck(const Check& check) { m_check = check; }

    // Parses `args`, opens the port and runs `work`. The help, a usage error,
    // a refused check or a port without a modem end the command before
    // `work`; the port is closed again when the command ends.
    Report run(const QStringList& args, const Work& work);

private:
    CommandLine m_commandLine;
    Check m_check;
};
