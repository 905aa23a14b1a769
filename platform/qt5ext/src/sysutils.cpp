#include <qt5ext/sysutils.h>

#include <QDir>
#include <QFile>
#include <QDateTime>
#include <QFileInfo>
#include <QCoreApplication>

#include <signal.h>
#include <errno.h>
#include <unistd.h>

namespace qt5ext {

QString SysUtils::lockDirectory()
{
    const QByteArray env = qgetenv("QT5EXT_LOCK_DIR");
    if (!env.isEmpty())
        return QString::fromLocal8Bit(env);
    return QStringLiteral("/var/lock");
}

QString SysUtils::portLockFile(const QString& portName)
{
    // QSerialPort names its lock after the device path with the "/dev/"
    // prefix dropped and the remaining slashes replaced by underscores.
    QString name = portName;
    if (name.startsWith(QLatin1String("/dev/")))
        name = name.mid(5);
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    return QDir(lockDirectory()).filePath(QStringLiteral("LCK..") + name);
}

// A lock file this young that holds no pid yet belongs to a process that
// is still writing it.
static const int YOUNG_LOCK_SECONDS = 5;

static bool processAlive(qint64 pid)
{
    if (pid <= 0)
        return false;
    if (::kill(pid_t(pid), 0) == 0)
        return true;
    return errno == EPERM;
}

bool SysUtils::unlockPort(const QString& portName, bool force)
{
    if (portName.isEmpty())
        return true;
    const QString lockPath = portLockFile(portName);
    QFile lock(lockPath);
    if (!lock.exists())
        return true;

    qint64 owner = 0;
    if (lock.open(QIODevice::ReadOnly)) {
        // UUCP locks hold the pid either as ASCII text or as a binary int.
        const QByteArray data = lock.readAll();
        lock.close();
        bool ok = false;
        owner = data.split('\n').value(0).trimmed().toLongLong(&ok);
        if (!ok && data.size() == int(sizeof(int)))
            owner = *reinterpret_cast<const int*>(data.constData());
    }
    // A lock whose owner still runs (this process included: another port
    // object may hold the device) is kept unless the caller forces it. So is
    // a young lock without a readable pid: its owner may be writing it now.
    if (!force && processAlive(owner))
        return false;
    if (!force && owner <= 0) {
        const QDateTime written = QFileInfo(lockPath).lastModified();
        if (written.isValid() && written.secsTo(QDateTime::currentDateTime()) < YOUNG_LOCK_SECONDS)
            return false;
    }
    return QFile::remove(lockPath) || !QFileInfo::exists(lockPath);
}

} // namespace qt5ext
