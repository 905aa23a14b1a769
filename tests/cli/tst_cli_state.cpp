// "Why is it not online?": zelmodems status, info, cells, balance, find and
// the sim commands against simulated modems scripted for each state of the
// SIM, the registration, the signal and the store. Every JSON output is
// checked against the schema by the fixture.
#include "clifixture.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QTemporaryFile>

using clitest::run;
using zelmodems::sim::Make;
using zelmodems::sim::SimModem;
using zelmodems::sim::SimState;

Q_DECLARE_METATYPE(Make)

namespace {

// The modem's scripted state for one row.
enum class Setup { Healthy, NoSim, Pin, PinOneLeft, Puk, Broken, Denied, Searching, Roaming, ForeignHome, Lte,
                   FullStore, NoSignal, WeakSignal };

void apply(SimModem& modem, Setup setup)
{
    switch (setup) {
    case Setup::Healthy: break;
    case Setup::NoSim: modem.setSim(SimState::NotInserted); break;
    case Setup::Pin: modem.setSim(SimState::Pin, 2, 10); break;
    case Setup::PinOneLeft: modem.setSim(SimState::Pin, 1, 10); break;
    case Setup::Puk: modem.setSim(SimState::Puk, 0, 9); break;
    case Setup::Broken: modem.setSim(SimState::Failure); break;
    case Setup::Denied: modem.setRegistration(3); break;
    case Setup::Searching: modem.setRegistration(2); break;
    case Setup::Roaming: modem.setRegistration(5); break;
    case Setup::ForeignHome: modem.setNetwork("Beeline", "25099"); break;
    case Setup::Lte: modem.setRegistration(1, "1A2B", "01C3D4E5", 7); break;
    case Setup::FullStore:
        modem.setStoreSize(1);
        modem.storeSms(zelmodems::sim::DeliverPdu::gsm7("+79161234567", QDateTime::currentDateTime(), "Hi"), 0);
        break;
    case Setup::NoSignal: modem.setAnswer("+CSQ", "+CSQ: 99,99"); break;
    case Setup::WeakSignal: modem.setAnswer("+CSQ", "+CSQ: 3,99"); break;
    }
}

// `args` with the modem's port after the command's words, zelmodems run
// with `input` on its standard input.
clitest::Result runWith(QStringList args, const QString& port, const QByteArray& input = QByteArray())
{
    const bool twoWords = args.value(0) == QLatin1String("sim") || args.value(0) == QLatin1String("sms");
    args.insert(twoWords ? 2 : 1, port);
    if (input.isNull())
        return run(args);
    QProcess process;
    process.setProcessEnvironment(clitest::environment());
    process.start(QStringLiteral(ZELMODEMS_PATH), args);
    clitest::Result result;
    if (!process.waitForStarted(10000))
        return result;
    process.write(input);
    process.closeWriteChannel();
    result.finished = process.waitForFinished(30000);
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    if (args.contains(QStringLiteral("--json")))
        clitest::checkSchema(args, result.out);
    return result;
}

// The JSON value at a path of keys and array positions ("sim/state",
// "problems/0/code").
QJsonValue at(const QJsonObject& root, const QString& path)
{
    QJsonValue value = root;
    for (const QString& step : path.split(QLatin1Char('/'))) {
        bool index = false;
        const int n = step.toInt(&index);
        value = index ? value.toArray().at(n) : value.toObject().value(step);
    }
    return value;
}

QString shown(const QJsonValue& value)
{
    if (value.isUndefined())
        return QStringLiteral("absent");
    if (value.isNull())
        return QStringLiteral("null");
    if (value.isBool())
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isDouble())
        return QString::number(value.toDouble());
    return value.toString();
}

} // namespace

class TestCliState : public QObject
{
    Q_OBJECT

private slots:
    // Each state scripted in the simulator: the line a person reads, the
    // same fact in JSON, and the next step.
    void status_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<int>("setup");
        QTest::addColumn<QStringList>("lines");    // each a whole line of the text output
        QTest::addColumn<QStringList>("json");     // "path=value"
        const auto row = [](const char* name, Make make, Setup setup, const QStringList& lines,
                            const QStringList& json) {
            QTest::newRow(name) << make << int(setup) << lines << json;
        };
        row("healthy", Make::Huawei, Setup::Healthy,
            {"SIM:          ready", "Registration: registered, home network", "Network:      MegaFon (25002)",
             "Technology:   4G (LTE)", "Signal:       -73 dBm (good)", "SMS stores:   SM: 0 of 30",
             "Nothing keeps it from working."},
            {"sim/state=ready", "sim/imsi=250026123456789", "registration/state=home", "registration/roaming=false",
             "signal/dbm=-73", "signal/rsrp=-85", "signal/sinr=10.2", "stores/0/full=false", "problems/0=absent"});
        row("no SIM", Make::Huawei, Setup::NoSim,
            {"SIM:          no SIM inserted", "Registration: not registered", "  - no SIM card in the modem"},
            {"sim/state=not-inserted", "sim/imsi=null", "registration/state=not-registered", "stores=null",
             "problems/0/code=no-sim"});
        row("PIN", Make::Huawei, Setup::Pin,
            {"SIM:          SIM PIN required (attempts left: 2)", "    next: zelmodems sim unlock PORT"},
            {"sim/state=pin-required", "sim/pinAttempts=2", "sim/pukAttempts=10", "problems/0/code=pin-required",
             "problems/0/next=zelmodems sim unlock PORT"});
        row("PIN on a SIMCOM", Make::SimCom, Setup::Pin, {"SIM:          SIM PIN required (attempts left: 2)"},
            {"sim/pinAttempts=2"});
        row("PIN, make that does not count", Make::Cinterion, Setup::Pin, {"SIM:          SIM PIN required"},
            {"sim/pinAttempts=null", "problems/0/text=SIM PIN required"});
        row("PUK", Make::Zte, Setup::Puk,
            {"SIM:          SIM PUK required (the PIN is blocked) (attempts left: 9)"},
            {"sim/state=puk-required", "problems/0/code=puk-required",
             "problems/0/next=find the PUK on the SIM's card or ask the operator, then: zelmodems sim unlock --puk PORT"});
        row("broken SIM", Make::Huawei, Setup::Broken, {"SIM:          the SIM does not work (SIM failure)"},
            {"sim/state=failure", "problems/0/code=sim-failure"});
        row("denied", Make::Huawei, Setup::Denied, {"Registration: registration denied"},
            {"registration/state=denied", "registration/lacHex=null", "registration/cidDecimal=null",
             "registration/network/name=null", "problems/0/code=registration-denied"});
        row("searching", Make::SimCom, Setup::Searching, {"Registration: searching for a network"},
            {"registration/state=searching", "problems/0/code=searching"});
        row("roaming", Make::Huawei, Setup::Roaming, {"Registration: registered, roaming"},
            {"registration/state=roaming", "registration/roaming=true", "registration/cidHex=1C3D4E5"});
        row("a foreign network reported as home", Make::Huawei, Setup::ForeignHome,
            {"Registration: registered, home network (roaming: the network is not the SIM's own)",
             "Network:      Beeline (25099)"},
            {"registration/state=home", "registration/roaming=true", "registration/network/mcc=250",
             "registration/network/mnc=99"});
        row("LTE five fields", Make::Zte, Setup::Lte,
            {"Serving cell: LAC 1A2B (6699), CID 1C3D4E5 (29611237)", "Technology:   4G (LTE)"},
            {"registration/lacDecimal=6699", "registration/cidHex=1C3D4E5", "registration/technology=E-UTRAN"});
        row("full store", Make::Cinterion, Setup::FullStore, {"SMS stores:   SM: 1 of 1 (full)"},
            {"stores/0/full=true", "stores/0/roles/2=receive", "problems/0/code=store-full",
             "problems/0/next=read and delete them: zelmodems sms take PORT"});
        row("no signal", Make::Cinterion, Setup::NoSignal, {"Signal:       unknown (the modem reports no signal)"},
            {"signal/dbm=null", "signal/rating=unknown", "problems/0/code=no-signal"});
        row("weak signal", Make::Cinterion, Setup::WeakSignal, {"Signal:       -107 dBm (poor)"},
            {"signal/rating=poor", "problems/0/code=weak-signal"});
    }
    void status()
    {
        QFETCH(Make, make);
        QFETCH(int, setup);
        QFETCH(QStringList, lines);
        QFETCH(QStringList, json);
        auto modem = clitest::startModem(make);
        QVERIFY(modem);
        apply(*modem, Setup(setup));
        const QString port = modem->devicePath();
        const clitest::Result text = runWith({"status"}, port);
        QVERIFY2(text.exitCode == 0, text.describe());
        const QStringList got = text.out.split(QLatin1Char('\n'));
        for (QString line : lines) {
            line.replace(QLatin1String("PORT"), port);
            QVERIFY2(got.contains(line), qPrintable(line + QLatin1Char('\n') + text.describe()));
        }
        const clitest::Result machine = runWith({"status", "--json"}, port);
        for (const QString& pair : json) {
            const QString path = pair.section(QLatin1Char('='), 0, 0);
            const QString expected = pair.section(QLatin1Char('='), 1).replace(QLatin1String("PORT"), port);
            QCOMPARE(shown(at(machine.json(), path)), expected);
        }
    }

    // The other commands say the same, with the reason where a value is
    // missing, and never show a cell the modem is not registered in.
    void otherCommands_data()
    {
        QTest::addColumn<int>("setup");
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected");   // in standard output, or standard error for a failure
        QTest::newRow("info, PIN") << int(Setup::Pin) << QStringList{"info"} << 0
                                   << "IMSI:         unknown (SIM PIN required)";
        QTest::newRow("info, denied: no cell") << int(Setup::Denied) << QStringList{"info"} << 0
                                               << "Registration: registration denied\n";
        QTest::newRow("info JSON, one SIM id key") << int(Setup::Healthy) << QStringList{"info", "--json"} << 0
                                                   << "\"simId\": \"89072143658709214365\"";
        QTest::newRow("cells, denied") << int(Setup::Denied) << QStringList{"cells"} << 1
                                       << "the modem is not registered (registration denied), so it has no cell";
        QTest::newRow("cells, no SIM") << int(Setup::NoSim) << QStringList{"cells", "--json"} << 1
                                       << "\"errorCode\": \"not-found\"";
        QTest::newRow("balance, PIN") << int(Setup::Pin) << QStringList{"balance"} << 1
                                      << "cannot read the SIM's operator codes on PORT: SIM PIN required (attempts "
                                         "left: 2); next: zelmodems sim unlock PORT";
        QTest::newRow("balance, no SIM, JSON") << int(Setup::NoSim) << QStringList{"balance", "--json"} << 1
                                               << "\"errorCode\": \"wrong-state\"";
        QTest::newRow("sms list, no SIM, meaning") << int(Setup::NoSim) << QStringList{"sms", "list"} << 1
                                                   << "+CME ERROR: 10 (SIM not inserted)";
        QTest::newRow("sms delete, empty index") << int(Setup::Healthy) << QStringList{"sms", "delete", "7"} << 1
                                                 << "no message at index 7 (+CMS ERROR: 321, invalid memory index";
        QTest::newRow("sms delete, JSON number") << int(Setup::Healthy) << QStringList{"sms", "delete", "7", "--json"}
                                                 << 1 << "\"errorNumber\": 321";
        // A code without a reply gets "+CUSD: 4" from the simulated network.
        QTest::newRow("own-number refused by the network") << int(Setup::Healthy) << QStringList{"own-number"} << 1
                                                           << "the request *205# did not go through: The network "
                                                              "answered with status 4: operation not supported";
        QTest::newRow("sms list marks read") << int(Setup::FullStore) << QStringList{"sms", "list"} << 0
                                             << "Unread messages listed: 1; the modem now marks them read.\nThe "
                                                "store is full: new messages are refused until some are deleted";
    }
    void otherCommands()
    {
        QFETCH(int, setup);
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        apply(*modem, Setup(setup));
        const clitest::Result r = runWith(args, modem->devicePath());
        QCOMPARE(r.exitCode, exitCode);
        const bool toOut = exitCode == 0 || args.contains(QStringLiteral("--json"));
        QVERIFY2((toOut ? r.out : r.err).contains(expected.replace(QLatin1String("PORT"), modem->devicePath())),
                 r.describe());
        if (exitCode == 0 && !args.contains(QStringLiteral("--json")) && Setup(setup) == Setup::Denied)
            QVERIFY2(!r.out.contains(QLatin1String("Serving cell")), r.describe());
    }

    // The codes come from standard input or a file, never the command
    // line; guards hold before anything is sent.
    void unlock_data()
    {
        QTest::addColumn<int>("setup");
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("sent");
        QTest::addColumn<QString>("simAfter");   // "ready", "pin", "puk"
        QTest::newRow("right PIN") << int(Setup::Pin) << QStringList{"sim", "unlock"} << QByteArray("1234\n") << 0
                                   << "The PIN was accepted." << true << "ready";
        QTest::newRow("wrong PIN") << int(Setup::Pin) << QStringList{"sim", "unlock"} << QByteArray("9999\n") << 1
                                   << "the PIN was refused: +CME ERROR: 16 (incorrect password); attempts left: 1"
                                   << true << "pin";
        QTest::newRow("last attempt held back") << int(Setup::PinOneLeft) << QStringList{"sim", "unlock"}
                                                << QByteArray("1234\n") << 1 << "(--last-attempt tries it)" << false
                                                << "pin";
        QTest::newRow("last attempt allowed") << int(Setup::PinOneLeft)
                                              << QStringList{"sim", "unlock", "--last-attempt"} << QByteArray("1234\n")
                                              << 0 << "The PIN was accepted." << true << "ready";
        QTest::newRow("no code given") << int(Setup::Pin) << QStringList{"sim", "unlock"} << QByteArray("") << 1
                                       << "no PIN given" << false << "pin";
        QTest::newRow("letters") << int(Setup::Pin) << QStringList{"sim", "unlock", "--json"} << QByteArray("12ab\n")
                                 << 1 << "\"errorCode\": \"bad-input\"" << false << "pin";
        QTest::newRow("ready SIM") << int(Setup::Healthy) << QStringList{"sim", "unlock"} << QByteArray("1234\n") << 1
                                   << "the SIM waits for no PIN (it is \"ready\"); nothing was sent" << false << "ready";
        QTest::newRow("PIN for a blocked SIM") << int(Setup::Puk) << QStringList{"sim", "unlock"}
                                               << QByteArray("1234\n") << 1
                                               << ": zelmodems sim unlock --puk PORT" << false << "puk";
        QTest::newRow("PUK and new PIN") << int(Setup::Puk) << QStringList{"sim", "unlock", "--puk"}
                                         << QByteArray("12345678\n4321\n") << 0
                                         << "The PUK was accepted and the new PIN set." << true << "ready";
        QTest::newRow("change PIN") << int(Setup::Healthy) << QStringList{"sim", "change-pin"}
                                    << QByteArray("1234\n4321\n") << 0 << "The PIN was changed." << true << "ready";
        QTest::newRow("no recording of codes") << int(Setup::Pin)
                                               << QStringList{"sim", "unlock", "--record", "/tmp/zml-never"}
                                               << QByteArray("1234\n") << 2
                                               << "--record would write the SIM's codes" << false << "pin";
    }
    void unlock()
    {
        QFETCH(int, setup);
        QFETCH(QStringList, args);
        QFETCH(QByteArray, input);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        QFETCH(bool, sent);
        QFETCH(QString, simAfter);
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        apply(*modem, Setup(setup));
        const clitest::Result r = runWith(args, modem->devicePath(), input);
        QCOMPARE(r.exitCode, exitCode);
        const bool toOut = exitCode == 0 || args.contains(QStringLiteral("--json"));
        QVERIFY2((toOut ? r.out : r.err).contains(expected.replace(QLatin1String("PORT"), modem->devicePath())),
                 r.describe());
        bool tried = false;
        for (const QByteArray& command : modem->commands())
            tried = tried || command.startsWith("+CPIN=") || command.startsWith("+CPWD=");
        QCOMPARE(tried, sent);
        const QMap<QString, SimState> states{{"ready", SimState::Ready}, {"pin", SimState::Pin}, {"puk", SimState::Puk}};
        QCOMPARE(int(modem->simState()), int(states.value(simAfter)));
        QVERIFY2(!r.out.contains(QLatin1String("1234")) && !r.err.contains(QLatin1String("1234")), r.describe());
    }

    // Under a Russian locale no line mixes the languages, and a long label
    // keeps the space before its value.
    void russianOutput()
    {
        auto ready = clitest::startModem(Make::Huawei);
        auto locked = clitest::startModem(Make::SimCom);
        auto empty = clitest::startModem(Make::Zte);
        QVERIFY(ready && locked && empty);
        locked->setSim(SimState::Pin, 2);
        empty->setSim(SimState::NotInserted);
        ready->storeSms(zelmodems::sim::DeliverPdu::ucs2("+79161234567", QDateTime::currentDateTime(),
                                                          QStringLiteral("Привет")), 0);
        QProcessEnvironment env = clitest::environment();
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("ru_RU.UTF-8"));
        env.insert(QStringLiteral("QT5EXT_TRANSLATIONS_DIR"), QStringLiteral(ZML_TRANSLATIONS_DIR));
        const QList<QStringList> commands{
            {"info", ready->devicePath()},
            {"status", locked->devicePath()},
            {"status", empty->devicePath()},
            {"sms", "list", ready->devicePath()},
            {"sms", "delete", ready->devicePath(), "7"},
            {"sms"},
            {"cells", empty->devicePath()},
            {"balance", locked->devicePath()},
            {"find", ready->devicePath(), empty->devicePath(), locked->devicePath()},
            {"sim", "unlock", ready->devicePath()},
            {"info", "/nonexistent/ttyUSB9"},
        };
        QString all;
        for (const QStringList& args : commands) {
            const clitest::Result r = run(args, 30000, env);
            QVERIFY2(r.finished, r.describe());
            all += r.out + r.err;
        }
        const QRegularExpression runTogether(QStringLiteral("^[A-Za-zА-Яа-яЁё][A-Za-zА-Яа-яЁё /.()-]*:[^\\s]"),
                                             QRegularExpression::MultilineOption);
        QVERIFY2(!runTogether.match(all).hasMatch(), qPrintable(runTogether.match(all).captured(0) + "\n" + all));
        QVERIFY2(all.contains(QStringLiteral("нужен PIN SIM-карты")), qPrintable(all));
        QProcess check;
        // The operator table's PPP user is the operator's word, not the tool's.
        check.start(QStringLiteral("python3"),
                    {QStringLiteral(RUSSIAN_CHECK_SCRIPT), QStringLiteral("--lines"), QStringLiteral("gdata")});
        QVERIFY(check.waitForStarted(10000));
        check.write(all.toUtf8());
        check.closeWriteChannel();
        QVERIFY(check.waitForFinished(30000));
        QVERIFY2(check.exitCode() == 0, check.readAllStandardOutput().constData());
    }

    // On a terminal the PIN is asked for and typed without echo: what the
    // terminal shows holds the prompt, never the digits.
    void pinTypedWithoutEcho()
    {
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        modem->setSim(SimState::Pin, 3);
        QProcess terminal;
        terminal.setProcessEnvironment(clitest::environment());
        terminal.start(QStringLiteral("script"),
                       {"-qec", QStringLiteral("%1 sim unlock %2").arg(ZELMODEMS_PATH, modem->devicePath()),
                        "/dev/null"});
        QVERIFY(terminal.waitForStarted(10000));
        QByteArray seen;
        QElapsedTimer clock;
        clock.start();
        while (!seen.contains("PIN:") && clock.elapsed() < 10000) {
            terminal.waitForReadyRead(100);
            seen += terminal.readAllStandardOutput();
        }
        QVERIFY2(seen.contains("PIN:"), seen.constData());
        terminal.write("1234\n");
        QVERIFY(terminal.waitForFinished(15000));
        seen += terminal.readAllStandardOutput();
        QVERIFY2(seen.contains("The PIN was accepted."), seen.constData());
        QVERIFY2(!seen.contains("1234"), seen.constData());
        QCOMPARE(int(modem->simState()), int(SimState::Ready));
    }

    void pinFromFile()
    {
        auto modem = clitest::startModem(Make::SimCom);
        QVERIFY(modem);
        modem->setSim(SimState::Ready);
        QTemporaryFile file;
        QVERIFY(file.open());
        file.write("1234\n8765\n");
        file.flush();
        const clitest::Result r = run({"sim", "change-pin", modem->devicePath(), "--pin-file", file.fileName(), "--json"});
        QVERIFY2(r.exitCode == 0, r.describe());
        QCOMPARE(modem->simPin(), QByteArray("8765"));
        QCOMPARE(shown(at(r.json(), QStringLiteral("done"))), QStringLiteral("true"));
    }
};

QTEST_GUILESS_MAIN(TestCliState)
#include "tst_cli_state.moc"
