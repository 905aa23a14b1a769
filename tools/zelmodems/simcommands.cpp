// status, and the SIM's codes: sim status, sim unlock, sim change-pin.
#include "commandline.h"
#include "commands.h"
#include "interruption.h"
#include "modemcommand.h"
#include "modemsession.h"
#include "modemstate.h"
#include "simlock.h"
#include "tooltext.h"

#include <QFile>
#include <QTextStream>

#include <iostream>
#include <string>

#include <termios.h>
#include <unistd.h>

using zelmodems::SimLock;
using zelmodems::SimStatus;

namespace {

const QString PIN_FILE = QStringLiteral("pin-file");
const QString LAST_ATTEMPT = QStringLiteral("last-attempt");
const QString PUK = QStringLiteral("puk");

// Where the codes come from, in the order they are asked for: a file, the
// standard input, or a person at a terminal who types them without echo.
// Never the command line: every user of the machine can read a process's
// arguments.
class CodeSource
{
public:
    bool open(const CommandLine& cl, Report& report)
    {
        const QString path = cl.value(PIN_FILE);
        if (!path.isEmpty()) {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) {
                report.fail(Tool::tr("cannot read %1: %2").arg(path, file.errorString()),
                            zelmodems::Failure::NotFound);
                return false;
            }
            m_lines = QString::fromLocal8Bit(file.readAll()).split(QLatin1Char('\n'));
            m_fromFile = true;
            return true;
        }
        m_terminal = ::isatty(STDIN_FILENO) == 1;
        return true;
    }

    // The next code; false (and `report` failed) when none comes.
    bool next(const QString& prompt, QString& code, Report& report)
    {
        if (m_fromFile) {
            code = m_lines.isEmpty() ? QString() : m_lines.takeFirst().trimmed();
        } else if (m_terminal) {
            code = typed(prompt);
        } else {
            std::string line;
            if (!std::getline(std::cin, line))
                line.clear();
            code = QString::fromLocal8Bit(line.c_str()).trimmed();
        }
        if (code.isEmpty()) {
            report.fail(Tool::tr("no %1 given (type it when asked, or give it on standard input or with --pin-file); "
                                 "nothing was sent")
                            .arg(prompt),
                        zelmodems::Failure::BadInput);
            return false;
        }
        return true;
    }

    // A new code, typed twice at a terminal.
    bool nextNew(const QString& prompt, QString& code, Report& report)
    {
        if (!next(prompt, code, report))
            return false;
        if (!m_terminal || m_fromFile)
            return true;
        QString again;
        if (!next(Tool::tr("the new PIN again"), again, report))
            return false;
        if (again != code) {
            report.fail(Tool::tr("the two new PINs differ; nothing was sent"), zelmodems::Failure::BadInput);
            return false;
        }
        return true;
    }

private:
    static QString typed(const QString& prompt)
    {
        // The echo goes off before the prompt shows: what is typed as soon
        // as the prompt appears is never echoed.
        termios saved = {};
        const bool quiet = ::tcgetattr(STDIN_FILENO, &saved) == 0;
        if (quiet) {
            termios silent = saved;
            silent.c_lflag &= ~tcflag_t(ECHO);
            Interruption::restoreTerminalOnInterrupt(&saved);
            ::tcsetattr(STDIN_FILENO, TCSANOW, &silent);
        }
        QTextStream err(stderr);
        err << prompt << ": ";
        err.flush();
        std::string line;
        if (!std::getline(std::cin, line))
            line.clear();
        if (quiet) {
            ::tcsetattr(STDIN_FILENO, TCSANOW, &saved);
            Interruption::restoreTerminalOnInterrupt(nullptr);
        }
        err << '\n';
        err.flush();
        return QString::fromLocal8Bit(line.c_str()).trimmed();
    }

    QStringList m_lines;
    bool m_fromFile = false;
    bool m_terminal = false;
};

// A recording holds every byte sent, the codes too: the commands that
// send codes make none.
bool refuseRecording(const CommandLine& cl, Report& report)
{
    if (cl.value(QStringLiteral("record")).isEmpty())
        return true;
    report.fail(Tool::tr("--record would write the SIM's codes into the recording; record another command"),
                Report::UsageError);
    return false;
}

void addCodeOptions(ModemCommand& command)
{
    command.setCheck(&refuseRecording);
    CommandLine& cl = command.commandLine();
    cl.addOption(QCommandLineOption(PIN_FILE,
                                    Tool::tr("Read the codes from FILE, one a line in the order they are asked for "
                                             "(without it: typed without echo at a terminal, or standard input)."),
                                    QStringLiteral("FILE")));
    cl.addOption(QCommandLineOption(LAST_ATTEMPT,
                                    Tool::tr("Try the code even when the modem reports one attempt left (a wrong "
                                             "code then blocks the SIM).")));
}

// The SIM's state as the fields and JSON of the sim commands.
void reportSim(AtModem& modem, const QString& port, Report& report)
{
    const ModemState state = ModemState::read(modem, ModemState::ReadSim);
    state.reportSim(report);
    state.reportProblems(report, port);
}

// After a code: what happened, and the SIM's state now.
void reportCode(SimLock& lock, bool done, const QString& doneText, const QString& port, Report& report)
{
    const SimStatus after = lock.status();
    if (done) {
        report.line(doneText);
        report.json().insert(QStringLiteral("done"), true);
    } else {
        report.json().insert(QStringLiteral("done"), false);
    }
    report.field(Tool::tr("SIM"), SimStatus::stateText(after.state()));
    report.json().insert(QStringLiteral("sim"), ModemState::simJson(after, QString()));
    if (done)
        return;
    const zelmodems::Failure why = lock.failure();
    QString text = why.text();
    if (why.code() == zelmodems::Failure::LastAttempt)
        text += Tool::tr(" (--last-attempt tries it)");
    else if (after.state() == SimStatus::PukRequired)
        text += Tool::tr("; the PIN is now blocked: zelmodems sim unlock --puk %1").arg(port);
    report.fail(why, text);
}

} // namespace

namespace commands {

Report status(const QStringList& args)
{
    ModemCommand command(QStringLiteral("status"),
                         Tool::tr("Answers \"why is it not online?\" in one screen: the SIM (and the attempts\n"
                                  "left for its PIN), the registration and roaming, the network, the access\n"
                                  "technology, the signal with a word for its quality, how full the SMS\n"
                                  "stores are, and for each problem found the next step to take."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        AtModem& modem = session.modem();
        report.field(Tool::tr("Port"), session.portName());
        report.field(Tool::tr("Modem"), Tool::tr("%1 (dialect %2)").arg(modem.name(), modem.gsmDialect()));
        const ModemState state = ModemState::read(modem);
        state.reportSim(report);
        state.reportRegistration(report);
        state.reportSignal(report);
        if (state.sim().isReady())
            state.reportStores(report);
        else
            report.json().insert(QStringLiteral("stores"), QJsonValue());
        state.reportProblems(report, session.portName());
        if (state.problems(session.portName()).isEmpty())
            report.line(Tool::tr("Nothing keeps it from working."));
    });
}

Report simStatus(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sim status"),
                         Tool::tr("Prints what the SIM waits for (AT+CPIN?: ready, PIN, PUK, no SIM, ...) and\n"
                                  "the attempts left for the PIN and the PUK where the modem tells them."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        reportSim(session.modem(), session.portName(), report);
    });
}

Report simUnlock(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sim unlock"),
                         Tool::tr("Enters the SIM's PIN; with --puk, the PUK and a new PIN. The codes are\n"
                                  "typed without echo at a terminal, or read from standard input or from\n"
                                  "--pin-file, never from the command line. Nothing is sent when the modem\n"
                                  "reports one attempt left, unless --last-attempt; nothing is retried."));
    addCodeOptions(command);
    command.commandLine().addOption(QCommandLineOption(
        PUK, Tool::tr("The PIN is blocked: enter the PUK and a new PIN.")));
    return command.run(args, [](ModemSession& session, const CommandLine& cl, Report& report) {
        SimLock lock(&session.modem());
        lock.setLastAttemptAllowed(cl.isSet(LAST_ATTEMPT));
        // Asked before any code is typed: a SIM that waits for nothing, or
        // for another code, needs none.
        const SimStatus before = SimStatus::read(&session.modem());
        const SimStatus::State wanted = cl.isSet(PUK) ? SimStatus::PukRequired : SimStatus::PinRequired;
        if (before.state() != wanted) {
            report.field(Tool::tr("SIM"), SimStatus::stateText(before.state()));
            QString text = Tool::tr("the SIM waits for no %1 (it is \"%2\"); nothing was sent")
                               .arg(cl.isSet(PUK) ? QStringLiteral("PUK") : QStringLiteral("PIN"),
                                    SimStatus::stateText(before.state()));
            if (before.state() == SimStatus::PukRequired)
                text += Tool::tr(": zelmodems sim unlock --puk %1").arg(session.portName());
            report.fail(before.state() == SimStatus::NotRead ? before.failure().text() : text,
                        before.state() == SimStatus::NotRead ? before.failure().code()
                                                             : zelmodems::Failure::WrongState);
            return;
        }
        CodeSource codes;
        if (!codes.open(cl, report))
            return;
        QString code;
        QString newPin;
        if (cl.isSet(PUK)) {
            if (!codes.next(QStringLiteral("PUK"), code, report) || !codes.nextNew(Tool::tr("the new PIN"), newPin, report))
                return;
            reportCode(lock, lock.unlockWithPuk(code, newPin),
                       Tool::tr("The PUK was accepted and the new PIN set."), session.portName(), report);
        } else {
            if (!codes.next(QStringLiteral("PIN"), code, report))
                return;
            reportCode(lock, lock.unlock(code), Tool::tr("The PIN was accepted."), session.portName(), report);
        }
    });
}

Report simChangePin(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sim change-pin"),
                         Tool::tr("Changes the PIN of a SIM that is ready (AT+CPWD): the PIN now, then the new\n"
                                  "one, typed without echo at a terminal (the new one twice), or read from\n"
                                  "standard input or --pin-file. A wrong PIN costs an attempt."));
    addCodeOptions(command);
    return command.run(args, [](ModemSession& session, const CommandLine& cl, Report& report) {
        SimLock lock(&session.modem());
        lock.setLastAttemptAllowed(cl.isSet(LAST_ATTEMPT));
        CodeSource codes;
        if (!codes.open(cl, report))
            return;
        QString oldPin;
        QString newPin;
        if (!codes.next(Tool::tr("the PIN now"), oldPin, report) || !codes.nextNew(Tool::tr("the new PIN"), newPin, report))
            return;
        reportCode(lock, lock.changePin(oldPin, newPin), Tool::tr("The PIN was changed."), session.portName(), report);
    });
}

} // namespace commands
