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
#include "portcatalogue.h"
#include "portprobe_p.h"
#include "simmodem.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QEventLoop>
#include <QAtomicInt>
#include <QMap>
#include <QProcess>
#include <QTimer>

#include <csignal>
#include <sys/statfs.h>
#include <unistd.h>
#include <cstdio>

using namespace bench;

namespace {

// Bare names mapped to the simulator's devices; everything else does not exist.
class BenchPorts : public zelmodems::PortCatalogue
{
public:
    BenchPorts() { zelmodems::PortCatalogue::install(this); }
    ~BenchPorts() override { zelmodems::PortCatalogue::install(nullptr); }

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

// CPU time used so far by another process of ours (the simulator), in ms.
double processCpuMs(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = stat.readAll();
    // The fields after the command name (which may hold blanks) in brackets.
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return 0;
    const double ticks = fields.at(11).toDouble() + fields.at(12).toDouble();   // utime, stime
    return ticks * 1000.0 / double(sysconf(_SC_CLK_TCK));
}

// The file system that holds the serial port lock files.
QString lockFileSystem()
{
    struct statfs info;
    if (statfs("/var/lock", &info) != 0)
        return QStringLiteral("an unknown file system");
    switch (info.f_type) {
    case 0x01021994: return QStringLiteral("tmpfs");
    case 0xEF53: return QStringLiteral("ext4");
    case 0x9123683E: return QStringLiteral("btrfs");
    case 0x58465342: return QStringLiteral("xfs");
    case 0x794c7630: return QStringLiteral("overlayfs");
    default: return QStringLiteral("file system 0x%1").arg(qulonglong(info.f_type), 0, 16);
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
    const bool quick = app.arguments().contains(QStringLiteral("--quick"));
    if (quick)
        sizes = {1, 10};
    qInstallMessageHandler(discardMessages);
    const QString simulator = QStringLiteral(ZML_MODEMSIM_PROGRAM);

    BenchPorts ports;
    // QSerialPort writes (and syncs) a lock file in /var/lock on every open;
    // a probe opens its port about twenty times. Where that directory lives
    // (tmpfs on an appliance, a disk on some build machines) shows in the
    // figures, so the section names it.
    const QString section = QStringLiteral("Discovery (port locks on %1)").arg(lockFileSystem());
    const int repeats = quick ? 1 : 3;

    // For profiling (perf record ... bench_finder --probe-loop 20): probes
    // of one in-process modem, one after the other, and their CPU time.
    const int loopAt = app.arguments().indexOf(QStringLiteral("--probe-loop"));
    if (loopAt > 0) {
        const int count = qMax(1, app.arguments().value(loopAt + 1).toInt());
        zelmodems::sim::SimModem sim(zelmodems::sim::Make::Huawei);
        if (!sim.start())
            return 1;
        ports.set({{QStringLiteral("ttyS99"), sim.devicePath()}});
        const qint64 cpu0 = threadCpuNs();
        const qint64 t0 = nowNs();
        int valid = 0;
        for (int i = 0; i < count; ++i)
            valid += PortProbe()(QStringLiteral("ttyS99")).isValid() ? 1 : 0;
        std::printf("%d probes (%d found a modem): %.1f ms wall, %.2f ms CPU each\n", count, valid,
                    double(nowNs() - t0) / 1e6 / count, double(threadCpuNs() - cpu0) / 1e6 / count);
        return valid == count ? 0 : 1;
    }

    // ------------------------------------------------ one probe and its floor
    // A probe of a modem that answers at once still waits: beforeDial sleeps
    // 2 s after its "AT"/"&F0", and every command the modem rejects costs the
    // 100 ms given to the rest of an error answer; the driver's warnings
    // tell how many there were.
    double probeMs = 0;
    int commands = 0;
    int rejected = 0;
    {
        zelmodems::sim::SimModem sim(zelmodems::sim::Make::Huawei);
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
    // Each size is searched `repeats` times; the medians are reported.
    QMap<int, Search> results;
    for (int n : qAsConst(sizes)) {
        std::vector<double> wall, cpu, simCpu;
        int found = n;
        for (int r = 0; r < repeats; ++r) {
            QProcess sim;
            QMap<QString, QString> devices;
            if (!startSimulator(sim, simulator, n, &devices)) {
                std::fprintf(stderr, "modemsim with %d modems did not start: %s\n", n,
                             sim.readAllStandardError().constData());
                return 1;
            }
            ports.set(devices);
            const double simBefore = processCpuMs(sim.processId());
            const Search s = runSearch(devices.keys());
            simCpu.push_back(processCpuMs(sim.processId()) - simBefore);
            stopSimulator(sim);
            wall.push_back(s.wallMs);
            cpu.push_back(s.cpuMs);
            found = qMin(found, s.found);
            if (s.found != n)
                std::fprintf(stderr, "search over %d modems found %d\n", n, s.found);
        }
        Search median;
        median.wallMs = percentile(wall, 50);
        median.cpuMs = percentile(cpu, 50);
        median.found = found;
        results.insert(n, median);
        print({section,
               QStringLiteral("ModemsFinder over %1 modem(s), median of %2: wall ms / CPU ms (simulator CPU ms)")
                   .arg(n)
                   .arg(repeats),
               QStringLiteral("%1 / %2 (%3)").arg(fmt(median.wallMs, 0), fmt(median.cpuMs, 0),
                                                  fmt(percentile(simCpu, 50), 0)),
               QStringLiteral("modems found"), QString::number(found), QString(), QString(), QString()});
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
