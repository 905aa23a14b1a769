// Recognising a modem's make from its identification text, the dialect
// texts, the light-weight port test and the Huawei modem-only switch.
#include "simfixture.h"
#include "atdialect.h"
#include "atmodemlog.h"

#include <QTemporaryDir>

using namespace modemsim;
using zmltest::portNameOf;
using zmltest::startAndOpen;

class TestAtDialect : public QObject
{
    Q_OBJECT

private slots:
    void classification_data()
    {
        QTest::addColumn<QByteArray>("before");   // an earlier classification, if any
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("dialect");
        QTest::addColumn<QString>("name");

        const QByteArray none;
        // 1: Siemens family, revision texts removed
        QTest::newRow("cinterion") << none << Profile::forMake(Make::Cinterion).ati << int(AtModem::SIEMENCE)
                                   << QStringLiteral("Cinterion_MC52i");
        QTest::newRow("siemens, Revision removed") << none << QByteArray("\r\nSIEMENS\r\nMC35i\r\nRevision 01.02\r\n")
                                                   << int(AtModem::SIEMENCE) << QStringLiteral("SIEMENS_MC35i");
        QTest::newRow("lower-case cinterion, revision removed")
            << none << QByteArray("cinterion BGS2-W revision 01.301") << int(AtModem::SIEMENCE)
            << QStringLiteral("cinterion_BGS2-W");
        QTest::newRow("sprutnet") << none << QByteArray("SprutNet GSM 2.1") << int(AtModem::SIEMENCE)
                                  << QStringLiteral("SprutNet_GSM_2.1");
        QTest::newRow("revision removal is case-sensitive")
            << none << QByteArray("Siemens TC35 RevIsion 5") << int(AtModem::SIEMENCE)
            << QStringLiteral("Siemens_TC35_RevIsion_5");
        QTest::newRow("siemens before simcom") << none << QByteArray("SIMCOM module by Siemens\r\nRevision: 2")
                                               << int(AtModem::SIEMENCE) << QStringLiteral("SIMCOM_module_by_Siemens");
        // 2: HSPA data cards
        QTest::newRow("hspa data card") << none << Profile::forMake(Make::HspaDataCard).ati << int(AtModem::HSPA)
                                        << QStringLiteral("Qualcomm_Incorporated_HSPA_Data_Card");
        QTest::newRow("hspa without fields") << none << QByteArray("hspa data card\r\nRevision: 11.608")
                                             << int(AtModem::HSPA) << QStringLiteral("hspa_data_card");
        QTest::newRow("hspa before simcom") << none << QByteArray("SIMCOM HSPA Data Card") << int(AtModem::HSPA)
                                            << QStringLiteral("SIMCOM_HSPA_Data_Card");
        // 3: SIMCOM
        QTest::newRow("simcom") << none << Profile::forMake(Make::SimCom).ati << int(AtModem::SIM_COM)
                                << QStringLiteral("SIMCOM_INCORPORATED_SIMCOM_SIM7600E-H");
        QTest::newRow("simcom without fields") << none << QByteArray("SIM800 R14.18\r\nsimcom Ltd\r\nRevision:1418B04")
                                               << int(AtModem::SIM_COM) << QStringLiteral("SIM800_R14.18_simcom_Ltd");
        QTest::newRow("simcom, model only") << none << QByteArray("SIMCOM\r\nModel: SIM5360E")
                                            << int(AtModem::SIM_COM) << QStringLiteral("SIMCOM_Model:_SIM5360E_SIM5360E");
        // 4: Huawei, revisions kept
        QTest::newRow("huawei") << none << Profile::forMake(Make::Huawei).ati << int(AtModem::HUAWEI)
                                << QStringLiteral("huawei_E3372");
        QTest::newRow("huawei without fields keeps the revision")
            << none << QByteArray("Huawei E173\r\nRevision 11.126") << int(AtModem::HUAWEI)
            << QStringLiteral("Huawei_E173_Revision_11.126");
        QTest::newRow("huawei before zte") << none << QByteArray("HUAWEI MF626") << int(AtModem::HUAWEI)
                                           << QStringLiteral("HUAWEI_MF626");
        // 5: ZTE
        QTest::newRow("zte") << none << Profile::forMake(Make::Zte).ati << int(AtModem::ZTE)
                             << QStringLiteral("ZTE_INCORPORATED_MF626");
        QTest::newRow("mf number only") << none << QByteArray("\r\nMF190\r\nRevision BD_MF190\r\n")
                                        << int(AtModem::ZTE) << QStringLiteral("ZTE_MF190");
        QTest::newRow("mf number in lower case") << none << QByteArray("usb modem mf627b") << int(AtModem::ZTE)
                                                 << QStringLiteral("ZTE_mf627");
        QTest::newRow("mf number, model field only") << none << QByteArray("Model: MF626\r\n") << int(AtModem::ZTE)
                                                     << QStringLiteral("ZTE_MF626");
        QTest::newRow("zte alone") << none << QByteArray("ZTE") << int(AtModem::ZTE) << QStringLiteral("ZTE_ZTE");
        QTest::newRow("zte without number: first four characters")
            << none << QByteArray("zte corp") << int(AtModem::ZTE) << QStringLiteral("ZTE_zte_");
        QTest::newRow("zte before e3372") << none << QByteArray("ZTE E3372") << int(AtModem::ZTE)
                                          << QStringLiteral("ZTE_ZTE_");
        // 6: Huawei sticks that do not say huawei
        QTest::newRow("e3372 with model") << none << QByteArray("Model: E3372\r\nRevision: 22.200")
                                          << int(AtModem::HUAWEI) << QStringLiteral("HUAWEI_E3372");
        QTest::newRow("e171 without model") << none << QByteArray("E171 Rev 11") << int(AtModem::HUAWEI)
                                            << QStringLiteral("HUAWEI");
        // 7: MC52 family
        QTest::newRow("mc 52") << none << QByteArray("MC 52i\r\nREVISION 01.200") << int(AtModem::SIEMENCE)
                               << QStringLiteral("MC_52i");
        QTest::newRow("mc-52") << none << QByteArray("mc-52iT revision 3") << int(AtModem::SIEMENCE)
                               << QStringLiteral("mc-52iT");
        // 8: anything else
        QTest::newRow("unknown") << none << Profile::forMake(Make::Unknown).ati << int(AtModem::DEFAULT_AT_GSM)
                                 << QStringLiteral("Generic_V.92_Data/Fax_Modem");
        QTest::newRow("unknown keeps the earlier dialect")
            << QByteArray("ZTE") << QByteArray("  Generic\tmodem \r\n") << int(AtModem::ZTE)
            << QStringLiteral("Generic_modem");
        QTest::newRow("empty keeps the earlier dialect")
            << Profile::forMake(Make::Huawei).ati << QByteArray() << int(AtModem::HUAWEI) << QString();
        QTest::newRow("utf-8 text") << none << QByteArray("Modem \xc3\x84rger") << int(AtModem::DEFAULT_AT_GSM)
                                    << QStringLiteral("Modem_\u00c4rger");
    }

    void classification()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, answer);
        QFETCH(int, dialect);
        QFETCH(QString, name);

        AtModem modem;
        if (!before.isNull())
            modem.setModemName(before);
        modem.setModemName(answer);
        QCOMPARE(modem.dialect(), qint32(dialect));
        QCOMPARE(modem.name(), name);
        QCOMPARE(modem.gsmDialect(), AT::dialectText(dialect));
    }

    void dialectText_data()
    {
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("0") << 0 << QStringLiteral("DEFAULT_AT_GSM");
        QTest::newRow("1") << 1 << QStringLiteral("SIEMENCE");
        QTest::newRow("2") << 2 << QStringLiteral("SIM_COM");
        QTest::newRow("3") << 3 << QStringLiteral("HUAWEI");
        QTest::newRow("4") << 4 << QStringLiteral("ZTE");
        QTest::newRow("5") << 5 << QStringLiteral("HSPA");
        QTest::newRow("6") << 6 << QStringLiteral("DEFAULT_AT_GSM");
        QTest::newRow("7") << 7 << QStringLiteral("DEFAULT_AT_GSM");
        QTest::newRow("-1") << -1 << QStringLiteral("DEFAULT_AT_GSM");
    }

    void dialectText()
    {
        QFETCH(int, value);
        QFETCH(QString, text);
        QCOMPARE(AT::dialectText(value), text);
    }

    // Opening a port identifies the modem behind it.
    void identifiesSimulatedMakes_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<int>("dialect");
        QTest::addColumn<QString>("name");
        QTest::newRow("huawei") << Make::Huawei << int(AtModem::HUAWEI) << QStringLiteral("huawei_E3372");
        QTest::newRow("simcom") << Make::SimCom << int(AtModem::SIM_COM)
                                << QStringLiteral("SIMCOM_INCORPORATED_SIMCOM_SIM7600E-H");
        QTest::newRow("zte") << Make::Zte << int(AtModem::ZTE) << QStringLiteral("ZTE_INCORPORATED_MF626");
        QTest::newRow("cinterion") << Make::Cinterion << int(AtModem::SIEMENCE) << QStringLiteral("Cinterion_MC52i");
        QTest::newRow("hspa") << Make::HspaDataCard << int(AtModem::HSPA)
                              << QStringLiteral("Qualcomm_Incorporated_HSPA_Data_Card");
        QTest::newRow("unknown") << Make::Unknown << int(AtModem::DEFAULT_AT_GSM)
                                 << QStringLiteral("Generic_V.92_Data/Fax_Modem");
    }

    void identifiesSimulatedMakes()
    {
        QFETCH(Make, make);
        QFETCH(int, dialect);
        QFETCH(QString, name);
        SimModem sim(make);
        QVERIFY(sim.start());
        AtModem modem;
        QVERIFY(modem.open(sim.devicePath(), 115200, 1));
        QCOMPARE(modem.dialect(), qint32(dialect));
        QCOMPARE(modem.name(), name);
    }

    // SIMCOM modems print a long configuration and get 5 s for it instead
    // of 1.5 s. A late answer shows which time-out applied: in time it
    // leaves no error, too late it leaves the time-out text (and the open
    // still succeeds).
    void configurationTimeout_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<bool>("inTime");
        QTest::newRow("huawei: 1500 ms") << Make::Huawei << false;
        QTest::newRow("simcom: 5000 ms") << Make::SimCom << true;
    }

    void configurationTimeout()
    {
        QFETCH(Make, make);
        QFETCH(bool, inTime);
        SimModem sim(make);
        QVERIFY(sim.start());
        Reply late = Reply::ok("ACTIVE PROFILE:");
        late.delayMs = 1700;
        sim.setReply("&V", late);
        zmltest::LogRecorder log;
        AtModem modem;
        QVERIFY(modem.open(sim.devicePath(), 115200, 1));
        if (inTime) {
            QCOMPARE(modem.lastError(), QString());
            QCOMPARE(log.find(QStringLiteral("atmodem"), QStringLiteral("Modem configuration: ")).size(), 1);
        } else {
            QCOMPARE(modem.lastError(), QStringLiteral("Modem is offline pn port %1").arg(portNameOf(sim.devicePath())));
            QVERIFY(log.find(QStringLiteral("atmodem"), QStringLiteral("Modem configuration: ")).isEmpty());
        }
    }

    // The port test opens the port once and probes it; it does not identify
    // the modem, so what an earlier identification learnt stays.
    void portTest()
    {
        SimModem sim(Make::SimCom);
        QVERIFY(sim.start());
        AtModem modem;
        modem.setModemName(Profile::forMake(Make::Huawei).ati);
        QVERIFY(modem.test(sim.devicePath(), 9600));
        QCOMPARE(modem.baudrate(), 9600);
        QCOMPARE(sim.lineSpeed(), 9600);
        QCOMPARE(sim.commands(), QList<QByteArray>{""});
        QCOMPARE(modem.name(), QStringLiteral("huawei_E3372"));
        QCOMPARE(modem.dialect(), qint32(AtModem::HUAWEI));
        QCOMPARE(modem.lastError(), QString());

        // The port stays open for the caller's commands.
        QByteArray answer;
        QVERIFY(modem.sendCommand(AT::Commands::CSQ, answer, 500));
        QVERIFY(answer.contains("+CSQ: 20,99"));

        // A second test on a port that is not there: the first is closed,
        // the failure named.
        QTemporaryDir dir;
        QVERIFY(!modem.test(dir.filePath(QStringLiteral("ttyNONE1")), 9600));
        QVERIFY2(modem.lastError().startsWith(QLatin1String("Port opening error: ")), qPrintable(modem.lastError()));
        QCOMPARE(modem.baudrate(), 0);
        QCOMPARE(modem.name(), QStringLiteral("huawei_E3372"));
        QVERIFY(!modem.sendCommand(AT::Commands::CSQ, answer, 500));
    }

    void toModemOnly_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<bool>("result");
        QTest::newRow("huawei") << Make::Huawei << true;
        QTest::newRow("zte rejects it") << Make::Zte << false;
    }

    void toModemOnly()
    {
        QFETCH(Make, make);
        QFETCH(bool, result);
        SimModem sim(make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QCOMPARE(modem.toModemOnly(), result);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"", "^U2DIAG=0"}));
    }

    void toModemOnlyWithoutAnswer()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setFault("", Fault::Error);
        QVERIFY(!modem.toModemOnly());
        QCOMPARE(sim.commands(), QList<QByteArray>{""});
    }

    void logCategory()
    {
        QCOMPARE(QLatin1String(AT_MODEM().categoryName()), QLatin1String("atmodem"));
        QLoggingCategory::setFilterRules(QStringLiteral("atmodem.debug=false"));
        QVERIFY(!AT_MODEM().isDebugEnabled());
        AtModem modem;
        QVERIFY(AT_MODEM().isDebugEnabled());
    }
};

QTEST_GUILESS_MAIN(TestAtDialect)
#include "tst_atdialect.moc"
