// The SMS store read without being emptied (the listing parser on real and
// broken listings, list/read/remove against the simulated modem), and
// sending in PDU mode, confirmed part by part.
#include "messagestore.h"
#include "ownnumber.h"
#include "pdu.h"
#include "simfixture.h"
#include "smssender.h"

#include <functional>

using zelmodems::Failure;
using zelmodems::MessageStore;
using zelmodems::SmsSender;
using zelmodems::StoredMessage;
using zelmodems::StoredPdu;

namespace {

const QByteArray PDU_A = "07919730071111F1040B919761214365F70000621142512304800BC8329BFD06D1D1E939";
const QByteArray PDU_B = "0791973007111111040B919761214365F700006211425123048004D4F29C0E";

// One entry as "index/status/pdu", "!" for a PDU missing, "?" when the
// entry carries a problem.
QString describe(const StoredPdu& e)
{
    return QStringLiteral("%1/%2/%3%4%5")
        .arg(e.index())
        .arg(int(e.status()))
        .arg(e.pdu().isEmpty() ? QStringLiteral("!") : e.pdu().left(4))
        .arg(e.problem().isEmpty() ? QString() : QStringLiteral("?"))
        .arg(e.alpha().isEmpty() ? QString() : QLatin1Char('/') + e.alpha());
}

} // namespace

class TestMessageStore : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_locks;

private slots:
    void initTestCase() { QVERIFY(m_locks.install()); }

    void parseListing_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QStringList>("expected");
        const QByteArray a = "+CMGL: 1,1,,23\r\n" + PDU_A + "\r\n";
        const QByteArray b = "+CMGL: 7,0,,20\r\n" + PDU_B + "\r\n";
        QTest::newRow("two entries with echo and OK") << "AT+CMGL=4\r\r\n" + a + b + "\r\nOK\r\n"
                                                      << QStringList{"1/1/0791", "7/0/0791"};
        QTest::newRow("outgoing, alpha with a comma, lower-case hex")
            << "+CMGL: 3,2,\"Smith, J\",23\r\n" + PDU_A.toLower() + "\r\n" << QStringList{"3/2/0791/Smith, J"};
        QTest::newRow("stored sent, and a status past the four")
            << "+CMGL: 8,3,,23\r\n" + PDU_A + "\r\n+CMGL: 9,4,,23\r\n" + PDU_A + "\r\n"
            << QStringList{"8/3/0791", "9/-1/0791"};
        QTest::newRow("header without its PDU line")
            << "+CMGL: 4,1,,23\r\n" + b << QStringList{"4/1/!?", "7/0/0791"};
        QTest::newRow("PDU line not hexadecimal") << QByteArray("+CMGL: 5,1,,23\r\n07919Z\r\n")
                                                  << QStringList{"5/1/!?"};
        QTest::newRow("index not a number") << "+CMGL: x1,1,,23\r\n" + PDU_A + "\r\n" << QStringList{"-1/1/0791?"};
        QTest::newRow("index too large for the store") << "+CMGL: 4294967297,1,,23\r\n" + PDU_A
                                                       << QStringList{"-1/1/0791?"};
        QTest::newRow("PDU line without a header is not an entry") << PDU_A + "\r\nOK\r\n" << QStringList();
    }

    void parseListing()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QStringList, expected);
        QList<StoredPdu> entries;
        QVERIFY(MessageStore::parseListing(answer, entries));
        QStringList got;
        for (const StoredPdu& e : entries)
            got << describe(e);
        QCOMPARE(got, expected);
        for (const StoredPdu& e : entries)
            QCOMPARE(e.isComplete(), e.index() >= 0 && !e.pdu().isEmpty() && e.problem().isEmpty());
    }

    void malformedListing()
    {
        // 100 KB of headers without PDU lines: every one reported.
        QByteArray answer;
        while (answer.size() < 100 * 1024)
            answer += "+CMGL: 1,1,,23\r\n";
        QList<StoredPdu> entries;
        QVERIFY(MessageStore::parseListing(answer, entries));
        QCOMPARE(entries.size(), answer.count("+CMGL:"));
        QVERIFY(!entries.last().problem().isEmpty());

        // Larger than any store: refused with a reason.
        QString error;
        QVERIFY(!MessageStore::parseListing(QByteArray(MessageStore::MaxListingBytes + 1, 'A'), entries, &error));
        QVERIFY(entries.isEmpty());
        QVERIFY(error.contains(QLatin1String("refused")));
    }

    // Result codes end a listing only as lines of their own: a call that
    // rings in the middle, or the letters "OK" in a name, cut nothing.
    void listingKeepsEveryEntry()
    {
        ZML_OPEN(zelmodems::sim::Make::Huawei);
        sim.setReply("+CMGL=4", zelmodems::sim::Reply::raw(
                                    "\r\n+CMGL: 1,1,\"BOOK\",23\r\n" + PDU_A + "\r\nRING\r\n"
                                    "+CLIP: \"+79160000000\",145,,,\"TOKAREV\",0\r\n+CMGL: 2,1,,20\r\n" + PDU_B
                                    + "\r\n+CMGL: 3,0,,23\r\n" + PDU_A + "\r\n\r\nOK\r\n"));
        MessageStore store(&modem);
        QList<StoredPdu> entries;
        QVERIFY2(store.list(entries), qPrintable(store.lastError()));
        QStringList got;
        for (const StoredPdu& e : entries)
            got << describe(e);
        QCOMPARE(got, (QStringList{"1/1/0791/BOOK", "2/1/0791", "3/0/0791"}));

        // A refusal leaves no entry of an earlier listing behind, and says why.
        sim.setFault("+CMGF=0", zelmodems::sim::Fault::Error);
        QVERIFY(!store.list(entries));
        QVERIFY(entries.isEmpty());
        QCOMPARE(store.lastError(), QStringLiteral("the modem refused PDU mode (AT+CMGF=0): ERROR"));
        QCOMPARE(store.failure().code(), Failure::Refused);
    }

    void removeReportsEachResult()
    {
        ZML_OPEN(zelmodems::sim::Make::Huawei);
        sim.storeSms(PDU_A, 1, 2);
        MessageStore store(&modem);

        QVERIFY2(store.remove(2), qPrintable(store.lastError()));
        QVERIFY(sim.storedSms().isEmpty());
        QVERIFY(!store.remove(2));   // gone already: the modem's refusal is the reason
        QVERIFY2(store.lastError().contains(QLatin1String("+CMS ERROR: 321")), qPrintable(store.lastError()));
        QCOMPARE(store.failure().code(), Failure::CmsError);
        QCOMPARE(store.failure().number(), 321);

        StoredPdu entry;
        sim.storeSms(PDU_B, 0, 5);
        QVERIFY2(store.read(5, entry), qPrintable(store.lastError()));
        QCOMPARE(entry.pdu(), QString::fromLatin1(PDU_B));
        QCOMPARE(entry.status(), StoredPdu::Unread);
        QCOMPARE(entry.storage(), QStringLiteral("SM"));
        QVERIFY(!store.read(2, entry));
        QCOMPARE(store.failure().code(), Failure::CmsError);
        // Some modems answer an empty slot with a bare OK.
        sim.setReply("+CMGR=6", zelmodems::sim::Reply::raw("\r\nOK\r\n"));
        QVERIFY(!store.read(6, entry));
        QCOMPARE(store.failure().code(), Failure::NotFound);   // the modem's "invalid memory index"

        sim.clearLog();
        QVERIFY(!store.remove(-1));
        QVERIFY(!store.remove(MessageStore::MaxIndex + 1));
        QCOMPARE(store.failure().code(), Failure::BadInput);
        QVERIFY(sim.commands().isEmpty());   // refused indexes are never sent
        QVERIFY(store.remove(QList<int>{5}));
        QVERIFY(!store.failure().isFailure());
    }

    // A part ends sent, refused or unconfirmed, and is said to be so; a
    // prompt that comes too late is cancelled with ESC, so that the modem
    // reads the next command as a command.
    void sendEndsAsTheModemSaid_data()
    {
        QTest::addColumn<QByteArray>("refusal");
        QTest::addColumn<int>("promptDelay");
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("failure");
        QTest::newRow("network out of order") << QByteArray("+CMS ERROR: 38") << 0 << int(SmsSender::Refused) << 38
                                              << "refused: +CMS ERROR: 38 (network out of order)" << int(Failure::CmsError);
        QTest::newRow("plain ERROR") << QByteArray("ERROR") << 0 << int(SmsSender::Refused) << -1
                                     << "was refused: ERROR" << int(Failure::Refused);
        QTest::newRow("late prompt") << QByteArray() << 2300 << int(SmsSender::NotSent) << -1
                                     << "gave no prompt for the PDU, nothing of it was sent" << int(Failure::NoAnswer);
    }

    void sendEndsAsTheModemSaid()
    {
        QFETCH(QByteArray, refusal);
        QFETCH(int, promptDelay);
        QFETCH(int, state);
        QFETCH(int, code);
        QFETCH(QString, error);
        QFETCH(int, failure);
        ZML_OPEN(zelmodems::sim::Make::Huawei);
        sim.setSmsRefusal(refusal);
        sim.setPromptDelay(promptDelay);
        SmsSender sender(&modem);
        sender.setConfirmTimeout(2000);
        QList<int> reported;
        sender.setPartHandler([&reported](int part, SmsSender::PartState s, int) { reported << part * 10 + s; });
        QVERIFY(!sender.send(QStringLiteral("+79161234567"), QStringLiteral("hello")));
        QCOMPARE(sender.partStates(), QList<SmsSender::PartState>{SmsSender::PartState(state)});
        QCOMPARE(reported, state == SmsSender::NotSent ? QList<int>() : QList<int>{10 + state});
        QVERIFY(!sender.unconfirmed());
        QCOMPARE(sender.errorCode(), code);
        QVERIFY2(sender.lastError().contains(error), qPrintable(sender.lastError()));
        // The refusal's meaning is said once.
        if (code >= 0)
            QCOMPARE(sender.lastError().count(SmsSender::errorMeaning(code)), 1);
        QCOMPARE(int(sender.failure().code()), failure);
        QCOMPARE(sender.failure().number(), code);
        sim.waitUntilQuiet();
        QVERIFY(sim.sentMessages().isEmpty());

        sim.setSmsRefusal(QByteArray());
        sim.setPromptDelay(0);
        QVERIFY2(sender.send(QStringLiteral("+79161234567"), QStringLiteral("again")), qPrintable(sender.lastError()));
        QCOMPARE(sim.sentMessages().size(), 1);
        // Each send reports its own parts only.
        QVERIFY(sender.send(QStringLiteral("+79161234567"), QStringLiteral("and again")));
        QCOMPARE(sender.references(), QList<int>{2});
        QCOMPARE(sender.errorCode(), -1);
        QCOMPARE(sender.partStates(), QList<SmsSender::PartState>{SmsSender::Sent});
    }

    void sendConfirmsEveryPart_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("confirmed");
        QTest::addColumn<int>("parts");
        QTest::newRow("400 characters, three parts") << QString(400, QLatin1Char('x')) << true << 3;
        QTest::newRow("no confirmation") << QStringLiteral("hello") << false << 1;
        QTest::newRow("Ctrl-Z in the text") << QStringLiteral("hello\x1a" "AT+CFUN=0\r") << false << 0;
    }

    void sendConfirmsEveryPart()
    {
        QFETCH(QString, text);
        QFETCH(bool, confirmed);
        QFETCH(int, parts);
        ZML_OPEN(zelmodems::sim::Make::Huawei);
        sim.setSmsConfirmation(confirmed);
        SmsSender sender(&modem);
        sender.setConfirmTimeout(300);
        zmltest::LogRecorder log(zmltest::LogRecorder::Echo::NoDebug);

        QCOMPARE(sender.send(QStringLiteral("+79161234567"), text), confirmed);
        QCOMPARE(sender.references().size(), confirmed ? parts : 0);
        // Without a confirmation the sender may give up before the simulator
        // has taken the text in.
        QTRY_COMPARE_WITH_TIMEOUT(sim.sentMessages().size(), parts, 5000);
        const auto sent = sim.sentMessages();
        if (!confirmed) {
            // The wait it really made, not a figure of speech.
            if (parts > 0)
                QVERIFY2(sender.lastError().contains(QRegularExpression(QStringLiteral("no answer within [3-9]\\d\\d ms"))),
                         qPrintable(sender.lastError()));
            // The appliance's log says why, as the caller is told.
            QVERIFY(!log.find(QtWarningMsg, QStringLiteral("atmodem"), sender.lastError()).isEmpty());
            QCOMPARE(sender.unconfirmed(), parts > 0);   // sent but unconfirmed, or refused unsent
            QCOMPARE(sender.failure().code(), parts > 0 ? Failure::Unconfirmed : Failure::BadInput);
            return;
        }
        QString joined;
        for (const auto& message : sent) {
            const PDU::Submit submit = zelmodems::decodeSmsSubmit(QString::fromLatin1(message.second));
            QVERIFY2(submit.valid(), qPrintable(submit.error()));
            QCOMPARE(submit.recipient(), QStringLiteral("+79161234567"));
            joined += submit.text();
        }
        QCOMPARE(joined, text);
    }

    // What may be taken: a whole received message or report; never an
    // outgoing one, a lone part, a doubtful set or an unreadable entry.
    void storedMessagesAsAPersonSeesThem()
    {
        using zelmodems::sim::DeliverPdu;
        const QDateTime time(QDate(2026, 11, 24), QTime(9, 57, 42), Qt::UTC);
        const QByteArray a1 = DeliverPdu::ucs2("+79161234567", time, QStringLiteral("Hel"), 7, 1, 2);
        const QByteArray a2 = DeliverPdu::ucs2("+79161234567", time, QStringLiteral("lo"), 7, 2, 2);
        const QByteArray lone = DeliverPdu::ucs2("+79031112233", time, QStringLiteral("half"), 9, 1, 2);
        const QList<StoredPdu> entries{StoredPdu(4, StoredPdu::Read, QString::fromLatin1(a2)),
                                       StoredPdu(2, StoredPdu::Unread, QString::fromLatin1(a1)),
                                       StoredPdu(3, StoredPdu::Read, QString::fromLatin1(lone)),
                                       StoredPdu(5, StoredPdu::Sent,
                                                 zelmodems::encodeSmsSubmit(QStringLiteral("+79161234567"),
                                                                            QStringLiteral("hi")).first().toHex()),
                                       StoredPdu(6, StoredPdu::Read, QStringLiteral("00ZZ"))};
        const QList<StoredMessage> messages = StoredMessage::group(entries);
        QCOMPARE(messages.size(), 4);
        QCOMPARE(messages.at(0).indexes(), (QList<int>{2, 4}));
        QCOMPARE(messages.at(0).text(), QStringLiteral("Hello"));
        QCOMPARE(messages.at(0).status(), StoredPdu::Unread);
        QCOMPARE(messages.at(0).time(), time);
        QVERIFY(messages.at(0).isComplete() && messages.at(0).mayBeTaken());
        QVERIFY(!messages.at(1).isComplete() && !messages.at(1).mayBeTaken());
        QCOMPARE(messages.at(1).partsPresent(), QList<int>{1});
        QVERIFY(messages.at(2).isOutgoing() && !messages.at(2).mayBeTaken());
        QVERIFY(!messages.at(3).isDecoded() && !messages.at(3).mayBeTaken());
        QVERIFY(!messages.at(3).problem().isEmpty());
    }

    // The operator answers the request "not supported" and sends the SMS
    // anyway: the number is found, nothing else is deleted, and no failure
    // is left behind. (Through the tool: tst_cli_exchange.)
    void ownNumberBySms()
    {
        ZML_OPEN(zelmodems::sim::Make::Huawei);
        sim.storeSms(PDU_A, 1, 1);
        sim.setUssdSmsReply("*110*10#", zelmodems::sim::DeliverPdu::ucs2("Beeline", QDateTime::currentDateTimeUtc(),
                                                                         QStringLiteral("Vash nomer 79057654321")));
        zelmodems::OwnNumber own(&modem);
        QVERIFY2(own.bySms(QStringLiteral("*110*10#"), 5000, 100), qPrintable(own.failure().text()));
        QCOMPARE(own.number(), QStringLiteral("9057654321"));
        QVERIFY(!own.failure().isFailure());
        QCOMPARE(sim.storedSms().keys(), QList<int>{1});
    }

    void ownNumberByUssd()
    {
        ZML_OPEN(zelmodems::sim::Make::Huawei);
        sim.setUssdReply("*205#", zelmodems::sim::Ussd::plain("Vash nomer +7 (926) 123-45-67"));
        zelmodems::OwnNumber own(&modem);
        QVERIFY2(own.byUssd(QStringLiteral("*205#")), qPrintable(own.failure().text()));
        QCOMPARE(own.number(), QStringLiteral("9261234567"));

        sim.setUssdReply("*206#", zelmodems::sim::Ussd::plain("Nomer 12"));
        QVERIFY(!own.byUssd(QStringLiteral("*206#")));
        QCOMPARE(own.failure().code(), Failure::Malformed);
        QVERIFY(own.number().isEmpty());
    }

    void nationalNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("number");
        QTest::newRow("eleven digits") << "Vash nomer 79261234567." << "9261234567";
        QTest::newRow("ten digits") << "Nomer: 9261234567" << "9261234567";
        QTest::newRow("at the start") << "79261234567 is yours" << "";
        QTest::newRow("too short") << "Nomer 926123456" << "";
    }

    void nationalNumbers()
    {
        QFETCH(QString, text);
        QFETCH(QString, number);
        QCOMPARE(zelmodems::OwnNumber::nationalNumberIn(text), number);
    }
};

QTEST_GUILESS_MAIN(TestMessageStore)
#include "tst_messagestore.moc"
