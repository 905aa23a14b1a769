// Reading the UUCP lock files of serial ports.
#include "portlock.h"
#include "lockfile_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSharedData>

#include <cerrno>
#include <csignal>
#include <cstring>

namespace zelmodems {

class PortLockData : public QSharedData
{
public:
    qint64 pid = 0;
    QString program;
    QString file;
};

PortLock::PortLock() : d(new PortLockData) {}
PortLock::PortLock(const PortLock& other) = default;
PortLock& PortLock::operator=(const PortLock& other) = default;
PortLock::~PortLock() = default;

bool PortLock::isHeld() const { return d->pid > 0; }
qint64 PortLock::pid() const { return d->pid; }
QString PortLock::program() const { return d->program; }
QString PortLock::file() const { return d->file; }

QString PortLock::holder() const
{
    if (!isHeld())
        return QString();
    return d->program.isEmpty() ? QStringLiteral("pid %1").arg(d->pid)
                                : QStringLiteral("pid %1, %2").arg(d->pid).arg(d->program);
}

qint64 PortLock::pidIn(const QByteArray& contents)
{
    return lockfile::pidIn(contents);
}

QString PortLock::writeDirectory()
{
    return lockfile::writeDirectory();
}

QStringList PortLock::directories()
{
    // QSerialPort takes the first writable of its list and falls back to
    // the temporary folder.
    QStringList dirs{QStringLiteral("/run/lock"), QStringLiteral("/var/lock"), QStringLiteral("/var/spool/locks"),
                     QStringLiteral("/var/spool/uucp"), QStringLiteral("/etc/locks"), QDir::tempPath()};
    if (!qEnvironmentVariableIsEmpty("QT5EXT_LOCK_DIR"))
        dirs.prepend(qEnvironmentVariable("QT5EXT_LOCK_DIR"));
    return dirs;
}

QStringList PortLock::fileNames(const QString& device)
{
    // A path outside /dev keeps all of it (QSerialPort's convention:
    // LCK.._tmp_modems_ttySIM0); its bare file name is tried too.
    const QString path = device.contains(QLatin1Char('/')) ? device : QStringLiteral("/dev/") + device;
    QStringList names;
    for (QString name : {path, QFileInfo(path).canonicalFilePath(), QFileInfo(path).fileName()}) {
        if (name.startsWith(QLatin1String("/dev/")))
            name = name.mid(5);
        name.replace(QLatin1Char('/'), QLatin1Char('_'));
        if (!name.isEmpty() && !names.contains(QStringLiteral("LCK..") + name))
            names << QStringLiteral("LCK..") + name;
    }
    return names;
}

bool PortLock::processRuns(qint64 pid)
{
    return lockfile::processRuns(pid);
}

PortLock PortLock::of(const QString& device)
{
    PortLock lock;
    if (device.isEmpty())
        return lock;
    const QStringList names = fileNames(device);
    for (const QString& dir : directories()) {
        for (const QString& name : names) {
            QFile file(dir + QLatin1Char('/') + name);
            if (!file.open(QIODevice::ReadOnly))
                continue;
            const qint64 pid = pidIn(file.read(256));
            if (!processRuns(pid))
                continue;
            lock.d->pid = pid;
            lock.d->file = file.fileName();
            QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
            if (comm.open(QIODevice::ReadOnly))
                lock.d->program = QString::fromLocal8Bit(comm.readAll().trimmed());
            return lock;
        }
    }
    return lock;
}

} // namespace zelmodems
