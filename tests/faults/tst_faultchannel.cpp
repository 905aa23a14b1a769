// The AT channel under two kinds of line trouble:
// - a flood of unsolicited result codes (RING, +CREG, +CMTI, ^RSSI) arriving
//   between and around the answers: every command still gets its own whole
//   answer, none another's, and stored messages are all read and deleted;
// - answers that trickle in byte by byte: slow ones within the time-outs
//   give the same results as fast ones; one slower than its time-out fails
//   after that time-out, and its late bytes do not reach the next command.
// Each leaves the port closed and unlocked.
#include "faultfixture.h"

#include "atmodem.h"
#include "simmodem.h"

#include <QElapsedTimer>
#include <QtTest>

using zelmodems::sim::DeliverPdu;
using zelmodems::sim::Make;
using zelmodems::sim::SimModem;

namespace {

const QByteArray IMEI = "866123456789012";
const QByteArray CSQ_BODY = "+CSQ: 20,99";
const QByteArray COPS_BODY = "\"MegaFon\"";

QByteArray urc(int i)
{
    switch (i % 4) {
    case 0: return "\r\nRING\r\n";
    case 1: return "\r\n+CREG: 1\r\n";
    case 2: return "\r\n+CMTI: \"SM\"," + QByteArray::number(i % 30) + "\r\n";
    default: return "\r\n^RSSI: 17\r\n";
    }
}

// `count` codes, one every `everyMs`, from now on.
void flood(SimModem& sim, int count, int everyMs)
{
    for (int i = 0; i < count; ++i)
        sim.sendUnsolicited(urc(i), i * everyMs);
}

} // namespace

class TestFaultChannel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { faults::installQuietHandler(); }

    void floodOfUnsolicitedCodes()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        const QString node = faults::deviceNode(sim.devicePath());
        const int simulatorDescriptors = faults::openDescriptors(node);
        AtModem modem;
        QVERIFY2(modem.open(sim.devicePath(), 115200, 1), qPrintable(modem.lastError()));
        // While open, the driver's port holds the device and its lock: what
        // the checks at the end look for.
        QCOMPARE(faults::openDescriptors(node), simulatorDescriptors + 1);
        QCOMPARE(faults::lockFiles(node).size(), 1);

        // 500 codes, one every 3 ms, while the three commands run round
        // after round.
        flood(sim, 500, 3);
        QElapsedTimer clock;
        clock.start();
        int rounds = 0;
        while (clock.elapsed() < 1500) {
            // Each command gets its own answer, and none of the others'.
            const QByteArray commands[] = {"+GSN", "+CSQ", "+COPS?"};
            const QByteArray bodies[] = {IMEI, CSQ_BODY, COPS_BODY};
            for (int i = 0; i < 3; ++i) {
                QByteArray answer;
                QVERIFY(modem.sendCommand(commands[i], answer, 500));
                for (int j = 0; j < 3; ++j)
                    QVERIFY2(answer.contains(bodies[j]) == (i == j), answer.constData());
            }

            // The signal query reads a pair of numbers that none of these
            // codes carries.
            int level = 0;
            QVERIFY(modem.getSignalLevel(level));
            QCOMPARE(level, 2 * 20 - 113);
            ++rounds;
        }
        QVERIFY2(rounds >= 5, qPrintable(QStringLiteral("only %1 rounds").arg(rounds)));

        // Messages stored while new-message codes keep coming: all of them
        // are read, and all deleted.
        const QDateTime when = QDateTime::currentDateTime().addSecs(-600);
        const QDateTime stamp(when.date(), QTime(when.time().hour(), when.time().minute(), when.time().second()));
        sim.storeSms(DeliverPdu::gsm7("+79121234567", stamp, "first"), 0, 1);
        sim.storeSms(DeliverPdu::gsm7("+79121234568", stamp.addSecs(60), "second"), 0, 2);
        sim.storeSms(DeliverPdu::ucs2("+79121234569", stamp.addSecs(120), QString::fromUtf8("третье")), 0, 3);
        flood(sim, 200, 2);
        QList<AtModem::SSms> messages;
        QVERIFY(modem.takeMessages(messages));
        QStringList texts;
        for (const AtModem::SSms& m : qAsConst(messages))
            texts << m.text;
        QCOMPARE(texts, QStringList({QStringLiteral("first"), QStringLiteral("second"), QString::fromUtf8("третье")}));
        QCOMPARE(messages.at(2).sender, QStringLiteral("+79121234569"));
        QVERIFY(sim.storedSms().isEmpty());

        // Once the line is quiet again, the queries read exactly.
        sim.waitUntilQuiet();
        QString imei;
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QString::fromLatin1(IMEI));
        QString name;
        QVERIFY(modem.getOperator(name));
        QCOMPARE(name, QStringLiteral("MegaFon"));
        int mcc = 0, mnc = 0;
        QVERIFY(modem.getMnc(mcc, mnc));
        QCOMPARE(mcc, 250);
        QCOMPARE(mnc, 2);

        modem.close();
        QVERIFY(faults::released(node, simulatorDescriptors));
    }

    void slowByteByByteAnswers()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        const QString node = faults::deviceNode(sim.devicePath());
        const int simulatorDescriptors = faults::openDescriptors(node);

        // Three milliseconds a byte: the identification (some 120 bytes)
        // takes a third of a second, within every time-out.
        sim.setByteDelay(3);
        AtModem modem;
        QVERIFY2(modem.open(sim.devicePath(), 115200, 1), qPrintable(modem.lastError()));
        QCOMPARE(modem.dialect(), qint32(AtModem::HUAWEI));
        QCOMPARE(modem.name(), QStringLiteral("huawei_E3372"));
        QString imei;
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QString::fromLatin1(IMEI));
        int mcc = 0, mnc = 0;
        QVERIFY(modem.getMnc(mcc, mnc));
        QCOMPARE(mcc * 100 + mnc, 25002);
        QString name;
        QVERIFY(modem.getOperator(name));
        QCOMPARE(name, QStringLiteral("MegaFon"));

        // Forty milliseconds a byte: the IMEI's answer (25 bytes) needs a
        // second, twice its time-out. The command fails at the time-out with
        // what had come so far, not the whole answer.
        sim.waitUntilQuiet();
        sim.setByteDelay(40);
        const QByteArray fullAnswer = "\r\n" + IMEI + "\r\n\r\n";
        QByteArray answer;
        QVERIFY(!modem.sendCommand("+GSN", answer, 500));
        // (The line end that closed the previous slow answer after its "OK"
        // may lead it.)
        QByteArray received = answer;
        while (received.startsWith("\r\n\r\n"))
            received.remove(0, 2);
        QVERIFY2(fullAnswer.startsWith(received) && received.size() < fullAnswer.size(), answer.toHex().constData());
        QCOMPARE(modem.lastError(),
                 QStringLiteral("Modem is offline pn port %1").arg(faults::deviceNode(sim.devicePath()).mid(5)));
        sim.waitUntilQuiet();

        // The IMEI query takes a number from a failed command's partial
        // answer too (its looseness is deliberate): what it reports then is
        // the beginning of the IMEI, never other digits.
        QVERIFY(modem.getImei(imei));
        QVERIFY2(!imei.isEmpty() && QString::fromLatin1(IMEI).startsWith(imei) && imei.size() < IMEI.size(),
                 qPrintable(imei));

        // The late bytes, once in, go with the next command's clearing and
        // do not end its answer early.
        sim.waitUntilQuiet();
        sim.setByteDelay(0);
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QString::fromLatin1(IMEI));
        int level = 0;
        QVERIFY(modem.getSignalLevel(level));
        QCOMPARE(level, 2 * 20 - 113);

        modem.close();
        QVERIFY(faults::released(node, simulatorDescriptors));
    }
};

QTEST_GUILESS_MAIN(TestFaultChannel)
#include "tst_faultchannel.moc"
