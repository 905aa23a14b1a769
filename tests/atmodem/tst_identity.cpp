// Identity and network queries against the simulated modem: what goes out on
// the wire and what comes back, per dialect, with broken answers too.
#include "simfixture.h"

#include <QDateTime>

using namespace zelmodems::sim;

namespace {

// One query on a modem of `make`: the bodies answer the query's commands in
// order (see zmltest::answerWith; a body starting with CR is the whole raw
// reply), then the result, the value as text ("old" when left alone) and how
// many of the commands went out (-1: all).
struct QueryRow
{
    Make make;
    QString query;
    QList<QByteArray> bodies;
    bool result;
    QString value;
    int sent = -1;
};

QList<QByteArray> commandsOf(const QString& query)
{
    if (query.startsWith(QLatin1String("number")))
        return {"+TEST"};
    const QMap<QString, QList<QByteArray>> commands{{"mnc", {"+CIMI"}},
                                                    {"operator", {"E0", "+COPS=3,0", "+COPS?"}},
                                                    {"signal", {"+CSQ"}},
                                                    {"creg", {"+CREG=2", "+CREG?"}},
                                                    {"smonc", {"^SMONC", "^MONI", "^MONP"}},
                                                    {"cgreg", {"+CGREG=2", "+CGREG?"}}};
    return commands.value(query);
}

QString run(AtModem& modem, const QString& query, bool& ok)
{
    QString text = QStringLiteral("old"), cid = text;
    int a = 0, b = 0;
    if (query.startsWith(QLatin1String("number:")))
        ok = modem.getNumberInternal("+TEST", text, query.mid(7));
    else if (query == QLatin1String("mnc"))
        return (ok = modem.getMnc(a, b), QStringLiteral("%1/%2/%3").arg(a).arg(b).arg(modem.lastError()));
    else if (query == QLatin1String("operator"))
        ok = modem.getOperator(text);
    else if (query == QLatin1String("signal"))
        return (ok = modem.getSignalLevel(a), QString::number(a));
    else if (query == QLatin1String("creg"))
        return (ok = modem.getGsmCells(text, cid), text + QLatin1Char('/') + cid);
    else if (query == QLatin1String("smonc"))
        ok = modem.getSiemensCellList(text);
    else
        ok = modem.getSimCOMCellList(text);
    return text;
}

// The substitute levels getSignalLevel can give during this second and the
// next: it seeds the generator with the current time in seconds.
QStringList substituteLevels(qint64 fromSecs)
{
    QStringList levels;
    for (qint64 s = fromSecs; s <= fromSecs + 1; ++s) {
        qsrand(uint(s));
        levels << QString::number(-90 - (qrand() % 20));
    }
    return levels;
}

} // namespace

Q_DECLARE_METATYPE(QueryRow)

class TestIdentity : public QObject
{
    Q_OBJECT

    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void query_data()
    {
        QTest::addColumn<QueryRow>("row");
        const auto raw = [](const QByteArray& line) { return "\r\n" + line + "\r\n\r\nOK\r\n"; };
        const QString digits = QStringLiteral("number:\\d+");
        const Make H = Make::Huawei;

        QTest::newRow("number: first run of digits") << QueryRow{H, digits, {raw("IMEI 35 12 34")}, true, "35"};
        QTest::newRow("number: failed command, answer matches")
            << QueryRow{H, digits, {"\r\n+CME ERROR: 10\r\n"}, true, "10"};
        QTest::newRow("number: failed, no match") << QueryRow{H, digits, {"\r\nERROR\r\n"}, false, ""};

        // The MNC is read as two digits, whatever the operator's length.
        QTest::newRow("mnc: leading zero") << QueryRow{H, "mnc", {"250011234567890"}, true, "250/1/"};
        QTest::newRow("mnc: four digits") << QueryRow{H, "mnc", {"2500"}, false, "0/0/"};
        // Digits of other scripts match \d but are no decimal number.
        QTest::newRow("mnc: Arabic-Indic MCC")
            << QueryRow{H, "mnc", {"\xd9\xa2\xd9\xa5\xd9\xa0" "011234567890"}, false,
                        "0/0/Wrong mcc \xd9\xa2\xd9\xa5\xd9\xa0"};
        QTest::newRow("mnc: no SIM") << QueryRow{H, "mnc", {"ERROR"}, false, "0/0/Modem said \"ERROR\""};

        QTest::newRow("operator: format rejected, name still read")
            << QueryRow{H, "operator", {"", "ERROR", raw("+COPS: 0,0,\"Beeline\"")}, true, "Beeline"};
        QTest::newRow("operator: from the first quote to the last")
            << QueryRow{H, "operator", {"", "", raw("+COPS: 0,0,\"MTS RUS\",2,\"x\"")}, true, "MTS RUS,2,x"};

        const Make S = Make::SimCom;
        QTest::newRow("signal: index 31") << QueryRow{S, "signal", {raw("+CSQ: 31,99")}, true, "-51"};
        QTest::newRow("signal: index 57, out of range") << QueryRow{S, "signal", {raw("+CSQ: 57,0")}, true, "random"};
        QTest::newRow("signal: index that would overflow")
            << QueryRow{S, "signal", {raw("+CSQ: 2000000000,99")}, true, "random"};
        QTest::newRow("signal: ERROR") << QueryRow{S, "signal", {"\r\nERROR\r\n"}, false, "random"};
        QTest::newRow("signal: ERROR after a pair")
            << QueryRow{S, "signal", {"\r\n+CSQ: 10,0\r\n+CME ERROR: 1\r\n"}, true, "-93"};

        // +CREG: everything after the LAC is the cell; without a third comma
        // the rest serves as LAC and as cell alike.
        QTest::newRow("creg: with location")
            << QueryRow{H, "creg", {"", "+CREG: 2,1,\"1A2B\",\"00C3D4E5\",7"}, true, "1A2B/00C3D4E5,7"};
        QTest::newRow("creg: no cell") << QueryRow{H, "creg", {"", "+CREG: 2,1,\"1A2B\","}, false, "1A2B/"};
        QTest::newRow("creg: +CREG=2 rejected") << QueryRow{H, "creg", {"ERROR"}, false, "old/old", 1};

        // Cells keyed by channel and sorted as text; the serving cell gets its
        // ^MONI level, the neighbours their ^MONP levels, and a channel that
        // ^SMONC does not list is left out.
        const Make C = Make::Cinterion;
        QTest::newRow("smonc: Cinterion profile")
            << QueryRow{C, "smonc", {}, true,
                        "000,000,0,0,0;250,01,3841,6700,25,-88;250,01,50132,6699,42,-68;250,01,50133,6699,30,-80"};
        const QByteArray two = "^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,02,00FF,0010,17,95,30,28,28";
        QTest::newRow("smonc: both level commands")
            << QueryRow{C, "smonc", {two, "chann rs dBm\r\n93 42 -68 25001", "95 30 -80\r\n95 30 -81\r\n93 1 -70"},
                        true, "250,01,50132,6699,42,-68,-70;250,02,16,255,30,-80,-81"};
        QTest::newRow("smonc: lines of other shapes ignored")
            << QueryRow{C, "smonc", {two + ",250,03,0001,0002,17,0,20,0,0",
                                     "93 -68\r\n0 42 -68\r\n-93 42 -68\r\nx93 42 -68\r\n\r\n  ", "95\t30\t-80"},
                        true, "250,03,2,1,20;250,01,50132,6699,42;250,02,16,255,30,-80"};
        QTest::newRow("smonc: same channel, the later cell")
            << QueryRow{C, "smonc", {"^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,99,0001,0002,17,93,30,28,28",
                                     "ERROR", "ERROR"}, true, "250,99,2,1,30"};
        QTest::newRow("smonc: no cell monitoring") << QueryRow{C, "smonc", {"ERROR"}, false, "old", 1};

        QTest::newRow("cgreg: SIMCOM profile") << QueryRow{S, "cgreg", {}, true, ",,50132,6699,,"};
        QTest::newRow("cgreg: lower case, with technology")
            << QueryRow{S, "cgreg", {"", "+CGREG: 2,1,\"00ff\",\"0a0b0c\",7"}, true, ",,658188,255,,"};
        QTest::newRow("cgreg: no location") << QueryRow{S, "cgreg", {"", "+CGREG: 2,1"}, false, "old"};
    }

    void query()
    {
        QFETCH(QueryRow, row);
        ZML_OPEN(row.make);
        const QList<QByteArray> commands = commandsOf(row.query);
        for (int i = 0; i < row.bodies.size(); ++i) {
            if (row.bodies.at(i).startsWith('\r'))
                sim.setReply(commands.at(i), Reply::raw(row.bodies.at(i)));
            else
                zmltest::answerWith(sim, commands.at(i), row.bodies.at(i));
        }
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        bool ok = !row.result;
        const QString value = run(modem, row.query, ok);
        QCOMPARE(ok, row.result);
        // The random substitute is the first draw after seeding with the time
        // in seconds.
        if (row.value == QLatin1String("random"))
            QVERIFY2(substituteLevels(before).contains(value), qPrintable(value));
        else
            QCOMPARE(value, row.value);
        QCOMPARE(sim.commands(), commands.mid(0, row.sent));
    }

    // The IMEI alone, the summary as text, and a modem that falls silent:
    // no keys, and the text is left as it was.
    void imeiAndInfoAsText()
    {
        SimModem sim(Make::Unknown);
        sim.setImei("490154203237518");
        sim.setImsi("250017700000001");
        AtModem modem;
        QVERIFY(zmltest::startAndOpen(sim, modem));
        sim.setEcho(true);
        QString imei;
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QStringLiteral("490154203237518"));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+GSN"}));

        const QString expected = QStringLiteral("imei: 490154203237518\nimsi: 250017700000001\nrevision: V1.0");
        QString text;
        QVERIFY(modem.getInfo(text));
        QCOMPARE(text, expected);
        sim.setSilent(true);
        QVariantMap info{{"stale", 1}};
        QVERIFY(!modem.getInfo(info));
        QVERIFY(info.isEmpty());
        QVERIFY(!modem.getInfo(text));
        QCOMPARE(text, expected);
    }
};

QTEST_GUILESS_MAIN(TestIdentity)
#include "tst_identity.moc"
