// modemsim started as a program, as a developer starts it by hand, and
// driven through the library.
#include "atmodem.h"
#include "testfiles.h"
#include "ussdrequest.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// Starts modemsim with `args`; the device path of its (first) modem.
QString startSim(QProcess& sim, const QStringList& args)
{
    sim.start(QStringLiteral(MODEMSIM_PATH), args);
    if (!sim.waitForStarted() || !sim.waitForReadyRead(5000))
        return QString();
    return QString::fromLocal8Bit(sim.readLine()).trimmed().section(QLatin1Char('\t'), 1);
}

// zelmodems' standard output, or its failure.
QString runTool(const QStringList& args)
{
    QProcess tool;
    tool.start(QStringLiteral(ZELMODEMS_PATH), args);
    if (!tool.waitForFinished(60000) || tool.exitCode() != 0)
        return QStringLiteral("failed: ") + QString::fromLocal8Bit(tool.readAllStandardError());
    return QString::fromLocal8Bit(tool.readAllStandardOutput());
}

} // namespace

class TestModemsimProcess : public QObject
{
    Q_OBJECT

private slots:
    void recordAndReplay_data()
    {
        QTest::addColumn<QString>("make");
        QTest::addColumn<QStringList>("command");
        QTest::newRow("huawei info") << "huawei" << QStringList{"info"};
        QTest::newRow("simcom cells") << "simcom" << QStringList{"cells"};
        QTest::newRow("cinterion balance") << "cinterion" << QStringList{"balance", "--code", "*100#"};
    }

    void recordAndReplay()
    {
        // A session recorded against one modem, played back by another
        // modemsim: the tool cannot tell the two apart.
        QFETCH(QString, make);
        QFETCH(QStringList, command);
        QTemporaryDir dir;
        const QString recording = dir.filePath(QStringLiteral("session.rec"));
        QProcess sim;
        const QString device = startSim(sim, {QStringLiteral("--make"), make, QStringLiteral("--set"),
                                              QStringLiteral("ussd *100# Balance 7.25 rub")});
        QVERIFY(!device.isEmpty());
        const QString live = runTool(QStringList{command.first(), device, QStringLiteral("--record"), recording}
                                       + command.mid(1));
        sim.terminate();
        QVERIFY(sim.waitForFinished(5000));
        // Beside the exact bytes, the recording shows them as text for a
        // person: printable characters, spaces included, as they are.
        QString received;
        for (const QByteArray& line : zmltest::readFile(recording).split('\n')) {
            const QJsonObject event = QJsonDocument::fromJson(line).object();
            if (event.value(QStringLiteral("dir")).toString() == QLatin1String("<"))
                received += event.value(QStringLiteral("text")).toString();
        }
        QVERIFY2(received.contains(command.first() == QLatin1String("balance") ? "Balance 7.25 rub" : "OK"),
                 qPrintable(received));

        QProcess replay;
        const QString replayed = startSim(replay, {QStringLiteral("--replay"), recording});
        QVERIFY(!replayed.isEmpty());
        const QString again = runTool(QStringList{command.first(), replayed} + command.mid(1));
        replay.terminate();
        QVERIFY(replay.waitForFinished(5000));
        QVERIFY2(!live.startsWith("failed") && live.size() > 20, qPrintable(live));
        // The port's own name is the only difference.
        QCOMPARE(QString(again).replace(replayed, device), live);
    }

    // --record writes only a new file of its own, relays only a terminal,
    // and a modem that vanishes is recorded, named and replayed as such.
    void recordingTakesNothing()
    {
        QTemporaryDir dir;
        QProcess sim;
        const QString device = startSim(sim, {QStringLiteral("--make"), QStringLiteral("huawei"),
                                              QStringLiteral("--set"), QStringLiteral("vanish-after 12"),
                                              QStringLiteral("--link-dir"), dir.path()});
        QVERIFY(!device.isEmpty());
        const QString notes = dir.filePath(QStringLiteral("notes.txt"));
        const QString link = dir.filePath(QStringLiteral("link.jsonl"));
        QFile file(notes);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("mine\n");
        file.close();
        QVERIFY(QFile::link(notes, link));
        const QString fresh = dir.filePath(QStringLiteral("fresh.jsonl"));
        for (const QStringList& args : {QStringList{"signal", device, "--record", notes},
                                        QStringList{"--record", link, "signal", device},
                                        QStringList{"signal", notes, "--record", fresh}}) {
            const QString out = runTool(args);
            QVERIFY2(out.startsWith("failed: ") && out.contains(args.contains(fresh) ? "not a serial port" : "exists"),
                     qPrintable(out));
            QCOMPARE(zmltest::readFile(notes), QByteArray("mine\n"));
            QVERIFY(!QFile::exists(fresh));
        }

        // The modem vanishes in mid-session: said of the user's port.
        const QString live = runTool({QStringLiteral("info"), device, QStringLiteral("--record"), fresh});
        QVERIFY2(live.startsWith("failed: ") && live.contains(device) && !live.contains("/dev/pts"), qPrintable(live));
        // Owner, group, others (the "user" bits are this process's view).
        QCOMPARE(QFile(fresh).permissions() & 0x7077, QFile::ReadOwner | QFile::WriteOwner);
        const QList<QByteArray> lines = zmltest::readFile(fresh).trimmed().split('\n');
        QCOMPARE(QJsonDocument::fromJson(lines.first()).object().value("port").toString(), device);
        QCOMPARE(QJsonDocument::fromJson(lines.last()).object().value("event").toString(), QStringLiteral("gone"));
        // The readable text shows a command's CR as \x0d (the hex field is exact).
        bool carriageReturn = false;
        for (const QByteArray& line : lines)
            carriageReturn |= QJsonDocument::fromJson(line).object().value("text").toString().endsWith("\\x0d");
        QVERIFY(carriageReturn);
        sim.terminate();
        QVERIFY(sim.waitForFinished(5000));

        QProcess replay;
        const QString replayed = startSim(replay, {QStringLiteral("--replay"), fresh});
        QVERIFY(!replayed.isEmpty());
        const QString again = runTool({QStringLiteral("info"), replayed});
        replay.terminate();
        QVERIFY(replay.waitForFinished(5000));
        QCOMPARE(QString(again).replace(replayed, device), live);
    }

    void scriptedModem()
    {
        // A support engineer's reproduction of a field report: a script file
        // and a statement on the command line.
        QTemporaryDir dir;
        QFile script(dir.filePath(QStringLiteral("report.txt")));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("# no signal, USSD refused, one message\n"
                     "signal 99,99\n"
                     "ussd-status *100# 4\n"
                     "sms +79161234567 Hello\n"
                     "error +CPIN? +CME ERROR: SIM PIN required\n"
                     "answer +CGMR line one\\nline two\n"
                     "answer +CSCS=\"UCS2\"\n");
        script.close();
        QProcess sim;
        const QString device = startSim(sim, {QStringLiteral("--make"), QStringLiteral("cinterion"),
                                              QStringLiteral("--script"), script.fileName(),
                                              QStringLiteral("--set"), QStringLiteral("vanish-after 20"),
                                              QStringLiteral("--link-dir"), dir.path(), QStringLiteral("--log")});
        QCOMPARE(device, dir.filePath(QStringLiteral("ttySIM0")));

        AtModem modem;
        QVERIFY2(modem.open(device, 115200, 1), qPrintable(modem.lastError()));
        QByteArray answer;
        QVERIFY(modem.sendCommand("+CSQ", answer, 1000));
        QVERIFY2(answer.contains("+CSQ: 99,99"), answer.constData());
        QVERIFY(modem.sendCommand("+CMGF=0", answer, 1000));
        QVERIFY(modem.sendCommand("+CMGL=4", answer, 1000));
        QVERIFY2(answer.contains("+CMGL: 1,0,"), answer.constData());
        QVERIFY(!modem.sendCommand("+CPIN?", answer, 1000));
        QVERIFY2(answer.contains("+CME ERROR: SIM PIN required\r\n"), answer.constData());
        QVERIFY(modem.sendCommand("+CGMR", answer, 1000));
        QVERIFY2(answer.contains("\r\nline one\r\nline two\r\n"), answer.constData());
        QVERIFY(modem.sendCommand("+CSCS=\"UCS2\"", answer, 1000));
        QVERIFY(modem.sendCommand("+CGMI", answer, 1000));
        QVERIFY2(answer.contains("\r\nCinterion\r\n"), answer.constData());
        QVERIFY(modem.sendCommand("+CGMM", answer, 1000));
        QVERIFY2(answer.contains("\r\nMC52i\r\n"), answer.constData());
        zelmodems::UssdRequest ussd(&modem);
        QVERIFY(!ussd.send(QStringLiteral("*100#")));
        QCOMPARE(ussd.status(), 4);
        // The twentieth command is the last the device answers.
        int more = 0;
        while (more < 20 && modem.sendCommand("+CSQ", answer, 1000))
            ++more;
        QVERIFY(more > 0 && more < 20);
        modem.close();
        // Interrupted, it prints each command the modem received, with the
        // time since it started and the line speed, and ends.
        sim.terminate();
        QVERIFY(sim.waitForFinished(5000));
        QCOMPARE(sim.exitStatus(), QProcess::NormalExit);
        QCOMPARE(sim.exitCode(), 0);
        const QString log = QString::fromLocal8Bit(sim.readAll());
        const QRegularExpressionMatch csq =
            QRegularExpression(QStringLiteral("\\n  (\\d+) ms\\t115200\\tAT\\+CSQ\\n")).match(log);
        QVERIFY2(csq.hasMatch() && csq.captured(1).toLongLong() > 0, qPrintable(log));
    }

    // "error +CUSD" refuses the request whatever its arguments (a Huawei
    // sends the code packed).
    void errorForEveryFormOfACommand()
    {
        QProcess sim;
        const QString device = startSim(sim, {QStringLiteral("--make"), QStringLiteral("huawei"),
                                              QStringLiteral("--set"), QStringLiteral("error +CUSD")});
        QVERIFY(!device.isEmpty());
        AtModem modem;
        QVERIFY2(modem.open(device, 115200, 1), qPrintable(modem.lastError()));
        zelmodems::UssdRequest ussd(&modem);
        QVERIFY(!ussd.send(QStringLiteral("*100#")));
        QCOMPARE(ussd.failure().code(), zelmodems::Failure::Refused);
        modem.close();
        sim.terminate();
        QVERIFY(sim.waitForFinished(5000));
    }

    void rejectsBadArguments()
    {
        const QList<QPair<QStringList, QByteArray>> cases = {
            {{QStringLiteral("--set"), QStringLiteral("signal strong")}, "signal takes rssi,ber"},
            {{QStringLiteral("--make"), QStringLiteral("nokia")}, "unknown make nokia"},
            {{QStringLiteral("--count"), QStringLiteral("0")}, "--count takes a number from 1 to 1000"},
            {{QStringLiteral("--set"), QStringLiteral("sms-pdu 07ZZ")}, "sms-pdu takes a PDU in hexadecimal"},
            {{QStringLiteral("--set"), QStringLiteral("sms-pdu 0791 4")}, "a status from 0 to 3"},
            {{QStringLiteral("--count"), QStringLiteral("1001")}, "--count takes a number from 1 to 1000"},
        };
        for (const auto& c : cases) {
            QProcess sim;
            sim.start(QStringLiteral(MODEMSIM_PATH), c.first);
            QVERIFY(sim.waitForFinished(5000));
            QCOMPARE(sim.exitCode(), 2);
            QVERIFY(sim.readAllStandardError().contains(c.second));
        }

        QProcess help;
        help.start(QStringLiteral(MODEMSIM_PATH), {QStringLiteral("--help")});
        QVERIFY(help.waitForFinished(5000));
        QCOMPARE(help.exitCode(), 0);
        QVERIFY(help.readAllStandardOutput().contains("--count"));

        // The largest count is taken: as many modems, each with its link;
        // a stored sent PDU (status 3) too.
        QTemporaryDir dir;
        QProcess sim;
        QVERIFY(!startSim(sim, {QStringLiteral("--count"), QStringLiteral("1000"), QStringLiteral("--link-dir"),
                                dir.path(), QStringLiteral("--set"), QStringLiteral("sms-pdu 0791 3")}).isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(dir.filePath(QStringLiteral("ttySIM999"))), 20000);
        sim.terminate();
        QVERIFY(sim.waitForFinished(10000));
    }

};

QTEST_GUILESS_MAIN(TestModemsimProcess)
#include "tst_modemsim_process.moc"
