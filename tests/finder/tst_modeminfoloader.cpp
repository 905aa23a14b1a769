// The on-demand loader against simulated modems, through the shared library
// as a caller uses it.
#include "modeminfo.h"
#include "modeminfoloader.h"
#include "modemsettings.h"
#include "operatordata.h"
#include "simmodem.h"

#include <QtTest>

#include <memory>

using zelmodems::sim::Make;
using zelmodems::sim::Profile;
using zelmodems::sim::SimModem;

namespace {

// A record as the settings keep it: a port and a rate, an init line of its own.
ModemInfo recordFor(const QString& port, int baudrate)
{
    ModemInfo info;
    info.setPortName(port);
    info.setBaudrate(baudrate);
    info.setConnectionName(QStringLiteral("office"));
    info.addInitLine(QStringLiteral("ATZ"));
    return info;
}

} // namespace

class TestModemInfoLoader : public QObject
{
    Q_OBJECT

private slots:
    // The modem's own failures come back as the driver's last error; an
    // operator missing from the table as the loader's text.
    void modemFails_data()
    {
        QTest::addColumn<QByteArray>("imsi");
        QTest::addColumn<QString>("error");
        QTest::newRow("no SIM") << QByteArray() << QStringLiteral("Modem said \"ERROR\"");
        QTest::newRow("unknown operator")
            << QByteArray("999011234567890")
            << QStringLiteral("Mnc table does not contain an operator with mcc = 999 and mnc = 1");
    }
    void modemFails()
    {
        QFETCH(QByteArray, imsi);
        QFETCH(QString, error);
        SimModem sim(Make::Huawei);
        sim.setImsi(imsi);
        QVERIFY(sim.start());
        const ModemInfo original = recordFor(sim.devicePath(), 115200);
        ModemInfo info = original;
        QString text;
        QVERIFY(!ModemInfoLoader::loadModemInfo(info, text));
        QCOMPARE(text, error);
        QCOMPARE(info, original);
    }

    // Success adds the operator's init line and credentials; the error text
    // stays "Unknown error". A second load appends the init line again.
    void loadsOperatorData()
    {
        SimModem sim(Make::Zte);
        sim.setImsi("250011234567890");   // MTS
        QVERIFY(sim.start());
        const OperatorData mts = ModemSettings().mncTable().value(25001);
        QVERIFY(mts.isValid());

        const ModemInfo original = recordFor(sim.devicePath(), 115200);
        ModemInfo info = original;
        QString error;
        QVERIFY(ModemInfoLoader::loadModemInfo(info, error));
        QCOMPARE(error, QStringLiteral("Unknown error"));
        ModemInfo expected = original;
        expected.addInitLine(mts.modemInitLine());
        expected.setUserName(mts.userName());
        expected.setPassword(mts.password());
        QCOMPARE(info, expected);

        QVERIFY(ModemInfoLoader::loadModemInfo(info, error));
        QCOMPARE(info.initLines(), QStringList({QStringLiteral("ATZ"), mts.modemInitLine(), mts.modemInitLine()}));
    }
};

QTEST_MAIN(TestModemInfoLoader)
#include "tst_modeminfoloader.moc"
