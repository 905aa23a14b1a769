// Resetting a modem the way its dialect needs, and preparing it for a dial.
// The restart sleeps of the driver are real: only one row pays one of them.
#include "simfixture.h"

using namespace modemsim;
using zmltest::startAndOpen;

using Commands = QList<QByteArray>;

class TestAtReset : public QObject
{
    Q_OBJECT

private slots:
    void reset_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<bool>("full");
        QTest::addColumn<Commands>("sent");

        // Echo off, the dialect's step, the final probe, factory defaults.
        QTest::newRow("huawei full: restart, wait for it")
            << Make::Huawei << true << Commands{"E0", "+CFUN=1,1", "", "", "&F0"};
        QTest::newRow("huawei light") << Make::Huawei << false << Commands{"E0", "", "&F0"};
        QTest::newRow("zte full: power on") << Make::Zte << true << Commands{"E0", "+CFUN=1", "", "&F0"};
        QTest::newRow("zte light: power on") << Make::Zte << false << Commands{"E0", "+CFUN=1", "", "&F0"};
        QTest::newRow("siemens light") << Make::Cinterion << false << Commands{"E0", "", "&F0"};
        QTest::newRow("simcom light") << Make::SimCom << false << Commands{"E0", "", "&F0"};
        QTest::newRow("hspa light") << Make::HspaDataCard << false << Commands{"E0", "", "&F0"};
        QTest::newRow("default full: nothing to restart") << Make::Unknown << true << Commands{"E0", "", "&F0"};
        // The one row with a fixed sleep (5 s) between restart and probes.
        QTest::newRow("simcom full: restart, sleep, wait for it")
            << Make::SimCom << true << Commands{"E0", "+CFUN=1,1", "", "", "&F0"};
    }

    void reset()
    {
        QFETCH(Make, make);
        QFETCH(bool, full);
        QFETCH(Commands, sent);

        SimModem sim(make);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        const qint32 dialect = modem.dialect();
        const QString name = modem.name();
        // Factory defaults bring the echo back on the simulated modems;
        // the reset switches it off first in any case.
        sim.setEcho(true);

        zmltest::LogRecorder log;
        QVERIFY(modem.reset(full));
        QCOMPARE(sim.commands(), sent);
        QCOMPARE(modem.baudrate(), 115200);
        QCOMPARE(modem.dialect(), dialect);
        QCOMPARE(modem.name(), name);
        // The full reset is announced on the default category.
        QCOMPARE(log.find(QStringLiteral("default"), QStringLiteral("RESET MODEM")).size(), full ? 1 : 0);
        QVERIFY(log.find(QStringLiteral("atmodem"), QStringLiteral("RESET MODEM")).isEmpty());
    }

    // A failed restart command does not matter; a modem that does not come
    // back does: the port is closed.
    void resetFailures()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        sim.setFault("+CFUN=1,1", Fault::Error);
        QVERIFY(modem.reset(true));
        QCOMPARE(sim.commands(), (Commands{"E0", "+CFUN=1,1", "", "", "&F0"}));

        sim.setFault("&F0", Fault::Error);
        QVERIFY(!modem.reset(false));
        QCOMPARE(modem.lastError(), QStringLiteral("Modem said \"ERROR\""));
        QCOMPARE(modem.baudrate(), 115200);

        // The device goes away at the first command (the echo switch, whose
        // failure alone would not count).
        sim.clearLog();
        sim.clearFaults();
        sim.setFault("E0", Fault::Vanish);
        QVERIFY(!modem.reset(false));
        QCOMPARE(sim.commands(), Commands{"E0"});
        QCOMPARE(modem.baudrate(), 0);
        QVERIFY(!modem.reset(false));   // closed: fails at once
    }

    // Escape to command state, check, factory defaults; then a fixed 2 s
    // pause (paid once here).
    void beforeDial()
    {
        SimModem sim(Make::Huawei);
        AtModem modem;
        QVERIFY(startAndOpen(sim, modem));
        QVERIFY(modem.beforeDial());
        QCOMPARE(sim.commands(), (Commands{"+++", "", "&F0"}));

        // A modem that does not answer the probe gets no "&F0".
        sim.clearLog();
        sim.setFault("", Fault::Error);
        QVERIFY(!modem.beforeDial());
        QCOMPARE(sim.commands(), (Commands{"+++", ""}));
    }
};

QTEST_GUILESS_MAIN(TestAtReset)
#include "tst_atreset.moc"
