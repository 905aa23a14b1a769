// The platform stand-in's reading of serial-port lock files: whatever a
// LCK..<device> file holds (a pid as text or as a binary int, garbage, an
// empty file), unlockPort decides whether the lock is stale, and says true
// exactly when the port is unlocked afterwards.
//
// Input: first byte: bit 0 forces the unlock, bit 1 makes the file a minute
// old; the rest is the lock file's content.
#include "fuzzcommon.h"

#include <qt5ext/sysutils.h>

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

ZML_FUZZ_INIT

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    static QTemporaryDir dir;
    static const bool pointed = qputenv("QT5EXT_LOCK_DIR", QFile::encodeName(dir.path()));
    ZML_FUZZ_CHECK(dir.isValid() && pointed);
    const QString lock = qt5ext::SysUtils::portLockFile(QStringLiteral("ttyFUZZ0"));
    {
        QFile file(lock);
        ZML_FUZZ_CHECK(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(reinterpret_cast<const char*>(data + 1), qint64(size - 1));
        if (data[0] & 2)
            file.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime);
    }
    const bool unlocked = qt5ext::SysUtils::unlockPort(QStringLiteral("/dev/ttyFUZZ0"), data[0] & 1);
    ZML_FUZZ_CHECK(unlocked == !QFile::exists(lock));
    // A forced unlock always unlocks.
    ZML_FUZZ_CHECK(!(data[0] & 1) || unlocked);
    QFile::remove(lock);
    return 0;
}
