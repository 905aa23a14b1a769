// Identity and network queries against the simulated modem: what goes out on
// the wire and what comes back, per dialect, with broken answers too.
#include "simfixture.h"

#include <QDateTime>

using namespace zelmodems::sim;
using zmltest::startAndOpen;

namespace {

// The modem's answer to a query's command, whether the query succeeds and
// the value it gives.
struct QueryRow
{
    QByteArray reply;
    bool result;
    QString value;
};

// Bodies for up to three commands, in the query's order: empty leaves the
// profile's answer, "ERROR" makes the command fail.
struct CellRow
{
    QList<QByteArray> bodies;
    bool result;
    QString cells;
    int sent;   // how many of the query's commands went out
};

struct MncRow
{
    QByteArray imsi;   // empty: the modem says ERROR
    bool result;
    int mcc;
    int mnc;
    QString error;
};

struct SimIdRow
{
    Make make;
    QByteArray command;
    QByteArray body;
    QVariant simId;   // invalid: no "sim_id" key
};

// The cell list the Cinterion profile's ^SMONC, ^MONI and ^MONP answers give:
// keyed by channel and sorted as text ("0" < "100" < "93" < "95"); the
// serving cell gets its ^MONI level, the neighbours their ^MONP levels, and
// channel 101, which ^SMONC does not list, is left out.
const QString cinterionCells = QStringLiteral("000,000,0,0,0;"
                                              "250,01,3841,6700,25,-88;"
                                              "250,01,50132,6699,42,-68;"
                                              "250,01,50133,6699,30,-80");

QVariantMap cell(int mcc, int mnc, const QString& cid, const QString& lac)
{
    return QVariantMap{{QStringLiteral("mcc"), mcc}, {QStringLiteral("mnc"), mnc},
                       {QStringLiteral("cid"), cid}, {QStringLiteral("lac"), lac}};
}

// Sets the simulator's answer to `command`: empty leaves the profile's,
// "ERROR" makes the command fail, anything else is the body before OK.
void answerWith(SimModem& sim, const QByteArray& command, const QByteArray& body)
{
    if (body == "ERROR")
        sim.setReply(command, Reply::error());
    else if (!body.isEmpty())
        sim.setAnswer(command, body);
}

// The substitute levels getSignalLevel can give during this second and the
// next: it seeds the generator with the current time in seconds.
QList<int> substituteLevels(qint64 fromSecs)
{
    QList<int> levels;
    for (qint64 s = fromSecs; s <= fromSecs + 1; ++s) {
        qsrand(uint(s));
        levels << -90 - (qrand() % 20);
    }
    return levels;
}

} // namespace

Q_DECLARE_METATYPE(QueryRow)
Q_DECLARE_METATYPE(CellRow)
Q_DECLARE_METATYPE(MncRow)
Q_DECLARE_METATYPE(SimIdRow)

class TestIdentity : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

    // Runs one cell query on a simulated modem of `make` whose answers to
    // `commands` are the row's bodies.
    template <typename Query>
    void cellQuery(Make make, const QList<QByteArray>& commands, Query query)
    {
        QFETCH(CellRow, row);
        SimModem sim(make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        for (int i = 0; i < row.bodies.size(); ++i)
            answerWith(sim, commands.at(i), row.bodies.at(i));
        QString cells = QStringLiteral("old");
        QCOMPARE(query(modem, cells), row.result);
        QCOMPARE(cells, row.cells);
        QCOMPARE(sim.commands(), commands.mid(0, row.sent));
    }

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void numberQuery_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QueryRow>("row");

        const QString digits = QStringLiteral("\\d+");
        QTest::newRow("digits") << digits << QueryRow{"\r\n866123456789012\r\n\r\nOK\r\n", true, "866123456789012"};
        QTest::newRow("first run of digits") << digits << QueryRow{"\r\nIMEI 35 12 34\r\n\r\nOK\r\n", true, "35"};
        QTest::newRow("success without a match") << digits << QueryRow{"\r\nunknown\r\n\r\nOK\r\n", true, ""};
        QTest::newRow("failed command, answer matches") << digits << QueryRow{"\r\n+CME ERROR: 10\r\n", true, "10"};
        QTest::newRow("failed command without a match") << digits << QueryRow{"\r\nERROR\r\n", false, ""};
        QTest::newRow("case-sensitive pattern") << QString("ABC") << QueryRow{"\r\nabc\r\n\r\nOK\r\n", true, ""};
        QTest::newRow("pattern is a regular expression")
            << QString("\\w{4,24}") << QueryRow{"\r\n+CRSM: 144,0,\"98F7\"\r\n\r\nOK\r\n", true, "CRSM"};
    }

    void numberQuery()
    {
        QFETCH(QString, pattern);
        QFETCH(QueryRow, row);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+TEST", Reply::raw(row.reply));

        QString got = QStringLiteral("stale");
        QCOMPARE(modem.getNumberInternal("+TEST", got, pattern), row.result);
        QCOMPARE(got, row.value);
        QCOMPARE(sim.commands(), QList<QByteArray>{"+TEST"});
    }

    void mnc_data()
    {
        QTest::addColumn<MncRow>("row");

        QTest::newRow("leading zero of the MNC") << MncRow{"250011234567890", true, 250, 1, ""};
        QTest::newRow("three-digit MNC read as two") << MncRow{"310260123456789", true, 310, 26, ""};
        QTest::newRow("exactly five digits") << MncRow{"25099", true, 250, 99, ""};
        QTest::newRow("four digits") << MncRow{"2500", false, 0, 0, ""};
        // The IMSI is the first run of digits, so a letter cuts it short
        // before the MCC is ever converted.
        QTest::newRow("letter inside the MCC") << MncRow{"2A0011234567890", false, 0, 0, ""};
        // Digits of other scripts match \d but are no decimal number.
        QTest::newRow("Arabic-Indic MCC") << MncRow{"\xd9\xa2\xd9\xa5\xd9\xa0" "011234567890", false, 0, 0,
                                                    "Wrong mcc \xd9\xa2\xd9\xa5\xd9\xa0"};
        QTest::newRow("Arabic-Indic MNC")
            << MncRow{"250\xd9\xa0\xd9\xa1" "1234567890", false, 250, 0, "Wrong mnc\xd9\xa0\xd9\xa1"};
        QTest::newRow("no SIM") << MncRow{"", false, 0, 0, "Modem said \"ERROR\""};
    }

    void mnc()
    {
        QFETCH(MncRow, row);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setImsi(row.imsi);

        int mcc = -1, mnc = -1;
        QCOMPARE(modem.getMnc(mcc, mnc), row.result);
        QCOMPARE(mcc, row.mcc);
        QCOMPARE(mnc, row.mnc);
        QCOMPARE(modem.lastError(), row.error);
        QCOMPARE(sim.commands(), QList<QByteArray>{"+CIMI"});
    }

    void operatorName_data()
    {
        QTest::addColumn<bool>("formatAccepted");
        QTest::addColumn<QueryRow>("row");

        QTest::newRow("MegaFon") << true << QueryRow{"\r\n+COPS: 0,0,\"MegaFon\",2\r\n\r\nOK\r\n", true, "MegaFon"};
        QTest::newRow("format rejected, name still read")
            << false << QueryRow{"\r\n+COPS: 0,0,\"Beeline\"\r\n\r\nOK\r\n", true, "Beeline"};
        QTest::newRow("from the first quote to the last")
            << true << QueryRow{"\r\n+COPS: 0,0,\"MTS RUS\",2,\"x\"\r\n\r\nOK\r\n", true, "MTS RUS,2,x"};
        QTest::newRow("not registered") << true << QueryRow{"\r\n+COPS: 0\r\n\r\nOK\r\n", false, "old"};
        QTest::newRow("one quote only") << true << QueryRow{"\r\n+COPS: 0,0,\"Tele2\r\n\r\nOK\r\n", false, "old"};
        QTest::newRow("ERROR") << true << QueryRow{"\r\n+CME ERROR: 30\r\n", false, "old"};
    }

    void operatorName()
    {
        QFETCH(bool, formatAccepted);
        QFETCH(QueryRow, row);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+COPS?", Reply::raw(row.reply));
        if (!formatAccepted)
            sim.setReply("+COPS=3,0", Reply::error());

        QString got = QStringLiteral("old");
        QCOMPARE(modem.getOperator(got), row.result);
        QCOMPARE(got, row.value);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+COPS=3,0", "+COPS?"}));
    }

    void signalLevel_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("result");
        QTest::addColumn<int>("level");   // 0: the random substitute

        QTest::newRow("index 31") << QByteArray("\r\n+CSQ: 31,99\r\n\r\nOK\r\n") << true << -51;
        QTest::newRow("index 0") << QByteArray("\r\n+CSQ: 0,0\r\n\r\nOK\r\n") << true << -113;
        QTest::newRow("blanks around the comma") << QByteArray("\r\n+CSQ: 17 , 3\r\n\r\nOK\r\n") << true << -79;
        QTest::newRow("index 56, still negative") << QByteArray("\r\n+CSQ: 56,0\r\n\r\nOK\r\n") << true << -1;
        QTest::newRow("index 99: not known") << QByteArray("\r\n+CSQ: 99,99\r\n\r\nOK\r\n") << true << 0;
        QTest::newRow("index 57: out of range") << QByteArray("\r\n+CSQ: 57,0\r\n\r\nOK\r\n") << true << 0;
        QTest::newRow("index that would overflow") << QByteArray("\r\n+CSQ: 2000000000,99\r\n\r\nOK\r\n") << true << 0;
        QTest::newRow("no pair") << QByteArray("\r\n+CSQ: 20\r\n\r\nOK\r\n") << true << 0;
        QTest::newRow("ERROR") << QByteArray("\r\nERROR\r\n") << false << 0;
        QTest::newRow("ERROR after a pair") << QByteArray("\r\n+CSQ: 10,0\r\n+CME ERROR: 1\r\n") << true << -93;
    }

    void signalLevel()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, result);
        QFETCH(int, level);

        SimModem sim(Make::SimCom);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+CSQ", Reply::raw(reply));

        const qint64 before = QDateTime::currentSecsSinceEpoch();
        int got = 12345;
        QCOMPARE(modem.getSignalLevel(got), result);
        if (level != 0) {
            QCOMPARE(got, level);
        } else {
            // The generator was re-seeded with the time in seconds, so the
            // substitute (-109..-90) is the first draw of that seed.
            QVERIFY2(substituteLevels(before).contains(got), qPrintable(QString::number(got)));
        }
        QCOMPARE(sim.commands(), QList<QByteArray>{"+CSQ"});
    }

    // Bodies for +CREG=2 and +CREG?; the cells as LAC/cell identity.
    void servingCell_data()
    {
        QTest::addColumn<CellRow>("row");

        QTest::newRow("with location") << CellRow{{"", "+CREG: 2,1,\"1A2B\",\"00C3D4E5\""}, true, "1A2B/00C3D4E5", 2};
        QTest::newRow("unquoted") << CellRow{{"", "+CREG: 2,5, 1A2B , C3D4"}, true, "1A2B/C3D4", 2};
        // Everything after the LAC is the cell, access technology included.
        QTest::newRow("with access technology")
            << CellRow{{"", "+CREG: 2,1,\"1A2B\",\"00C3D4E5\",7"}, true, "1A2B/00C3D4E5,7", 2};
        QTest::newRow("empty location") << CellRow{{"", "+CREG: 2,0,\"\",\"\""}, false, "/", 2};
        QTest::newRow("no cell") << CellRow{{"", "+CREG: 2,1,\"1A2B\","}, false, "1A2B/", 2};
        // Without a third comma both cuts start at the beginning: the rest
        // serves as LAC and as cell alike.
        QTest::newRow("n and stat only") << CellRow{{"", "+CREG: 2,1"}, true, "1/1", 2};
        QTest::newRow("+CREG=2 rejected") << CellRow{{"ERROR", ""}, false, "old/old", 1};
        QTest::newRow("+CREG? rejected") << CellRow{{"", "ERROR"}, false, "old/old", 2};
    }

    void servingCell()
    {
        cellQuery(Make::Huawei, {"+CREG=2", "+CREG?"}, [](AtModem& modem, QString& cells) {
            QString lac = cells, cid = cells;
            const bool ok = modem.getGsmCells(lac, cid);
            cells = lac + QLatin1Char('/') + cid;
            return ok;
        });
    }

    // Bodies for ^SMONC, ^MONI and ^MONP.
    void siemensCells_data()
    {
        QTest::addColumn<CellRow>("row");

        QTest::newRow("Cinterion profile") << CellRow{{}, true, cinterionCells, 3};
        const QByteArray two = "^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,02,00FF,0010,17,95,30,28,28";
        QTest::newRow("no dBm lines")
            << CellRow{{two, "ERROR", "ERROR"}, true, "250,01,50132,6699,42;250,02,16,255,30", 3};
        QTest::newRow("both level commands")
            << CellRow{{two, "chann rs dBm\r\n93 42 -68 25001", "95 30 -80\r\n95 30 -81\r\n93 1 -70"}, true,
                       "250,01,50132,6699,42,-68,-70;250,02,16,255,30,-80,-81", 3};
        QTest::newRow("lines of other shapes ignored")
            << CellRow{{two, "93 -68\r\n0 42 -68\r\n-93 42 -68\r\nx93 42 -68\r\n\r\n  ", "95\t30\t-80"}, true,
                       "250,01,50132,6699,42;250,02,16,255,30,-80", 3};
        QTest::newRow("same channel: the later cell")
            << CellRow{{"^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,99,0001,0002,17,93,30,28,28", "ERROR", "ERROR"},
                       true, "250,99,2,1,30", 3};
        QTest::newRow("truncated last cell with RxLev")
            << CellRow{{"^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,02,0001,0002,17,95,30", "ERROR", "ERROR"}, true,
                       "250,01,50132,6699,42;250,02,2,1,30", 3};
        QTest::newRow("truncated last cell without RxLev")
            << CellRow{{"^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,02,0001,0002,17,95", "ERROR", "ERROR"}, true,
                       "250,01,50132,6699,42", 3};
        QTest::newRow("not hexadecimal")
            << CellRow{{"^SMONC: 250,01,ZZZZ,-,32,93,42,40,40", "ERROR", "ERROR"}, true, "250,01,0,0,42", 3};
        QTest::newRow("six fields") << CellRow{{"^SMONC: 250,01,1A2B,C3D4,32,93"}, false, "old", 1};
        QTest::newRow("no colon") << CellRow{{"250,01,1A2B,C3D4,32,93,42,40,40"}, false, "old", 1};
        QTest::newRow("no cell monitoring") << CellRow{{"ERROR"}, false, "old", 1};
    }

    void siemensCells()
    {
        cellQuery(Make::Cinterion, {"^SMONC", "^MONI", "^MONP"},
                  [](AtModem& modem, QString& cells) { return modem.getSiemensCellList(cells); });
    }

    // Bodies for +CGREG=2 and +CGREG?.
    void simcomCell_data()
    {
        QTest::addColumn<CellRow>("row");

        QTest::newRow("SIMCOM profile") << CellRow{{}, true, ",,50132,6699,,", 2};
        QTest::newRow("lower-case, with technology")
            << CellRow{{"", "+CGREG: 2,1,\"00ff\",\"0a0b0c\",7"}, true, ",,658188,255,,", 2};
        QTest::newRow("word that is no number")
            << CellRow{{"", "+CGREG: 2,1,\"C2C\",\"CELL_X\""}, true, ",,0,3116,,", 2};
        QTest::newRow("no location") << CellRow{{"", "+CGREG: 2,1"}, false, "old", 2};
        QTest::newRow("blank after the comma") << CellRow{{"", "+CGREG: 2, 1,\"1A2B\",\"C3D4\""}, false, "old", 2};
        QTest::newRow("+CGREG=2 rejected") << CellRow{{"ERROR"}, false, "old", 1};
    }

    void simcomCell()
    {
        cellQuery(Make::SimCom, {"+CGREG=2", "+CGREG?"},
                  [](AtModem& modem, QString& cells) { return modem.getSimCOMCellList(cells); });
    }

    // The summary per dialect; the SIM identities of the others are below.
    void info_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<QVariantMap>("expected");
        QTest::addColumn<QList<QByteArray>>("commands");

        const QList<QByteArray> common{"E0", "+GSN", "+CIMI", "+GMR"};
        QTest::newRow("Cinterion: its own key, no swap, cells")
            << Make::Cinterion
            << QVariantMap{{"imei", "351234567890123"},
                           {"imsi", "250011234567890"},
                           {"revision", QStringLiteral("01.200")},
                           {"simId", "89701012345678901234"},
                           {"gsmCells", QVariantList{cell(0, 0, "0", "0"), cell(250, 1, "3841", "6700"),
                                                     cell(250, 1, "50132", "6699"), cell(250, 1, "50133", "6699")}}}
            << common + QList<QByteArray>{"^SCID", "^SMONC", "^MONI", "^MONP"};
        QTest::newRow("SIMCOM: revision field, serving cell")
            << Make::SimCom
            << QVariantMap{{"imei", "861234567890123"},
                           {"imsi", "250991234567890"},
                           {"revision", QStringLiteral("SIM7600M22_V1.1")},
                           {"gsmCells", QVariantList{cell(0, 0, "50132", "6699")}}}
            << common + QList<QByteArray>{"+CGREG=2", "+CGREG?"};
        // No IMEI and no SIM: the commands fail and their keys stay out.
        QTest::newRow("analog modem") << Make::Unknown << QVariantMap{{"revision", QByteArray("V1.0")}} << common;
    }

    void info()
    {
        QFETCH(Make, make);
        QFETCH(QVariantMap, expected);
        QFETCH(QList<QByteArray>, commands);

        SimModem sim(make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setEcho(true);
        QVariantMap info{{"stale", 1}};
        QVERIFY(modem.getInfo(info));
        QCOMPARE(info, expected);
        QCOMPARE(sim.commands(), commands);
    }

    void infoSimId_data()
    {
        QTest::addColumn<SimIdRow>("row");

        const QByteArray iccid("^ICCID?"), crsm("+CRSM=176,12258,0,0,10");
        QTest::newRow("odd length")
            << SimIdRow{Make::Huawei, iccid, "^ICCID: 12345", QString::fromUtf8("2143\0" "5", 6)};
        QTest::newRow("one digit") << SimIdRow{Make::HspaDataCard, iccid, "^ICCID: 7", QString::fromUtf8("\0" "7", 2)};
        QTest::newRow("no digits: empty, still inserted") << SimIdRow{Make::Huawei, iccid, "^ICCID: none", QString()};
        QTest::newRow("rejected: left out") << SimIdRow{Make::Huawei, iccid, "ERROR", QVariant()};
        QTest::newRow("ZTE hexadecimal ICCID with filler")
            << SimIdRow{Make::Zte, crsm, "+CRSM: 144,0,\"9870123456789012345F\"", QString("890721436587092143F5")};
        QTest::newRow("ZTE short answer") << SimIdRow{Make::Zte, crsm, "+CRSM: 148,4", QString()};
    }

    void infoSimId()
    {
        QFETCH(SimIdRow, row);

        SimModem sim(row.make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        answerWith(sim, row.command, row.body);
        QVariantMap info;
        QVERIFY(modem.getInfo(info));
        QCOMPARE(info.keys(), (row.simId.isValid() ? QStringList{"imei", "imsi", "revision", "sim_id"}
                                                   : QStringList{"imei", "imsi", "revision"}));
        QCOMPARE(info.value(QStringLiteral("sim_id")), row.simId);
    }

    // The IMEI alone, the summary as text, and a modem that falls silent:
    // no keys, and the text is left as it was.
    void imeiAndInfoAsText()
    {
        SimModem sim(Make::Unknown);
        sim.setImei("490154203237518");
        sim.setImsi("250017700000001");
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
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
