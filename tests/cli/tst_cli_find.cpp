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
};

QTEST_GUILESS_MAIN(TestCliFind)
#include "tst_cli_find.moc"
