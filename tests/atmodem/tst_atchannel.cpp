// The AT command channel against the simulated modem: answer rules, time-outs
// and their error texts, raw commands, the port's life cycle.
#include "simfixture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

using namespace zelmodems::sim;
using zmltest::portNameOf;
using zmltest::startAndOpen;

namespace {
const QString offline = QStringLiteral("Modem is offline pn port %1");
const QString saidError = QStringLiteral("Modem said \"ERROR\"");

enum Delivery { AtOnce, Echoed, ByteByByte, Raw };

// The simulator's reply to "+TEST", how it comes (Raw: sent with
// sendRawCommand), what the driver keeps of it, and the last error (empty:
// the command succeeded).
struct AnswerRow
{
    QByteArray reply;
    Delivery delivery;
    QByteArray answer;
    QString error;
    int timeout = -1;   // -1: 1 s when the error is a time-out, else 10 s
};

// The expected last error, with the port's name filled in.
QString errorOn(const QString& error, const SimModem& sim)
{
    return error.contains(QLatin1String("%1")) ? error.arg(portNameOf(sim.devicePath())) : error;
}
} // namespace

Q_DECLARE_METATYPE(AnswerRow)
Q_DECLARE_METATYPE(zelmodems::sim::Fault)

class TestAtChannel : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void sendCommandAnswers_data()
    {
        QTest::addColumn<AnswerRow>("row");

        const QByteArray body("\r\n+TEST: 20,99\r\n\r\nOK\r\n"), beforeOk("\r\n+TEST: 20,99\r\n\r\n");
        QTest::newRow("echo on: echoed command kept") << AnswerRow{"\r\nOK\r\n", Echoed, "AT+TEST\r\r\n", ""};
        QTest::newRow("body byte by byte") << AnswerRow{body, ByteByByte, beforeOk, ""};
        QTest::newRow("letters OK inside a word count as success")
            << AnswerRow{"\r\nTOKEN: 5\r\n\r\nERROR\r\n", AtOnce, "\r\nT", ""};
        QTest::newRow("ERROR and OK: success") << AnswerRow{"\r\nERROR\r\n\r\nOK\r\n", AtOnce, "\r\nERROR\r\n\r\n", ""};
        QTest::newRow("extended error")
            << AnswerRow{"\r\n+CME ERROR: 10\r\n", AtOnce, "\r\n+CME ERROR: 10\r\n", saidError};
        // After "ERROR" the rest of the answer is still collected.
        QTest::newRow("ERROR byte by byte, text behind it kept")
            << AnswerRow{"\r\nERROR\r\n+EXT: busy\r\n", ByteByByte, "\r\nERROR\r\n+EXT: busy\r\n", saidError};
        QTest::newRow("NO CARRIER")
            << AnswerRow{"\r\nNO CARRIER\r\n", AtOnce, "\r\nNO CARRIER\r\n", "Modem said \"NO CARRIER\""};
        const QByteArray noise = QByteArray::fromHex("ff00fe8a7e23");
        QTest::newRow("line noise") << AnswerRow{noise, AtOnce, noise, offline};
        QTest::newRow("raw: ERROR, cut before the code")
            << AnswerRow{"\r\n+CME ERROR: 3\r\n", Raw, "\r\n+CME ", saidError};
        QTest::newRow("raw: NO CARRIER runs into the time-out")
            << AnswerRow{"\r\nNO CARRIER\r\n", Raw, "\r\nNO CARRIER\r\n", offline};
        // With no time at all not a single cycle runs.
        QTest::newRow("raw: time-out 0, no cycle") << AnswerRow{"\r\nOK\r\n", Raw, "", offline, 0};
    }

    void sendCommandAnswers()
    {
        QFETCH(AnswerRow, row);

        ZML_OPEN(Make::Huawei);
        sim.setEcho(row.delivery == Echoed);
        sim.setReply("+TEST", Reply::raw(row.reply));
        if (row.delivery == ByteByByte)
            sim.setFault("+TEST", Fault::SplitBytes, 2);

        // A result code ends the wait long before the time-out.
        const bool byTimeout = row.error == offline;
        const int timeout = row.timeout >= 0 ? row.timeout : byTimeout ? 1000 : 10000;
        QByteArray got = "left over";
        QElapsedTimer clock;
        clock.start();
        const bool ok = row.delivery == Raw ? modem.sendRawCommand("AT+TEST\r", got, timeout)
                                            : modem.sendCommand("+TEST", got, timeout);
        QCOMPARE(ok, row.error.isEmpty());
        QVERIFY2(byTimeout || clock.elapsed() < 5000, "a result code must end the wait");
        QCOMPARE(got, row.answer);
        QCOMPARE(modem.lastError(), errorOn(row.error, sim));
        // With no time-out the command may not even be flushed.
        if (timeout > 0)
            QTRY_COMPARE_WITH_TIMEOUT(sim.commands(), QList<QByteArray>{"+TEST"}, 2000);
    }

    void floodedAnswerEnds()
    {
        // A device that floods the line (3 MB, no result code) ends the
        // command with a clear error instead of holding the caller.
        ZML_OPEN(Make::Huawei);
        sim.setReply("I", Reply::raw(QByteArray(2 * 1024 * 1024 + 100000, 'x')));
        QByteArray got;
        QVERIFY(!modem.sendCommand("I", got, 60000));
        QCOMPARE(got.size(), 2 * 1024 * 1024);
        QVERIFY2(modem.lastError().contains("ran past 2097152 bytes"), qPrintable(modem.lastError()));
        // The rest of the flood is read away by the next command, which works.
        QVERIFY(modem.sendCommand("", got, 10000));
        // Raw data (a PDU after the prompt) meets the same bound.
        sim.setReply("X", Reply::raw(QByteArray(2 * 1024 * 1024 + 100000, 'x')));
        QVERIFY(!modem.sendRawCommand("ATX\r", got, 60000));
        QCOMPARE(got.size(), 2 * 1024 * 1024);
        QVERIFY2(modem.lastError().contains("ran past 2097152 bytes"), qPrintable(modem.lastError()));
        QVERIFY(modem.sendCommand("", got, 10000));
    }

    // Unsolicited codes (RING, +CREG, +CMTI, ^RSSI) arriving between and
    // around the answers: every command still gets its own whole answer, none
    // another's, and stored messages are all read and deleted.
    void floodOfUnsolicitedCodes()
    {
        ZML_OPEN(Make::Huawei);
        const QByteArray codes[] = {"\r\nRING\r\n", "\r\n+CREG: 1\r\n", "\r\n+CMTI: \"SM\",3\r\n", "\r\n^RSSI: 17\r\n"};
        for (int i = 0; i < 600; ++i)
            sim.sendUnsolicited(codes[i % 4], i * 2);
        const QByteArray commands[] = {"+GSN", "+CSQ", "+COPS?"};
        const QByteArray bodies[] = {"866123456789012", "+CSQ: 20,99", "\"MegaFon\""};
        QElapsedTimer clock;
        clock.start();
        int rounds = 0;
        for (; clock.elapsed() < 1200; ++rounds) {
            for (int i = 0; i < 3; ++i) {
                QByteArray answer;
                QVERIFY(modem.sendCommand(commands[i], answer, 500));
                for (int j = 0; j < 3; ++j)
                    QVERIFY2(answer.contains(bodies[j]) == (i == j), answer.constData());
            }
            int level = 0;
            QVERIFY(modem.getSignalLevel(level));
            QCOMPARE(level, 2 * 20 - 113);
        }
        QVERIFY2(rounds >= 5, qPrintable(QString::number(rounds)));
        const QDateTime when = zmltest::minutesAgo(10);
        sim.storeSms(DeliverPdu::gsm7("+79121234567", when, "first"), 0, 1);
        sim.storeSms(DeliverPdu::ucs2("+79121234569", when.addSecs(60), QString::fromUtf8("второе")), 0, 2);
        for (int i = 0; i < 200; ++i)
            sim.sendUnsolicited(codes[i % 4], i * 2);
        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages.at(0).text + messages.at(1).text, QString::fromUtf8("firstвторое"));
        QVERIFY(sim.storedSms().isEmpty());
    }

    void pollAtProbesUpToSixTimes()
    {
        ZML_OPEN(Make::Huawei);

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

    // Echo on, then the init string, which switches it off first.
    void setInitString_data()
    {
        QTest::addColumn<QString>("init");
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<bool>("result");

        QTest::newRow("upper-case AT removed") << QStringLiteral("ATZ") << QByteArray("Z") << true;
        QTest::newRow("lower-case at kept") << QStringLiteral("atz") << QByteArray("atz") << false;
        QTest::newRow("empty: bare AT") << QString() << QByteArray() << true;
    }

    void setInitString()
    {
        QFETCH(QString, init);
        QFETCH(QByteArray, sent);
        QFETCH(bool, result);

        ZML_OPEN(Make::Huawei);
        QVERIFY(modem.enableLocalEcho(true));
        QVERIFY(sim.echo());
        QCOMPARE(modem.setInitString(init), result);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E1", "E0", sent}));
        QVERIFY(!sim.echo());
    }

    // A fresh object has nothing to close, no attempts open nothing, a port
    // that cannot be opened is named in the error; a stale lock goes.
    void lifeCycle()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        AtModem modem;
        modem.close();
        QCOMPARE(modem.dialect(), qint32(AtModem::DEFAULT_AT_GSM));
        QVERIFY(!modem.open(sim.devicePath(), 115200, 0));
        QVERIFY(!modem.open(sim.devicePath(), 115200, -1));
        QCOMPARE(modem.lastError(), QString());
        QVERIFY(sim.commands().isEmpty());

        QVERIFY(!modem.open(m_lockDir.filePath(QStringLiteral("ttyNONE0")), 115200, 2));
        QVERIFY2(modem.lastError().startsWith(QLatin1String("Port opening error: "))
                     && modem.lastError().size() > int(qstrlen("Port opening error: ")),
                 qPrintable(modem.lastError()));
        QCOMPARE(modem.baudrate(), 0);

        const QString lock = lockFile(portNameOf(sim.devicePath()).replace(QLatin1Char('/'), QLatin1Char('_')));
        writeLock(lock, "999999999\n");
        QVERIFY2(modem.open(sim.devicePath(), 57600, 1), qPrintable(modem.lastError()));
        QVERIFY(!QFile::exists(lock));
        QCOMPARE(modem.baudrate(), 57600);
        QCOMPARE(sim.lineSpeed(), 57600);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"", "E0", "I", "&V"}));
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

        QVERIFY(modem.open(sim.devicePath(), 115200, 1));
        QCOMPARE(modem.baudrate(), 115200);
    }

    // Faults in the opening dialogue: a rejected "&V" does not count; a
    // failed identification closes the port and the next attempt starts over
    // at once; a device that disappears ends the attempt at once, with no
    // time-out text.
    void openingFaults_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<int>("attempts");
        QTest::addColumn<bool>("opened");
        QTest::addColumn<QList<QByteArray>>("commands");
        QTest::addColumn<QString>("error");

        QTest::newRow("configuration rejected") << QByteArray("&V") << Fault::Error << 2 << true
                                                << QList<QByteArray>{"", "E0", "I", "&V"} << saidError;
        QTest::newRow("identification rejected") << QByteArray("I") << Fault::Error << 2 << false
                                                 << QList<QByteArray>{"", "E0", "I", "", "E0", "I"} << saidError;
        QTest::newRow("vanishes during identification")
            << QByteArray("I") << Fault::Vanish << 1 << false << QList<QByteArray>{"", "E0", "I"} << QString();
    }

    void openingFaults()
    {
        QFETCH(QByteArray, command);
        QFETCH(Fault, fault);
        QFETCH(int, attempts);
        QFETCH(bool, opened);
        QFETCH(QList<QByteArray>, commands);
        QFETCH(QString, error);

        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        sim.setFault(command, fault);
        AtModem modem;
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(modem.open(sim.devicePath(), 115200, attempts), opened);
        QVERIFY2(clock.elapsed() < 4000, "no step may wait for its time-out");
        QCOMPARE(sim.commands(), commands);
        QCOMPARE(modem.lastError(), error);
        QCOMPARE(modem.baudrate(), opened ? 115200 : 0);
        QCOMPARE(modem.name(), opened ? QStringLiteral("huawei_E3372") : QString());
    }

    // A lock whose process runs keeps its port from us at any age and in
    // any of the forms programs write it; the lock stays, nothing is sent.
    void livePortLocks_data()
    {
        QTest::addColumn<QByteArray>("form");
        QTest::newRow("pppd, %10d") << QByteArray("ascii");
        QTest::newRow("binary int") << QByteArray("binary");
        QTest::newRow("QLockFile, three lines") << QByteArray("lines");
    }

    void livePortLocks()
    {
        QFETCH(QByteArray, form);
        QProcess holder;
        holder.start(QStringLiteral("sleep"), {QStringLiteral("30")});
        QVERIFY(holder.waitForStarted());
        const qint32 pid = qint32(holder.processId());
        QByteArray content = form == "ascii" ? QByteArray::number(pid).rightJustified(10, ' ') + '\n'
                           : form == "lines" ? QByteArray::number(pid) + "\nsleep\n" + QSysInfo::machineHostName().toLatin1() + '\n'
                                             : QByteArray(reinterpret_cast<const char*>(&pid), sizeof pid);

        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        const QString lock = lockFile(portNameOf(QFileInfo(sim.devicePath()).canonicalFilePath())
                                          .replace(QLatin1Char('/'), QLatin1Char('_')));
        writeLock(lock, content);
        QFile file(lock);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-120), QFileDevice::FileModificationTime));
        file.close();

        AtModem modem;
        const QString expected = QStringLiteral("in use by another program (pid %1, sleep)").arg(pid);
        QVERIFY(!modem.open(sim.devicePath(), 115200, 2));
        QVERIFY2(modem.lastError().contains(expected), qPrintable(modem.lastError()));
        QVERIFY(!modem.test(sim.devicePath(), 115200));
        QVERIFY2(modem.lastError().contains(expected), qPrintable(modem.lastError()));
        QVERIFY(QFile::exists(lock));
        QVERIFY(sim.commands().isEmpty());

        // Taken while our port was open: no restart is sent to it.
        QFile::remove(lock);
        QVERIFY(modem.open(sim.devicePath(), 115200, 1));
        sim.clearLog();
        writeLock(lock, content);
        QVERIFY(!modem.reset(false));
        QVERIFY2(modem.lastError().contains(expected), qPrintable(modem.lastError()));
        QVERIFY(sim.commands().isEmpty());
        modem.close();
        QVERIFY(QFile::exists(lock));
        QFile::remove(lock);
        holder.kill();
        holder.waitForFinished();
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
