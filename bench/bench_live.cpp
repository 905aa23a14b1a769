// The live modem (zelmodems::Modem): what watching costs and how fast an
// event reaches the caller.
//
// 1. CPU time of the whole process while 20 opened modems sit idle (the
//    simulated modems run in the same process and are counted too), per
//    modem and second, against the same process with nothing open.
// 2. Latency from an unsolicited code written on the pty to the signal in
//    the caller's thread, against a raw POSIX poll/read loop that reads the
//    same code from the same kind of pty (the floor: simulator and kernel).
// 3. 1,000 unsolicited codes a second while commands run back to back: how
//    many codes arrived, in order, and how many answers held one.
#include "benchutil.h"

#include "modem.h"
#include "simmodem.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

using namespace bench;
using zelmodems::Modem;
using namespace zelmodems::sim;

namespace {

int idleSeconds = 10;
int latencySamples = 500;
int floodSeconds = 10;

void waitMs(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

std::unique_ptr<SimModem> startSim(QTemporaryDir& links, int n)
{
    auto sim = std::make_unique<SimModem>(Make::Huawei);
    if (!sim->start() || !sim->createLink(links.filePath(QStringLiteral("live%1").arg(n))))
        return nullptr;
    return sim;
}

void idleCost(QTemporaryDir& links)
{
    const int count = 20;
    const qint64 cpu0 = processCpuNs();
    const qint64 wall0 = nowNs();
    waitMs(idleSeconds * 1000 / 2);
    const double baseline = double(processCpuNs() - cpu0) / double(nowNs() - wall0);

    std::vector<std::unique_ptr<SimModem>> sims;
    std::vector<std::unique_ptr<Modem>> modems;
    for (int i = 0; i < count; ++i) {
        auto sim = startSim(links, 100 + i);
        auto modem = std::make_unique<Modem>();
        if (!sim || !modem->open(sim->devicePath())) {
            std::fprintf(stderr, "cannot open simulated modem %d\n", i);
            return;
        }
        sims.push_back(std::move(sim));
        modems.push_back(std::move(modem));
    }
    waitMs(500);
    const qint64 cpu1 = processCpuNs();
    const qint64 wall1 = nowNs();
    waitMs(idleSeconds * 1000);
    const double busy = double(processCpuNs() - cpu1) / double(nowNs() - wall1);
    const double perModemPercent = 100.0 * (busy - baseline) / count;
    print({QStringLiteral("Live modem"),
           QStringLiteral("20 idle watched modems, %1 s: % of a core per modem").arg(idleSeconds),
           fmt(qMax(0.0, perModemPercent), 4), QStringLiteral("the same process with nothing open: % of a core"),
           fmt(100.0 * baseline, 4), QString(), QStringLiteral("< 0.1"),
           perModemPercent < 0.1 ? QStringLiteral("met") : QStringLiteral("missed")});
}

// The floor: the code read straight from the pty by a poll/read loop.
double rawLatencyUs(SimModem& sim)
{
    const int fd = ::open(sim.devicePath().toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return 0;
    termios tio;
    tcgetattr(fd, &tio);
    cfmakeraw(&tio);
    tcsetattr(fd, TCSANOW, &tio);
    std::vector<double> us;
    char buf[256];
    for (int i = 0; i < latencySamples; ++i) {
        const qint64 t0 = nowNs();
        sim.sendUnsolicited("\r\n^RSSI: 12\r\n");
        QByteArray got;
        while (!got.contains("^RSSI: 12\r\n")) {
            pollfd p{fd, POLLIN, 0};
            if (::poll(&p, 1, 1000) <= 0)
                break;
            const ssize_t n = ::read(fd, buf, sizeof buf);
            if (n > 0)
                got.append(buf, int(n));
        }
        us.push_back(double(nowNs() - t0) / 1000.0);
    }
    ::close(fd);
    return percentile(us, 50);
}

void latency(QTemporaryDir& links)
{
    auto rawSim = startSim(links, 1);
    auto sim = startSim(links, 2);
    if (!rawSim || !sim)
        return;
    const double raw = rawLatencyUs(*rawSim);
    int failures = 0;
    const double roundTrip = percentile(rawAtRoundTrips(rawSim->devicePath(), latencySamples, &failures), 50);
    Modem modem;
    if (!modem.open(sim->devicePath()))
        return;
    std::vector<double> us;
    qint64 t0 = 0;
    QEventLoop loop;
    QObject::connect(&modem, &Modem::unsolicited, &loop, [&](const QByteArray& line, const QByteArray&) {
        if (line.startsWith("^BOOT:")) {
            us.push_back(double(nowNs() - t0) / 1000.0);
            loop.quit();
        }
    });
    for (int i = 0; i < latencySamples; ++i) {
        t0 = nowNs();
        sim->sendUnsolicited("\r\n^BOOT: " + QByteArray::number(i) + "\r\n");
        QTimer::singleShot(1000, &loop, &QEventLoop::quit);
        loop.exec();
    }
    const double median = percentile(us, 50);
    print({QStringLiteral("Live modem"), QStringLiteral("unsolicited code to the caller's signal, median (us)"),
           fmt(median, 1), QStringLiteral("raw POSIX round trip of \"AT\" on the same kind of pty, median (us)"),
           fmt(roundTrip, 1), fmt(median / roundTrip), QStringLiteral("<= 2"),
           median <= 2 * roundTrip ? QStringLiteral("met") : QStringLiteral("missed")});
    print({QStringLiteral("Live modem"), QStringLiteral("unsolicited code to the caller's signal, median (us)"),
           fmt(median, 1), QStringLiteral("raw POSIX poll/read of the same code from the pty, one way (us)"),
           fmt(raw, 1), fmt(median / raw), QString(), QString()});
    print({QStringLiteral("Live modem"), QStringLiteral("unsolicited code to the caller's signal, 99th percentile (us)"),
           fmt(percentile(us, 99), 1), QString(), QString(), QString(), QString(), QString()});
}

void flood(QTemporaryDir& links)
{
    auto sim = startSim(links, 3);
    if (!sim)
        return;
    Modem modem;
    if (!modem.open(sim->devicePath()))
        return;
    std::vector<int> received;
    QObject::connect(&modem, &Modem::unsolicited, &modem, [&](const QByteArray& line, const QByteArray&) {
        if (line.startsWith("+CIEV: 9,"))
            received.push_back(line.mid(9).toInt());
    });
    std::atomic<bool> stop{false};
    std::atomic<int> sent{0};
    // 1,000 a second from a thread of their own, whatever the commands do.
    std::thread writer([&] {
        const auto start = std::chrono::steady_clock::now();
        while (!stop) {
            sim->sendUnsolicited("\r\n+CIEV: 9," + QByteArray::number(sent.load()) + "\r\n");
            ++sent;
            std::this_thread::sleep_until(start + std::chrono::microseconds(1000LL * sent.load()));
        }
    });
    int answers = 0;
    int polluted = 0;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < floodSeconds * 1000) {
        const auto result = modem.command("+GMR").result();
        ++answers;
        if (!result.ok() || result.value.lines != QList<QByteArray>{sim->profile().revision}) {
            if (polluted++ == 0)
                std::fprintf(stderr, "first bad answer: %s / %s\n", qPrintable(result.failure.text()),
                             result.value.lines.join('|').constData());
        }
    }
    stop = true;
    writer.join();
    sim->waitUntilQuiet();
    waitMs(300);
    int inOrder = 0;
    for (std::size_t i = 0; i < received.size(); ++i)
        inOrder += received[i] == int(i);
    print({QStringLiteral("Live modem"),
           QStringLiteral("1,000 codes a second for %1 s while commands run: codes received in order").arg(floodSeconds),
           QString::number(inOrder), QStringLiteral("codes written"), QString::number(sent.load()),
           fmt(double(inOrder) / qMax(1, sent.load())), QStringLiteral("all"),
           inOrder == sent.load() ? QStringLiteral("met") : QStringLiteral("missed")});
    print({QStringLiteral("Live modem"), QStringLiteral("answers meanwhile that held a code or lost a line"),
           QString::number(polluted), QStringLiteral("answers"), QString::number(answers), QString(),
           QStringLiteral("0"), polluted == 0 ? QStringLiteral("met") : QStringLiteral("missed")});
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (app.arguments().contains(QStringLiteral("--quick"))) {
        idleSeconds = 2;
        latencySamples = 100;
        floodSeconds = 1;
    }
    if (qEnvironmentVariableIsEmpty("ZML_BENCH_LOG"))
        qInstallMessageHandler(discardMessages);
    QTemporaryDir links;
    idleCost(links);
    latency(links);
    flood(links);
    return 0;
}
