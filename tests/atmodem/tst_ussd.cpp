// USSD requests and replies against the simulated modem, per dialect: the
// payload on the wire, the reply wait, the decoding of "+CUSD" replies and
// the balance amount read from them.
#include "simfixture.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QTranslator>

using namespace modemsim;
using zmltest::LogRecorder;
using zmltest::startAndOpen;

namespace {

const QString cyrillicBalance = QString::fromUtf8("Баланс 12,50 р.");

int countLogs(const LogRecorder& log, const QString& fragment)
{
    return log.find(QStringLiteral("atmodem"), fragment).size();
}

} // namespace

class TestUssd : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void cusdMessage_data()
    {
        QTest::addColumn<bool>("simcom");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("before");   // what `message` held
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("message");

        const QString old = QStringLiteral("old");
        QTest::newRow("7-bit text") << false << QByteArray("\r\n\r\n+CUSD: 0,\"Balans 12,50 r.\",15\r\n") << old
                                    << true << QStringLiteral("Balans 12,50 r.");
        QTest::newRow("DCS 0, no blank after the colon")
            << false << QByteArray("+CUSD:1,\"Vvedite nomer\",0") << old << true << QStringLiteral("Vvedite nomer");
        QTest::newRow("status only") << false << QByteArray("\r\n+CUSD: 2\r\n") << old << true << QString();
        QTest::newRow("no coding scheme") << false << QByteArray("\r\n+CUSD: 0,\"Balans\"\r\n") << old << true
                                          << QString();
        QTest::newRow("lines of the text joined")
            << false << QByteArray("\r\n+CUSD: 0,\"Balans:\r\n  12 r.\r\nSpasibo\",15\r\n") << old << true
            << QStringLiteral("Balans: 12 r. Spasibo");
        QTest::newRow("Latin-1 byte") << false << QByteArray("+CUSD: 0,\"Caf\xe9\",15") << old << true
                                      << QString::fromUtf8("Café");
        QTest::newRow("no reply") << false << QByteArray("\r\nOK\r\n+CREG: 1\r\n") << old << false << old;
        QTest::newRow("empty") << false << QByteArray() << old << false << old;
        QTest::newRow("status is no digit") << false << QByteArray("+CUSD: x,\"a\",15") << old << false << old;
        // Two replies: the pattern's text group reaches from the first
        // reply's opening quote to the last one's closing quote.
        QTest::newRow("two replies") << false << QByteArray("+CUSD: 0,\"A\",15\r\n+CUSD: 0,\"B\",15") << old
                                     << true << QStringLiteral("A\",15 +CUSD: 0,\"B");
        QTest::newRow("status line before a reply")
            << false << QByteArray("+CUSD: 1\r\n+CUSD: 0,\"B\",15") << old << true << QString();

        QTest::newRow("UCS2") << false << QByteArray("+CUSD: 0,\"04110430043B\",72") << QString() << true
                              << QString::fromUtf8("Бал");
        QTest::newRow("UCS2 lower case, short last group dropped")
            << false << QByteArray("+CUSD: 0,\"04110430043b043\",72") << QString() << true << QString::fromUtf8("Бал");
        QTest::newRow("UCS2 is appended") << false << QByteArray("+CUSD: 0,\"0031\",72") << QStringLiteral("X") << true
                                          << QStringLiteral("X1");
        QTest::newRow("UCS2 announced, text not hexadecimal")
            << false << QByteArray("+CUSD: 0,\"Privet\",72") << old << true
            << QString::fromUtf8("\xEF\xBF\xBD\xEF\xBF\xBDPr");
        QTest::newRow("UCS2 announced, empty text") << false << QByteArray("+CUSD: 0,\"\",72") << old << true
                                                    << QString::fromUtf8("\xEF\xBF\xBD");

        // SIMCOM in the GSM character set: raw bytes, "@" as a zero byte,
        // high bytes widened as signed values, line ends kept.
        QTest::newRow("SIMCOM raw bytes")
            << true << QByteArray("\r\n+CUSD: 0,\"100r\x00\x80\xff\",15\r\n", 25) << old << true
            << QStringLiteral("100r") + QChar(0xFF80) + QChar(0xFFFF);
        QTest::newRow("SIMCOM line ends kept") << true << QByteArray("+CUSD: 0,\"a\r\n  b\",15") << old << true
                                               << QStringLiteral("a\r\n  b");
        QTest::newRow("SIMCOM UCS2") << true << QByteArray("+CUSD: 0,\"0041\",72") << QString() << true
                                     << QStringLiteral("A");
    }

    void cusdMessage()
    {
        QFETCH(bool, simcom);
        QFETCH(QByteArray, answer);
        QFETCH(QString, before);
        QFETCH(bool, result);
        QFETCH(QString, message);

        AtModem modem;
        modem.setModemName(simcom ? "SIMCOM_SIM800" : "Manufacturer: huawei\r\nModel: E3372");
        QCOMPARE(modem.dialect(), qint32(simcom ? AtModem::SIM_COM : AtModem::HUAWEI));
        QString got = before;
        QCOMPARE(modem.getCUSDMessage(answer, got), result);
        QCOMPARE(got, message);
    }

    void balance_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("amount");

        QTest::newRow("decimal comma") << QStringLiteral("Balans 12,50 r.") << 12.5;
        QTest::newRow("hyphen-minus right before") << QStringLiteral("Balance: -15.20") << -15.2;
        QTest::newRow("one character between") << QStringLiteral("Balance - 7.5 rub") << -7.5;
        QTest::newRow("two blanks between") << QStringLiteral("Balance -  12") << 12.0;
        QTest::newRow("at the very start") << QStringLiteral("-5 r.") << -5.0;
        QTest::newRow("the word minus") << QStringLiteral("minus 3,5") << -3.5;
        QTest::newRow("the word, any distance, any case")
            << QStringLiteral("MINUS on your account: 40 r.") << -40.0;
        QTest::newRow("minus rescues a distant sign") << QStringLiteral("minus -  12") << -12.0;
        QTest::newRow("minus after the amount") << QStringLiteral("12 r. minus") << 12.0;
        QTest::newRow("an earlier dash hides the sign") << QStringLiteral("Tarif-S: balans -30") << 30.0;
        QTest::newRow("first number counts") << QStringLiteral("Platezh -100 r. Balans 50 r.") << -100.0;
        QTest::newRow("grouping and decimal") << QStringLiteral("1,234.56") << 0.0;
        QTest::newRow("trailing point") << QStringLiteral("Balance 100. Thanks") << 100.0;
        QTest::newRow("grouping blank") << QStringLiteral("Balans: 1 234,56") << 1.0;
        QTest::newRow("zero") << QStringLiteral("Ostatok 0,00") << 0.0;
        QTest::newRow("no digits") << QStringLiteral("Zapros prinyat") << 0.0;
        QTest::newRow("empty") << QString() << 0.0;
        QTest::newRow("Cyrillic without translation") << QString::fromUtf8("Баланс: минус 5 р.") << 5.0;
    }

    void balance()
    {
        QFETCH(QString, text);
        QFETCH(double, amount);
        AtModem modem;
        QCOMPARE(modem.parseModemBalance(text), amount);
    }

    // Operators that write the sign out in Russian: the word is the one of
    // the library's Russian catalogue.
    void balanceTranslatedMinus()
    {
        QTranslator translator;
        const QString dir = QStringLiteral(ZML_BUILD_TRANSLATIONS_DIR);
        QVERIFY2(translator.load(QStringLiteral("zelmodemslib_ru"), dir), qPrintable(dir));
        QVERIFY(QCoreApplication::installTranslator(&translator));
        AtModem modem;
        QCOMPARE(modem.parseModemBalance(QString::fromUtf8("Баланс: минус 5,25 р.")), -5.25);
        QCOMPARE(modem.parseModemBalance(QString::fromUtf8("Баланс 5 р., минус")), 5.0);
        QCOMPARE(modem.parseModemBalance(QStringLiteral("minus 3")), -3.0);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(modem.parseModemBalance(QString::fromUtf8("Баланс: минус 5,25 р.")), 5.25);
    }

    // One request per dialect: the payload the modem gets, the commands
    // around it, the decoded reply.
    void perDialect_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<QByteArray>("code");
        QTest::addColumn<QByteArray>("heard");   // the code as the modem understood it
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QList<QByteArray>>("commands");
        QTest::addColumn<QString>("message");

        QTest::newRow("Huawei: packed request, UCS2 reply")
            << Make::Huawei << QByteArray("*100#") << QByteArray("*100#") << Ussd::ucs2(cyrillicBalance)
            << QList<QByteArray>{"E0", "+CUSD=1,\"aa180c3602\",15"} << cyrillicBalance;
        // A packed 7-bit reply is presented as hexadecimal text, and the
        // driver passes DCS 15 text on unchanged.
        QTest::newRow("Huawei: packed reply stays hexadecimal")
            << Make::Huawei << QByteArray("*102#") << QByteArray("*102#") << Ussd::packed("Balans 7 r.")
            << QList<QByteArray>{"E0", "+CUSD=1,\"aa184c3602\",15"}
            << QString::fromLatin1(Ussd::pack("Balans 7 r.").toHex().toUpper());
        QTest::newRow("Huawei: non-ASCII character packed as a blank")
            << Make::Huawei << QByteArray("*1\xc3\xa9#") << QByteArray("*1!#") << Ussd::plain("ok")
            << QList<QByteArray>{"E0", "+CUSD=1,\"aa586804\",15"} << QStringLiteral("ok");
        QTest::newRow("SIMCOM: GSM character set first")
            << Make::SimCom << QByteArray("*100#") << QByteArray("*100#") << Ussd::plain("Balans 12,50 r.")
            << QList<QByteArray>{"E0", "+CSCS=\"GSM\"", "+CUSD=1,\"*100#\",15"} << QStringLiteral("Balans 12,50 r.");
        QTest::newRow("ZTE: text") << Make::Zte << QByteArray("*102#") << QByteArray("*102#") << Ussd::ucs2(cyrillicBalance)
                                   << QList<QByteArray>{"E0", "+CUSD=1,\"*102#\",15"} << cyrillicBalance;
        QTest::newRow("Cinterion: text") << Make::Cinterion << QByteArray("#100#") << QByteArray("#100#") << Ussd::plain("Balance 3.20 EUR")
                                         << QList<QByteArray>{"E0", "+CUSD=1,\"#100#\",15"}
                                         << QStringLiteral("Balance 3.20 EUR");
        QTest::newRow("HSPA: text, not packed") << Make::HspaDataCard << QByteArray("*105#") << QByteArray("*105#") << Ussd::plain("x")
                                                << QList<QByteArray>{"E0", "+CUSD=1,\"*105#\",15"} << QStringLiteral("x");
        QTest::newRow("unknown code: status only") << Make::Unknown << QByteArray("*999#") << QByteArray("*999#") << QByteArray()
                                                   << QList<QByteArray>{"E0", "+CUSD=1,\"*999#\",15"} << QString();
    }

    void perDialect()
    {
        QFETCH(Make, make);
        QFETCH(QByteArray, code);
        QFETCH(QByteArray, heard);
        QFETCH(QByteArray, reply);
        QFETCH(QList<QByteArray>, commands);
        QFETCH(QString, message);

        SimModem sim(make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        if (!reply.isEmpty())
            sim.setUssdReply(heard, reply);

        QString got;
        QVERIFY(modem.sendUSSD(QString::fromUtf8(code), got));
        QCOMPARE(got, message);
        QCOMPARE(sim.commands(), commands);
        QCOMPARE(sim.ussdRequests(), QList<QByteArray>{heard});
        if (make == Make::SimCom)
            QCOMPARE(sim.characterSet(), QByteArray("GSM"));
    }

    void zteRetry_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<int>("refusals");
        QTest::addColumn<bool>("result");
        QTest::addColumn<int>("requests");
        QTest::addColumn<int>("retryLogs");

        QTest::newRow("ZTE: second try goes through") << Make::Zte << 1 << true << 2 << 1;
        QTest::newRow("ZTE: one retry only") << Make::Zte << 2 << false << 2 << 1;
        QTest::newRow("others do not retry") << Make::Cinterion << 1 << false << 1 << 0;
    }

    void zteRetry()
    {
        QFETCH(Make, make);
        QFETCH(int, refusals);
        QFETCH(bool, result);
        QFETCH(int, requests);
        QFETCH(int, retryLogs);

        SimModem sim(make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setUssdRefusals(refusals);
        sim.setUssdReply("*102#", Ussd::plain("Balans 1 r."));

        LogRecorder log;
        QString message = QStringLiteral("old");
        QCOMPARE(modem.sendUSSD(QStringLiteral("*102#"), message), result);
        QCOMPARE(message, result ? QStringLiteral("Balans 1 r.") : QStringLiteral("old"));
        QCOMPARE(sim.commands().count("+CUSD=1,\"*102#\",15"), requests);
        QCOMPARE(countLogs(log, QStringLiteral("Retry send USSD for ZTE modems")), retryLogs);
        if (!result)
            QCOMPARE(modem.lastError(), QStringLiteral("Modem said \"ERROR\""));
    }

    void zteOtherErrorNoRetry()
    {
        SimModem sim(Make::Zte);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setFault("+CUSD=1,\"*102#\",15", Fault::Error);
        QString message;
        QVERIFY(!modem.sendUSSD(QStringLiteral("*102#"), message));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+CUSD=1,\"*102#\",15"}));
    }

    // Some modems present the reply before their OK: it is in the buffer
    // from the start.
    void replyBeforeOk()
    {
        SimModem sim(Make::Cinterion);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setUssdReplyBeforeOk(true);
        sim.setUssdReply("*100#", Ussd::plain("Balans 5 r."));
        LogRecorder log;
        QString message;
        QVERIFY(modem.sendUSSD(QStringLiteral("*100#"), message));
        QCOMPARE(message, QStringLiteral("Balans 5 r."));
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt")), 1);
    }

    void errorAfterOk()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setUssdReply("*100#", "+CME ERROR: 100");
        LogRecorder log;
        QString message = QStringLiteral("old");
        QVERIFY(!modem.sendUSSD(QStringLiteral("*100#"), message));
        QCOMPARE(message, QStringLiteral("old"));
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt")), 1);
    }

    // The reply comes late: the buffer keeps growing over the attempts and
    // is decoded once the reply is in.
    void lateReply()
    {
        SimModem sim(Make::Zte);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setUssdDelay(2300);
        sim.setUssdReply("*100#", Ussd::ucs2(cyrillicBalance));
        sim.sendUnsolicited("\r\n+CREG: 1\r\n", 300);   // noise before the reply stays harmless
        LogRecorder log;
        // The caller's events keep being processed during the wait.
        int ticks = 0;
        QTimer::singleShot(1500, [&ticks] { ++ticks; });
        QString message;
        QVERIFY(modem.sendUSSD(QStringLiteral("*100#"), message));
        QCOMPARE(ticks, 1);
        QCOMPARE(message, cyrillicBalance);
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt 3.")), 1);
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt 4.")), 0);
        QCOMPARE(modem.parseModemBalance(message), 12.5);
    }

    // The modem dies after its OK: the wait runs its ten attempts and gives
    // up without a reply.
    void modemVanishesDuringWait()
    {
        SimModem sim(Make::Cinterion);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setUssdReply("*100#", QByteArray());   // the network never answers
        sim.vanishAfter(1500);
        LogRecorder log;
        QString message = QStringLiteral("old");
        QVERIFY(!modem.sendUSSD(QStringLiteral("*100#"), message));
        QCOMPARE(message, QStringLiteral("old"));
        QVERIFY(sim.hasVanished());
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt")), 10);
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt 10.")), 1);
    }

    void refusedWithoutSending()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QString message = QStringLiteral("old");
        QVERIFY(!modem.sendUSSD(QString(), message));
        QVERIFY(sim.commands().isEmpty());
        QCOMPARE(message, QStringLiteral("old"));

        AtModem closed;
        QVERIFY(!closed.sendUSSD(QStringLiteral("*100#"), message));
        QVERIFY(!closed.sendUSSD2(QStringLiteral("*100#"), message));
        QCOMPARE(message, QStringLiteral("old"));
    }

    void ussdRejected()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        // A request whose answer would come by SMS, refused by the modem.
        sim.setFault("+CUSD=0,\"aa180c3602\",15", Fault::Error);
        QString message = QStringLiteral("old");
        QVERIFY(!modem.sendUSSD2(QStringLiteral("*100#"), message));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+CUSD=0,\"aa180c3602\",15"}));
        QCOMPARE(message, QStringLiteral("old"));
    }

    // The request whose answer comes as an SMS: no reply is presented, the
    // port is drained for four passes, and the result is the modem's OK.
    void answerBySms()
    {
        SimModem sim(Make::Cinterion);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setUssdReply("*110*10#", Ussd::plain("ignored"));
        sim.setUssdSmsReply("*110*10#", "0011000B919701214365F70000AA0441E19008");
        LogRecorder log;
        QString message = QStringLiteral("old");
        QVERIFY(modem.sendUSSD2(QStringLiteral("*110*10#"), message));
        QCOMPARE(message, QStringLiteral("old"));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+CUSD=0,\"*110*10#\",15"}));
        QCOMPARE(sim.ussdRequests(), QList<QByteArray>{"*110*10#"});
        QCOMPARE(sim.storedSms().size(), 1);
        QCOMPARE(countLogs(log, QStringLiteral("Waiting for USSD reply, attempt")), 4);

        // What the drain consumed does not disturb the next command.
        sim.sendUnsolicited("\r\n+CUSD: 0,\"late\",15\r\n");
        QString imei;
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QStringLiteral("351234567890123"));
    }
};

QTEST_GUILESS_MAIN(TestUssd)
#include "tst_ussd.moc"
