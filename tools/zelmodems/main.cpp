// zelmodems: find, identify and query modems from the command line.
#include "atmodem.h"
#include "simmodem.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <memory>
#include <vector>

namespace {

QTextStream& out()
{
    static QTextStream s(stdout);
    return s;
}

QTextStream& err()
{
    static QTextStream s(stderr);
    return s;
}

// Opens a port, shows what the modem says about itself and one query.
int showModem(const QString& port, qint32 baud)
{
    AtModem modem(nullptr);
    out() << "Opening " << port << " at " << baud << " baud" << Qt::endl;
    if (!modem.open(port, baud, 3)) {
        err() << "zelmodems: no modem answers on " << port << ": " << modem.lastError() << Qt::endl;
        return 1;
    }
    out() << "  name:     " << modem.name() << '\n'
          << "  dialect:  " << modem.gsmDialect() << '\n';
    QByteArray answer;
    if (modem.sendCommand(AT::Commands::ATI, answer, 5000))
        out() << "  ATI:      " << QString::fromLatin1(answer).simplified() << '\n';
    answer.clear();
    if (modem.sendCommand(AT::Commands::CSQ, answer, 1000))
        out() << "  AT+CSQ:   " << QString::fromLatin1(answer).simplified() << '\n';
    else
        out() << "  AT+CSQ:   " << modem.lastError() << '\n';
    modem.close();
    out().flush();
    return 0;
}

int demo()
{
    using namespace modemsim;
    out() << "Starting simulated modems (no hardware needed)" << Qt::endl;
    std::vector<std::unique_ptr<SimModem>> modems;
    for (Make make : {Make::Huawei, Make::SimCom}) {
        auto modem = std::make_unique<SimModem>(make);
        QString error;
        if (!modem->start(&error)) {
            err() << "zelmodems: cannot start a simulated modem: " << error << Qt::endl;
            return 1;
        }
        out() << "  " << Profile::makeName(make) << '\t' << modem->devicePath() << Qt::endl;
        modems.push_back(std::move(modem));
    }
    int rc = 0;
    for (const auto& modem : modems) {
        out() << Qt::endl;
        rc |= showModem(modem->devicePath(), 115200);
    }
    return rc;
}

} // namespace

int main(int argc, char** argv)
{
    // The library logs its AT dialogue; a command-line user wants the results,
    // not the dialogue, unless asked for it. Environment rules outrank the
    // rules the library sets, and are read when the application starts.
    bool verbose = false;
    for (int i = 1; i < argc; ++i)
        verbose |= qstrcmp(argv[i], "--verbose") == 0 || qstrcmp(argv[i], "-v") == 0;
    if (!verbose && qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
        qputenv("QT_LOGGING_RULES", "atmodem.debug=false;atmodem.info=false;atmodem.warning=false;"
                                    "modems.finder.debug=false;default.warning=false");

    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zelmodems"));
    QCoreApplication::setApplicationVersion(QStringLiteral("5.0.28"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Finds and queries modems.\n\nCommands:\n"
        "  demo              run against simulated modems (no hardware needed)\n"
        "  info PORT         open PORT, identify the modem and query it"));
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption baudOpt(QStringLiteral("baud"), QStringLiteral("Line speed (default 115200)."),
                               QStringLiteral("rate"), QStringLiteral("115200"));
    parser.addOption(baudOpt);
    parser.addOption(QCommandLineOption(QStringList{QStringLiteral("v"), QStringLiteral("verbose")},
                                        QStringLiteral("Show the library's log (the AT dialogue).")));
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("demo or info"));
    parser.process(app);

    const QStringList args = parser.positionalArguments();
    const QString command = args.value(0, QStringLiteral("demo"));
    if (command == QLatin1String("demo"))
        return demo();
    if (command == QLatin1String("info")) {
        if (args.size() < 2) {
            err() << "zelmodems: info needs a port (for example /dev/ttyUSB0)" << Qt::endl;
            return 2;
        }
        bool ok = false;
        const int baud = parser.value(baudOpt).toInt(&ok);
        if (!ok || baud <= 0) {
            err() << "zelmodems: --baud takes a positive number" << Qt::endl;
            return 2;
        }
        return showModem(args.at(1), baud);
    }
    err() << "zelmodems: unknown command " << command << " (see --help)" << Qt::endl;
    return 2;
}
