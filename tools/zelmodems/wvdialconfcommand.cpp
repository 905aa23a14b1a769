// wvdialconf: the system's own modem search, through the library's runner.
#include "commandline.h"
#include "tooltext.h"
#include "commands.h"
#include "wvdialconfwrapper.h"

#include <qt5ext/initconfig.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QTextStream>

#include <stdio.h>
#include <unistd.h>

namespace {

// The running dialers that would be stopped: "pppd (pid 812)".
QStringList runningDialers()
{
    QStringList found;
    const QStringList pids = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& pid : pids) {
        QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
        if (!comm.open(QIODevice::ReadOnly))
            continue;
        const QString name = QString::fromLocal8Bit(comm.readAll().trimmed());
        if (name == QLatin1String("pppd") || name == QLatin1String("wvdial"))
            found << QStringLiteral("%1 (pid %2)").arg(name, pid);
    }
    return found;
}

// A person at a terminal says yes.
bool confirmed(const QStringList& dialers)
{
    if (::isatty(STDIN_FILENO) != 1)
        return false;
    QTextStream err(stderr);
    err << "zelmodems wvdialconf will stop " << dialers.join(QStringLiteral(", "))
        << " (their connections drop). Go on? [y/N] ";
    err.flush();
    QTextStream in(stdin);
    const QString answer = in.readLine().trimmed().toLower();
    return answer == QLatin1String("y") || answer == QLatin1String("yes");
}

// What the runner logged of wvdialconf's error output, gathered meanwhile.
QStringList* collected = nullptr;
QtMessageHandler previousHandler = nullptr;

void collect(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (collected && type == QtCriticalMsg)
        collected->append(message.trimmed());
    if (previousHandler)
        previousHandler(type, context, message);
}

} // namespace

namespace commands {

Report wvdialconf(const QStringList& args)
{
    Report report;
    CommandLine cl(QStringLiteral("wvdialconf"),
                   Tool::tr("Stops every running dialer (sudo killall pppd, sudo killall wvdial: a\n"
                                  "data connection in progress is DROPPED; the running ones are listed and\n"
                                  "stopped only after a yes or with --yes), runs wvdialconf to search the\n"
                                  "serial ports, and prints the search file it wrote:\n"
                                  "<work directory>/modems/wvdial.conf.srch, the work directory being the\n"
                                  "one of /opt/orvel5zel/etc/zel5.conf (QT5EXT_INITCONFIG names another\n"
                                  "configuration file)."));
    const QString TIMEOUT = QStringLiteral("timeout");
    const QString YES = QStringLiteral("yes");
    cl.addOption(QCommandLineOption(YES, Tool::tr("Stop the running dialers without asking.")));
    const QString PROGRAM = QStringLiteral("program");
    cl.addOption(QCommandLineOption(TIMEOUT,
                                    Tool::tr("Wait at most this many milliseconds for wvdialconf "
                                                   "(default 60000; -1: no limit)."),
                                    QStringLiteral("ms"), QStringLiteral("60000")));
    cl.addOption(QCommandLineOption(PROGRAM,
                                    Tool::tr("The wvdialconf program (default %1).")
                                        .arg(WvDialConfWrapper::WVDIAL_COMMAND),
                                    QStringLiteral("path")));
    if (!cl.parse(args, report))
        return report;
    bool ok = false;
    const int timeout = cl.value(TIMEOUT).toInt(&ok);
    if (!ok || timeout < -1) {
        report.fail(Tool::tr("--timeout takes milliseconds (or -1)"), Report::UsageError);
        return report;
    }
    if (cl.isSet(PROGRAM))
        WvDialConfWrapper::WVDIAL_COMMAND = cl.value(PROGRAM);
    const QString program = WvDialConfWrapper::WVDIAL_COMMAND;
    if (!QFileInfo(program).isExecutable()) {
        report.fail(Tool::tr("%1 is not there or not executable (Debian: apt install wvdial)").arg(program), zelmodems::Failure::NotFound);
        return report;
    }

    const QString workDir = qt5ext::InitConfig(QStringLiteral("/opt/orvel5zel/etc/zel5.conf"), false).workDir();
    const QString searchFile = QStringLiteral("%1/modems/wvdial.conf.srch").arg(workDir);
    // Everything wvdialconf needs is checked before any dialer is stopped.
    const QFileInfo modemsDir(QFileInfo(searchFile).path());
    if (workDir.isEmpty() || !modemsDir.isDir() || !modemsDir.isWritable()) {
        report.fail(Tool::tr("the folder %1 for the search file is not there or not writable (the work "
                                   "directory comes from /opt/orvel5zel/etc/zel5.conf, or QT5EXT_INITCONFIG); "
                                   "nothing was stopped")
                        .arg(modemsDir.filePath()), zelmodems::Failure::SystemError);
        return report;
    }
    const QStringList dialers = runningDialers();
    if (!dialers.isEmpty() && !cl.isSet(YES) && !confirmed(dialers)) {
        report.fail(Tool::tr("%1 would be stopped and their connections dropped; nothing was stopped (run "
                                   "again with --yes to go on)")
                        .arg(dialers.join(QStringLiteral(", "))), zelmodems::Failure::Busy);
        return report;
    }
    // Whole seconds: file times may be stored without fractions.
    const QDateTime started = QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch());

    QStringList toolErrors;
    collected = &toolErrors;
    previousHandler = qInstallMessageHandler(collect);
    WvDialConfWrapper wrapper;
    wrapper.start(timeout);
    qInstallMessageHandler(previousHandler);
    collected = nullptr;

    report.json().insert(QStringLiteral("program"), program);
    report.json().insert(QStringLiteral("searchFile"), searchFile);
    const QFileInfo written(searchFile);
    if (!written.exists() || written.lastModified() < started) {
        toolErrors.removeAll(QString());
        report.fail(Tool::tr("%1 did not write %2: %3")
                        .arg(program, searchFile,
                             toolErrors.isEmpty() ? Tool::tr("it said nothing") : toolErrors.join(QLatin1String("; "))), zelmodems::Failure::SystemError);
        return report;
    }
    QFile file(searchFile);
    if (!file.open(QIODevice::ReadOnly)) {
        report.fail(Tool::tr("cannot read %1: %2").arg(searchFile, file.errorString()), zelmodems::Failure::SystemError);
        return report;
    }
    const QString content = QString::fromUtf8(file.readAll());
    report.line(QStringLiteral("%1 wrote %2:").arg(program, searchFile));
    report.line();
    QStringList lines = content.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    report.lines(lines);
    report.json().insert(QStringLiteral("content"), content);
    return report;
}

} // namespace commands
