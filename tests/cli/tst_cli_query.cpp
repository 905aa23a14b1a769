// zelmodems info, signal, cells and operator against simulated modems of
// three makes, in text and in JSON; a port on which nothing answers.
#include "clifixture.h"

#include <QJsonArray>

using clitest::run;
using zelmodems::sim::Make;
using zelmodems::sim::Profile;
using zelmodems::sim::SimModem;

class TestCliQuery : public QObject
{
    Q_OBJECT

    std::unique_ptr<SimModem> m_huawei;    // MegaFon SIM (250/02)
    std::unique_ptr<SimModem> m_cinterion; // MTS SIM (250/01), neighbour cells
    std::unique_ptr<SimModem> m_simcom;    // Beeline SIM (250/99)

    QString port(const QString& make) const
    {
        if (make == "huawei")
            return m_huawei->devicePath();
        if (make == "cinterion")
            return m_cinterion->devicePath();
        return m_simcom->devicePath();
    }

    static QStringList lines(const clitest::Result& r) { return r.out.split('\n'); }

private slots:
    void initTestCase()
    {
        m_huawei = clitest::startModem(Make::Huawei);
        m_cinterion = clitest::startModem(Make::Cinterion);
        m_simcom = clitest::startModem(Make::SimCom);
        QVERIFY(m_huawei && m_cinterion && m_simcom);
    }

    void infoText()
    {
        const clitest::Result r = run({"info", port("huawei")});
        QVERIFY2(r.exitCode == 0, r.describe());
        const QStringList out = lines(r);
        for (const QString& expected :
             {QStringLiteral("Port:         %1 at 115200 baud").arg(port("huawei")),
              QStringLiteral("Modem:        huawei_E3372 (dialect HUAWEI)"),
              QStringLiteral("IMEI:         866123456789012"), QStringLiteral("IMSI:         250026123456789"),
              QStringLiteral("MCC/MNC:      250/02"), QStringLiteral("Network:      MegaFon"),
              QStringLiteral("Table entry:  Мегафон"), QStringLiteral("Balance code: *100#"),
              QStringLiteral("Own number:   *205# (USSD reply)"),
              QStringLiteral("Init line:    AT+CGDCONT=1,\"IP\",\"internet\""),
              // +CSQ: 20,99 is 2 * 20 - 113 dBm.
              QStringLiteral("Signal:       -73 dBm (good)"),
              QStringLiteral("Serving cell: LAC 1A2B (6699), CID C3D4E5 (12834021)"),
              // ^ICCID 98701234567890123456 with its digit pairs swapped.
              QStringLiteral("SIM id:       89072143658709214365"),
              QStringLiteral("Revision:     22.315.01.00.00")})
            QVERIFY2(out.contains(expected), qPrintable(expected + "\n" + r.describe()));
        QVERIFY2(r.err.isEmpty(), r.describe());
    }

    void infoJson_data()
    {
        QTest::addColumn<QString>("make");
        QTest::addColumn<QString>("dialect");
        QTest::addColumn<QString>("imei");
        QTest::addColumn<int>("mnc");
        QTest::addColumn<QString>("tableName");
        QTest::addColumn<QString>("simKey");
        QTest::addColumn<QString>("simId");
        QTest::addColumn<int>("cellCount");
        QTest::newRow("huawei") << "huawei" << "HUAWEI" << "866123456789012" << 2 << "Мегафон" << "sim_id"
                                << "89072143658709214365" << 0;
        // The Siemens family's SIM number is not swapped, and has its own key.
        QTest::newRow("cinterion") << "cinterion" << "SIEMENCE" << "351234567890123" << 1 << "МТС" << "simId"
                                   << "89701012345678901234" << 4;
        QTest::newRow("simcom") << "simcom" << "SIM_COM" << "861234567890123" << 99 << "Beeline" << QString()
                                << QString() << 1;
    }

    void infoJson()
    {
        QFETCH(QString, make);
        QFETCH(QString, dialect);
        QFETCH(QString, imei);
        QFETCH(int, mnc);
        QFETCH(QString, tableName);
        QFETCH(QString, simKey);
        QFETCH(QString, simId);
        QFETCH(int, cellCount);

        bool ok = false;
        const clitest::Result r = run({"info", "--json", port(make)});
        const QJsonObject info = r.json(&ok);
        QVERIFY2(r.exitCode == 0 && ok, r.describe());
        QCOMPARE(info.value("port").toString(), port(make));
        QCOMPARE(info.value("dialect").toString(), dialect);
        QCOMPARE(info.value("imei").toString(), imei);
        QCOMPARE(info.value("mcc").toInt(), 250);
        QCOMPARE(info.value("mnc").toInt(), mnc);
        QCOMPARE(info.value("operator").toString(), QStringLiteral("MegaFon"));
        QCOMPARE(info.value("operatorTable").toObject().value("name").toString(), tableName);
        QCOMPARE(info.value("signal").toInt(), -73);
        QCOMPARE(info.value("lacHex").toString(), QStringLiteral("1A2B"));
        QCOMPARE(info.value("cidDecimal").toInt(), 12834021);
        QVERIFY(!info.value("revision").toString().isEmpty());
        if (simKey.isEmpty()) {
            QVERIFY(!info.contains("sim_id") && !info.contains("simId"));
        } else {
            QCOMPARE(info.value(simKey).toString(), simId);
        }
        QCOMPARE(info.value("gsmCells").toArray().size(), cellCount);
    }

    void signal()
    {
        // -85 dBm is the weakest level still rated good.
        m_cinterion->setAnswer("+CSQ", "+CSQ: 14,99");
        // --verbose before the command's name too: the AT dialogue on
        // standard error, the result alone on standard output.
        const clitest::Result text = run({"--verbose", "signal", port("cinterion")});
        QCOMPARE(text.exitCode, 0);
        QCOMPARE(text.out, QStringLiteral("Signal:       -85 dBm (good)\n"));
        QVERIFY2(text.err.contains("AT+CSQ"), text.describe());

        // Index 31 is the strongest level the modem reports.
        m_cinterion->setAnswer("+CSQ", "+CSQ: 31,0");
        const clitest::Result json = run({"signal", "--json", port("cinterion")});
        m_cinterion->setAnswer("+CSQ", "+CSQ: 20,99");
        QCOMPARE(json.exitCode, 0);
        QCOMPARE(json.json().value("signal").toInt(), -51);
        QCOMPARE(json.json().value("rating").toString(), QStringLiteral("excellent"));
        QVERIFY2(json.err.isEmpty(), json.describe());   // no dialogue unless asked
    }

    void cells()
    {
        // Siemens family: ^SMONC, levels from ^MONI/^MONP, in decimal.
        const clitest::Result text = run({"cells", port("cinterion")});
        QCOMPARE(text.exitCode, 0);
        QVERIFY2(lines(text).contains("Serving cell: LAC 1A2B (6699), CID C3D4E5 (12834021)"), text.describe());
        const clitest::Result json = run({"cells", "--json", port("cinterion")});
        const QJsonArray cells = json.json().value("cells").toArray();
        QJsonObject strongest;
        for (const QJsonValue& cell : cells) {
            if (cell.toObject().value("cidDecimal").toInt() == 50132)
                strongest = cell.toObject();
        }
        QCOMPARE(strongest.value("lacDecimal").toInt(), 6699);
        QCOMPARE(strongest.value("lacHex").toString(), QStringLiteral("1A2B"));
        QCOMPARE(strongest.value("mcc").toInt(), 250);
        QCOMPARE(strongest.value("mnc").toInt(), 1);
        QCOMPARE(strongest.value("dbm").toArray(), QJsonArray{-68});

        // SIMCOM: the packet-domain cell, without MCC and MNC.
        const clitest::Result simcom = run({"cells", "--json", port("simcom")});
        const QJsonArray simcomCells = simcom.json().value("cells").toArray();
        QCOMPARE(simcomCells.size(), 1);
        QCOMPARE(simcomCells.at(0).toObject().value("cidDecimal").toInt(), 50132);
        QCOMPARE(simcomCells.at(0).toObject().value("lacHex").toString(), QStringLiteral("1A2B"));
        // What the modem does not give is null, not 0.
        QVERIFY(simcomCells.at(0).toObject().value("mcc").isNull());
        QVERIFY(simcomCells.at(0).toObject().value("rxlev").isNull());

        // Huawei lists no neighbours: the serving cell only.
        const clitest::Result huawei = run({"cells", "--json", port("huawei")});
        QCOMPARE(huawei.exitCode, 0);
        QCOMPARE(huawei.json().value("lacHex").toString(), QStringLiteral("1A2B"));
        QVERIFY(!huawei.json().contains("cells"));

        // The registration query refused, and no neighbour list.
        m_huawei->setFault("+CREG?", zelmodems::sim::Fault::Error);
        const clitest::Result none = run({"cells", port("huawei")});
        m_huawei->clearFaults();
        QCOMPARE(none.exitCode, 1);
        QVERIFY2(none.err.contains("zelmodems cells: the modem reports no cell"), none.describe());
    }

    void operatorEntry()
    {
        const clitest::Result r = run({"operator", "--json", port("simcom")});
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = r.json();
        QCOMPARE(json.value("mcc").toInt(), 250);
        QCOMPARE(json.value("mnc").toInt(), 99);
        const QJsonObject entry = json.value("operatorTable").toObject();
        QCOMPARE(entry.value("balancePhone").toString(), QStringLiteral("*102#"));
        QCOMPARE(entry.value("selfNumberFromSms").toBool(), true);
        QCOMPARE(entry.value("userName").toString(), QStringLiteral("beeline"));
    }

    void operatorNotInTable()
    {
        Profile profile = Profile::forMake(Make::Zte);
        profile.imsi = "001011234567890";   // the test network
        auto modem = clitest::startModem(profile);
        QVERIFY(modem);
        const clitest::Result text = run({"operator", modem->devicePath()});
        QCOMPARE(text.exitCode, 0);
        QVERIFY2(lines(text).contains("MCC/MNC:      001/01"), text.describe());
        QVERIFY2(lines(text).contains("Table entry:  none (the operator is not in the table)"), text.describe());
        const clitest::Result json = run({"operator", "--json", modem->devicePath()});
        QVERIFY(json.json().value("operatorTable").isNull());

        // Without a SIM the modem has no IMSI.
        modem->setFault("+CIMI", zelmodems::sim::Fault::Error);
        const clitest::Result noSim = run({"operator", modem->devicePath()});
        QCOMPARE(noSim.exitCode, 1);
        QVERIFY2(noSim.err.contains("zelmodems operator: cannot read the SIM's operator codes"), noSim.describe());
    }

    void portWithoutModem()
    {
        // A serial device on which nothing answers.
        auto silent = clitest::startModem(Make::Huawei);
        QVERIFY(silent);
        silent->setSilent(true);
        // One attempt: a silent port costs six probes of a second each.
        const clitest::Result r = run({"info", silent->devicePath(), "--attempts", "1", "--json"});
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.startsWith(QStringLiteral("zelmodems info: no modem answers on %1 at 115200 baud: ")
                                      .arg(silent->devicePath())),
                 r.describe());
        QCOMPARE(r.json().value("exitStatus").toInt(), 1);
    }
};

QTEST_GUILESS_MAIN(TestCliQuery)
#include "tst_cli_query.moc"
