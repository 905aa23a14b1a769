// The simulator's GSM 7-bit packer, against known packings: the driver tests
// build their expected USSD payloads with it, so its faults would move the
// expectations along. The rest of the simulator is what every other test runs.
#include "simmodem.h"

#include <QtTest>

using zelmodems::sim::Ussd;

class TestSimModem : public QObject
{
    Q_OBJECT

private slots:
    void ussdPacking_data()
    {
        QTest::addColumn<QByteArray>("septets");
        QTest::addColumn<QByteArray>("packed");
        QTest::newRow("*100#") << QByteArray("*100#") << QByteArray::fromHex("aa180c3602");
        // Seven septets leave seven zero bits in the last octet: padding,
        // not an eighth character ("@" is septet 0). Eight fill it.
        QTest::newRow("seven characters") << QByteArray("1234567") << QByteArray::fromHex("31d98c56b3dd00");
        QTest::newRow("eight characters") << QByteArray("12345678") << QByteArray::fromHex("31d98c56b3dd70");
    }

    void ussdPacking()
    {
        QFETCH(QByteArray, septets);
        QFETCH(QByteArray, packed);
        QCOMPARE(Ussd::pack(septets), packed);
        QCOMPARE(Ussd::unpack(packed), septets);
    }
};

QTEST_GUILESS_MAIN(TestSimModem)
#include "tst_simmodem.moc"
