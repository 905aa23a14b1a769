#pragma once
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QSharedDataPointer>
#include <QString>
#include <QStringList>

namespace zelmodems {

class PortLockData;

/// Who holds a serial port, as the UUCP lock files of Linux serial programs
/// say: "LCK..`<device>`" in /run/lock or /var/lock (the device's path below
/// /dev, slashes as underscores: LCK..ttyUSB0, LCK..pts_3), holding the
/// owner's pid in one of the forms programs write it: ASCII ("%10d\n" of
/// pppd, minicom and the lock daemons), a binary int (old UUCP), or the
/// three lines of QLockFile (pid, program, host), which QSerialPort writes.
///
///     const zelmodems::PortLock lock = zelmodems::PortLock::of("/dev/ttyUSB2");
///     if (lock.isHeld())
///         qWarning() << "busy:" << lock.holder();   // "pid 812, pppd"
///
/// A lock is held only while its process runs: a lock whose pid is gone
/// is stale, whatever its age, and one whose pid is alive is never stale,
/// whatever its age. Nothing here removes or writes a lock.
class ZELMODEMSLIB_EXPORT PortLock
{
public:
    PortLock();
    PortLock(const PortLock& other);
    PortLock& operator=(const PortLock& other);
    ~PortLock();

    /// The lock of `device` (a path, or a bare name under /dev), looked for
    /// under each of its names (as given, its real path, its file name) in
    /// each lock directory; the first lock whose process runs wins.
    static PortLock of(const QString& device);

    /// A running process holds the device.
    bool isHeld() const;
    qint64 pid() const;
    /// The holder's program name (/proc/`<pid>`/comm); empty when unreadable.
    QString program() const;
    /// The lock file that names the holder.
    QString file() const;
    /// "pid 812, pppd" (or "pid 812"); empty when not held.
    QString holder() const;

    /// The pid a lock file's contents name, 0 when they name none.
    static qint64 pidIn(const QByteArray& contents);
    /// Where lock files are looked for: $QT5EXT_LOCK_DIR first when set,
    /// then /run/lock, /var/lock, /var/spool/locks, /var/spool/uucp, /etc/locks
    /// and the temporary folder (QSerialPort's last resort).
    static QStringList directories();
    /// The folder this system's programs write their locks to:
    /// $QT5EXT_LOCK_DIR when set, else /var/lock.
    static QString writeDirectory();
    /// The lock file names of `device` ("LCK..pts_3").
    static QStringList fileNames(const QString& device);
    /// Whether process `pid` runs (a process of another user counts).
    static bool processRuns(qint64 pid);

private:
    QSharedDataPointer<PortLockData> d;
};

} // namespace zelmodems
