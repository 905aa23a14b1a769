// Reading, joining and deleting the modem's SMS in PDU mode, and sending
// one in text mode, against the simulated modem's SMS store.
#include "simfixture.h"

#include <QTimer>

using namespace zelmodems::sim;
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

// One message as a line, so that a comparison shows what differs; the time
// stamp in ISO form tells local time from UTC or a fixed offset.
QString line(const QString& sender, const QDateTime& time, const QString& text)
{
    return sender + QLatin1Char('|') + time.toString(Qt::ISODate) + QLatin1Char('|') + text;
}

QStringList lines(const QList<AtModem::SSms>& messages)
{
    QStringList found;
    for (const AtModem::SSms& m : messages)
        found << line(m.sender, m.dateTime, m.text);
    return found;
}

// What the store holds (at indexes 1, 2, ...) or the listing the modem gives
// instead, and what is read, deleted and left.
struct ListingRow
{
    QList<QByteArray> stored;
    QByteArray listing;     // empty: the store's own
    int limit;              // entries listed before the modem falls silent (-1: all)
    QStringList messages;   // as line() gives them
    int deleted;            // indexes 1 to this deleted, in order
    QList<int> left;
    QString warning;        // logged, if any
};

} // namespace

Q_DECLARE_METATYPE(ListingRow)

class TestSms : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_lockDir;

private slots:
    void initTestCase() { QVERIFY(m_lockDir.install()); }

    // Listings as they come: the messages read, joined and sorted, the
    // indexes deleted, those left in the store and the warning logged.
    void listings_data()
    {
        QTest::addColumn<ListingRow>("row");

        const QDateTime when = minutesAgo(3);
        // Parts listed out of order, a single message between them, and a
        // message of which only the second part arrived: without its first
        // part it has no time stamp, and an invalid time sorts first.
        QTest::newRow("long messages")
            << ListingRow{{DeliverPdu::ucs2("+79121234567", when, QString::fromUtf8(" вторая часть"), 0x5A, 2, 2),
                           DeliverPdu::gsm7("+79035550000", when.addSecs(-60), "single"),
                           DeliverPdu::ucs2("+79121234567", when, QString::fromUtf8("Первая часть,"), 0x5A, 1, 2),
                           DeliverPdu::ucs2("+79127654321", when.addSecs(60), "tail", 0x11, 2, 2)},
                          "", -1,
                          {line("+79127654321", QDateTime(), "[missing text]tail"),
                           line("+79035550000", when.addSecs(-60), "single"),
                           line("+79121234567", when, QString::fromUtf8("Первая часть, вторая часть"))},
                          4, {}, ""};
        // Messages that do not decode are deleted all the same. A
        // concatenated message with a broken part is dropped with a warning;
        // a single PDU that fails at its first octets makes a message
        // without any valid part, which counts as valid and comes out empty.
        QByteArray truncated = DeliverPdu::ucs2("+79121234567", when, "second", 0x33, 2, 2);
        truncated.chop(4);
        QTest::newRow("broken messages")
            << ListingRow{{DeliverPdu::ucs2("+79121234567", when, "first ", 0x33, 1, 2), truncated, "0004",
                           DeliverPdu::gsm7("+79035550000", when, "good")},
                          "", -1, {line("", QDateTime(), ""), line("+79035550000", when, "good")},
                          4, {}, "Sms([invalid part 1: "};
        // The header's match runs on to the next entry's PDU, so that
        // message is read under the broken entry's index and its own index
        // is never deleted.
        QTest::newRow("PDU line not hexadecimal")
            << ListingRow{{"NOT-A-PDU", DeliverPdu::gsm7("+79035550000", when, "after")}, "", -1,
                          {line("+79035550000", when, "after")}, 1, {2}, ""};
        // What came is used once the listing's time-out has passed.
        QTest::newRow("modem falls silent after one entry")
            << ListingRow{{DeliverPdu::gsm7("+79035550001", when, "one"), DeliverPdu::gsm7("MegaFon", when, "two")}, "",
                          1, {line("+79035550001", when, "one")}, 1, {2}, ""};
        // An index past any store's range is never read as 0 and deleted.
        QTest::newRow("index too large")
            << ListingRow{{}, "+CMGL: 99999999999,1,,23\r\n" + DeliverPdu::gsm7("+79035550000", when, "x") + "\r\n",
                          -1, {}, 0, {}, "SMS index 99999999999 refused"};
    }

    void listings()
    {
        QFETCH(ListingRow, row);

        ZML_OPEN(Make::Cinterion);
        sim.setEcho(true);
        for (int i = 0; i < row.stored.size(); ++i)
            sim.storeSms(row.stored.at(i), 1, i + 1);
        if (!row.listing.isEmpty())
            sim.setAnswer("+CMGL=4", row.listing);
        sim.setSmsListLimit(row.limit);

        LogRecorder log;
        QList<AtModem::SSms> messages;
        QCOMPARE(modem.takeMessages(messages), !row.messages.isEmpty());
        QCOMPARE(sim.commands().mid(0, 3), (QList<QByteArray>{"E0", "+CMGF=0", "+CMGL=4"}));
        QCOMPARE(lines(messages), row.messages);
        QList<QByteArray> deleted;
        for (int i = 1; i <= row.deleted; ++i)
            deleted << "+CMGD=" + QByteArray::number(i);
        QCOMPARE(deletions(sim), deleted);
        QCOMPARE(sim.storedSms().keys(), row.left);
        if (!row.warning.isEmpty())
            QVERIFY(!log.find(QStringLiteral("atmodem"), row.warning).isEmpty());
    }

    void sendText()
    {
        ZML_OPEN(Make::SimCom);
        sim.setEcho(true);
        const QString text = QString::fromUtf8("Баланс: 12 р.");
        // The caller's events keep being processed during the wait.
        int ticks = 0;
        QObject caller;
        QTimer::singleShot(1500, &caller, [&ticks] { ++ticks; });
        QVERIFY(modem.sendMessage(QStringLiteral("+79121234567"), text));
        QCOMPARE(ticks, 1);
        QCOMPARE(sim.commands(),
                 (QList<QByteArray>{"E0", "+CMGF=1", "+CMGS=+79121234567", text.toUtf8() + char(26)}));
        QCOMPARE(sim.sentMessages(), (QList<QPair<QByteArray, QByteArray>>{{"+79121234567", text.toUtf8()}}));
    }
};

QTEST_GUILESS_MAIN(TestSms)
#include "tst_smsexchange.moc"
