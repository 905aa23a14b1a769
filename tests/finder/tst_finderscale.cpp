// One search over a hundred simulated modems: every modem is found, and the
// probes run side by side on the global pool (the figures are printed, not
// asserted: the machine is shared).
#include "finderfixture.h"

#include "modemsfinder.h"
#include "simmodem.h"

#include <QElapsedTimer>
#include <QThreadPool>
#include <QtTest>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>

using namespace findertest;
using zelmodems::sim::Make;
using zelmodems::sim::Profile;
using zelmodems::sim::SimModem;

namespace {

constexpr int PORTS = 100;
constexpr int SEARCH_TIMEOUT_MS = 240000;

// Runs one search over `names` and returns what it found.
QList<ModemInfo> search(const QStringList& names, qint64* elapsedMs)
{
    ModemsFinder finder;
    SignalLog signalLog(finder);
    QElapsedTimer clock;
    clock.start();
    finder.start(names);
    if (!QTest::qWaitFor([&] { return signalLog.names.contains(QStringLiteral("finished")); },
                         SEARCH_TIMEOUT_MS))
        return QList<ModemInfo>();
    *elapsedMs = clock.elapsed();
    return signalLog.found.value(0);
}

} // namespace

class TestFinderScale : public QObject
{
    Q_OBJECT

private slots:
    void hundredPorts()
    {
        LogRecorder quiet(LogRecorder::Echo::Nothing);
        SimPorts ports;
        std::vector<std::unique_ptr<SimModem>> sims;
        QStringList names;
        // Half USB modems (one interface each, each its own IMEI), half
        // plain serial ones.
        for (int i = 0; i < PORTS; ++i) {
            Profile profile = Profile::forMake(Make::Huawei);
            profile.imei = QByteArray::number(866000000000000LL + i);
            sims.emplace_back(new SimModem(profile));
            QString error;
            QVERIFY2(sims.back()->start(&error), qPrintable(error));
            const bool usb = i % 2 == 0;
            const QString name = usb ? QStringLiteral("ttyUSB%1").arg(100 + i) : QStringLiteral("ttyS%1").arg(100 + i);
            if (usb)
                ports.declareUsb(name, sims.back()->devicePath(), 0x12d1, 0x1506, QStringLiteral("huawei"));
            else
                ports.declareSerial(name, sims.back()->devicePath());
            names << name;
        }

        // One probe alone, for comparison.
        qint64 single = 0;
        const QList<ModemInfo> one = search({names.first()}, &single);
        QCOMPARE(one.size(), 1);
        for (auto& sim : sims)
            sim->clearLog();

        qint64 all = 0;
        const QList<ModemInfo> found = search(names, &all);
        QCOMPARE(found.size(), PORTS);
        QStringList foundNames;
        for (const ModemInfo& modem : found) {
            QVERIFY(modem.isValid());
            foundNames << modem.portName();
        }
        foundNames.sort();
        names.sort();
        QCOMPARE(foundNames, names);

        // The probes overlapped: every modem heard its first command before
        // any probe had ended. A probe's last command is the "&F0" of its dial
        // preparation, followed by a fixed two-second pause before the port
        // is closed; probes run one after another would start seconds apart.
        const qint64 dialPauseMs = 2000;
        qint64 lastStart = 0;
        qint64 firstEnd = std::numeric_limits<qint64>::max();
        for (auto& sim : sims) {
            const QList<zelmodems::sim::CommandRecord> log = sim->log();
            QVERIFY(!log.isEmpty());
            QCOMPARE(log.last().command, QByteArray("&F0"));
            lastStart = std::max(lastStart, log.first().epochMs);
            firstEnd = std::min(firstEnd, log.last().epochMs + dialPauseMs);
        }
        QVERIFY2(lastStart < firstEnd, "the probes did not run side by side");

        std::printf("search over one port: %lld ms; over %d ports: %lld ms (%.1f times one port)\n", single,
                    PORTS, all, single > 0 ? double(all) / double(single) : 0.0);
        std::fflush(stdout);
    }
};

QTEST_MAIN(TestFinderScale)
#include "tst_finderscale.moc"
