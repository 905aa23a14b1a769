// wvdialconf: the system's own modem search, through the library's runner.
#include "commandline.h"
#include "commands.h"
#include "wvdialconfwrapper.h"

#include <qt5ext/initconfig.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

namespace commands {

Report wvdialconf(const QStringList& args)
{
    Report report;
    CommandLine cl(QStringLiteral("wvdialconf"),
                   QStringLiteral("Stops every running dialer (sudo killall pppd, sudo killall wvdial: a\n"
                                  "data connection in progress is DROPPED), runs wvdialconf to search the\n"
                                  "serial ports, and prints the search file it wrote:\n"
                                  "<work directory>/modems/wvdial.conf.srch, the work directory being the\n"
                                  "one of /opt/orvel5zel/etc/zel5.conf (QT5EXT_INITCONFIG names another\n"
                                  "configuration file)."));
    const QString TIMEOUT = QStringLiteral("timeout");
    const QString PROGRAM = QStringLiteral("program");
    cl.addOption(QCommandLineOption(TIMEOUT,
                                    QStringLiteral("Wait at most this many milliseconds for wvdialconf "
                                                   "(default 60000; -1: no limit)."),
                                    QStringLiteral("ms"), QStringLiteral("60000")));
    cl.addOption(QCommandLineOption(PROGRAM,
                                    QStringLiteral("The wvdialconf program (default %1).")
                                        .arg(WvDialConfWrapper::WVDIAL_COMMAND),
                                    QStringLiteral("path")));
    if (!cl.parse(args, report))
        return report;
    bool ok = false;
    const int timeout = cl.value(TIMEOUT).toInt(&ok);
    if (!ok || timeout < -1) {
        report.fail(QStringLiteral("--timeout takes milliseconds (or -1)"), Report::UsageError);
        return report;
    }
    if (cl.isSet(PROGRAM))
        WvDialConfWrapper::WVDIAL_COMMAND = cl.value(PROGRAM);
    const QString program = WvDialConfWrapper::WVDIAL_COMMAND;
    if (!QFileInfo(program).isExecutable()) {
        report.fail(QStringLiteral("%1 is not there or not executable (Debian: apt install wvdial)").arg(program));
        return report;
    }

    const QString workDir = qt5ext::InitConfig(QStringLiteral("/opt/orvel5zel/etc/zel5.conf"), false).workDir();
    const QString searchFile = QStringLiteral("%1/modems/wvdial.conf.srch").arg(workDir);
    // Whole seconds: file times may be stored without fractions.
    const QDateTime started = QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch());

    WvDialConfWrapper wrapper;
    wrapper.start(timeout);

    report.json().insert(QStringLiteral("program"), program);
    report.json().insert(QStringLiteral("searchFile"), searchFile);
    const QFileInfo written(searchFile);
    if (!written.exists() || written.lastModified() < started) {
        report.fail(QStringLiteral("%1 did not write %2 (see --verbose for its output)").arg(program, searchFile));
        return report;
    }
    QFile file(searchFile);
    if (!file.open(QIODevice::ReadOnly)) {
        report.fail(QStringLiteral("cannot read %1: %2").arg(searchFile, file.errorString()));
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
