// Discovery: one ModemsFinder search over 1, 10, 50 and 100 simulated
// modems (wall time and this process's CPU time), the ratio of the
// 100-modem search to the 1-modem search, and one probe timed against the
// floor that the probe's fixed waits impose.
//
// The modems run in a separate modemsim process, so that the CPU time
// measured here is the library's alone. They are Huawei sticks with SIMs of
// a known operator, each with its own IMEI, on plain serial port names.
#include "benchutil.h"

#include "modeminfo.h"
#include "modemsfinder.h"
#include "portinfoprovider.h"
#include "portprobe.h"
#include "simmodem.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QAtomicInt>
#include <QMap>
#include <QProcess>
#include <QTimer>

#include <csignal>
#include <cstdio>

using namespace bench;

namespace {

// Bare names mapped to the simulator's devices; everything else does not exist.
class BenchPorts : public PortInfoProvider
{
public:
    BenchPorts() { PortInfoProvider::install(this); }
    ~BenchPorts() override { PortInfoProvider::install(nullptr); }

    void set(const QMap<QString, QString>& devices) { m_devices = devices; }

    QStringList availablePorts() const override { return m_devices.keys(); }
    Port port(const QString& portName) const override
    {
        Port p;
        p.exists = m_devices.contains(portName);
        return p;
    }
    QString devicePath(const QString& portName) const override { return m_devices.value(portName, portName); }
    QString dataPortLink() const override { return QString(); }

private:
    QMap<QString, QString> m_devices;   // written only while no search runs
};

struct Search
{
    double wallMs = 0;
    double cpuMs = 0;
    int found = 0;
};

Search runSearch(const QStringList& names)
{
    ModemsFinder finder;
    Search s;
    QEventLoop loop;
    QObject::connect(&finder, &ModemsFinder::devicesFinded, &loop,
                     [&s](QList<ModemInfo> modems) { s.found = modems.size(); });
    QObject::connect(&finder, &ModemsFinder::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(600000, &loop, &QEventLoop::quit);
    const qint64 cpu0 = processCpuNs();
    const qint64 t0 = nowNs();
    finder.start(names);
    loop.exec();
    s.wallMs = double(nowNs() - t0) / 1e6;
    s.cpuMs = double(processCpuNs() - cpu0) / 1e6;
    return s;
}

// Starts `count` modems in a modemsim process; fills name -> device.
bool startSimulator(QProcess& sim, const QString& program, int count, QMap<QString, QString>* devices)
{
    sim.setProcessChannelMode(QProcess::SeparateChannels);
    sim.start(program, {QStringLiteral("--count"), QString::number(count), QStringLiteral("--no-echo")});
    if (!sim.waitForStarted(10000))
        return false;
    QByteArray out;
    while (out.count('\n') < count) {
        if (!sim.waitForReadyRead(20000))
            return false;
        out += sim.readAllStandardOutput();
    }
    const QList<QByteArray> lines = out.trimmed().split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QList<QByteArray> fields = lines.at(i).split('\t');
        if (fields.size() < 2)
            return false;
        devices->insert(QStringLiteral("ttyS%1").arg(100 + i), QString::fromLocal8Bit(fields.at(1).trimmed()));
    }
    return devices->size() == count;
}

void stopSimulator(QProcess& sim)
{
    ::kill(pid_t(sim.processId()), SIGTERM);
    if (!sim.waitForFinished(10000)) {
        sim.kill();
        sim.waitForFinished(5000);
    }
}

// The driver warns "Modem said ..." once per rejected command.
QAtomicInt rejectedCommands;
void countRejections(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtWarningMsg && text.startsWith(QLatin1String("Modem said")))
        rejectedCommands.fetchAndAddOrdered(1);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QList<int> sizes = {1, 10, 50, 100};
    if (app.arguments().contains(QStringLiteral("--quick")))
        sizes = {1, 10};
    qInstallMessageHandler(discardMessages);
    const QString simulator = QStringLiteral(ZML_MODEMSIM_PROGRAM);

    BenchPorts ports;
    const QString section = QStringLiteral("Discovery");

    // ------------------------------------------------ one probe and its floor
    // A probe of a modem that answers at once still waits: beforeDial sleeps
    // 2 s after its "AT"/"&F0", and every command the modem rejects costs the
    // 100 ms given to the rest of an error answer; the driver's warnings
    // tell how many there were.
    double probeMs = 0;
    int commands = 0;
    int rejected = 0;
    {
        modemsim::SimModem sim(modemsim::Make::Huawei);
        QString error;
        if (!sim.start(&error)) {
            std::fprintf(stderr, "simulator: %s\n", qPrintable(error));
            return 1;
        }
        ports.set({{QStringLiteral("ttyS99"), sim.devicePath()}});
        qInstallMessageHandler(countRejections);
        const qint64 t0 = nowNs();
        const ModemInfo info = PortProbe()(QStringLiteral("ttyS99"));
        probeMs = double(nowNs() - t0) / 1e6;
        if (!info.isValid())
            std::fprintf(stderr, "the probe found no modem\n");
        commands = sim.commands().size();
        rejected = rejectedCommands.loadAcquire();
    }
    qInstallMessageHandler(discardMessages);
    const double floorMs = 2000.0 + 100.0 * rejected;
    print({section,
           QStringLiteral("one probe of an answering modem (%1 AT commands): ms").arg(commands),
           fmt(probeMs, 0),
           QStringLiteral("floor: beforeDial's fixed 2 s sleep + 100 ms per rejected command (%1): ms")
               .arg(rejected),
           fmt(floorMs, 0), fmt(probeMs / floorMs), QString(), QString()});

    // ------------------------------------------------ searches
    QMap<int, Search> results;
    for (int n : qAsConst(sizes)) {
        QProcess sim;
        QMap<QString, QString> devices;
        if (!startSimulator(sim, simulator, n, &devices)) {
            std::fprintf(stderr, "modemsim with %d modems did not start: %s\n", n,
                         sim.readAllStandardError().constData());
            return 1;
        }
        ports.set(devices);
        const Search s = runSearch(devices.keys());
        stopSimulator(sim);
        results.insert(n, s);
        if (s.found != n)
            std::fprintf(stderr, "search over %d modems found %d\n", n, s.found);
        print({section, QStringLiteral("ModemsFinder over %1 modem(s): wall ms / CPU ms").arg(n),
               QStringLiteral("%1 / %2").arg(fmt(s.wallMs, 0), fmt(s.cpuMs, 0)),
               QStringLiteral("found"), QString::number(s.found), QString(), QString(), QString()});
    }
    if (results.contains(1) && results.contains(sizes.last()) && sizes.last() > 1) {
        const int n = sizes.last();
        const double ratio = results.value(n).wallMs / results.value(1).wallMs;
        print({section, QStringLiteral("%1-modem search wall time: ms").arg(n), fmt(results.value(n).wallMs, 0),
               QStringLiteral("1-modem search wall time: ms"), fmt(results.value(1).wallMs, 0),
               fmt(ratio), QStringLiteral("<= 1.5"),
               ratio <= 1.5 ? QStringLiteral("met") : QStringLiteral("missed")});
        print({section, QStringLiteral("%1-modem search CPU time: ms").arg(n), fmt(results.value(n).cpuMs, 0),
               QStringLiteral("1-modem search CPU time x %1: ms").arg(n), fmt(results.value(1).cpuMs * n, 0),
               fmt(results.value(n).cpuMs / (results.value(1).cpuMs * n)), QString(), QString()});
    }
    return 0;
}
