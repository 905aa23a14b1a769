// Hot-plug through a folder of links: a modem that vanishes and comes back
// is reported removed and added, and the same Modem object is opened again;
// a link that comes and goes within the debounce time makes no noise.
#include "modem.h"
#include "modemwatcher.h"
#include "simfixture.h"

#include <QSignalSpy>

using zelmodems::Modem;
using zelmodems::ModemWatcher;
using zelmodems::WatchedPort;
using namespace zelmodems::sim;

class TestModemWatcher : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_locks;

private slots:
    void initTestCase() { QVERIFY(m_locks.install()); }

    void vanishingModemReturns()
    {
        QTemporaryDir folder;
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        QVERIFY(sim.createLink(folder.filePath(QStringLiteral("ttySIM0"))));
        ModemWatcher watcher;
        watcher.setFolder(folder.path());
        watcher.setDebounce(50);
        watcher.setOpenModems(true);
        QSignalSpy added(&watcher, &ModemWatcher::added);
        QSignalSpy removed(&watcher, &ModemWatcher::removed);
        QSignalSpy modemAdded(&watcher, &ModemWatcher::modemAdded);
        QSignalSpy modemRemoved(&watcher, &ModemWatcher::modemRemoved);
        QVERIFY(watcher.start());
        QCOMPARE(added.count(), 1);
        QCOMPARE(added.at(0).at(0).value<WatchedPort>().name, QStringLiteral("ttySIM0"));
        QCOMPARE(modemAdded.count(), 1);
        Modem* modem = modemAdded.at(0).at(0).value<Modem*>();
        QCOMPARE(watcher.modems(), QList<Modem*>{modem});

        sim.vanish();
        QTRY_COMPARE(removed.count(), 1);
        QCOMPARE(modemRemoved.count(), 1);
        QVERIFY(watcher.modems().isEmpty());

        QVERIFY(sim.reappear());
        QTRY_COMPARE(added.count(), 2);
        QTRY_COMPARE(modemAdded.count(), 2);
        QCOMPARE(modemAdded.at(1).at(0).value<Modem*>(), modem);
        QVERIFY(modem->isOpen());
        QVERIFY(modem->readSignal().result().ok());
    }

    void missingFolderIsRefused()
    {
        ModemWatcher watcher;
        watcher.setFolder(QStringLiteral("/nonexistent/modems"));
        QVERIFY(!watcher.start());
        QCOMPARE(watcher.failure().code(), zelmodems::Failure::NotFound);
    }

    void briefFlickerIsDebounced()
    {
        QTemporaryDir folder;
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        ModemWatcher watcher;
        watcher.setFolder(folder.path());
        watcher.setDebounce(400);
        QSignalSpy added(&watcher, &ModemWatcher::added);
        QSignalSpy removed(&watcher, &ModemWatcher::removed);
        QVERIFY(watcher.start());
        QVERIFY(sim.createLink(folder.filePath(QStringLiteral("ttySIM1"))));
        QTest::qWait(20);
        QFile::remove(folder.filePath(QStringLiteral("ttySIM1")));
        QTest::qWait(700);
        QCOMPARE(added.count(), 0);
        QCOMPARE(removed.count(), 0);
        QVERIFY(sim.createLink(folder.filePath(QStringLiteral("ttySIM1"))));
        QTRY_COMPARE(added.count(), 1);
    }
};

QTEST_MAIN(TestModemWatcher)
#include "tst_modemwatcher.moc"
