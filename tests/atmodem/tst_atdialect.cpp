// Recognising a modem's make from its identification text, the dialect
// texts and the Huawei modem-only switch.
#include "simfixture.h"
#include "atdialect_p.h"

using namespace zelmodems::sim;
using zmltest::startAndOpen;

class TestAtDialect : public QObject
{
    Q_OBJECT

private slots:
    void classification_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("dialect");   // as gsmDialect() gives it
        QTest::addColumn<QString>("name");

        const auto ati = [](Make make) { return Profile::forMake(make).ati; };
        const QString siemens("SIEMENCE"), hspa("HSPA"), simcom("SIM_COM"), huawei("HUAWEI"), zte("ZTE");
        // 1: Siemens family, revision texts removed
        QTest::newRow("cinterion") << ati(Make::Cinterion) << siemens << QString("Cinterion_MC52i");
        QTest::newRow("lower-case cinterion, revision removed") << QByteArray("cinterion BGS2-W revision 01.301")
                                                                << siemens << QString("cinterion_BGS2-W");
        QTest::newRow("hspa before simcom") << QByteArray("SIMCOM HSPA Data Card") << hspa
                                            << QString("SIMCOM_HSPA_Data_Card");
        // 3: SIMCOM
        QTest::newRow("simcom") << ati(Make::SimCom) << simcom << QString("SIMCOM_INCORPORATED_SIMCOM_SIM7600E-H");
        // 4: Huawei, revisions kept
        QTest::newRow("huawei") << ati(Make::Huawei) << huawei << QString("huawei_E3372");
        QTest::newRow("huawei without fields keeps the revision") << QByteArray("Huawei E173\r\nRevision 11.126")
                                                                  << huawei << QString("Huawei_E173_Revision_11.126");
        // 5: ZTE
        QTest::newRow("zte") << ati(Make::Zte) << zte << QString("ZTE_INCORPORATED_MF626");
        QTest::newRow("mf number in lower case") << QByteArray("usb modem mf627b") << zte << QString("ZTE_mf627");
        QTest::newRow("zte without number: first four characters") << QByteArray("zte corp") << zte
                                                                   << QString("ZTE_zte_");
        // 6: Huawei sticks that do not say huawei
        QTest::newRow("e3372 with model") << QByteArray("Model: E3372\r\nRevision: 22.200") << huawei
                                          << QString("HUAWEI_E3372");
        QTest::newRow("e171 without model") << QByteArray("E171 Rev 11") << huawei << QString("HUAWEI");
        // 7: MC52 family
        QTest::newRow("mc 52") << QByteArray("MC 52i\r\nREVISION 01.200") << siemens << QString("MC_52i");
        // 8: anything else
        QTest::newRow("unknown") << ati(Make::Unknown) << QString("DEFAULT_AT_GSM")
                                 << QString("Generic_V.92_Data/Fax_Modem");
    }

    void classification()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, dialect);
        QFETCH(QString, name);

        AtModem modem;
        modem.setModemName(answer);
        QCOMPARE(modem.gsmDialect(), dialect);
        QCOMPARE(AT::dialectText(modem.dialect()), dialect);
        QCOMPARE(modem.name(), name);
    }

    void toModemOnly_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<bool>("answersAt");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QList<QByteArray>>("commands");
        QTest::newRow("huawei") << Make::Huawei << true << true << QList<QByteArray>{"", "^U2DIAG=0"};
        QTest::newRow("zte rejects it") << Make::Zte << true << false << QList<QByteArray>{"", "^U2DIAG=0"};
        QTest::newRow("no answer to AT") << Make::Huawei << false << false << QList<QByteArray>{""};
    }

    void toModemOnly()
    {
        QFETCH(Make, make);
        QFETCH(bool, answersAt);
        QFETCH(bool, result);
        QFETCH(QList<QByteArray>, commands);
        ZML_OPEN(make);
        if (!answersAt)
            sim.setFault("", Fault::Error);
        QCOMPARE(modem.toModemOnly(), result);
        QCOMPARE(sim.commands(), commands);
    }
};

QTEST_GUILESS_MAIN(TestAtDialect)
#include "tst_atdialect.moc"
