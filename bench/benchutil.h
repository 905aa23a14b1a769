#pragma once
// Small helpers shared by the benchmarks: clocks, percentiles, and the rows
// that bench/run.sh turns into the table.
//
// Each benchmark prints its figures as lines
//
//     ROW<TAB>section<TAB>measure<TAB>value<TAB>reference<TAB>reference value<TAB>ratio<TAB>target<TAB>verdict
//
// on standard output (anything else it prints is commentary). "reference" is
// the peer or the limit measured side by side in the same run; the ratio is
// value / reference value in the sense stated by the measure's wording.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace bench {

inline qint64 nowNs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return qint64(ts.tv_sec) * 1000000000LL + ts.tv_nsec;
}

// CPU time of the whole process (every thread), in nanoseconds.
inline qint64 processCpuNs()
{
    timespec ts;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return qint64(ts.tv_sec) * 1000000000LL + ts.tv_nsec;
}

// CPU time of the calling thread, in nanoseconds.
inline qint64 threadCpuNs()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return qint64(ts.tv_sec) * 1000000000LL + ts.tv_nsec;
}

// The p-th percentile (0..100) of `values`, nearest rank.
inline double percentile(std::vector<double> values, double p)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const double rank = p / 100.0 * double(values.size());
    std::size_t index = rank <= 1.0 ? 0 : std::size_t(rank + 0.999999) - 1;
    if (index >= values.size())
        index = values.size() - 1;
    return values[index];
}

// Round trips of a bare "AT" on `device` through a minimal POSIX loop
// (write, poll, read until "OK"), in microseconds: the kernel's pty and the
// modem's own turn-around, nothing else. Echo is switched off first, as the
// library does on opening. Exchanges that got no "OK" are counted in
// `failures`.
inline std::vector<double> rawAtRoundTrips(const QString& device, int iterations, int* failures)
{
    std::vector<double> us;
    *failures = 0;
    const int fd = ::open(device.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        std::fprintf(stderr, "open %s: %s\n", qPrintable(device), std::strerror(errno));
        *failures = iterations;
        return us;
    }
    termios tio;
    tcgetattr(fd, &tio);
    cfmakeraw(&tio);
    cfsetispeed(&tio, B115200);
    cfsetospeed(&tio, B115200);
    tcsetattr(fd, TCSANOW, &tio);

    auto exchange = [fd](const char* command) -> bool {
        const size_t len = std::strlen(command);
        if (::write(fd, command, len) != ssize_t(len))
            return false;
        char buf[256];
        QByteArray got;
        while (!got.contains("OK")) {
            pollfd p{fd, POLLIN, 0};
            if (::poll(&p, 1, 1000) <= 0)
                return false;
            const ssize_t n = ::read(fd, buf, sizeof buf);
            if (n > 0)
                got.append(buf, int(n));
        }
        return true;
    };
    exchange("ATE0\r");
    tcflush(fd, TCIFLUSH);
    for (int i = 0; i < 50; ++i)
        exchange("AT\r");
    us.reserve(std::size_t(iterations));
    for (int i = 0; i < iterations; ++i) {
        const qint64 t0 = nowNs();
        const bool ok = exchange("AT\r");
        const qint64 t1 = nowNs();
        if (!ok)
            ++*failures;
        us.push_back(double(t1 - t0) / 1000.0);
    }
    ::close(fd);
    return us;
}

// Keeps the optimiser from dropping a computation whose result is unused.
template <typename T>
inline void keep(const T& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

inline QString fmt(double value, int decimals = 2)
{
    return QString::number(value, 'f', decimals);
}

struct Row
{
    QString section;
    QString measure;
    QString value;
    QString reference;       // the peer or limit, with its unit
    QString referenceValue;
    QString ratio;
    QString target;
    QString verdict;         // "met", "missed", or empty without a target
};

inline void print(const Row& r)
{
    const QString line = QStringList{QStringLiteral("ROW"), r.section, r.measure, r.value, r.reference,
                                     r.referenceValue, r.ratio, r.target, r.verdict}
                             .join(QLatin1Char('\t'));
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

// Drops the library's log output: the figures are for the library's own
// work, and writing thousands of debug lines to a terminal would measure the
// terminal. The messages are still formatted, as in a service whose logging
// is on.
inline void discardMessages(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace bench
