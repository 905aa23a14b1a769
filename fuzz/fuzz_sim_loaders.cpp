// The simulator's loaders: a recording of `zelmodems --record` read by
// `modemsim --replay`, and a support engineer's script of statements. A
// file that is not what it should be is refused with a reason; one that
// loads holds at least one exchange.
//
// Input: the first byte selects the loader; the rest is the file.
#include "fuzzcommon.h"

#include "recordeddialogue.h"
#include "simscript.h"

#include <QFile>
#include <QTemporaryDir>

ZML_FUZZ_INIT

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > 256 * 1024)
        return 0;
    static QTemporaryDir dir;   // removed at exit
    const QString path = dir.filePath(QStringLiteral("input"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char*>(data + 1), qint64(size - 1));
    file.close();
    QString error;
    if (data[0] & 1) {
        SimScript script;
        const bool ok = script.addFile(path, &error);
        ZML_FUZZ_CHECK(ok || !error.isEmpty());
    } else {
        RecordedDialogue dialogue;
        const bool ok = dialogue.load(path, &error);
        ZML_FUZZ_CHECK(ok ? dialogue.exchangeCount() > 0 : !error.isEmpty());
    }
    return 0;
}
