#include "interruption.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QStringList>

#include <csignal>
#include <pthread.h>
#include <unistd.h>

namespace Interruption {

namespace {

QMutex folderMutex;
QStringList folders;

// Where QSerialPort and the appliance's tools keep "LCK..<device>" files.
const char* const LOCK_DIRECTORIES[] = { "/var/lock", "/run/lock", "/etc/locks", "/var/spool/locks",
                                         "/var/spool/uucp", "/tmp" };

void removeOwnLocks()
{
    const QByteArray pid = QByteArray::number(qint64(::getpid()));
    QStringList directories;
    for (const char* d : LOCK_DIRECTORIES)
        directories << QString::fromLatin1(d);
    const QByteArray custom = qgetenv("QT5EXT_LOCK_DIR");
    if (!custom.isEmpty())
        directories << QString::fromLocal8Bit(custom);
    for (const QString& directory : directories) {
        const QDir dir(directory);
        for (const QString& name : dir.entryList({ QStringLiteral("LCK..*") }, QDir::Files | QDir::System)) {
            QFile lock(dir.filePath(name));
            if (!lock.open(QIODevice::ReadOnly))
                continue;
            // The owner's pid is the lock file's first line.
            const QByteArray owner = lock.readLine(32).trimmed();
            lock.close();
            if (owner == pid)
                lock.remove();
        }
    }
}

void* watch(void* arg)
{
    sigset_t* set = static_cast<sigset_t*>(arg);
    int signal = 0;
    while (sigwait(set, &signal) != 0) {
    }
    removeOwnLocks();
    {
        QMutexLocker lock(&folderMutex);
        for (const QString& folder : qAsConst(folders))
            QDir(folder).removeRecursively();
    }
    const char* name = signal == SIGINT ? "interrupted" : signal == SIGTERM ? "terminated" : "hung up";
    const QByteArray text = QByteArray("\nzelmodems: ") + name + "; ports released\n";
    (void)!::write(STDERR_FILENO, text.constData(), size_t(text.size()));
    ::_exit(128 + signal);
    return nullptr;
}

} // namespace

void install()
{
    static sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    pthread_t thread;
    if (pthread_create(&thread, nullptr, watch, &set) == 0)
        pthread_detach(thread);
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

} // namespace Interruption
