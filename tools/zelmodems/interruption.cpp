#include "interruption.h"
#include "portlock.h"
#include "tooltext.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QStringList>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <termios.h>
#include <unistd.h>

namespace Interruption {

namespace {

QMutex folderMutex;
QStringList folders;
QByteArray progressOut;
QByteArray progressErr;
std::atomic<int> caught{ 0 };
// What the interruption says, by signal: set before any signal can come.
QByteArray saidInterrupted = "interrupted; ports released";
QByteArray saidTerminated = "terminated; ports released";
QByteArray saidHungUp = "hung up; ports released";
struct termios terminal;
std::atomic<bool> restoreTerminal{ false };

// The handler's only act: the signal's number down a pipe to the watcher.
int wakePipe[2] = { -1, -1 };

// The lock files of the ports this process holds (a QSerialPort that the
// process's end will not get to close properly).
void removeOwnLocks()
{
    const qint64 pid = ::getpid();
    for (const QString& directory : zelmodems::PortLock::directories()) {
        const QDir dir(directory);
        for (const QString& name : dir.entryList({ QStringLiteral("LCK..*") }, QDir::Files | QDir::System)) {
            QFile lock(dir.filePath(name));
            if (lock.open(QIODevice::ReadOnly) && zelmodems::PortLock::pidIn(lock.read(256)) == pid) {
                lock.close();
                lock.remove();
            }
        }
    }
}

// The tool's own children (wvdialconf, and what a command started) end
// with it: a SIGTERM sent to the tool alone would otherwise leave them.
void endChildren(int signal)
{
    const QByteArray self = QByteArray::number(qint64(::getpid()));
    const QDir proc(QStringLiteral("/proc"));
    for (const QString& entry : proc.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool numeric = false;
        const qint64 pid = entry.toLongLong(&numeric);
        if (!numeric || pid == ::getpid())
            continue;
        QFile status(proc.filePath(entry) + QStringLiteral("/status"));
        if (!status.open(QIODevice::ReadOnly))
            continue;
        for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
            if (line.startsWith("PPid:")) {
                if (line.mid(5).trimmed() == self)
                    ::kill(pid_t(pid), signal == SIGHUP ? SIGHUP : SIGTERM);
                break;
            }
        }
    }
}

void onSignal(int signal)
{
    const int saved = errno;
    const char byte = char(signal);
    (void)!::write(wakePipe[1], &byte, 1);
    errno = saved;
}

void* watch(void*)
{
    char byte = 0;
    while (::read(wakePipe[0], &byte, 1) != 1) {
    }
    const int signal = byte;
    // Set before the children end: the main thread that sees one end
    // learns it was the interruption, and leaves the exit to this thread.
    caught = signal;
    endChildren(signal);
    removeOwnLocks();
    QByteArray out;
    QByteArray err;
    {
        QMutexLocker lock(&folderMutex);
        for (const QString& folder : qAsConst(folders))
            QDir(folder).removeRecursively();
        out = progressOut;
        err = progressErr;
    }
    if (!out.isEmpty())
        (void)!::write(STDOUT_FILENO, out.constData(), size_t(out.size()));
    if (restoreTerminal.load())
        ::tcsetattr(STDIN_FILENO, TCSANOW, &terminal);
    const QByteArray& said = signal == SIGINT ? saidInterrupted : signal == SIGTERM ? saidTerminated : saidHungUp;
    const QByteArray text = QByteArray("\nzelmodems: ") + said + "\n" + err;
    (void)!::write(STDERR_FILENO, text.constData(), size_t(text.size()));
    ::_exit(128 + signal);
    return nullptr;
}

} // namespace

void install()
{
    if (::pipe2(wakePipe, O_CLOEXEC) != 0)
        return;
    pthread_t thread;
    if (pthread_create(&thread, nullptr, watch, nullptr) == 0)
        pthread_detach(thread);
    // A caught signal is reset to its default in a program the tool
    // starts; a blocked or ignored one would stay so there.
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : { SIGINT, SIGTERM, SIGHUP })
        ::sigaction(signal, &action, nullptr);
}

void translate()
{
    saidInterrupted = Tool::tr("interrupted; ports released").toLocal8Bit();
    saidTerminated = Tool::tr("terminated; ports released").toLocal8Bit();
    saidHungUp = Tool::tr("hung up; ports released").toLocal8Bit();
}

void restoreTerminalOnInterrupt(const struct termios* settings)
{
    if (settings)
        terminal = *settings;
    restoreTerminal = settings != nullptr;
}

void removeOnInterrupt(const QString& folder)
{
    QMutexLocker lock(&folderMutex);
    folders << folder;
}

void keepOnInterrupt(const QString& folder)
{
    QMutexLocker lock(&folderMutex);
    folders.removeAll(folder);
}

void holdIfInterrupted()
{
    while (caught.load() != 0)
        ::pause();
}

void setProgress(const QByteArray& out, const QByteArray& err)
{
    QMutexLocker lock(&folderMutex);
    progressOut = out;
    progressErr = err;
}

} // namespace Interruption
