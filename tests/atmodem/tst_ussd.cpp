// USSD against the simulated modem, per dialect: the payload on the wire,
// the reply wait and the decoding of "+CUSD" replies.
#include "simfixture.h"
#include "ussdrequest.h"

#include <QTimer>

using namespace zelmodems::sim;
using zmltest::LogRecorder;
using zmltest::startAndOpen;

namespace {

const QString cyrillicBalance = QString::fromUtf8("Баланс 12,50 р.");

int countLogs(const LogRecorder& log, const QString& fragment)
{
    return log.find(QStringLiteral("atmodem"), fragment).size();
}

// A "+CUSD" reply given to the decoder, whether it is decoded, and the
// message then (it held "old" before), on a Huawei or a SIMCOM modem.
struct CusdRow
{
    QByteArray answer;
    bool result;
    QString message;
    bool simcom = false;
};

// A request for "*100#": the network's reply (empty: none) and how it comes,
// the message then ("old": none decoded), the waiting attempts (0: the
// request failed) and the requests sent.
struct ExchangeRow
{
    Make make;
    QByteArray reply;
    QString message;
    int attempts;
    int requests = 1;
    int refusals = 0;        // requests refused while the network is busy; -1: a plain ERROR
    bool beforeOk = false;   // the reply presented before the modem's OK
    int delayMs = 100;       // from the OK to the reply
    int vanishMs = 0;        // the modem dies this long after the request (0: never)
};

// A code, the code as the modem heard it, the network's reply (empty: none),
// the commands on the wire and the decoded message.
struct DialectRow
{
    QByteArray code;
    QByteArray heard;
    QByteArray reply;
    QList<QByteArray> commands;
    QString message;
};

} // namespace

Q_DECLARE_METATYPE(CusdRow)
Q_DECLARE_METATYPE(DialectRow)
Q_DECLARE_METATYPE(ExchangeRow)

class TestUssd : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void cusdMessage_data()
    {
        QTest::addColumn<CusdRow>("row");

        QTest::newRow("7-bit text") << CusdRow{"\r\n\r\n+CUSD: 0,\"Balans 12,50 r.\",15\r\n", true, "Balans 12,50 r."};
        QTest::newRow("lines of the text joined")
            << CusdRow{"\r\n+CUSD: 0,\"Balans:\r\n  12 r.\r\nSpasibo\",15\r\n", true, "Balans: 12 r. Spasibo"};
        QTest::newRow("no reply") << CusdRow{"\r\nOK\r\n+CREG: 1\r\n", false, "old"};
        // Two replies: the pattern's text group reaches from the first
        // reply's opening quote to the last one's closing quote.
        QTest::newRow("two replies") << CusdRow{"+CUSD: 0,\"A\",15\r\n+CUSD: 0,\"B\",15", true, "A\",15 +CUSD: 0,\"B"};

        // UCS2 text is appended to what the message held.
        QTest::newRow("UCS2") << CusdRow{"+CUSD: 0,\"04110430043B\",72", true, "old\u0411\u0430\u043b"};
        QTest::newRow("UCS2 announced, text not hexadecimal")
            << CusdRow{"+CUSD: 0,\"Privet\",72", true, "\ufffd\ufffdPr"};

        // SIMCOM in the GSM character set: raw bytes, "@" as a zero byte,
        // high bytes widened as signed values, line ends kept.
        QTest::newRow("SIMCOM raw bytes")
            << CusdRow{QByteArray("\r\n+CUSD: 0,\"100r\x00\x80\xff\",15\r\n", 25), true,
                       QStringLiteral("100r") + QChar(0xFF80) + QChar(0xFFFF), true};
    }

    void cusdMessage()
    {
        QFETCH(CusdRow, row);

        AtModem modem;
        modem.setModemName(row.simcom ? "SIMCOM_SIM800" : "Manufacturer: huawei\r\nModel: E3372");
        QCOMPARE(modem.dialect(), qint32(row.simcom ? AtModem::SIM_COM : AtModem::HUAWEI));
        QString got = QStringLiteral("old");
        QCOMPARE(modem.getCUSDMessage(row.answer, got), row.result);
        QCOMPARE(got, row.message);
    }

    void perDialect_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<DialectRow>("row");

        QTest::newRow("Huawei: packed request, UCS2 reply")
            << Make::Huawei
            << DialectRow{"*100#", "*100#", Ussd::ucs2(cyrillicBalance), {"E0", "+CUSD=1,\"aa180c3602\",15"},
                          cyrillicBalance};
        // A packed 7-bit reply is presented as hexadecimal text, and the
        // driver passes DCS 15 text on unchanged.
        QTest::newRow("Huawei: packed reply stays hexadecimal")
            << Make::Huawei
            << DialectRow{"*102#", "*102#", Ussd::packed("Balans 7 r."), {"E0", "+CUSD=1,\"aa184c3602\",15"},
                          QString::fromLatin1(Ussd::pack("Balans 7 r.").toHex().toUpper())};
        QTest::newRow("Huawei: non-ASCII character packed as a blank")
            << Make::Huawei
            << DialectRow{"*1\xc3\xa9#", "*1!#", Ussd::plain("ok"), {"E0", "+CUSD=1,\"aa586804\",15"}, "ok"};
        QTest::newRow("SIMCOM: GSM character set first")
            << Make::SimCom
            << DialectRow{"*100#", "*100#", Ussd::plain("Balans 12,50 r."),
                          {"E0", "+CSCS=\"GSM\"", "+CUSD=1,\"*100#\",15"}, "Balans 12,50 r."};
        QTest::newRow("ZTE: text") << Make::Zte
                                   << DialectRow{"*102#", "*102#", Ussd::ucs2(cyrillicBalance),
                                                 {"E0", "+CUSD=1,\"*102#\",15"}, cyrillicBalance};
    }

    void perDialect()
    {
        QFETCH(Make, make);
        QFETCH(DialectRow, row);

        ZML_OPEN(make);
        if (!row.reply.isEmpty())
            sim.setUssdReply(row.heard, row.reply);

        QString message;
        QVERIFY(modem.sendUSSD(QString::fromUtf8(row.code), message));
        QCOMPARE(message, row.message);
        QCOMPARE(sim.commands(), row.commands);
        QCOMPARE(sim.ussdRequests(), QList<QByteArray>{row.heard});
        if (make == Make::SimCom)
            QCOMPARE(sim.characterSet(), QByteArray("GSM"));
    }

    // The wait for the reply: decoded once in, an error ends it, ten attempts
    // without; ZTE modems get one retry when busy; noise before the reply is
    // harmless and the caller's events are processed meanwhile.
    void exchange_data()
    {
        QTest::addColumn<ExchangeRow>("row");

        const QByteArray x = Ussd::plain("x");
        QTest::newRow("reply before OK")
            << ExchangeRow{Make::Cinterion, Ussd::plain("Balans 5 r."), "Balans 5 r.", 1, 1, 0, true};
        QTest::newRow("error after OK") << ExchangeRow{Make::Huawei, "+CME ERROR: 100", "old", 1};
        QTest::newRow("late reply")
            << ExchangeRow{Make::Zte, Ussd::ucs2(cyrillicBalance), "old" + cyrillicBalance, 3, 1, 0, false, 2300};
        QTest::newRow("modem vanishes") << ExchangeRow{Make::Cinterion, "", "old", 10, 1, 0, false, 100, 1500};
        QTest::newRow("ZTE: second try goes through") << ExchangeRow{Make::Zte, Ussd::plain("1 r."), "1 r.", 1, 2, 1};
        QTest::newRow("ZTE: one retry only") << ExchangeRow{Make::Zte, x, "old", 0, 2, 2};
        QTest::newRow("others do not retry") << ExchangeRow{Make::Cinterion, x, "old", 0, 1, 1};
    }

    void exchange()
    {
        QFETCH(ExchangeRow, row);

        ZML_OPEN(row.make);
        sim.setUssdReplyBeforeOk(row.beforeOk);
        sim.setUssdDelay(row.delayMs);
        sim.setUssdReply("*100#", row.reply);
        if (row.refusals < 0)
            sim.setFault("+CUSD=1,\"*100#\",15", Fault::Error);
        else
            sim.setUssdRefusals(row.refusals);
        sim.sendUnsolicited("\r\n+CREG: 1\r\n", 300);
        if (row.vanishMs > 0)
            sim.vanishAfter(row.vanishMs);
        // A timer of the caller's; it dies with the row when it has not fired.
        int ticks = 0;
        QObject caller;
        QTimer::singleShot(1500, &caller, [&ticks] { ++ticks; });

        LogRecorder log;
        QString message = QStringLiteral("old");
        const bool ok = modem.sendUSSD(QStringLiteral("*100#"), message);
        QCOMPARE(ok, row.message != QLatin1String("old"));
        QCOMPARE(message, row.message);
        QCOMPARE(modem.lastError(), row.attempts == 0 ? QStringLiteral("Modem said \"ERROR\"") : QString());
        int requests = 0;
        for (const QByteArray& command : sim.commands())
            requests += command.startsWith("+CUSD=1,") ? 1 : 0;
        QCOMPARE(requests, row.requests);
        QCOMPARE(countLogs(log, QStringLiteral("Retry send USSD for ZTE modems")), row.requests - 1);
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt")), row.attempts);
        if (row.attempts > 0)
            QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt %1.").arg(row.attempts)), 1);
        if (row.attempts > 1)
            QCOMPARE(ticks, 1);
        QCOMPARE(sim.hasVanished(), row.vanishMs > 0);
    }

    // The project's own request keeps every byte that arrives: a reply in
    // the same write as the OK, or one that comes while the old wait would
    // have re-identified the modem, and it never re-identifies.
    void requestKeepsEveryByte_data()
    {
        QTest::addColumn<bool>("sameWrite");
        QTest::addColumn<int>("delayMs");
        QTest::newRow("reply right after OK") << true << 0;
        QTest::newRow("reply between two waits") << false << 2050;
    }

    void requestKeepsEveryByte()
    {
        QFETCH(bool, sameWrite);
        QFETCH(int, delayMs);
        ZML_OPEN(Make::Cinterion);
        if (sameWrite)
            sim.setReply("+CUSD=1,\"*100#\",15", Reply::raw("\r\nOK\r\n" + Ussd::plain("Balans 7 r.") + "\r\n"));
        else
            sim.setUssdReply("*100#", Ussd::plain("Balans 7 r."));
        sim.setUssdDelay(delayMs);
        zelmodems::UssdRequest ussd(&modem);
        QVERIFY2(ussd.send(QStringLiteral("*100#")), qPrintable(ussd.lastError()));
        QCOMPARE(ussd.text(), QStringLiteral("Balans 7 r."));
        QCOMPARE(ussd.status(), 0);
        QVERIFY(!sim.commands().contains("I"));
    }

    // A Huawei presents the reply as it takes the request: packed in GSM
    // 7-bit septets, in hexadecimal. Our request gives the text; other
    // makes' replies and UCS2 are read as they were.
    void packedReplies_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("text");
        QTest::newRow("huawei packed") << Make::Huawei << Ussd::packed("Balance 12.50 rub") << "Balance 12.50 rub";
        // Seven characters fill seven octets but for one bit: the CR pad.
        QTest::newRow("huawei, padding CR") << Make::Huawei
                                            << QByteArray("+CUSD: 0,\"")
                                                   + Ussd::pack("Balans7\r").toHex().toUpper() + "\",15"
                                            << "Balans7";
        QTest::newRow("huawei plain text") << Make::Huawei << Ussd::plain("Balans 7 r.") << "Balans 7 r.";
        QTest::newRow("huawei UCS2") << Make::Huawei << Ussd::ucs2(QStringLiteral("Баланс")) << "Баланс";
        QTest::newRow("huawei 8-bit data stays") << Make::Huawei << QByteArray("+CUSD: 0,\"C2303B\",68") << "C2303B";
        QTest::newRow("cinterion hex-looking text") << Make::Cinterion << Ussd::plain("C2303B") << "C2303B";
    }
    void packedReplies()
    {
        QFETCH(Make, make);
        QFETCH(QByteArray, line);
        QFETCH(QString, text);
        ZML_OPEN(make);
        sim.setUssdReply("*100#", line);
        zelmodems::UssdRequest ussd(&modem);
        QVERIFY2(ussd.send(QStringLiteral("*100#")), qPrintable(ussd.lastError()));
        QCOMPARE(ussd.text(), text);
    }
};

QTEST_GUILESS_MAIN(TestUssd)
#include "tst_ussd.moc"
