// Settings lists as the configuration service hands them in: any groups,
// keys and values, "MODEMS" entries with any text as their JSON value.
// setSettingsList must take everything; its result must survive the trip
// out and back in unchanged.
//
// Input: a stream of entries, each built from the next bytes (zmlfuzz::Input).
#include "fuzzcommon.h"

#include "modeminfo.h"
#include "modemsettings.h"

#include <QJsonDocument>
#include <QVariantMap>

ZML_FUZZ_INIT

namespace {

const char* const GROUPS[] = {"MODEMSSRV", "MODEMS", "modemssrv", "OTHER", ""};
const char* const KEYS[] = {"connectionsOrder", "statusTimeout", "ignoreQueryingError", "notQuery",
                            "usePppOE", "pppOEPeer", "skipInternetChecking", "unknownKey"};
const char* const RECORD_KEYS[] = {"portName", "cmdPortName", "connectionName", "phone", "phones",
                                   "initLines", "baudrate", "userName", "password", "simNumber",
                                   "balanceUssd", "phoneUssd", "phoneFromSms", "dialCommand", "imei"};

template <std::size_t N>
QString pick(zmlfuzz::Input& in, const char* const (&names)[N])
{
    if (in.boolean())
        return zmlfuzz::utf8(in.string(24));
    return QString::fromLatin1(names[in.range<std::size_t>(0, N - 1)]);
}

QVariant anyValue(zmlfuzz::Input& in, int depth = 0)
{
    switch (in.range<int>(0, depth < 2 ? 6 : 4)) {
    case 0: return zmlfuzz::utf8(in.string(64));
    case 1: return in.anyInt();
    case 2: return in.boolean();
    case 3: return in.anyDouble();
    case 4: return QVariant();
    case 5: {
        QVariantList list;
        const int n = in.range<int>(0, 4);
        for (int i = 0; i < n; ++i)
            list << anyValue(in, depth + 1);
        return list;
    }
    default: {
        QVariantMap map;
        const int n = in.range<int>(0, 6);
        for (int i = 0; i < n; ++i)
            map.insert(pick(in, RECORD_KEYS), anyValue(in, depth + 1));
        return map;
    }
    }
}

// The value of a "MODEMS" entry: mostly a record's JSON, sometimes anything.
QVariant recordValue(zmlfuzz::Input& in)
{
    if (in.range<int>(0, 3) == 0)
        return zmlfuzz::utf8(in.string(200));
    QVariantMap record;
    const int n = in.range<int>(0, 15);
    for (int i = 0; i < n; ++i)
        record.insert(pick(in, RECORD_KEYS), anyValue(in));
    return QString::fromUtf8(QJsonDocument::fromVariant(record).toJson(QJsonDocument::Compact));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    zmlfuzz::Input in(data, size);
    QVariantList list;
    while (in.remaining() > 0 && list.size() < 64) {
        QVariantMap entry;
        const QString group = pick(in, GROUPS);
        if (in.range<int>(0, 15) != 0)
            entry.insert(QStringLiteral("group"), group);
        entry.insert(QStringLiteral("key"), pick(in, KEYS));
        entry.insert(QStringLiteral("value"),
                     group == QLatin1String("MODEMS") ? recordValue(in) : anyValue(in));
        if (in.range<int>(0, 31) == 0)
            list << anyValue(in);      // not even a map
        else
            list << entry;
    }

    ModemSettings settings;
    settings.setSettingsList(list);
    const QVariantList out = settings.toSettingsList();
    (void)settings.ports();

    // Once through the settings, a list is a fixed point.
    settings.setSettingsList(out);
    const QVariantList again = settings.toSettingsList();
    ZML_FUZZ_CHECK(again == out);

    // Every stored connection is stored under its own name.
    const QMap<QString, ModemInfo> modems = settings.modems();
    for (auto it = modems.constBegin(); it != modems.constEnd(); ++it)
        ZML_FUZZ_CHECK(it.key() == it.value().connectionName());
    return 0;
}
