// Resetting a modem the way its dialect needs.
// The restart sleeps of the driver are real: only one row pays one of them.
#include "simfixture.h"

using namespace zelmodems::sim;
using zmltest::startAndOpen;

using Commands = QList<QByteArray>;

// A reset of a simulated make, the commands on the wire, and a command the
// simulator gets wrong, if any, with the reset's result.
struct ResetRow
{
    Make make;
    bool full;
    Commands sent;
    QByteArray faulty = QByteArray();
    Fault fault = Fault::None;
    bool result = true;
};
Q_DECLARE_METATYPE(ResetRow)

class TestAtReset : public QObject
{
    Q_OBJECT

private slots:
    void reset_data()
    {
        QTest::addColumn<ResetRow>("row");

        // Echo off, the dialect's step, the final probe, factory defaults.
        const Commands restart{"E0", "+CFUN=1,1", "", "", "&F0"}, nothing{"E0", "", "&F0"};
        QTest::newRow("huawei full: restart, wait for it") << ResetRow{Make::Huawei, true, restart};
        QTest::newRow("huawei light") << ResetRow{Make::Huawei, false, nothing};
        QTest::newRow("zte full: power on") << ResetRow{Make::Zte, true, {"E0", "+CFUN=1", "", "&F0"}};
        QTest::newRow("default full: nothing to restart") << ResetRow{Make::Unknown, true, nothing};
        // The one row with a fixed sleep (5 s) between restart and probes.
        QTest::newRow("simcom full: restart, sleep, wait for it") << ResetRow{Make::SimCom, true, restart};
        // A failed restart command does not matter; refused factory defaults
        // do; a device that goes away at the echo switch (whose failure alone
        // would not count) leaves the port closed.
        QTest::newRow("restart refused") << ResetRow{Make::Huawei, true, restart, "+CFUN=1,1", Fault::Error};
        QTest::newRow("factory defaults refused") << ResetRow{Make::Huawei, false, nothing, "&F0", Fault::Error, false};
        QTest::newRow("vanishes at echo off") << ResetRow{Make::Huawei, false, {"E0"}, "E0", Fault::Vanish, false};
    }

    void reset()
    {
        QFETCH(ResetRow, row);

        ZML_OPEN(row.make);
        const qint32 dialect = modem.dialect();
        const QString name = modem.name();
        // Factory defaults bring the echo back on the simulated modems;
        // the reset switches it off first in any case.
        sim.setEcho(true);
        if (!row.faulty.isEmpty())
            sim.setFault(row.faulty, row.fault);

        zmltest::LogRecorder log;
        QCOMPARE(modem.reset(row.full), row.result);
        QCOMPARE(sim.commands(), row.sent);
        const bool vanished = row.fault == Fault::Vanish;
        QCOMPARE(modem.baudrate(), vanished ? 0 : 115200);
        QCOMPARE(modem.lastError(), row.result || vanished ? QString() : QStringLiteral("Modem said \"ERROR\""));
        QCOMPARE(modem.dialect(), dialect);
        QCOMPARE(modem.name(), name);
        // The full reset is announced on the default category.
        QCOMPARE(log.find(QStringLiteral("default"), QStringLiteral("RESET MODEM")).size(), row.full ? 1 : 0);
        QVERIFY(log.find(QStringLiteral("atmodem"), QStringLiteral("RESET MODEM")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAtReset)
#include "tst_atreset.moc"
