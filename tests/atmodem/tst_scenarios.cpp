// A modems service's day with one modem of each common make, from opening
// the port to balance and SMS, all on one port, against the simulated modem.
// Each step's details are tested on their own elsewhere; here they must not
// disturb one another.
#include "simfixture.h"

using namespace zelmodems::sim;
using zmltest::minutesAgo;

class TestScenarios : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void serviceDay_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<int>("dialect");
        QTest::addColumn<QByteArray>("balanceCode");
        QTest::addColumn<QByteArray>("balanceReply");
        QTest::addColumn<double>("balance");

        QTest::newRow("Huawei E3372") << Make::Huawei << int(AtModem::HUAWEI) << QByteArray("*100#")
                                      << Ussd::ucs2(QString::fromUtf8("Баланс -15,20 р. Пакет: 3 ГБ")) << -15.2;
        QTest::newRow("SIMCOM SIM7600") << Make::SimCom << int(AtModem::SIM_COM) << QByteArray("*102#")
                                        << Ussd::plain("Balans: 120.5r. Spasibo") << 120.5;
        // The network is still busy at the first request.
        QTest::newRow("ZTE MF626") << Make::Zte << int(AtModem::ZTE) << QByteArray("*102#")
                                   << Ussd::ucs2(QString::fromUtf8("Ваш баланс 42,00 руб.")) << 42.0;
        QTest::newRow("Cinterion MC52i") << Make::Cinterion << int(AtModem::SIEMENCE) << QByteArray("#100#")
                                         << Ussd::plain("Balance minus 3,20 EUR") << -3.2;
    }

    void serviceDay()
    {
        QFETCH(Make, make);
        QFETCH(int, dialect);
        QFETCH(QByteArray, balanceCode);
        QFETCH(QByteArray, balanceReply);
        QFETCH(double, balance);

        SimModem sim(make);
        QVERIFY(sim.start());
        sim.setUssdReply(balanceCode, balanceReply);
        if (make == Make::Zte)
            sim.setUssdRefusals(1);
        sim.storeSms(DeliverPdu::gsm7("+79031110000", minutesAgo(30), "Vash tarif izmenen"), 1);
        sim.storeSms(DeliverPdu::ucs2("MegaFon", minutesAgo(10), QString::fromUtf8(" до 31.05."), 0x21, 2, 2), 0);
        sim.storeSms(DeliverPdu::ucs2("MegaFon", minutesAgo(10), QString::fromUtf8("Пакет 3 ГБ действует"), 0x21, 1, 2),
                     0);

        AtModem modem;
        QVERIFY2(modem.open(sim.devicePath(), 115200, 3), qPrintable(modem.lastError()));
        QCOMPARE(modem.dialect(), qint32(dialect));

        QVariantMap info;
        QVERIFY(modem.getInfo(info));
        QCOMPARE(info.value(QStringLiteral("imei")).toString(), QString::fromLatin1(sim.profile().imei));
        QString operatorName;
        QVERIFY(modem.getOperator(operatorName));
        QCOMPARE(operatorName, QStringLiteral("MegaFon"));

        // Balance.
        QString reply;
        QVERIFY(modem.sendUSSD(QString::fromLatin1(balanceCode), reply));
        QCOMPARE(modem.parseModemBalance(reply), balance);

        // SMS: read, joined, consumed; then one sent.
        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages.at(0).text, QStringLiteral("Vash tarif izmenen"));
        QCOMPARE(messages.at(1).text, QString::fromUtf8("Пакет 3 ГБ действует до 31.05."));
        QList<AtModem::SSms> again;
        QVERIFY(!modem.takeMessages(again));
        QVERIFY(modem.sendMessage(QStringLiteral("+79031110000"), QStringLiteral("BALANCE")));
        QCOMPARE(sim.sentMessages().value(0).second, QByteArray("BALANCE"));

        modem.close();
        QVERIFY(!modem.getOperator(operatorName));
    }
};

QTEST_GUILESS_MAIN(TestScenarios)
#include "tst_scenarios.moc"
