// A modems service's day with one modem of each common make, from opening
// the port to balance, cells and SMS, against the simulated modem.
#include "simfixture.h"

#include <qt5ext/logformat.h>

using namespace modemsim;
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
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("mcc");
        QTest::addColumn<int>("mnc");
        QTest::addColumn<QByteArray>("balanceCode");
        QTest::addColumn<QByteArray>("balanceReply");
        QTest::addColumn<QList<QByteArray>>("ussdCommands");   // what the balance request puts on the wire
        QTest::addColumn<double>("balance");
        QTest::addColumn<QString>("cells");                     // per make: cell list, or "lac/cid"
        QTest::addColumn<QString>("simKey");

        QTest::newRow("Huawei E3372")
            << Make::Huawei << int(AtModem::HUAWEI) << QStringLiteral("huawei_E3372") << 250 << 2
            << QByteArray("*100#") << Ussd::ucs2(QString::fromUtf8("Баланс -15,20 р. Пакет: 3 ГБ"))
            << QList<QByteArray>{"E0", "+CUSD=1,\"aa180c3602\",15"} << -15.2 << QStringLiteral("1A2B/00C3D4E5")
            << QStringLiteral("sim_id");
        QTest::newRow("SIMCOM SIM7600")
            << Make::SimCom << int(AtModem::SIM_COM) << QStringLiteral("SIMCOM_INCORPORATED_SIMCOM_SIM7600E-H") << 250
            << 99 << QByteArray("*102#") << Ussd::plain("Balans: 120.5r. Spasibo")
            << QList<QByteArray>{"E0", "+CSCS=\"GSM\"", "+CUSD=1,\"*102#\",15"} << 120.5 << QStringLiteral(",,50132,6699,,")
            << QString();
        QTest::newRow("ZTE MF626")
            << Make::Zte << int(AtModem::ZTE) << QStringLiteral("ZTE_INCORPORATED_MF626") << 250 << 20
            << QByteArray("*102#") << Ussd::ucs2(QString::fromUtf8("Ваш баланс 42,00 руб."))
            << QList<QByteArray>{"E0", "+CUSD=1,\"*102#\",15", "+CUSD=1,\"*102#\",15"} << 42.0
            << QStringLiteral("1A2B/00C3D4E5") << QStringLiteral("sim_id");
        QTest::newRow("Cinterion MC52i")
            << Make::Cinterion << int(AtModem::SIEMENCE) << QStringLiteral("Cinterion_MC52i") << 250 << 1
            << QByteArray("#100#") << Ussd::plain("Balance minus 3,20 EUR")
            << QList<QByteArray>{"E0", "+CUSD=1,\"#100#\",15"} << -3.2
            << QStringLiteral("000,000,0,0,0;250,01,3841,6700,25,-88;250,01,50132,6699,42,-68;250,01,50133,6699,30,-80")
            << QStringLiteral("simId");
    }

    void serviceDay()
    {
        QFETCH(Make, make);
        QFETCH(int, dialect);
        QFETCH(QString, name);
        QFETCH(int, mcc);
        QFETCH(int, mnc);
        QFETCH(QByteArray, balanceCode);
        QFETCH(QByteArray, balanceReply);
        QFETCH(QList<QByteArray>, ussdCommands);
        QFETCH(double, balance);
        QFETCH(QString, cells);
        QFETCH(QString, simKey);

        SimModem sim(make);
        QVERIFY(sim.start());
        sim.setUssdReply(balanceCode, balanceReply);
        if (make == Make::Zte)
            sim.setUssdRefusals(1);   // the network is still busy the first time
        sim.storeSms(DeliverPdu::gsm7("+79031110000", minutesAgo(30), "Vash tarif izmenen"), 1);
        sim.storeSms(DeliverPdu::ucs2("MegaFon", minutesAgo(10), QString::fromUtf8(" до 31.05."), 0x21, 2, 2), 0);
        sim.storeSms(DeliverPdu::ucs2("MegaFon", minutesAgo(10), QString::fromUtf8("Пакет 3 ГБ действует"), 0x21, 1, 2),
                     0);

        // Open: the modem is identified.
        AtModem modem;
        QVERIFY2(modem.open(sim.devicePath(), 115200, 3), qPrintable(modem.lastError()));
        QCOMPARE(modem.dialect(), qint32(dialect));
        QCOMPARE(modem.name(), name);
        QCOMPARE(modem.baudrate(), 115200);

        // Identity and network.
        QString imei;
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QString::fromLatin1(sim.profile().imei));
        int gotMcc = 0, gotMnc = 0;
        QVERIFY(modem.getMnc(gotMcc, gotMnc));
        QCOMPARE(gotMcc, mcc);
        QCOMPARE(gotMnc, mnc);
        QString operatorName;
        QVERIFY(modem.getOperator(operatorName));
        QCOMPARE(operatorName, QStringLiteral("MegaFon"));
        int level = 0;
        QVERIFY(modem.getSignalLevel(level));
        QCOMPARE(level, -73);

        QString gotCells;
        if (make == Make::Cinterion) {
            QVERIFY(modem.getSiemensCellList(gotCells));
        } else if (make == Make::SimCom) {
            QVERIFY(modem.getSimCOMCellList(gotCells));
        } else {
            QString lac, cid;
            QVERIFY(modem.getGsmCells(lac, cid));
            gotCells = lac + QLatin1Char('/') + cid;
        }
        QCOMPARE(gotCells, cells);

        QVariantMap info;
        QVERIFY(modem.getInfo(info));
        QCOMPARE(info.value(QStringLiteral("imei")).toString(), imei);
        if (!simKey.isEmpty())
            QVERIFY2(info.contains(simKey), qPrintable(logvariant(info)));
        QCOMPARE(info.contains(QStringLiteral("gsmCells")), make == Make::Cinterion || make == Make::SimCom);

        // Balance.
        sim.clearLog();
        QString reply;
        QVERIFY(modem.sendUSSD(QString::fromLatin1(balanceCode), reply));
        QCOMPARE(sim.commands(), ussdCommands);
        QCOMPARE(modem.parseModemBalance(reply), balance);

        // SMS: read, joined, consumed; then one sent.
        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages.at(0).text, QStringLiteral("Vash tarif izmenen"));
        QCOMPARE(messages.at(1).sender, QStringLiteral("MegaFon"));
        QCOMPARE(messages.at(1).text, QString::fromUtf8("Пакет 3 ГБ действует до 31.05."));
        QVERIFY(sim.storedSms().isEmpty());
        QList<AtModem::SSms> again;
        QVERIFY(!modem.takeMessages(again));

        QVERIFY(modem.sendMessage(QStringLiteral("+79031110000"), QStringLiteral("BALANCE")));
        QCOMPARE(sim.sentMessages().value(0).second, QByteArray("BALANCE"));

        modem.close();
        QCOMPARE(modem.baudrate(), 0);
        QString after;
        QVERIFY(!modem.getImei(after));
    }
};

QTEST_GUILESS_MAIN(TestScenarios)
#include "tst_scenarios.moc"
