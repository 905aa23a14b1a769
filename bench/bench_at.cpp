// AT command round trip against the pty modem simulator.
//
// Latency of a bare "AT" through AtModem::sendCommand, side by side with two
// lower bounds on the same pseudo-terminal: a minimal POSIX loop (write,
// poll, read until "OK") and a QSerialPort loop that blocks in
// waitForReadyRead. Then the CPU time that a command costs while it waits on
// a modem that stays silent, against a blocking wait on the same silence.
#include "benchutil.h"

#include "atmodem.h"
#include "simmodem.h"

#include <QCoreApplication>
#include <QSerialPort>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

using namespace bench;

namespace {

int iterations = 2000;
int silentWaitMs = 3000;

struct Latency
{
    double medianUs = 0;
    double p99Us = 0;
    int failures = 0;
};

Latency summarise(const std::vector<double>& us, int failures)
{
    Latency l;
    l.medianUs = percentile(us, 50);
    l.p99Us = percentile(us, 99);
    l.failures = failures;
    return l;
}

Latency libraryRoundTrip(AtModem& modem)
{
    QByteArray answer;
    for (int i = 0; i < 50; ++i)
        modem.sendCommand(QByteArray(), answer, 1000);
    std::vector<double> us;
    us.reserve(std::size_t(iterations));
    int failures = 0;
    for (int i = 0; i < iterations; ++i) {
        const qint64 t0 = nowNs();
        const bool ok = modem.sendCommand(QByteArray(), answer, 1000);
        const qint64 t1 = nowNs();
        if (!ok)
            ++failures;
        us.push_back(double(t1 - t0) / 1000.0);
    }
    return summarise(us, failures);
}

// The floor: the kernel's pty and the simulator's own turn-around, nothing
// else.
Latency rawRoundTrip(const QString& device)
{
    int failures = 0;
    const std::vector<double> us = rawAtRoundTrips(device, iterations, &failures);
    return summarise(us, failures);
}

// What Qt's serial port costs by itself: write, then block in
// waitForReadyRead until "OK" is in.
Latency qtBlockingRoundTrip(const QString& device)
{
    QSerialPort port(device);
    if (!port.open(QIODevice::ReadWrite))
        return Latency{0, 0, iterations};
    port.setBaudRate(115200);
    port.setFlowControl(QSerialPort::HardwareControl);
    auto exchange = [&port](const char* command) -> bool {
        port.write(command);
        QByteArray got;
        while (!got.contains("OK")) {
            if (!port.waitForReadyRead(1000))
                return false;
            got.append(port.readAll());
        }
        return true;
    };
    exchange("ATE0\r");
    for (int i = 0; i < 50; ++i)
        exchange("AT\r");
    std::vector<double> us;
    us.reserve(std::size_t(iterations));
    int failures = 0;
    for (int i = 0; i < iterations; ++i) {
        const qint64 t0 = nowNs();
        const bool ok = exchange("AT\r");
        const qint64 t1 = nowNs();
        if (!ok)
            ++failures;
        us.push_back(double(t1 - t0) / 1000.0);
    }
    return summarise(us, failures);
}

// CPU milliseconds per wall second that the calling thread spends while
// `wait` runs.
template <typename F>
double cpuPerSecond(F wait, double* wallMs)
{
    const qint64 cpu0 = threadCpuNs();
    const qint64 t0 = nowNs();
    wait();
    const qint64 t1 = nowNs();
    const qint64 cpu1 = threadCpuNs();
    *wallMs = double(t1 - t0) / 1e6;
    return double(cpu1 - cpu0) / 1e6 / (double(t1 - t0) / 1e9);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (app.arguments().contains(QStringLiteral("--quick"))) {
        iterations = 200;
        silentWaitMs = 1000;
    }
    qInstallMessageHandler(discardMessages);

    zelmodems::sim::SimModem sim(zelmodems::sim::Make::Huawei);
    QString error;
    if (!sim.start(&error)) {
        std::fprintf(stderr, "simulator: %s\n", qPrintable(error));
        return 1;
    }
    // Commands are not recorded in bulk: the log would grow with every
    // round trip. The simulator keeps its log; it is cleared between runs.
    const QString device = sim.devicePath();

    Latency lib;
    {
        AtModem modem;
        if (!modem.open(device, 115200, 1)) {
            std::fprintf(stderr, "open: %s\n", qPrintable(modem.lastError()));
            return 1;
        }
        lib = libraryRoundTrip(modem);
        modem.close();
    }
    sim.clearLog();
    const Latency raw = rawRoundTrip(device);
    sim.clearLog();
    const Latency qt = qtBlockingRoundTrip(device);
    sim.clearLog();

    const QString section = QStringLiteral("AT round trip");
    const QString rawName = QStringLiteral("raw POSIX write/poll/read loop, same pty");
    const QString qtName = QStringLiteral("QSerialPort blocking waitForReadyRead, same pty");
    print({section, QStringLiteral("bare \"AT\", median (us)"), fmt(lib.medianUs, 1), rawName,
           fmt(raw.medianUs, 1), fmt(lib.medianUs / raw.medianUs), QString(), QString()});
    print({section, QStringLiteral("bare \"AT\", 99th percentile (us)"), fmt(lib.p99Us, 1), rawName,
           fmt(raw.p99Us, 1), fmt(lib.p99Us / raw.p99Us), QString(), QString()});
    print({section, QStringLiteral("bare \"AT\", median (us)"), fmt(lib.medianUs, 1), qtName,
           fmt(qt.medianUs, 1), fmt(lib.medianUs / qt.medianUs), QString(), QString()});
    print({section, QStringLiteral("bare \"AT\", 99th percentile (us)"), fmt(lib.p99Us, 1), qtName,
           fmt(qt.p99Us, 1), fmt(lib.p99Us / qt.p99Us), QString(), QString()});
    if (lib.failures || raw.failures || qt.failures)
        std::fprintf(stderr, "failed round trips: library %d, raw %d, qt %d\n", lib.failures, raw.failures,
                     qt.failures);

    // A command waiting on a modem that says nothing: the library polls in
    // 1 ms steps with event processing; a blocking wait sleeps in the kernel.
    double libWall = 0, blockWall = 0;
    double libCpu = 0, blockCpu = 0;
    {
        AtModem modem;
        if (!modem.open(device, 115200, 1))
            return 1;
        sim.setSilent(true);
        QByteArray answer;
        libCpu = cpuPerSecond([&] { modem.sendCommand(QByteArray(), answer, silentWaitMs); }, &libWall);
        modem.close();
    }
    {
        QSerialPort port(device);
        port.open(QIODevice::ReadWrite);
        port.write("AT\r");
        blockCpu = cpuPerSecond([&] { port.waitForReadyRead(silentWaitMs); }, &blockWall);
    }
    sim.setSilent(false);
    print({section,
           QStringLiteral("CPU while a command waits on a silent modem (ms per s, %1 ms wait)").arg(silentWaitMs),
           fmt(libCpu, 1), QStringLiteral("blocking waitForReadyRead on the same silence (ms per s)"),
           fmt(blockCpu, 2), blockCpu > 0.01 ? fmt(libCpu / blockCpu, 0) : QStringLiteral("-"), QString(),
           QString()});
    std::fprintf(stderr, "silent waits took %.0f ms (library) and %.0f ms (blocking)\n", libWall, blockWall);
    return 0;
}
