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
        // Every port that gave no modem gets a reason: a SIM that cannot be
        // read, a port another program holds, a missing device, a file
        // that is no serial port. The healthy modem beside them is found.
        auto noSim = clitest::startModem(Make::Huawei);
        auto held = clitest::startModem(Make::Cinterion);
        auto healthy = clitest::startModem(Make::Zte);
        QVERIFY(noSim && held && healthy);
        noSim->setFault("+CIMI", zelmodems::sim::Fault::Error);
        QSerialPort holder(held->devicePath());
        QVERIFY(holder.open(QIODevice::ReadWrite));
        const clitest::Result r = run({"find", "--json", noSim->devicePath(), held->devicePath(),
                                       "/nonexistent/ttyUSB9", "/dev/null", healthy->devicePath()});
        const QJsonArray modems = r.json().value("modems").toArray();
        QVERIFY2(modems.size() == 1 && modems.at(0).toObject().value("portName") == healthy->devicePath(), r.describe());
        QMap<QString, QString> reasons;
        for (const QJsonValue& v : r.json().value("withoutModem").toArray())
            reasons.insert(v.toObject().value("port").toString(), v.toObject().value("reason").toString());
        QCOMPARE(reasons.size(), 4);
        QVERIFY2(reasons.value(noSim->devicePath()).contains("without SIM or operator: AT+CIMI answered \"ERROR\""),
                 r.describe());
        QVERIFY2(reasons.value(held->devicePath())
                     .startsWith(QStringLiteral("in use by another program (pid %1").arg(QCoreApplication::applicationPid())),
                 r.describe());
        QCOMPARE(reasons.value("/nonexistent/ttyUSB9"), QStringLiteral("no such device"));
        QVERIFY2(reasons.value("/dev/null").startsWith("cannot be opened as a serial port"), r.describe());
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
              QStringLiteral("Own number:   9261234567"), QStringLiteral("3 message(s) in the modem:"),
              QStringLiteral("  Уважаемый абонент! Пакет интернета с 1 числа стоит 350 руб. Подробности на "
                             "сайте оператора."),
              QStringLiteral("Demo finished: 8 commands, all succeeded.")})
            QVERIFY2(lines.contains(expected), qPrintable(expected + "\n" + r.describe()));
    }

    void demoJson()
    {
        bool ok = false;
        const clitest::Result r = run({"demo", "--json"});
        const QJsonObject demo = r.json(&ok);
        QVERIFY2(r.exitCode == 0 && ok, r.describe());
        QCOMPARE(demo.value("simulatedPorts").toArray().size(), 4);
        const QJsonArray steps = demo.value("steps").toArray();
        QStringList commands;
        for (const QJsonValue& step : steps) {
            commands << step.toObject().value("command").toString();
            QCOMPARE(step.toObject().value("exitCode").toInt(), 0);
        }
        QCOMPARE(commands, (QStringList{"zelmodems find", "zelmodems info ttyS1", "zelmodems balance ttyS1",
                                        "zelmodems sms list ttyS1", "zelmodems info ttyUSB1",
                                        "zelmodems balance ttyUSB1", "zelmodems own-number ttyUSB1",
                                        "zelmodems sms list ttyUSB1"}));

        const QJsonArray modems = steps.at(0).toObject().value("result").toObject().value("modems").toArray();
        QCOMPARE(modems.size(), 2);
        const QJsonObject usb = modems.at(1).toObject();
        QCOMPARE(usb.value("portName").toString(), QStringLiteral("ttyUSB0"));
        QCOMPARE(usb.value("cmdPortName").toString(), QStringLiteral("ttyUSB1"));

        const QJsonObject info = steps.at(4).toObject().value("result").toObject();
        QCOMPARE(info.value("mnc").toInt(), 2);
        QCOMPARE(info.value("dialect").toString(), QStringLiteral("HUAWEI"));

        const QJsonArray messages =
            steps.at(7).toObject().value("result").toObject().value("messages").toArray();
        QCOMPARE(messages.size(), 3);
        QCOMPARE(messages.at(0).toObject().value("sender").toString(), QStringLiteral("MegaFon"));
        QCOMPARE(messages.at(2).toObject().value("text").toString(),
                 QStringLiteral("The router in the cabinet is back online."));
        for (int i = 1; i < messages.size(); ++i)
            QVERIFY(messages.at(i - 1).toObject().value("dateTime").toString()
                    <= messages.at(i).toObject().value("dateTime").toString());
    }
};

QTEST_GUILESS_MAIN(TestCliFind)
#include "tst_cli_find.moc"
