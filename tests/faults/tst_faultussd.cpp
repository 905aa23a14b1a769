// A modem that restarts in the middle of a USSD exchange: it has taken the
// request, then reboots (falls deaf, prints its start-up lines) before the
// network's reply could come, or drops off the bus and comes back as a new
// device. The request must fail within its ten waits, keep the caller's
// message, and leave a channel (or a port) that works afterwards.
#include "faultfixture.h"

#include "atmodem.h"
#include "simmodem.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using zelmodems::sim::Make;
using zelmodems::sim::SimModem;

namespace {

// What a modem prints while it starts again: noise on the line, then its
// ready and SIM state lines.
const QByteArray BOOT_LINES = QByteArray("\xff\x00\xfe", 3) + "\r\nRDY\r\n\r\n+CFUN: 1\r\n\r\n+CPIN: READY\r\n"
                                                                 "\r\n^SYSSTART\r\n\r\nSMS DONE\r\n";

// Ten waits of a second and up to a second of reads each: the longest a
// USSD request may take. Used to tell a hang from an answer, not as a speed
// limit.
constexpr qint64 USSD_LONGEST_MS = 21000;

} // namespace

class TestFaultUssd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { faults::installQuietHandler(); }

    void modemRestartsDuringUssd()
    {
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        const QString node = faults::deviceNode(sim.devicePath());
        const int ownDescriptors = faults::openDescriptors(node);   // the simulator's
        AtModem modem;
        QVERIFY2(modem.open(sim.devicePath(), 115200, 1), qPrintable(modem.lastError()));
        sim.setUssdReply("*100#", QByteArray());   // the reply never comes: the modem restarts first

        // 1.2 s into the wait the modem goes deaf and prints its start-up
        // lines; a second and a half later it listens again.
        QTimer::singleShot(1200, [&sim] {
            sim.setSilent(true);
            sim.sendUnsolicited(BOOT_LINES, 300);
        });
        QTimer::singleShot(2700, [&sim] { sim.setSilent(false); });

        QString message = QStringLiteral("kept");
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!modem.sendUSSD(QStringLiteral("*100#"), message));
        QVERIFY2(clock.elapsed() < USSD_LONGEST_MS, "the request outlived its ten waits");
        QCOMPARE(message, QStringLiteral("kept"));
        QCOMPARE(sim.ussdRequests(), QList<QByteArray>({"*100#"}));

        // The start-up lines went with the wait; the channel answers as
        // before, command by command.
        QVERIFY(modem.pollAt(1000));
        QString imei;
        QVERIFY(modem.getImei(imei));
        QCOMPARE(imei, QStringLiteral("866123456789012"));
        int level = 0;
        QVERIFY(modem.getSignalLevel(level));
        QCOMPARE(level, 2 * 20 - 113);
        QString operatorName;
        QVERIFY(modem.getOperator(operatorName));
        QCOMPARE(operatorName, QStringLiteral("MegaFon"));

        // A second request after the restart goes through.
        sim.setUssdReply("*100#", "+CUSD: 0,\"Balans 12,50 r.\",15");
        message.clear();
        QVERIFY(modem.sendUSSD(QStringLiteral("*100#"), message));
        QCOMPARE(message, QStringLiteral("Balans 12,50 r."));

        modem.close();
        QVERIFY(faults::released(node, ownDescriptors));
    }

};

QTEST_GUILESS_MAIN(TestFaultUssd)
#include "tst_faultussd.moc"
