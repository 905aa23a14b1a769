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

    // The summary of one modem: what it says, and the operator table's entry.
    void info()
    {
        const clitest::Result r = run({"info", port("huawei")});
        QVERIFY2(r.exitCode == 0 && r.err.isEmpty(), r.describe());
        for (const char* expected : {"MCC/MNC:      250/02", "Network:      MegaFon (25002)", "Registration: registered, home network", "SIM:          ready", "Table entry:  Мегафон", "Own number:   *205# (USSD reply)",
                                     "SIM id:       89072143658709214365"})
            QVERIFY2(lines(r).contains(QString::fromUtf8(expected)), qPrintable(expected + ("\n" + r.describe())));
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
        QCOMPARE(json.json().value("signal").toObject().value("dbm").toInt(), -51);
        QCOMPARE(json.json().value("signal").toObject().value("rating").toString(), QStringLiteral("excellent"));
        QVERIFY2(json.err.isEmpty(), json.describe());   // no dialogue unless asked

        // 99: the modem cannot tell; nothing is invented.
        m_cinterion->setAnswer("+CSQ", "+CSQ: 99,99");
        const clitest::Result unknown = run({"signal", "--json", port("cinterion")});
        m_cinterion->setAnswer("+CSQ", "+CSQ: 20,99");
        QCOMPARE(unknown.exitCode, 0);
        QVERIFY(unknown.json().value("signal").toObject().value("dbm").isNull());
        QCOMPARE(unknown.json().value("signal").toObject().value("rating").toString(), QStringLiteral("unknown"));
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
        // Three cells; the list's unused slot (all zeros) is none.
        QCOMPARE(cells.size(), 3);

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
        QCOMPARE(huawei.json().value("registration").toObject().value("lacHex").toString(), QStringLiteral("1A2B"));
        QVERIFY(!huawei.json().contains("cells"));

        // The registration queries refused, and no neighbour list.
        m_huawei->setFault("+CREG?", zelmodems::sim::Fault::Error);
        m_huawei->setFault("+CGREG?", zelmodems::sim::Fault::Error);
        const clitest::Result none = run({"cells", port("huawei")});
        m_huawei->clearFaults();
        QCOMPARE(none.exitCode, 1);
        QVERIFY2(none.err.contains("zelmodems cells: the modem did not report its registration"), none.describe());
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
        // What to check next, in the tool's words, not the driver's.
        QVERIFY2(r.err.contains("Check that the modem is powered") && !r.err.contains("offline pn port"),
                 r.describe());
    }
};

QTEST_GUILESS_MAIN(TestCliQuery)
#include "tst_cli_query.moc"
