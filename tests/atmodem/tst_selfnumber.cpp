// The SIM's own number, asked of the operator by USSD: in the USSD reply,
// or in the SMS the operator sends back.
#include "simfixture.h"

using namespace zelmodems::sim;
using zmltest::minutesAgo;
using zmltest::startAndOpen;

class TestSelfNumber : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void byUssdReply_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("number");

        QTest::newRow("formatted") << Ussd::plain("Vash nomer +7 (912) 345-67-89") << QStringLiteral("9123456789");
        QTest::newRow("trunk prefix") << Ussd::plain("Vash nomer 89123456789.") << QStringLiteral("9123456789");
        QTest::newRow("UCS2") << Ussd::ucs2(QString::fromUtf8("Ваш номер: +7 912 345-67-89"))
                              << QStringLiteral("9123456789");
        QTest::newRow("digits at the very start") << Ussd::plain("79123456789 - vash nomer") << QString();
        QTest::newRow("twelve digits: the first eleven") << Ussd::plain("Nomer 379123456789")
                                                        << QStringLiteral("7912345678");
        QTest::newRow("too short") << Ussd::plain("Nomer 912-345") << QString();
        QTest::newRow("no text") << Ussd::statusOnly(2) << QString();
        QTest::newRow("request failed: emptied all the same") << QByteArray("+CME ERROR: 100") << QString();
    }

    void byUssdReply()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QString, number);

        ZML_OPEN(Make::Cinterion);
        sim.setUssdReply("*110*10#", reply);
        QString got = QStringLiteral("old");
        // The result says whether a reply came, not whether it held a number.
        QCOMPARE(modem.requestSelfNumber(false, QStringLiteral("*110*10#"), got), reply.startsWith("+CUSD:"));
        QCOMPARE(got, number);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+CUSD=1,\"*110*10#\",15"}));
    }

    // The whole exchange by SMS, once (it pauses for ten seconds): the old
    // message is too old, the fresh one that begins with digits does not
    // count, the operator's answer decides and later ones are not read.
    void bySms()
    {
        ZML_OPEN(Make::Huawei);
        sim.storeSms(DeliverPdu::gsm7("+79031110000", minutesAgo(5 * 60), "Vash nomer 79110000001"), 1, 1);
        sim.storeSms(DeliverPdu::gsm7("+79031110000", minutesAgo(20), "79120000002 bonus"), 1, 2);
        sim.storeSms(DeliverPdu::gsm7("+79031110000", minutesAgo(1), "Nomer 9990000003"), 1, 3);
        sim.setUssdSmsReply("*205#", DeliverPdu::ucs2("MegaFon", minutesAgo(3),
                                                      QString::fromUtf8("Ваш номер: 89123456789")));

        QString number;
        QVERIFY(modem.requestSelfNumber(true, QStringLiteral("*205#"), number));
        QCOMPARE(number, QStringLiteral("9123456789"));
        QCOMPARE(sim.ussdRequests(), QList<QByteArray>{"*205#"});
        QList<QByteArray> commands = sim.commands();
        QCOMPARE(commands.mid(0, 2), (QList<QByteArray>{"E0", "+CUSD=0,\"2a19ac3602\",15"}));
        // Then the short probe: bare "AT"s until one is answered in 5 ms.
        commands = commands.mid(2);
        QVERIFY(!commands.isEmpty() && commands.first().isEmpty());
        while (!commands.isEmpty() && commands.first().isEmpty())
            commands.removeFirst();
        QCOMPARE(commands, (QList<QByteArray>{"E0", "+CMGF=0", "+CMGL=4", "+CMGD=1", "+CMGD=2", "+CMGD=3",
                                              "+CMGD=4"}));
        QVERIFY(sim.storedSms().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSelfNumber)
#include "tst_selfnumber.moc"
