#pragma once
// UUCP port lock files as serial programs write them: "LCK..<device>" in
// the lock folder, holding the owner's pid as text (pppd's "%10d\n",
// QLockFile's first line) or as a native binary int. This one reader is
// used by the library's PortLock, the tools, and the platform stand-in's
// unlockPort, so that they never disagree about who holds a port; header
// only, because the stand-in is built before the library.
#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <cerrno>
#include <cstring>
#include <signal.h>

namespace zelmodems {
namespace lockfile {

// The folder programs of this system write port locks to: $QT5EXT_LOCK_DIR
// when set (tests, chroots), else /var/lock.
inline QString writeDirectory()
{
    const QString configured = qEnvironmentVariable("QT5EXT_LOCK_DIR");
    return configured.isEmpty() ? QStringLiteral("/var/lock") : configured;
}

// The pid a lock file's contents name, 0 when they name none.
inline qint64 pidIn(const QByteArray& contents)
{
    // Text: the first line, blanks around it allowed.
    const QByteArray first = contents.left(contents.indexOf('\n')).trimmed();
    bool ok = false;
    const qint64 pid = first.toLongLong(&ok);
    if (ok)
        return pid > 0 && pid <= 0x7FFFFFFF ? pid : 0;
    // Binary: a native int and nothing else.
    if (contents.size() == int(sizeof(qint32))) {
        qint32 value = 0;
        memcpy(&value, contents.constData(), sizeof value);
        return value > 0 ? value : 0;
    }
    return 0;
}

// Whether process `pid` runs (a process of another user counts).
inline bool processRuns(qint64 pid)
{
    if (pid <= 0 || pid > 0x7FFFFFFF)
        return false;
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

} // namespace lockfile
} // namespace zelmodems
