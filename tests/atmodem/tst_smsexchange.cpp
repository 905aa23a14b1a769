// Reading, joining and deleting the modem's SMS in PDU mode, and sending
// one in text mode, against the simulated modem's SMS store.
#include "simfixture.h"

#include <QTimer>

using namespace modemsim;
using zmltest::LogRecorder;
using zmltest::minutesAgo;
using zmltest::startAndOpen;

namespace {

QList<QByteArray> deletions(const SimModem& sim)
{
    QList<QByteArray> found;
    for (const QByteArray& command : sim.commands())
        if (command.startsWith("+CMGD="))
            found << command;
    return found;
}

} // namespace

class TestSms : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    void noMessages()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setEcho(true);
        QList<AtModem::SSms> messages;
        QVERIFY(!modem.takeMessages(messages));
        QVERIFY(messages.isEmpty());
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+CMGF=0", "+CMGL=4"}));
    }

    // Newest first in the store; oldest first in the result, equal times in
    // reading order; every listed message deleted in listing order.
    void orderAndDeletion()
    {
        SimModem sim(Make::Zte);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        const QDateTime newer = minutesAgo(5), older = minutesAgo(50), same = minutesAgo(20);
        sim.storeSms(DeliverPdu::gsm7("+79121234567", newer, "newer"), 1, 3);
        sim.storeSms(DeliverPdu::gsm7("MegaFon", older, "older"), 0, 7);
        sim.storeSms(DeliverPdu::ucs2("+79031112233", same, QString::fromUtf8("равные 1")), 1, 8);
        sim.storeSms(DeliverPdu::gsm7("+79031112244", same, "same 2"), 1, 9);

        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        const QList<AtModem::SSms> expected{
            {QStringLiteral("MegaFon"), older, QStringLiteral("older")},
            {QStringLiteral("+79031112233"), same, QString::fromUtf8("равные 1")},
            {QStringLiteral("+79031112244"), same, QStringLiteral("same 2")},
            {QStringLiteral("+79121234567"), newer, QStringLiteral("newer")},
        };
        QCOMPARE(messages.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i) {
            QCOMPARE(messages.at(i).sender, expected.at(i).sender);
            QCOMPARE(messages.at(i).dateTime, expected.at(i).dateTime);
            QCOMPARE(messages.at(i).text, expected.at(i).text);
        }
        QCOMPARE(messages.first().dateTime.timeSpec(), Qt::LocalTime);
        QCOMPARE(deletions(sim), (QList<QByteArray>{"+CMGD=3", "+CMGD=7", "+CMGD=8", "+CMGD=9"}));
        QVERIFY(sim.storedSms().isEmpty());
    }

    // What the caller's list held is sorted in with the new messages.
    void appendsToCallersList()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.storeSms(DeliverPdu::gsm7("+79121234567", minutesAgo(30), "stored"));
        QList<AtModem::SSms> messages{{QStringLiteral("earlier call"), minutesAgo(10), QStringLiteral("kept")}};
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages.at(0).text, QStringLiteral("stored"));
        QCOMPARE(messages.at(1).text, QStringLiteral("kept"));
    }

    void longMessages()
    {
        SimModem sim(Make::Cinterion);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        const QDateTime when = minutesAgo(3);
        // Parts listed out of order, a single message between them, and a
        // message of which only the second part arrived.
        sim.storeSms(DeliverPdu::ucs2("+79121234567", when, QString::fromUtf8(" вторая часть"), 0x5A, 2, 2));
        sim.storeSms(DeliverPdu::gsm7("+79035550000", when.addSecs(-60), "single"));
        sim.storeSms(DeliverPdu::ucs2("+79121234567", when, QString::fromUtf8("Первая часть,"), 0x5A, 1, 2));
        sim.storeSms(DeliverPdu::ucs2("+79127654321", when.addSecs(60), QStringLiteral("tail"), 0x11, 2, 2));

        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 3);
        // Without its first part a message has no time stamp, and an invalid
        // time sorts before every valid one.
        QCOMPARE(messages.at(0).sender, QStringLiteral("+79127654321"));
        QCOMPARE(messages.at(0).text, QStringLiteral("[missing text]tail"));
        QVERIFY(!messages.at(0).dateTime.isValid());
        QCOMPARE(messages.at(1).text, QStringLiteral("single"));
        QCOMPARE(messages.at(2).text, QString::fromUtf8("Первая часть, вторая часть"));
        QCOMPARE(messages.at(2).sender, QStringLiteral("+79121234567"));
        QCOMPARE(messages.at(2).dateTime, when);
        QCOMPARE(deletions(sim).size(), 4);
    }

    // Messages that do not decode are deleted all the same. A concatenated
    // message with a broken part is dropped with a warning; a single PDU
    // that fails at its first octets makes a message without any valid
    // part, which counts as valid and comes out empty.
    void brokenMessages()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        const QDateTime when = minutesAgo(1);
        QByteArray truncated = DeliverPdu::ucs2("+79121234567", when, QStringLiteral("second"), 0x33, 2, 2);
        truncated.chop(4);
        sim.storeSms(DeliverPdu::ucs2("+79121234567", when, QStringLiteral("first "), 0x33, 1, 2), 1, 1);
        sim.storeSms(truncated, 1, 2);
        sim.storeSms("0004", 1, 3);   // no service centre
        sim.storeSms(DeliverPdu::gsm7("+79035550000", when, "good"), 1, 4);

        LogRecorder log;
        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages.at(0).sender, QString());
        QCOMPARE(messages.at(0).text, QString());
        QVERIFY(!messages.at(0).dateTime.isValid());
        QCOMPARE(messages.at(1).text, QStringLiteral("good"));
        QVERIFY(!log.find(QStringLiteral("atmodem"), QStringLiteral("Sms([invalid part 1: ")).isEmpty());
        QCOMPARE(deletions(sim), (QList<QByteArray>{"+CMGD=1", "+CMGD=2", "+CMGD=3", "+CMGD=4"}));
    }

    // A listing whose PDU line is no hexadecimal: the header's match runs on
    // to the next entry's PDU, so that message is read under the broken
    // entry's index and its own index is never deleted.
    void nonHexadecimalPdu()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.storeSms("NOT-A-PDU", 1, 1);
        sim.storeSms(DeliverPdu::gsm7("+79035550000", minutesAgo(2), "after"), 1, 2);
        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 1);
        QCOMPARE(messages.at(0).text, QStringLiteral("after"));
        QCOMPARE(deletions(sim), QList<QByteArray>{"+CMGD=1"});
        QCOMPARE(sim.storedSms().keys(), QList<int>{2});
    }

    void garbageListing()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setAnswer("+CMGL=4", "+CMGL: x,1,,23\r\n0791\r\n+CMGL: 5\r\n+CMGL:\r\n12AB");
        QList<AtModem::SSms> messages;
        QVERIFY(!modem.takeMessages(messages));
        QVERIFY(deletions(sim).isEmpty());
    }

    // The modem falls silent after the first entry: what came is used when
    // the listing's time-out has passed.
    void listingCutShort()
    {
        SimModem sim(Make::SimCom);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.storeSms(DeliverPdu::gsm7("+79035550001", minutesAgo(4), "one"));
        sim.storeSms(DeliverPdu::gsm7("+79035550002", minutesAgo(3), "two"));
        sim.setSmsListLimit(1);
        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QCOMPARE(messages.size(), 1);
        QCOMPARE(messages.at(0).text, QStringLiteral("one"));
        QCOMPARE(deletions(sim), QList<QByteArray>{"+CMGD=1"});
        QCOMPARE(sim.storedSms().keys(), QList<int>{2});
    }

    void sendText()
    {
        SimModem sim(Make::SimCom);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setEcho(true);
        const QString text = QString::fromUtf8("Баланс: 12 р.");
        // The caller's events keep being processed during the wait.
        int ticks = 0;
        QTimer::singleShot(1500, [&ticks] { ++ticks; });
        QVERIFY(modem.sendMessage(QStringLiteral("+79121234567"), text));
        QCOMPARE(ticks, 1);
        QCOMPARE(sim.commands(),
                 (QList<QByteArray>{"E0", "+CMGF=1", "+CMGS=+79121234567", text.toUtf8() + char(26)}));
        QCOMPARE(sim.sentMessages().size(), 1);
        QCOMPARE(sim.sentMessages().at(0).first, QByteArray("+79121234567"));
        QCOMPARE(sim.sentMessages().at(0).second, text.toUtf8());
    }

    void sendWithoutPrompt()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+CMGF=1", Reply::error());   // text mode refused: no prompt
        QVERIFY(!modem.sendMessage(QStringLiteral("+79121234567"), QStringLiteral("hi")));
        QCOMPARE(sim.commands(), (QList<QByteArray>{"E0", "+CMGF=1", "+CMGS=+79121234567"}));
        QVERIFY(sim.sentMessages().isEmpty());

        AtModem closed;
        QVERIFY(!closed.sendMessage(QStringLiteral("+79121234567"), QStringLiteral("hi")));
    }

    // The modem dies while the network would confirm: no "OK", no success.
    void sendModemVanishes()
    {
        SimModem sim(Make::Zte);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setReply("+CMGS=+79121234567", Reply::raw("\r\n> "));   // a prompt that swallows the text
        sim.vanishAfter(1500);
        QVERIFY(!modem.sendMessage(QStringLiteral("+79121234567"), QStringLiteral("hi")));
        QVERIFY(sim.hasVanished());
    }
};

QTEST_GUILESS_MAIN(TestSms)
#include "tst_smsexchange.moc"
