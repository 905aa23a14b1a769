// zelmodems: find, identify and query modems from the command line.
#include "commands.h"
#include "console.h"
#include "declaredports.h"
#include "interruption.h"

#include <qt5ext/appversionmanager.h>
#include "zelmodemslib_version.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstring>

#include <signal.h>

int main(int argc, char** argv)
{
    // Before any thread starts: Ctrl-C and SIGTERM release the ports.
    Interruption::install();
    // A reader that goes away (a closed pipe) is a write error to report,
    // not a reason to die half-way. Caught rather than ignored, so that a
    // program the tool starts gets the default back.
    struct sigaction pipeAction = {};
    pipeAction.sa_handler = [](int) {};
    sigemptyset(&pipeAction.sa_mask);
    ::sigaction(SIGPIPE, &pipeAction, nullptr);
    // The library logs its AT dialogue; a command-line user wants the results,
    // not the dialogue, unless asked for it. Environment rules outrank the
    // rules the library sets, and are read when the application starts.
    bool verbose = false;
    for (int i = 1; i < argc; ++i)
        verbose |= qstrcmp(argv[i], "--verbose") == 0 || qstrcmp(argv[i], "-v") == 0;
    if (!verbose && qEnvironmentVariableIsEmpty("QT_LOGGING_RULES")) {
        qputenv("QT_LOGGING_RULES", "atmodem.debug=false;atmodem.info=false;atmodem.warning=false;"
                                    "atmodem.critical=false;modems.finder.debug=false;default.debug=false;"
                                    "default.info=false;default.warning=false");
        // Critical messages still reach a handler (wvdialconf's complaints
        // are gathered from them for its failure message), not the terminal.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    }

    if (verbose) {
        // The dialogue with the modem, yes; the operator table, which the
        // library logs entry by entry whenever it loads it, no.
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            if (type == QtWarningMsg && context.function && strstr(context.function, "loadMncTable"))
                return;
            // The dialogue holds whatever the modem sent: escaped, so that
            // its escape sequences cannot drive the terminal.
            fprintf(stderr, "%s\n", qPrintable(Report::escaped(qFormatLogMessage(type, context, text))));
        });
    }

    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zelmodems"));
    // The tool's own catalogue, beside the library's, for the same locale.
    qt5ext::AppVersionManager::addLocalisation(QStringLiteral("zelmodems"));
    Interruption::translate();
    QCoreApplication::setApplicationVersion(QStringLiteral(ZELMODEMSLIB_VERSION_STR));

    QStringList args = app.arguments().mid(1);
    const QString first = args.value(0);
    if (first == QLatin1String("--help") || first == QLatin1String("-h") || first == QLatin1String("help")) {
        Console::out() << commands::overview();
        Console::out().flush();
        return 0;
    }
    if (first == QLatin1String("--version")) {
        Console::out() << "zelmodems " ZELMODEMSLIB_VERSION_STR "\n";
        Console::out().flush();
        return 0;
    }
    if (args.isEmpty()) {
        Console::err() << commands::overview();
        Console::err().flush();
        return 2;
    }

    // Global options may come before the subcommand as well as after it
    // (zelmodems --json signal ttyUSB2); the commands read them anywhere.
    QStringList leading;
    while (!args.isEmpty()) {
        const QString option = args.first();
        if (option == QLatin1String("--json") || option == QLatin1String("--verbose") || option == QLatin1String("-v")
            || option.startsWith(QLatin1String("--record=")))
            leading << args.takeFirst();
        else if (option == QLatin1String("--record") && args.size() > 1)
            leading << args.takeFirst() << args.takeFirst();
        else
            break;
    }
    if (args.isEmpty()) {
        Console::err() << commands::overview();
        Console::err().flush();
        return 2;
    }
    args << leading;

    // Ports as the tool sees them (device paths of simulated modems
    // included), for the whole run.
    zelmodems::DeclaredPorts ports;
    ports.install();
    Report report = commands::dispatch(args);
    Interruption::holdIfInterrupted();
    if (args.contains(QStringLiteral("--json")))
        report.setJsonOutput(true);
    const QString name = commands::nameOf(args);
    return report.print(name.isEmpty() ? QStringLiteral("zelmodems") : QStringLiteral("zelmodems ") + name);
}
