#pragma once
// A path of its own for a simulated modem: a link in a folder of this test
// process. Pseudo-terminal numbers are reused as soon as they are free, and
// serial port locks are named after the path opened; through its own link a
// test never meets a lock another test left on the same /dev/pts/N.
#include "simmodem.h"

#include <QAtomicInt>
#include <QTemporaryDir>

namespace zmltest {

// Links the started `sim` (its devicePath() becomes the link); false when
// the link cannot be made.
inline bool giveOwnLink(zelmodems::sim::SimModem& sim)
{
    static QTemporaryDir dir;
    static QAtomicInt next;
    return dir.isValid()
        && sim.createLink(dir.filePath(QStringLiteral("modem%1").arg(next.fetchAndAddRelaxed(1))));
}

} // namespace zmltest
