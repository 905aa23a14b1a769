#pragma once
#include <qt5ext/qt5ext_export.h>
#include <QString>

namespace qt5ext {

// System helpers of the appliance.
//
// Serial port locks follow the UUCP convention that QSerialPort itself uses:
// a file "LCK..<device name>" in the lock directory, holding the owner's pid
// (QLockFile format: pid, application name and host name, one per line).
// The lock directory is "/var/lock"; the environment variable
// QT5EXT_LOCK_DIR points it elsewhere (used by tests and chroots).
class QT5EXT_EXPORT SysUtils
{
public:
    // Releases the lock on the serial port `portName` (a bare name such as
    // ttyUSB0 or a device path). Returns true when the port is not locked
    // afterwards: nothing was locked, the lock was stale (its owner is gone),
    // or `force` is set and the file could be removed. A lock held by a
    // living process (this one included) is left alone unless `force`.
    static bool unlockPort(const QString& portName, bool force);

    // The lock file that guards `portName`.
    static QString portLockFile(const QString& portName);
    static QString lockDirectory();
};

} // namespace qt5ext
