#include "dialoguerecorder.h"
#include "portlock.h"
#include "pdu.h"
#include "tooltext.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>

#include <atomic>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

struct DialogueRecorder::Private
{
    int device = -1;
    int master = -1;
    int slave = -1;        // kept open: the pair lives while the library reopens it
    QString slavePath;
    QFile file;
    int fileDescriptor = -1;
    std::unique_ptr<QLockFile> lock;
    std::thread relay;
    std::atomic<bool> stopping{ false };
    QElapsedTimer clock;
    speed_t speed = 0;

    void write(const char* dir, const QByteArray& bytes)
    {
        QString text;
        for (const char c : bytes) {
            const uchar u = uchar(c);
            text += u >= 0x20 && u < 0x7F ? QString(QLatin1Char(c)) : QStringLiteral("\\x%1").arg(u, 2, 16, QLatin1Char('0'));
        }
        const QJsonObject event{ { QStringLiteral("ms"), clock.elapsed() },
                                 { QStringLiteral("dir"), QString::fromLatin1(dir) },
                                 { QStringLiteral("speed"), qint64(speedValue(speed)) },
                                 { QStringLiteral("hex"), QString::fromLatin1(bytes.toHex().toUpper()) },
                                 { QStringLiteral("text"), text } };
        file.write(QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n');
        file.flush();
    }

    static long speedValue(speed_t s)
    {
        static const struct { speed_t code; long bps; } table[] = {
            { B1200, 1200 }, { B2400, 2400 }, { B4800, 4800 }, { B9600, 9600 }, { B19200, 19200 },
            { B38400, 38400 }, { B57600, 57600 }, { B115200, 115200 }, { B230400, 230400 },
            { B460800, 460800 }, { B921600, 921600 }, { B1000000, 1000000 }, { B2000000, 2000000 },
            { B3000000, 3000000 }, { B4000000, 4000000 } };
        for (const auto& e : table) {
            if (e.code == s)
                return e.bps;
        }
        return 0;
    }

    // The library's line settings follow to the real device.
    void followSpeed()
    {
        struct termios tio;
        if (::tcgetattr(slave, &tio) != 0)
            return;
        const speed_t s = ::cfgetospeed(&tio);
        if (s == speed)
            return;
        speed = s;
        struct termios real;
        if (::tcgetattr(device, &real) == 0) {
            ::cfsetspeed(&real, s);
            ::tcsetattr(device, TCSANOW, &real);
        }
    }

    void run()
    {
        char buffer[4096];
        while (!stopping) {
            pollfd fds[2] = { { master, POLLIN, 0 }, { device, POLLIN, 0 } };
            if (::poll(fds, 2, 50) < 0)
                continue;
            followSpeed();
            if (fds[0].revents & POLLIN) {
                const ssize_t n = ::read(master, buffer, sizeof buffer);
                if (n > 0) {
                    write(">", QByteArray(buffer, int(n)));
                    (void)!::write(device, buffer, size_t(n));
                }
            }
            if (fds[1].revents & POLLIN) {
                const ssize_t n = ::read(device, buffer, sizeof buffer);
                if (n > 0) {
                    write("<", QByteArray(buffer, int(n)));
                    (void)!::write(master, buffer, size_t(n));
                }
            }
            if (fds[1].revents & (POLLHUP | POLLERR | POLLNVAL)) {
                // The device went away: so does the library's end, as the
                // real port would, and the recording says so.
                const QJsonObject event{ { QStringLiteral("ms"), clock.elapsed() },
                                         { QStringLiteral("event"), QStringLiteral("gone") } };
                file.write(QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n');
                file.flush();
                ::close(master);
                master = -1;
                break;
            }
        }
    }
};

DialogueRecorder::DialogueRecorder() : d(new Private) {}

DialogueRecorder::~DialogueRecorder()
{
    stop();
}

bool DialogueRecorder::start(const QString& port, const QString& device, const QString& file, QString* error)
{
    // Someone else's port stays theirs, whatever form their lock takes.
    const zelmodems::PortLock held = zelmodems::PortLock::of(device);
    if (held.isHeld()) {
        *error = Tool::tr("%1 is in use by another program (%2)").arg(port, held.holder());
        return false;
    }
    const QString lockDir = zelmodems::PortLock::writeDirectory();
    d->lock = std::make_unique<QLockFile>(lockDir + QLatin1Char('/') + zelmodems::PortLock::fileNames(device).first());
    if (QFileInfo(lockDir).isWritable() && !d->lock->tryLock(0)) {
        *error = Tool::tr("%1 is in use by another program").arg(port);
        return false;
    }
    d->device = ::open(QFile::encodeName(device).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (d->device < 0) {
        *error = Tool::tr("cannot open %1: %2").arg(port, QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    // A file or /dev/null is no serial port: the relay would write the
    // dialogue into it.
    if (!::isatty(d->device)) {
        *error = Tool::tr("%1 is not a serial port (not a terminal device)").arg(port);
        return false;
    }
    struct termios tio;
    if (::tcgetattr(d->device, &tio) == 0) {
        ::cfmakeraw(&tio);
        tio.c_cflag |= CLOCAL | CREAD;
        ::tcsetattr(d->device, TCSANOW, &tio);
    }
    d->master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char path[128];
    if (d->master < 0 || ::grantpt(d->master) != 0 || ::unlockpt(d->master) != 0
        || ::ptsname_r(d->master, path, sizeof path) != 0) {
        *error = Tool::tr("cannot make a pseudo-terminal for the recording");
        return false;
    }
    d->slavePath = QFile::decodeName(path);
    d->slave = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (d->slave >= 0 && ::tcgetattr(d->slave, &tio) == 0) {
        ::cfmakeraw(&tio);
        ::tcsetattr(d->slave, TCSANOW, &tio);
    }
    // A new file of our own: it holds every message and code the modem
    // saw, so nobody else reads it, and no link leads it onto another file.
    d->fileDescriptor = ::open(QFile::encodeName(file).constData(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (d->fileDescriptor < 0) {
        *error = errno == EEXIST || errno == ELOOP
                     ? Tool::tr("%1 exists; a recording is written to a new file only").arg(file)
                     : Tool::tr("cannot write %1: %2").arg(file, QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    d->file.open(d->fileDescriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
    const QJsonObject header{ { QStringLiteral("zelmodemsRecording"), 1 },
                              { QStringLiteral("port"), port },
                              { QStringLiteral("device"), device },
                              { QStringLiteral("started"), zelmodems::PDU::isoTime(QDateTime::currentDateTime()) } };
    d->file.write(QJsonDocument(header).toJson(QJsonDocument::Compact) + '\n');
    d->clock.start();
    d->relay = std::thread([this] { d->run(); });
    return true;
}

QString DialogueRecorder::clientPath() const
{
    return d->slavePath;
}

void DialogueRecorder::stop()
{
    d->stopping = true;
    if (d->relay.joinable())
        d->relay.join();
    for (int* fd : { &d->device, &d->master, &d->slave }) {
        if (*fd >= 0)
            ::close(*fd);
        *fd = -1;
    }
    d->file.close();
}
