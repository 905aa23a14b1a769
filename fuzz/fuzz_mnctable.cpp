// The operator table from outside data: mncTableFromMap on any map (keys and
// entries of any shape), and ModemSettings::loadMncTable(path) on any file
// content.
//
// Input: first byte even: the rest builds a map (zmlfuzz::Input); odd:
// the rest is the file's content.
#include "fuzzcommon.h"

#include "modemsettings.h"
#include "operatordata.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QVariantMap>

ZML_FUZZ_INIT

namespace {

const char* const ENTRY_KEYS[] = {"mcc", "mnc", "name", "selfNumberPhone", "selfNumberFromSms",
                                  "balancePhone", "userName", "password", "modemInitLine"};

QVariant anyValue(zmlfuzz::Input& in)
{
    switch (in.range<int>(0, 5)) {
    case 0: return zmlfuzz::utf8(in.string(32));
    case 1: return in.anyInt();
    case 2: return in.range<int>(0, 999);
    case 3: return in.boolean();
    case 4: return in.anyDouble();
    default: return QVariant();
    }
}

QString tableKey(zmlfuzz::Input& in)
{
    switch (in.range<int>(0, 3)) {
    case 0: return zmlfuzz::utf8(in.string(12));
    case 1: return QStringLiteral("mnc_") + zmlfuzz::utf8(in.string(7));
    default: return QStringLiteral("mnc_%1").arg(in.range<int>(0, 99999), 5, 10, QLatin1Char('0'));
    }
}

void fromMap(zmlfuzz::Input& in)
{
    QVariantMap map;
    while (in.remaining() > 0 && map.size() < 32) {
        QVariantMap entry;
        const int n = in.range<int>(0, 10);
        for (int i = 0; i < n; ++i) {
            const std::size_t k = in.range<std::size_t>(0, 8);
            entry.insert(QString::fromLatin1(ENTRY_KEYS[k]), anyValue(in));
        }
        map.insert(tableKey(in), in.range<int>(0, 15) == 0 ? anyValue(in) : QVariant(entry));
    }
    const MncTable table = OperatorData::mncTableFromMap(map);
    for (auto it = table.constBegin(); it != table.constEnd(); ++it) {
        ZML_FUZZ_CHECK(it.value().isValid());
        ZML_FUZZ_CHECK(it.key() == it.value().mccmnc());
        ZML_FUZZ_CHECK(!it.value().modemInitLine().contains(QLatin1Char(' ')));
    }
    // Written out and read back, the entries with five-digit keys come back
    // as they were.
    const MncTable back = OperatorData::mncTableFromMap(OperatorData::mncTableToMap(table));
    for (auto it = table.constBegin(); it != table.constEnd(); ++it) {
        if (it.key() >= 10000 && it.key() <= 99999)
            ZML_FUZZ_CHECK(back.value(it.key()) == it.value());
    }
}

void fromFile(const uint8_t* data, size_t size)
{
    static QTemporaryDir dir;
    const QString path = QDir(dir.path()).filePath(QStringLiteral("mnctable.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        abort();
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    const MncTable table = ModemSettings::loadMncTable(path);
    for (auto it = table.constBegin(); it != table.constEnd(); ++it)
        ZML_FUZZ_CHECK(it.key() == it.value().mccmnc());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    if (data[0] & 1) {
        fromFile(data + 1, size - 1);
    } else {
        zmlfuzz::Input in(data + 1, size - 1);
        fromMap(in);
    }
    return 0;
}
