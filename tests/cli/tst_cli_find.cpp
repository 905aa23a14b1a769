// zelmodems find over simulated modems named by their device paths, and the
// demo from end to end.
#include "clifixture.h"

#include <QJsonArray>
#include <QSerialPort>

using clitest::run;
using zelmodems::sim::Make;
using zelmodems::sim::SimModem;

class TestCliFind : public QObject
{
    Q_OBJECT

private slots:
    void namesWhyPortsGaveNoModem()
    {
        // Every port that gave no modem gets a reason: a port another
        // program holds, a missing device, a file that is no serial port.
        // Modems that cannot be used yet (no SIM, a PIN to enter) are listed
        // as modems, with their state and the next step. The healthy modem
        // beside them is found.
        auto noSim = clitest::startModem(Make::Huawei);
        auto locked = clitest::startModem(Make::SimCom);
        auto held = clitest::startModem(Make::Cinterion);
        auto healthy = clitest::startModem(Make::Zte);
        QVERIFY(noSim && locked && held && healthy);
        noSim->setSim(zelmodems::sim::SimState::NotInserted);
        locked->setSim(zelmodems::sim::SimState::Pin, 2);
        QSerialPort holder(held->devicePath());
        QVERIFY(holder.open(QIODevice::ReadWrite));
        const clitest::Result r = run({"find", "--json", noSim->devicePath(), locked->devicePath(),
                                       held->devicePath(), "/nonexistent/ttyUSB9", "/dev/null",
                                       healthy->devicePath()});
        QCOMPARE(r.exitCode, 0);
        const QJsonArray modems = r.json().value("modems").toArray();
        QVERIFY2(modems.size() == 1 && modems.at(0).toObject().value("portName") == healthy->devicePath(), r.describe());
        QCOMPARE(modems.at(0).toObject().value("registration").toObject().value("state").toString(),
                 QStringLiteral("home"));
        QMap<QString, QString> reasons;
        for (const QJsonValue& v : r.json().value("withoutModem").toArray())
            reasons.insert(v.toObject().value("port").toString(), v.toObject().value("reason").toString());
        QCOMPARE(reasons.size(), 3);
        QVERIFY2(reasons.value(held->devicePath())
                     .startsWith(QStringLiteral("in use by another program (pid %1").arg(QCoreApplication::applicationPid())),
                 r.describe());
        QCOMPARE(reasons.value("/nonexistent/ttyUSB9"), QStringLiteral("no such device"));
        QVERIFY2(reasons.value("/dev/null").startsWith("cannot be opened as a serial port"), r.describe());

        QMap<QString, QJsonObject> attention;
        for (const QJsonValue& v : r.json().value("modemsNeedingAttention").toArray())
            attention.insert(v.toObject().value("port").toString(), v.toObject());
        QCOMPARE(attention.size(), 2);
        const QJsonObject none = attention.value(noSim->devicePath());
        QCOMPARE(none.value("sim").toObject().value("state").toString(), QStringLiteral("not-inserted"));
        QCOMPARE(none.value("problems").toArray().at(0).toObject().value("code").toString(), QStringLiteral("no-sim"));
        QCOMPARE(none.value("registration").toObject().value("state").toString(), QStringLiteral("not-registered"));
        const QJsonObject pin = attention.value(locked->devicePath());
        QCOMPARE(pin.value("sim").toObject().value("pinAttempts").toInt(), 2);
        QCOMPARE(pin.value("problems").toArray().at(0).toObject().value("next").toString(),
                 QStringLiteral("zelmodems sim unlock %1").arg(locked->devicePath()));

        // Without a usable modem the search fails, but names what it found.
        const clitest::Result text = run({"find", noSim->devicePath(), locked->devicePath()});
        QCOMPARE(text.exitCode, 1);
        QVERIFY2(text.out.contains(QStringLiteral("%1: huawei_E3372 (no SIM inserted)").arg(noSim->devicePath())),
                 text.describe());
        QVERIFY2(text.err.contains("no modem is ready to use; modems that need attention: 2"), text.describe());
        QVERIFY2(!text.err.contains("finded"), text.describe());
    }

    void demoText()
    {
        const clitest::Result r = run({"demo"});
        QVERIFY2(r.exitCode == 0, r.describe());
        QVERIFY2(r.err.isEmpty(), r.describe());
        const QStringList lines = r.out.split('\n');
        // The USB stick's three interfaces become one modem: data port from
        // the gsmmodem link, the lowest other interface for commands.
        const QString usbRow = lines.filter(QRegularExpression("^ttyUSB0 +ttyUSB1 ")).value(0);
        QVERIFY2(usbRow.contains("huawei_E3372_") && usbRow.contains("866123456789012"), r.describe());
        QVERIFY2(lines.filter(QRegularExpression("^ttyS1 +- +115200 ")).size() == 1, r.describe());
        for (const QString& expected :
             {QStringLiteral("$ zelmodems find"), QStringLiteral("$ zelmodems info ttyUSB1"),
              QStringLiteral("Balance:      123.45"), QStringLiteral("Balance:      -15.20"),
              QStringLiteral("Own number:   +79261234567 (national 9261234567)"), QStringLiteral("3 message(s) in the modem:"),
              QStringLiteral("  Уважаемый абонент! Пакет интернета с 1 числа стоит 350 руб. Подробности на "
                             "сайте оператора."),
              QStringLiteral("Demo finished: 8 commands, all succeeded.")})
            QVERIFY2(lines.contains(expected), qPrintable(expected + "\n" + r.describe()));
    }
};

QTEST_GUILESS_MAIN(TestCliFind)
#include "tst_cli_find.moc"
