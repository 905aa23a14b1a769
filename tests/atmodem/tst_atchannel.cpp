// The AT command channel against the simulated modem: answer rules, time-outs
// and their error texts, raw commands, the port's life cycle.
#include "simfixture.h"

#include <QElapsedTimer>
#include <QFile>

using namespace modemsim;
using zmltest::portNameOf;
using zmltest::startAndOpen;

namespace {
const QString offline = QStringLiteral("Modem is offline pn port %1");
const QString saidError = QStringLiteral("Modem said \"ERROR\"");
const QString saidNoCarrier = QStringLiteral("Modem said \"NO CARRIER\"");
} // namespace

class TestAtChannel : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void makeCommand()
    {
        AtModem modem;
        QCOMPARE(modem.makeCommand(QString()), QByteArray("AT\r"));
        QCOMPARE(modem.makeCommand(QStringLiteral("+CMGS=\"+79001234567\"")),
                 QByteArray("AT+CMGS=\"+79001234567\"\r"));
        // Text goes out as Latin-1, one byte per character, and no line feed.
        QCOMPARE(modem.makeCommand(QStringLiteral("+X\u00e9")), QByteArray("AT+X\xe9\r"));
    }

    void sendCommandAnswers_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("echo");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("error");

        QTest::newRow("echo on: echoed command kept")
            << QByteArray("\r\nOK\r\n") << true << true << QByteArray("AT+TEST\r\r\n") << QString();
        QTest::newRow("body before OK")
            << QByteArray("\r\n+TEST: 1,2\r\n\r\nOK\r\n") << false << true
            << QByteArray("\r\n+TEST: 1,2\r\n\r\n") << QString();
        QTest::newRow("letters OK inside a word count as success")
            << QByteArray("\r\nTOKEN: 5\r\n\r\nERROR\r\n") << false << true << QByteArray("\r\nT") << QString();
        QTest::newRow("ERROR and OK: success")
            << QByteArray("\r\nERROR\r\n\r\nOK\r\n") << false << true << QByteArray("\r\nERROR\r\n\r\n") << QString();
        QTest::newRow("ERROR: whole answer kept")
            << QByteArray("\r\nERROR\r\n") << false << false << QByteArray("\r\nERROR\r\n") << saidError;
        QTest::newRow("extended error")
            << QByteArray("\r\n+CME ERROR: 10\r\n") << false << false << QByteArray("\r\n+CME ERROR: 10\r\n")
            << saidError;
        QTest::newRow("echo on: ERROR with the echo")
            << QByteArray("\r\nERROR\r\n") << true << false << QByteArray("AT+TEST\r\r\nERROR\r\n") << saidError;
        QTest::newRow("NO CARRIER")
            << QByteArray("\r\nNO CARRIER\r\n") << false << false << QByteArray("\r\nNO CARRIER\r\n") << saidNoCarrier;
        QTest::newRow("lower-case ok is no result code")
            << QByteArray("\r\nok\r\n") << false << false << QByteArray("\r\nok\r\n") << offline;
        QTest::newRow("silence")
            << QByteArray() << false << false << QByteArray() << offline;
        QTest::newRow("line noise")
            << QByteArray::fromHex("ff00fe8a7e23") << false << false << QByteArray::fromHex("ff00fe8a7e23") << offline;
    }

    void sendCommandAnswers()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, echo);
        QFETCH(bool, result);
        QFETCH(QByteArray, answer);
        QFETCH(QString, error);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setEcho(echo);
        sim.setReply("+TEST", Reply::raw(reply));

        // Rows without a result code end by the time-out, so it is long
        // enough for the whole reply to arrive on a busy machine.
        QByteArray got = "left over";
        QCOMPARE(modem.sendCommand("+TEST", got, 1000), result);
        QCOMPARE(got, answer);
        QCOMPARE(modem.lastError(), error.contains("%1") ? error.arg(portNameOf(sim.devicePath())) : error);
        QCOMPARE(sim.commands(), QList<QByteArray>{"+TEST"});
    }

    // Answers that arrive a byte at a time: the wait goes on until the result
    // code, and after "ERROR" the rest of the answer is still collected.
    void sendCommandSlowAnswers()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+TEST", Reply::raw("\r\nERROR\r\n+EXT: busy\r\n"));
        sim.setFault("+TEST", Fault::SplitBytes, 2);
        QByteArray answer;
        QVERIFY(!modem.sendCommand("+TEST", answer, 2000));
        QCOMPARE(answer, QByteArray("\r\nERROR\r\n+EXT: busy\r\n"));
        QCOMPARE(modem.lastError(), saidError);

        sim.setFault("+CSQ", Fault::SplitBytes, 2);
        QVERIFY(modem.sendCommand(AT::Commands::CSQ, answer, 2000));
        QCOMPARE(answer, QByteArray("\r\n+CSQ: 20,99\r\n\r\n"));
        QCOMPARE(modem.lastError(), QString());
    }

    void sendCommandErrorAndCommandText()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QByteArray answer;
        // Unknown commands: the simulator says ERROR. The command text is
        // taken as UTF-8 and goes out in Latin-1.
        QVERIFY(!modem.sendCommand("+X\xc3\xa9", answer, 500));
        QCOMPARE(modem.lastError(), saidError);
        QCOMPARE(sim.commands(), QList<QByteArray>{"+X\xe9"});

        // The next command starts with an empty last error and answer.
        QVERIFY(modem.sendCommand(AT::Commands::AT, answer, 500));
        QCOMPARE(modem.lastError(), QString());
        QCOMPARE(answer, QByteArray("\r\n"));
    }

    void sendRawCommand_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("reply");   // the simulator's reply to "+TEST"
        QTest::addColumn<int>("timeout");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QByteArray>("received");  // what the modem logged (null: not checked)

        const QByteArray ok("\r\n+TEST: 1\r\n\r\nOK\r\n");
        QTest::newRow("written unchanged") << QByteArray("AT+TEST\r") << ok << 500 << true
                                           << QByteArray("\r\n+TEST: 1\r\n\r\n") << QString() << QByteArray("+TEST");
        QTest::newRow("escape sequence") << QByteArray("+++") << ok << 500 << true
                                         << QByteArray("\r\n+TEST: 1\r\n\r\n") << QString() << QByteArray("+++");
        QTest::newRow("ERROR: cut before the code")
            << QByteArray("AT+TEST\r") << QByteArray("\r\n+CME ERROR: 3\r\n") << 500 << false
            << QByteArray("\r\n+CME ") << saidError << QByteArray("+TEST");
        QTest::newRow("NO CARRIER: runs into the time-out")
            << QByteArray("AT+TEST\r") << QByteArray("\r\nNO CARRIER\r\n") << 1000 << false
            << QByteArray("\r\nNO CARRIER\r\n") << offline << QByteArray("+TEST");
        // With no time at all not a single cycle runs, so the data is not
        // even flushed to the device.
        QTest::newRow("time-out 0: no cycle")
            << QByteArray("AT+TEST\r") << QByteArray("\r\nOK\r\n") << 0 << false << QByteArray() << offline
            << QByteArray();
        QTest::newRow("time-out under 5 ms, silent modem")
            << QByteArray("AT+TEST\r") << QByteArray() << 4 << false << QByteArray() << offline << QByteArray();
    }

    void sendRawCommand()
    {
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, reply);
        QFETCH(int, timeout);
        QFETCH(bool, result);
        QFETCH(QByteArray, answer);
        QFETCH(QString, error);
        QFETCH(QByteArray, received);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+TEST", Reply::raw(reply));
        sim.setReply("+++", Reply::raw(reply));

        QByteArray got;
        QCOMPARE(modem.sendRawCommand(data, got, timeout), result);
        QCOMPARE(got, answer);
        QCOMPARE(modem.lastError(), error.contains("%1") ? error.arg(portNameOf(sim.devicePath())) : error);
        if (!received.isNull())
            QTRY_COMPARE_WITH_TIMEOUT(sim.commands(), QList<QByteArray>{received}, 2000);
    }

    // NO CARRIER ends a command at once but not a raw write.
    void noCarrierCommandVersusRaw()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setFault("+TEST", Fault::NoCarrier);
        QByteArray answer;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!modem.sendCommand("+TEST", answer, 10000));
        QVERIFY2(clock.elapsed() < 5000, "NO CARRIER must end the command before its time-out");
        QCOMPARE(modem.lastError(), saidNoCarrier);

        QVERIFY(!modem.sendRawCommand("AT+TEST\r", answer, 300));
        QCOMPARE(answer, QByteArray("\r\nNO CARRIER\r\n"));
        QCOMPARE(modem.lastError(), offline.arg(portNameOf(sim.devicePath())));
    }

    void pollAtProbesUpToSixTimes()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));

        // A modem that wakes up at the third probe.
        int probes = 0;
        sim.addHandler([&probes](const QByteArray& command) -> std::optional<Reply> {
            if (!command.isEmpty())
                return std::nullopt;
            return ++probes < 3 ? Reply::raw(QByteArray()) : Reply::ok();
        });
        QVERIFY(modem.pollAt(1000));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"", "", ""}));

        sim.clearLog();
        sim.setFault("", Fault::Silence);
        QVERIFY(!modem.pollAt(30));
        // The last probe may still be on its way to the simulator.
        QTRY_COMPARE_WITH_TIMEOUT(sim.commands(), (QList<QByteArray>{"", "", "", "", "", ""}), 2000);
        QCOMPARE(modem.lastError(), offline.arg(portNameOf(sim.devicePath())));
    }

    void localEcho()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QVERIFY(!sim.echo());   // the opening dialogue switched it off

        QVERIFY(modem.enableLocalEcho(true));
        QVERIFY(sim.echo());
        QByteArray answer;
        QVERIFY(modem.sendCommand(AT::Commands::CSQ, answer, 500));
        QCOMPARE(answer, QByteArray("AT+CSQ\r\r\n+CSQ: 20,99\r\n\r\n"));

        QVERIFY(modem.enableLocalEcho(false));
        QVERIFY(!sim.echo());
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E1", "+CSQ", "E0"}));
    }

    void setInitString_data()
    {
        QTest::addColumn<QString>("init");
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<bool>("result");

        QTest::newRow("upper-case AT removed") << QStringLiteral("ATZ") << QByteArray("Z") << true;
        QTest::newRow("without AT") << QStringLiteral("Z") << QByteArray("Z") << true;
        QTest::newRow("several commands") << QStringLiteral("AT+CREG=2") << QByteArray("+CREG=2") << true;
        QTest::newRow("lower-case at kept") << QStringLiteral("atz") << QByteArray("atz") << false;
        QTest::newRow("AT only at the start") << QStringLiteral("Z AT") << QByteArray("Z AT") << false;
        QTest::newRow("empty: bare AT") << QString() << QByteArray() << true;
    }

    void setInitString()
    {
        QFETCH(QString, init);
        QFETCH(QByteArray, sent);
        QFETCH(bool, result);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setEcho(true);
        QCOMPARE(modem.setInitString(init), result);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", sent}));
        QVERIFY(!sim.echo());
    }

    void parseFieldInternal_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("found");
        QTest::addColumn<QString>("value");

        const QByteArray ati("\r\nManufacturer: huawei\r\nModel: E3372\r\nRevision: 22.315.01.00.00\r\n\r\n");
        QTest::newRow("model") << QByteArray("Model: E3372\r\nOK") << QStringLiteral("Model") << true
                               << QStringLiteral("E3372");
        QTest::newRow("manufacturer in a block") << ati << QStringLiteral("Manufacturer") << true
                                                 << QStringLiteral("huawei");
        QTest::newRow("revision, line ends trimmed") << ati << QStringLiteral("Revision") << true
                                                     << QStringLiteral("22.315.01.00.00");
        QTest::newRow("field name case ignored") << QByteArray("model: e173\r\n") << QStringLiteral("MODEL") << true
                                                 << QStringLiteral("e173");
        QTest::newRow("blank instead of colon") << QByteArray("IMEI 866123456789012") << QStringLiteral("IMEI")
                                                << true << QStringLiteral("866123456789012");
        QTest::newRow("value on the next line") << QByteArray("Model:\r\n  MF626  \r\n") << QStringLiteral("Model")
                                                << true << QStringLiteral("MF626");
        QTest::newRow("field is a pattern") << QByteArray("+CSQ: 20,99") << QStringLiteral("\\+CSQ") << true
                                            << QStringLiteral("20,99");
        QTest::newRow("first occurrence") << QByteArray("Model: A\r\nModel: B") << QStringLiteral("Model") << true
                                          << QStringLiteral("A");
        QTest::newRow("absent") << ati << QStringLiteral("IMSI") << false << QStringLiteral("unchanged");
        QTest::newRow("name without value") << QByteArray("Model:") << QStringLiteral("Model") << false
                                            << QStringLiteral("unchanged");
        QTest::newRow("empty answer") << QByteArray() << QStringLiteral("Model") << false
                                      << QStringLiteral("unchanged");
    }

    void parseFieldInternal()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, field);
        QFETCH(bool, found);
        QFETCH(QString, value);

        AtModem modem;
        QString got = QStringLiteral("unchanged");
        QCOMPARE(modem.parseFieldInternal(answer, field, got), found);
        QCOMPARE(got, value);
    }

    void openWithoutAttempts_data()
    {
        QTest::addColumn<int>("attempts");
        QTest::newRow("0") << 0;
        QTest::newRow("negative") << -1;
    }

    void openWithoutAttempts()
    {
        QFETCH(int, attempts);
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        AtModem modem;
        QVERIFY(!modem.open(sim.devicePath(), 115200, attempts));
        QCOMPARE(modem.baudrate(), 0);
        QCOMPARE(modem.lastError(), QString());
        QVERIFY(sim.commands().isEmpty());
    }

    void openUnopenablePort()
    {
        AtModem modem;
        QVERIFY(!modem.open(m_lockDir.filePath(QStringLiteral("ttyNONE0")), 115200, 2));
        QVERIFY2(modem.lastError().startsWith(QLatin1String("Port opening error: ")), qPrintable(modem.lastError()));
        QVERIFY(modem.lastError().size() > int(qstrlen("Port opening error: ")));
        QCOMPARE(modem.baudrate(), 0);
        QCOMPARE(modem.name(), QString());
    }

    void openIdentifiesAndCloses()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        AtModem modem;
        QVERIFY2(modem.open(sim.devicePath(), 57600, 1), qPrintable(modem.lastError()));
        QCOMPARE(modem.baudrate(), 57600);
        QCOMPARE(sim.lineSpeed(), 57600);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"", "E0", "I", "&V"}));
        QCOMPARE(modem.name(), QStringLiteral("huawei_E3372"));
        QCOMPARE(modem.dialect(), qint32(AtModem::HUAWEI));
        QCOMPARE(modem.lastError(), QString());

        // A failure leaves its text; a closed port fails at once and
        // leaves it alone.
        QByteArray answer;
        QVERIFY(!modem.sendCommand("+NOSUCH", answer, 500));
        modem.close();
        QCOMPARE(modem.baudrate(), 0);
        sim.clearLog();
        QVERIFY(!modem.sendCommand(AT::Commands::CSQ, answer, 500));
        QVERIFY(!modem.sendRawCommand("AT\r", answer, 500));
        QVERIFY(!modem.pollAt(500));
        QVERIFY(!modem.isConnected());
        QVERIFY(!modem.toModemOnly());
        QCOMPARE(modem.lastError(), saidError);
        QVERIFY(sim.commands().isEmpty());
        modem.close();   // twice is harmless

        // The port can be opened again, by this object or another.
        QVERIFY(modem.open(sim.devicePath(), 115200, 1));
        QCOMPARE(modem.baudrate(), 115200);
    }

    void closeNeverOpened()
    {
        AtModem modem;
        modem.close();
        QCOMPARE(modem.baudrate(), 0);
        QCOMPARE(modem.name(), QString());
        QCOMPARE(modem.lastError(), QString());
        QCOMPARE(modem.dialect(), qint32(AtModem::DEFAULT_AT_GSM));
    }

    void rejectedConfigurationStillConnects()
    {
        SimModem sim(Make::Zte);
        QVERIFY(sim.start());
        sim.setFault("&V", Fault::Error);
        AtModem modem;
        QVERIFY(modem.open(sim.devicePath(), 115200, 1));
        QCOMPARE(modem.lastError(), saidError);
        QCOMPARE(modem.dialect(), qint32(AtModem::ZTE));
        QCOMPARE(modem.baudrate(), 115200);
    }

    // A failed identification closes the port and the next attempt starts
    // over at once.
    void failedIdentificationRetries()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        sim.setFault("I", Fault::Error);
        AtModem modem;
        QVERIFY(!modem.open(sim.devicePath(), 115200, 2));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"", "E0", "I", "", "E0", "I"}));
        QCOMPARE(modem.lastError(), saidError);
        QCOMPARE(modem.baudrate(), 0);
        QCOMPARE(modem.name(), QString());
    }

    // A device that disappears while a command waits ends the command at
    // once, with no time-out text; the port is closed from then on.
    void vanishingPort()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setFault("+TEST", Fault::Vanish);
        QByteArray answer;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!modem.sendCommand("+TEST", answer, 20000));
        QVERIFY(!modem.pollAt(20000));
        QVERIFY2(clock.elapsed() < 10000, "a vanished port must not wait for the time-outs");
        QVERIFY(sim.hasVanished());
        QCOMPARE(modem.lastError(), QString());
        QCOMPARE(modem.baudrate(), 0);
    }

    void vanishingPortDuringOpen()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        sim.setFault("I", Fault::Vanish);
        AtModem modem;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!modem.open(sim.devicePath(), 115200, 1));
        QVERIFY2(clock.elapsed() < 4000, "a vanished port must not wait for the identification time-out");
        QVERIFY(sim.hasVanished());
        QCOMPARE(modem.lastError(), QString());
        QCOMPARE(modem.baudrate(), 0);
    }

    void unlockPort()
    {
        AtModem modem;
        const QString stale = lockFile(QStringLiteral("ttyZML7"));
        writeLock(stale, "999999999\n");
        QVERIFY(modem.unlockPort(QStringLiteral("ttyZML7")));
        QVERIFY(!QFile::exists(stale));

        // A lock held by a living process stays: the platform is asked
        // without force.
        const QString held = lockFile(QStringLiteral("ttyZML8"));
        writeLock(held, QByteArray::number(QCoreApplication::applicationPid()) + "\n");
        QVERIFY(!modem.unlockPort(QStringLiteral("/dev/ttyZML8")));
        QVERIFY(QFile::exists(held));
        QVERIFY(modem.unlockPort(QStringLiteral("ttyZML9")));
    }

    // Opening removes a stale lock left on the port by a dead process.
    void openRemovesStaleLock()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        const QString lock = lockFile(portNameOf(sim.devicePath()).replace(QLatin1Char('/'), QLatin1Char('_')));
        writeLock(lock, "999999999\n");
        AtModem modem;
        QVERIFY(modem.open(sim.devicePath(), 115200, 1));
        QVERIFY(!QFile::exists(lock));
    }

private:
    QString lockFile(const QString& name) const
    {
        return m_lockDir.filePath(QStringLiteral("LCK..") + name);
    }
    static void writeLock(const QString& path, const QByteArray& content)
    {
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(content);
    }
};

QTEST_GUILESS_MAIN(TestAtChannel)
#include "tst_atchannel.moc"
