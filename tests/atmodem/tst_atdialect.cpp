// Recognising a modem's make from its identification text, the dialect
// texts, the light-weight port test and the Huawei modem-only switch.
#include "simfixture.h"
#include "atdialect_p.h"
#include "atmodemlog_p.h"

#include <QTemporaryDir>

using namespace zelmodems::sim;
using zmltest::portNameOf;
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
        QTest::newRow("revision removal is case-sensitive") << QByteArray("Siemens TC35 RevIsion 5") << siemens
                                                            << QString("Siemens_TC35_RevIsion_5");
        QTest::newRow("siemens before simcom") << QByteArray("SIMCOM module by Siemens\r\nRevision: 2") << siemens
                                               << QString("SIMCOM_module_by_Siemens");
        // 2: HSPA data cards
        QTest::newRow("hspa data card") << ati(Make::HspaDataCard) << hspa
                                        << QString("Qualcomm_Incorporated_HSPA_Data_Card");
        QTest::newRow("hspa before simcom") << QByteArray("SIMCOM HSPA Data Card") << hspa
                                            << QString("SIMCOM_HSPA_Data_Card");
        // 3: SIMCOM
        QTest::newRow("simcom") << ati(Make::SimCom) << simcom << QString("SIMCOM_INCORPORATED_SIMCOM_SIM7600E-H");
        QTest::newRow("simcom, model only") << QByteArray("SIMCOM\r\nModel: SIM5360E") << simcom
                                            << QString("SIMCOM_Model:_SIM5360E_SIM5360E");
        // 4: Huawei, revisions kept
        QTest::newRow("huawei") << ati(Make::Huawei) << huawei << QString("huawei_E3372");
        QTest::newRow("huawei without fields keeps the revision") << QByteArray("Huawei E173\r\nRevision 11.126")
                                                                  << huawei << QString("Huawei_E173_Revision_11.126");
        // 5: ZTE
        QTest::newRow("zte") << ati(Make::Zte) << zte << QString("ZTE_INCORPORATED_MF626");
        QTest::newRow("mf number in lower case") << QByteArray("usb modem mf627b") << zte << QString("ZTE_mf627");
        QTest::newRow("mf number, model field only") << QByteArray("Model: MF626\r\n") << zte << QString("ZTE_MF626");
        QTest::newRow("zte without number: first four characters") << QByteArray("zte corp") << zte
                                                                   << QString("ZTE_zte_");
        QTest::newRow("zte before e3372") << QByteArray("ZTE E3372") << zte << QString("ZTE_ZTE_");
        // 6: Huawei sticks that do not say huawei
        QTest::newRow("e3372 with model") << QByteArray("Model: E3372\r\nRevision: 22.200") << huawei
                                          << QString("HUAWEI_E3372");
        QTest::newRow("e171 without model") << QByteArray("E171 Rev 11") << huawei << QString("HUAWEI");
        // 7: MC52 family
        QTest::newRow("mc 52") << QByteArray("MC 52i\r\nREVISION 01.200") << siemens << QString("MC_52i");
        // 8: anything else
        QTest::newRow("unknown") << ati(Make::Unknown) << QString("DEFAULT_AT_GSM")
                                 << QString("Generic_V.92_Data/Fax_Modem");
        QTest::newRow("utf-8 text") << QByteArray("Modem \xc3\x84rger") << QString("DEFAULT_AT_GSM")
                                    << QString::fromUtf8("Modem_\xc3\x84rger");
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

    // An unrecognised or empty answer leaves the dialect of an earlier one.
    void unrecognisedKeepsDialect()
    {
        AtModem modem;
        modem.setModemName("ZTE");
        modem.setModemName("  Generic\tmodem \r\n");
        QCOMPARE(modem.dialect(), qint32(AtModem::ZTE));
        QCOMPARE(modem.name(), QStringLiteral("Generic_modem"));
        modem.setModemName(QByteArray());
        QCOMPARE(modem.dialect(), qint32(AtModem::ZTE));
        QCOMPARE(modem.name(), QString());
        // Values outside the dialects read as the default one.
        QCOMPARE(AT::dialectText(6), QStringLiteral("DEFAULT_AT_GSM"));
        QCOMPARE(AT::dialectText(-1), QStringLiteral("DEFAULT_AT_GSM"));
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
        const QString timedOut = QStringLiteral("Modem is offline pn port %1").arg(portNameOf(sim.devicePath()));
        QCOMPARE(modem.lastError(), inTime ? QString() : timedOut);
        QCOMPARE(log.find(QStringLiteral("atmodem"), QStringLiteral("Modem configuration: ")).size(), inTime ? 1 : 0);
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
