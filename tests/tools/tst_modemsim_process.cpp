// modemsim started as a program, as a developer starts it by hand, and
// driven through the library.
#include "atmodem.h"
#include "ussdrequest.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class TestModemsimProcess : public QObject
{
    Q_OBJECT

private slots:
    void libraryDrivesSimulatedModems()
    {
        QTemporaryDir dir;
        QProcess sim;
        sim.start(QStringLiteral(MODEMSIM_PATH),
                  {QStringLiteral("--make"), QStringLiteral("huawei"), QStringLiteral("--make"),
                   QStringLiteral("cinterion"), QStringLiteral("--link-dir"), dir.path(), QStringLiteral("--log")});
        QVERIFY(sim.waitForStarted());

        // One line per modem: make, tab, device path.
        QStringList lines;
        while (lines.size() < 2 && sim.waitForReadyRead(5000)) {
            while (sim.canReadLine())
                lines << QString::fromLocal8Bit(sim.readLine()).trimmed();
        }
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0), QStringLiteral("huawei\t") + dir.filePath(QStringLiteral("ttySIM0")));
        QCOMPARE(lines.at(1), QStringLiteral("cinterion\t") + dir.filePath(QStringLiteral("ttySIM1")));

        AtModem huawei;
        QVERIFY2(huawei.open(dir.filePath(QStringLiteral("ttySIM0")), 115200, 1), qPrintable(huawei.lastError()));
        QCOMPARE(huawei.name(), QStringLiteral("huawei_E3372"));
        QCOMPARE(huawei.dialect(), qint32(AtModem::HUAWEI));
        huawei.close();

        AtModem cinterion;
        QVERIFY(cinterion.open(dir.filePath(QStringLiteral("ttySIM1")), 9600, 1));
        QCOMPARE(cinterion.gsmDialect(), QStringLiteral("SIEMENCE"));
        QByteArray answer;
        QVERIFY(cinterion.sendCommand("+CSQ", answer, 1000));
        QVERIFY(answer.contains("+CSQ: 20,99"));
        cinterion.close();

        // Interrupted, it prints what each modem received and ends.
        sim.terminate();
        QVERIFY(sim.waitForFinished(5000));
        QCOMPARE(sim.exitStatus(), QProcess::NormalExit);
        QCOMPARE(sim.exitCode(), 0);
        const QString log = QString::fromLocal8Bit(sim.readAll());
        QVERIFY2(log.contains(QStringLiteral("ATI")) && log.contains(QStringLiteral("AT+CSQ")), qPrintable(log));
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
                     "sms +79161234567 Hello\n");
        script.close();
        QProcess sim;
        sim.start(QStringLiteral(MODEMSIM_PATH), {QStringLiteral("--make"), QStringLiteral("cinterion"),
                                                  QStringLiteral("--script"), script.fileName(),
                                                  QStringLiteral("--set"), QStringLiteral("vanish-after 20")});
        QVERIFY(sim.waitForStarted() && sim.waitForReadyRead(5000));
        const QString device = QString::fromLocal8Bit(sim.readLine()).trimmed().section(QLatin1Char('\t'), 1);

        AtModem modem;
        QVERIFY2(modem.open(device, 115200, 1), qPrintable(modem.lastError()));
        QByteArray answer;
        QVERIFY(modem.sendCommand("+CSQ", answer, 1000));
        QVERIFY2(answer.contains("+CSQ: 99,99"), answer.constData());
        QVERIFY(modem.sendCommand("+CMGF=0", answer, 1000));
        QVERIFY(modem.sendCommand("+CMGL=4", answer, 1000));
        QVERIFY2(answer.contains("+CMGL: 1,0,"), answer.constData());
        zelmodems::UssdRequest ussd(&modem);
        QVERIFY(!ussd.send(QStringLiteral("*100#")));
        QCOMPARE(ussd.status(), 4);
        // The twentieth command is the last the device answers.
        int more = 0;
        while (more < 20 && modem.sendCommand("+CSQ", answer, 1000))
            ++more;
        QVERIFY(more > 0 && more < 20);
        modem.close();
        sim.terminate();
        QVERIFY(sim.waitForFinished(5000));
    }

    void rejectsBadScript()
    {
        QProcess sim;
        sim.start(QStringLiteral(MODEMSIM_PATH), {QStringLiteral("--set"), QStringLiteral("signal strong")});
        QVERIFY(sim.waitForFinished(5000));
        QCOMPARE(sim.exitCode(), 2);
        QVERIFY(sim.readAllStandardError().contains("signal takes rssi,ber"));
    }

    void rejectsUnknownMake()
    {
        QProcess sim;
        sim.start(QStringLiteral(MODEMSIM_PATH), {QStringLiteral("--make"), QStringLiteral("nokia")});
        QVERIFY(sim.waitForFinished(5000));
        QCOMPARE(sim.exitCode(), 2);
        QVERIFY(sim.readAllStandardError().contains("unknown make nokia"));
    }
};

QTEST_GUILESS_MAIN(TestModemsimProcess)
#include "tst_modemsim_process.moc"
