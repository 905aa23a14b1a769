#pragma once
// Helpers of the fault tests: what a port leaves behind (open descriptors,
// serial lock files), simulated ports for the search, and a message filter
// that keeps the thousands of debug lines of a faulty exchange out of the
// test's output. The search's simulated ports are the finder tests' own.
#include "../finder/finderfixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>

namespace faults {

// The device node behind `path` (a pty or a link to one).
inline QString deviceNode(const QString& path)
{
    const QString target = QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? path : target;
}

// Descriptors of this process open on the device node `node`.
inline int openDescriptors(const QString& node)
{
    int count = 0;
    const QDir fds(QStringLiteral("/proc/self/fd"));
    for (const QString& fd : fds.entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot)) {
        if (QFile::symLinkTarget(fds.filePath(fd)) == node)
            ++count;
    }
    return count;
}

// Serial lock files ("LCK..<name>", the UUCP convention that QSerialPort and
// the platform's unlockPort share) that this process holds for the device
// opened as `path` (a device node, or a link: the lock is named after the
// path that was opened, "/dev/" left out and "/" made "_"), in every folder
// where a lock may be kept. A vanished device's pty number is soon given to
// another program (other tests running at the same time), whose locks are
// not this process's business: a lock counts only when it names this
// process.
inline QStringList lockFiles(const QString& path)
{
    QString name = path;
    if (name.startsWith(QLatin1String("/dev/")))
        name = name.mid(5);
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    QStringList dirs = {QStringLiteral("/var/lock"), QStringLiteral("/run/lock"), QStringLiteral("/etc/locks"),
                        QStringLiteral("/var/spool/locks"), QStringLiteral("/var/spool/uucp"),
                        QStringLiteral("/tmp"), QStringLiteral("/var/tmp")};
    const QByteArray platformDir = qgetenv("QT5EXT_LOCK_DIR");
    if (!platformDir.isEmpty())
        dirs << QString::fromLocal8Bit(platformDir);
    const QByteArray ownPid = QByteArray::number(QCoreApplication::applicationPid());
    QStringList found;
    for (const QString& dir : dirs) {
        const QString file = QFileInfo(QDir(dir).filePath(QStringLiteral("LCK..") + name)).canonicalFilePath();
        if (file.isEmpty() || found.contains(file))
            continue;
        QFile lock(file);
        if (!lock.open(QIODevice::ReadOnly))
            continue;
        // QLockFile's content: the pid, the application's name, the host.
        if (lock.readLine().trimmed() == ownPid)
            found << file;
    }
    return found;
}

// The same for a device known by its node and the link it was opened by.
inline QStringList lockFiles(const QString& node, const QString& link)
{
    return lockFiles(node) + lockFiles(link);
}

// Nothing of the driver's is left on the device: only `ownDescriptors`
// (the simulator's hold on it), and no lock file under the node or `link`.
inline bool released(const QString& node, int ownDescriptors, const QString& link = QString())
{
    return openDescriptors(node) == ownDescriptors
        && (link.isEmpty() ? lockFiles(node) : lockFiles(node, link)).isEmpty();
}

// Passes on critical messages only: a faulty exchange logs thousands of
// debug lines and hundreds of warnings, more than a test log should hold.
inline void quietHandler(QtMsgType type, const QMessageLogContext& context, const QString& text);

inline QtMessageHandler& previousHandler()
{
    static QtMessageHandler previous = nullptr;
    return previous;
}

inline void quietHandler(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if ((type == QtCriticalMsg || type == QtFatalMsg) && previousHandler())
        previousHandler()(type, context, text);
}

inline void installQuietHandler()
{
    previousHandler() = qInstallMessageHandler(quietHandler);
}

} // namespace faults
