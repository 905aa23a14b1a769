#include <qt5ext/sysutils.h>

#include "lockfile_p.h"

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
    return zelmodems::lockfile::writeDirectory();
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
        owner = zelmodems::lockfile::pidIn(lock.read(256));
        lock.close();
    }
    // A lock whose owner still runs (this process included: another port
    // object may hold the device) is kept unless the caller forces it. So is
    // a young lock without a readable pid: its owner may be writing it now.
    if (!force && zelmodems::lockfile::processRuns(owner))
        return false;
    if (!force && owner <= 0) {
        const QDateTime written = QFileInfo(lockPath).lastModified();
        if (written.isValid() && written.secsTo(QDateTime::currentDateTime()) < YOUNG_LOCK_SECONDS)
            return false;
    }
    return QFile::remove(lockPath) || !QFileInfo::exists(lockPath);
}

} // namespace qt5ext
