// Identity and network queries against the simulated modem: what goes out on
// the wire and what comes back, per dialect, with broken answers too.
#include "simfixture.h"

#include <QDateTime>

using namespace modemsim;
using zmltest::startAndOpen;

namespace {

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

class TestIdentity : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void numberQuery_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("value");

        const QString digits = QStringLiteral("\\d+");
        QTest::newRow("digits") << QByteArray("\r\n866123456789012\r\n\r\nOK\r\n") << digits << true
                                << QStringLiteral("866123456789012");
        QTest::newRow("first run of digits")
            << QByteArray("\r\nIMEI 35 12 34\r\n\r\nOK\r\n") << digits << true << QStringLiteral("35");
        QTest::newRow("success without a match") << QByteArray("\r\nunknown\r\n\r\nOK\r\n") << digits << true
                                                 << QString();
        QTest::newRow("failed command whose answer matches")
            << QByteArray("\r\n+CME ERROR: 10\r\n") << digits << true << QStringLiteral("10");
        QTest::newRow("failed command without a match") << QByteArray("\r\nERROR\r\n") << digits << false << QString();
        QTest::newRow("line noise") << QByteArray::fromHex("ff00fe8a7e23c0d1") << digits << false << QString();
        QTest::newRow("case-sensitive pattern") << QByteArray("\r\nabc\r\n\r\nOK\r\n") << QStringLiteral("ABC")
                                                << true << QString();
        QTest::newRow("pattern is a regular expression")
            << QByteArray("\r\n+CRSM: 144,0,\"98F7\"\r\n\r\nOK\r\n") << QStringLiteral("\\w{4,24}") << true
            << QStringLiteral("CRSM");
    }

    void numberQuery()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QString, pattern);
        QFETCH(bool, result);
        QFETCH(QString, value);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+TEST", Reply::raw(reply));

        QString got = QStringLiteral("stale");
        QCOMPARE(modem.getNumberInternal("+TEST", got, pattern), result);
        QCOMPARE(got, value);
        QCOMPARE(sim.commands(), QList<QByteArray>{"+TEST"});
    }

    void numberQuerySilentModem()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setFault("+GSN", Fault::Silence);
        QString imei = QStringLiteral("stale");
        QVERIFY(!modem.getImei(imei));
        QCOMPARE(imei, QString());
        QVERIFY(modem.lastError().startsWith(QLatin1String("Modem is offline pn port")));
    }

    void imeiSwitchesEchoOff()
    {
        SimModem sim(Make::Zte);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setEcho(true);
        QString imei;
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QStringLiteral("355123456789012"));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+GSN"}));

        QString imsi;
        QVERIFY(modem.getImsi(imsi));
        QCOMPARE(imsi, QStringLiteral("250201234567890"));
        QCOMPARE(sim.commands().last(), QByteArray("+CIMI"));
    }

    void mnc_data()
    {
        QTest::addColumn<QByteArray>("imsi");   // empty: the modem says ERROR
        QTest::addColumn<bool>("result");
        QTest::addColumn<int>("mcc");
        QTest::addColumn<int>("mnc");
        QTest::addColumn<QString>("error");

        QTest::newRow("MegaFon") << QByteArray("250026123456789") << true << 250 << 2 << QString();
        QTest::newRow("leading zero of the MNC") << QByteArray("250011234567890") << true << 250 << 1 << QString();
        QTest::newRow("three-digit MNC read as two") << QByteArray("310260123456789") << true << 310 << 26
                                                     << QString();
        QTest::newRow("exactly five digits") << QByteArray("25099") << true << 250 << 99 << QString();
        QTest::newRow("four digits") << QByteArray("2500") << false << 0 << 0 << QString();
        // The IMSI is the first run of digits, so a letter cuts it short
        // before the MCC is ever converted.
        QTest::newRow("letter inside the MCC") << QByteArray("2A0011234567890") << false << 0 << 0 << QString();
        // Digits of other scripts match \d but are no decimal number.
        QTest::newRow("Arabic-Indic MCC") << QByteArray("\xd9\xa2\xd9\xa5\xd9\xa0" "011234567890") << false << 0
                                          << 0 << QString::fromUtf8("Wrong mcc \xd9\xa2\xd9\xa5\xd9\xa0");
        QTest::newRow("Arabic-Indic MNC") << QByteArray("250\xd9\xa0\xd9\xa1" "1234567890") << false << 250 << 0
                                          << QString::fromUtf8("Wrong mnc\xd9\xa0\xd9\xa1");
        QTest::newRow("no SIM") << QByteArray() << false << 0 << 0 << QStringLiteral("Modem said \"ERROR\"");
    }

    void mnc()
    {
        QFETCH(QByteArray, imsi);
        QFETCH(bool, result);
        QFETCH(int, mcc);
        QFETCH(int, mnc);
        QFETCH(QString, error);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setImsi(imsi);

        int gotMcc = -1, gotMnc = -1;
        QCOMPARE(modem.getMnc(gotMcc, gotMnc), result);
        QCOMPARE(gotMcc, mcc);
        QCOMPARE(gotMnc, mnc);
        QCOMPARE(modem.lastError(), error);
        QCOMPARE(sim.commands(), QList<QByteArray>{"+CIMI"});
    }

    void operatorName_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("formatAccepted");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("name");

        QTest::newRow("MegaFon") << QByteArray("\r\n+COPS: 0,0,\"MegaFon\",2\r\n\r\nOK\r\n") << true << true
                                 << QStringLiteral("MegaFon");
        QTest::newRow("format rejected, name still read")
            << QByteArray("\r\n+COPS: 0,0,\"Beeline\"\r\n\r\nOK\r\n") << false << true << QStringLiteral("Beeline");
        QTest::newRow("from the first quote to the last")
            << QByteArray("\r\n+COPS: 0,0,\"MTS RUS\",2,\"x\"\r\n\r\nOK\r\n") << true << true
            << QStringLiteral("MTS RUS,2,x");
        QTest::newRow("not registered") << QByteArray("\r\n+COPS: 0\r\n\r\nOK\r\n") << true << false << QString("old");
        QTest::newRow("one quote only") << QByteArray("\r\n+COPS: 0,0,\"Tele2\r\n\r\nOK\r\n") << true << false
                                        << QString("old");
        QTest::newRow("ERROR") << QByteArray("\r\n+CME ERROR: 30\r\n") << true << false << QString("old");
    }

    void operatorName()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, formatAccepted);
        QFETCH(bool, result);
        QFETCH(QString, name);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+COPS?", Reply::raw(reply));
        if (!formatAccepted)
            sim.setReply("+COPS=3,0", Reply::error());

        QString got = QStringLiteral("old");
        QCOMPARE(modem.getOperator(got), result);
        QCOMPARE(got, name);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+COPS=3,0", "+COPS?"}));
    }

    void signalLevel_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("result");
        QTest::addColumn<int>("level");   // 0: the random substitute

        QTest::newRow("index 31") << QByteArray("\r\n+CSQ: 31,99\r\n\r\nOK\r\n") << true << -51;
        QTest::newRow("index 0") << QByteArray("\r\n+CSQ: 0,0\r\n\r\nOK\r\n") << true << -113;
        QTest::newRow("index 20") << QByteArray("\r\n+CSQ: 20,99\r\n\r\nOK\r\n") << true << -73;
        QTest::newRow("blanks around the comma") << QByteArray("\r\n+CSQ: 17 , 3\r\n\r\nOK\r\n") << true << -79;
        QTest::newRow("index 56, still negative") << QByteArray("\r\n+CSQ: 56,0\r\n\r\nOK\r\n") << true << -1;
        QTest::newRow("index 99: not known") << QByteArray("\r\n+CSQ: 99,99\r\n\r\nOK\r\n") << true << 0;
        QTest::newRow("index 57: out of range") << QByteArray("\r\n+CSQ: 57,0\r\n\r\nOK\r\n") << true << 0;
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
            // substitute is the first draw of that seed.
            QVERIFY2(got >= -109 && got <= -90, qPrintable(QString::number(got)));
            QVERIFY2(substituteLevels(before).contains(got), qPrintable(QString::number(got)));
        }
        QCOMPARE(sim.commands(), QList<QByteArray>{"+CSQ"});
    }

    void servingCell_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("lac");
        QTest::addColumn<QString>("cid");

        QTest::newRow("with location") << QByteArray("+CREG: 2,1,\"1A2B\",\"00C3D4E5\"") << true
                                       << QStringLiteral("1A2B") << QStringLiteral("00C3D4E5");
        QTest::newRow("unquoted") << QByteArray("+CREG: 2,5, 1A2B , C3D4") << true << QStringLiteral("1A2B")
                                  << QStringLiteral("C3D4");
        // Everything after the LAC is the cell, access technology included.
        QTest::newRow("with access technology") << QByteArray("+CREG: 2,1,\"1A2B\",\"00C3D4E5\",7") << true
                                                << QStringLiteral("1A2B") << QStringLiteral("00C3D4E5,7");
        QTest::newRow("empty location") << QByteArray("+CREG: 2,0,\"\",\"\"") << false << QString() << QString();
        QTest::newRow("no cell") << QByteArray("+CREG: 2,1,\"1A2B\",") << false << QStringLiteral("1A2B")
                                 << QString();
        // Without a third comma both cuts start at the beginning: the rest
        // serves as LAC and as cell alike.
        QTest::newRow("n and stat only") << QByteArray("+CREG: 2,1") << true << QStringLiteral("1")
                                         << QStringLiteral("1");
    }

    void servingCell()
    {
        QFETCH(QByteArray, body);
        QFETCH(bool, result);
        QFETCH(QString, lac);
        QFETCH(QString, cid);

        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setAnswer("+CREG?", body);

        QString gotLac = QStringLiteral("old"), gotCid = QStringLiteral("old");
        QCOMPARE(modem.getGsmCells(gotLac, gotCid), result);
        QCOMPARE(gotLac, lac);
        QCOMPARE(gotCid, cid);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"+CREG=2", "+CREG?"}));
    }

    void servingCellRejected_data()
    {
        QTest::addColumn<QByteArray>("failing");
        QTest::addColumn<QList<QByteArray>>("commands");
        QTest::newRow("+CREG=2") << QByteArray("+CREG=2") << QList<QByteArray>{"+CREG=2"};
        QTest::newRow("+CREG?") << QByteArray("+CREG?") << QList<QByteArray>{"+CREG=2", "+CREG?"};
    }

    void servingCellRejected()
    {
        QFETCH(QByteArray, failing);
        QFETCH(QList<QByteArray>, commands);
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setFault(failing, Fault::Error);
        QString lac = QStringLiteral("old"), cid = QStringLiteral("old");
        QVERIFY(!modem.getGsmCells(lac, cid));
        QCOMPARE(lac, QStringLiteral("old"));
        QCOMPARE(cid, QStringLiteral("old"));
        QCOMPARE(sim.commands(), commands);
    }

    void siemensCells_data()
    {
        QTest::addColumn<QByteArray>("smonc");   // empty: the profile's answers
        QTest::addColumn<QByteArray>("moni");    // "ERROR": the command fails
        QTest::addColumn<QByteArray>("monp");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("list");

        QTest::newRow("Cinterion profile") << QByteArray() << QByteArray() << QByteArray() << true << cinterionCells;

        const QByteArray two = "^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,02,00FF,0010,17,95,30,28,28";
        QTest::newRow("no dBm lines") << two << QByteArray("ERROR") << QByteArray("ERROR") << true
                                      << QStringLiteral("250,01,50132,6699,42;250,02,16,255,30");
        QTest::newRow("both level commands")
            << two << QByteArray("chann rs dBm\r\n93 42 -68 25001") << QByteArray("95 30 -80\r\n95 30 -81\r\n93 1 -70")
            << true << QStringLiteral("250,01,50132,6699,42,-68,-70;250,02,16,255,30,-80,-81");
        QTest::newRow("lines of other shapes ignored")
            << two << QByteArray("93 -68\r\n0 42 -68\r\n-93 42 -68\r\nx93 42 -68\r\n\r\n  ")
            << QByteArray("95\t30\t-80") << true << QStringLiteral("250,01,50132,6699,42;250,02,16,255,30,-80");
        QTest::newRow("same channel: the later cell")
            << QByteArray("^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,99,0001,0002,17,93,30,28,28")
            << QByteArray("ERROR") << QByteArray("ERROR") << true << QStringLiteral("250,99,2,1,30");
        QTest::newRow("truncated last cell with RxLev")
            << QByteArray("^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,02,0001,0002,17,95,30") << QByteArray("ERROR")
            << QByteArray("ERROR") << true << QStringLiteral("250,01,50132,6699,42;250,02,2,1,30");
        QTest::newRow("truncated last cell without RxLev")
            << QByteArray("^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,250,02,0001,0002,17,95") << QByteArray("ERROR")
            << QByteArray("ERROR") << true << QStringLiteral("250,01,50132,6699,42");
        QTest::newRow("not hexadecimal") << QByteArray("^SMONC: 250,01,ZZZZ,-,32,93,42,40,40") << QByteArray("ERROR")
                                         << QByteArray("ERROR") << true << QStringLiteral("250,01,0,0,42");
        QTest::newRow("six fields") << QByteArray("^SMONC: 250,01,1A2B,C3D4,32,93") << QByteArray() << QByteArray()
                                    << false << QStringLiteral("old");
        QTest::newRow("no colon") << QByteArray("250,01,1A2B,C3D4,32,93,42,40,40") << QByteArray() << QByteArray()
                                  << false << QStringLiteral("old");
    }

    void siemensCells()
    {
        QFETCH(QByteArray, smonc);
        QFETCH(QByteArray, moni);
        QFETCH(QByteArray, monp);
        QFETCH(bool, result);
        QFETCH(QString, list);

        SimModem sim(Make::Cinterion);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QCOMPARE(modem.dialect(), qint32(AtModem::SIEMENCE));
        if (!smonc.isEmpty())
            sim.setAnswer("^SMONC", smonc);
        for (auto pair : {qMakePair(QByteArray("^MONI"), moni), qMakePair(QByteArray("^MONP"), monp)}) {
            if (pair.second == "ERROR")
                sim.setReply(pair.first, Reply::error());
            else if (!pair.second.isEmpty())
                sim.setAnswer(pair.first, pair.second);
        }

        QString got = QStringLiteral("old");
        QCOMPARE(modem.getSiemensCellList(got), result);
        QCOMPARE(got, list);
        if (result)
            QCOMPARE(sim.commands(), (QList<QByteArray>{"^SMONC", "^MONI", "^MONP"}));
        else
            QCOMPARE(sim.commands(), QList<QByteArray>{"^SMONC"});
    }

    void siemensCellsRejected()
    {
        SimModem sim(Make::Huawei);   // no cell monitoring: ERROR
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QString list = QStringLiteral("old");
        QVERIFY(!modem.getSiemensCellList(list));
        QCOMPARE(list, QStringLiteral("old"));
        QCOMPARE(sim.commands(), QList<QByteArray>{"^SMONC"});
    }

    void simcomCell_data()
    {
        QTest::addColumn<QByteArray>("body");   // empty: the profile's answer
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("list");

        QTest::newRow("SIMCOM profile") << QByteArray() << true << QStringLiteral(",,50132,6699,,");
        QTest::newRow("lower-case, with technology") << QByteArray("+CGREG: 2,1,\"00ff\",\"0a0b0c\",7") << true
                                                     << QStringLiteral(",,658188,255,,");
        QTest::newRow("word that is no number") << QByteArray("+CGREG: 2,1,\"C2C\",\"CELL_X\"") << true
                                                << QStringLiteral(",,0,3116,,");
        QTest::newRow("no location") << QByteArray("+CGREG: 2,1") << false << QStringLiteral("old");
        QTest::newRow("blank after the comma") << QByteArray("+CGREG: 2, 1,\"1A2B\",\"C3D4\"") << false
                                               << QStringLiteral("old");
    }

    void simcomCell()
    {
        QFETCH(QByteArray, body);
        QFETCH(bool, result);
        QFETCH(QString, list);

        SimModem sim(Make::SimCom);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        if (!body.isEmpty())
            sim.setAnswer("+CGREG?", body);
        QString got = QStringLiteral("old");
        QCOMPARE(modem.getSimCOMCellList(got), result);
        QCOMPARE(got, list);
        QCOMPARE(sim.commands(), (QList<QByteArray>{"+CGREG=2", "+CGREG?"}));
    }

    void simcomCellRejected()
    {
        SimModem sim(Make::SimCom);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+CGREG=2", Reply::error());
        QString list = QStringLiteral("old");
        QVERIFY(!modem.getSimCOMCellList(list));
        QCOMPARE(list, QStringLiteral("old"));
        QCOMPARE(sim.commands(), QList<QByteArray>{"+CGREG=2"});
    }

    void info_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<QVariantMap>("expected");
        QTest::addColumn<QList<QByteArray>>("commands");

        const QList<QByteArray> common{"E0", "+GSN", "+CIMI", "+GMR"};
        QTest::newRow("Huawei")
            << Make::Huawei
            << QVariantMap{{"imei", "866123456789012"}, {"imsi", "250026123456789"},
                           {"revision", QByteArray("22.315.01.00.00")}, {"sim_id", "89072143658709214365"}}
            << common + QList<QByteArray>{"^ICCID?"};
        QTest::newRow("HSPA data card")
            << Make::HspaDataCard
            << QVariantMap{{"imei", "354123456789012"}, {"imsi", "250021234567890"},
                           {"revision", QByteArray("11.608.13.02.00")}, {"sim_id", "89072143658709214365"}}
            << common + QList<QByteArray>{"^ICCID?"};
        QTest::newRow("ZTE")
            << Make::Zte
            << QVariantMap{{"imei", "355123456789012"}, {"imsi", "250201234567890"},
                           {"revision", QByteArray("BD_P673A2V1.0.0B06")}, {"sim_id", "89072143658709214365"}}
            << common + QList<QByteArray>{"+CRSM=176,12258,0,0,10"};
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
        QTest::addColumn<Make>("make");
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QVariant>("simId");

        QTest::newRow("odd length") << Make::Huawei << QByteArray("^ICCID?") << QByteArray("^ICCID: 12345")
                                    << QVariant(QString::fromUtf8("2143\0" "5", 6));
        QTest::newRow("one digit") << Make::HspaDataCard << QByteArray("^ICCID?") << QByteArray("^ICCID: 7")
                                   << QVariant(QString::fromUtf8("\0" "7", 2));
        QTest::newRow("no digits: empty, still inserted") << Make::Huawei << QByteArray("^ICCID?")
                                                          << QByteArray("^ICCID: none") << QVariant(QString());
        QTest::newRow("ZTE hexadecimal ICCID with filler") << Make::Zte << QByteArray("+CRSM=176,12258,0,0,10")
                                                          << QByteArray("+CRSM: 144,0,\"9870123456789012345F\"")
                                                          << QVariant(QStringLiteral("890721436587092143F5"));
        QTest::newRow("ZTE short answer") << Make::Zte << QByteArray("+CRSM=176,12258,0,0,10")
                                          << QByteArray("+CRSM: 148,4") << QVariant(QString());
    }

    void infoSimId()
    {
        QFETCH(Make, make);
        QFETCH(QByteArray, command);
        QFETCH(QByteArray, body);
        QFETCH(QVariant, simId);

        SimModem sim(make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setAnswer(command, body);
        QVariantMap info;
        QVERIFY(modem.getInfo(info));
        QVERIFY(info.contains(QStringLiteral("sim_id")));
        QCOMPARE(info.value(QStringLiteral("sim_id")), simId);
        QVERIFY(!info.contains(QStringLiteral("simId")));
    }

    void infoSimIdRejected()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("^ICCID?", Reply::error());
        QVariantMap info;
        QVERIFY(modem.getInfo(info));
        QCOMPARE(info.keys(), (QStringList{"imei", "imsi", "revision"}));
    }

    void infoAsText()
    {
        SimModem sim(Make::Unknown);
        sim.setImei("490154203237518");
        sim.setImsi("250017700000001");
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QString text;
        QVERIFY(modem.getInfo(text));
        QCOMPARE(text, QStringLiteral("imei: 490154203237518\nimsi: 250017700000001\nrevision: V1.0"));
    }

    void infoFromSilentModem()
    {
        SimModem sim(Make::Unknown);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setSilent(true);
        QVariantMap info{{"stale", 1}};
        QVERIFY(!modem.getInfo(info));
        QVERIFY(info.isEmpty());
        QString text = QStringLiteral("old");
        QVERIFY(!modem.getInfo(text));
        QCOMPARE(text, QStringLiteral("old"));
    }

    // Without an open port nothing is sent and the outputs are as stated.
    void withoutPort()
    {
        AtModem modem;
        QString value = QStringLiteral("old");
        QVERIFY(!modem.getImei(value));
        QCOMPARE(value, QString());
        int mcc = 1, mnc = 1;
        QVERIFY(!modem.getMnc(mcc, mnc));
        QCOMPARE(mcc, 0);
        QCOMPARE(mnc, 0);
        value = QStringLiteral("old");
        QVERIFY(!modem.getOperator(value));
        QCOMPARE(value, QStringLiteral("old"));
        int level = 0;
        QVERIFY(!modem.getSignalLevel(level));
        QVERIFY(level >= -109 && level <= -90);
        QString lac, cid;
        QVERIFY(!modem.getGsmCells(lac, cid));
        QVERIFY(!modem.getSiemensCellList(value));
        QVERIFY(!modem.getSimCOMCellList(value));
        QVariantMap info{{"stale", 1}};
        QVERIFY(!modem.getInfo(info));
        QVERIFY(info.isEmpty());
        QCOMPARE(modem.lastError(), QString());
    }
};

QTEST_GUILESS_MAIN(TestIdentity)
#include "tst_identity.moc"
