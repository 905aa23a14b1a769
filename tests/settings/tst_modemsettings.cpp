// ModemSettings: the process-wide settings and their settings-list form, the
// port list, the operator table and its resource, the port lock files between
// processes, and use from several threads at once. ModemsEnvs' directory.
#include "logcapture.h"
#include "modemsenvs.h"
#include "modemsettings.h"

#include <QAtomicInt>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QResource>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include <memory>
#include <vector>

namespace {

QVariantMap entry(const QString& group, const QString& key, const QVariant& value)
{
    return {{"group", group}, {"key", key}, {"value", value}};
}

ModemInfo connection(const QString& name, const QString& port, const QString& cmdPort = QString())
{
    ModemInfo info;
    info.setConnectionName(name);
    info.setPortName(port);
    info.setCmdPortName(cmdPort);
    info.setBaudrate(115200);
    return info;
}

QString connectionJson(const ModemInfo& info)
{
    return QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(info.toMap())).toJson(QJsonDocument::Compact));
}

QMap<QString, ModemInfo> connectionMap(const QList<ModemInfo>& list)
{
    QMap<QString, ModemInfo> map;
    for (const ModemInfo& info : list)
        map.insert(info.connectionName(), info);
    return map;
}

// The settings as they are when the library has just been loaded.
void restoreStartValues()
{
    ModemSettings settings;
    settings.setConnectionsOrder({});
    settings.setStatusTimeout(60);
    settings.setIgnoreQueryingErrors(true);
    settings.setNotQueryModem(false);
    settings.setUsePppOE(false);
    settings.setPppOEPeer(QString());
    settings.setSkipCheckInternetConnection(true);
    settings.setModems({});
}

struct TableRow
{
    int mcc;
    int mnc;
    const char* name;
    const char* selfNumberPhone;
    // 1 true, 0 false, -1 the JSON number 0
    int selfNumberFromSms;
    const char* balancePhone;
};

// The operator table's rows, in the resource's order.
const TableRow TABLE_ROWS[] = {
    {250, 1, "МТС", "*111*0887#", 1, "*100#"},
    {250, 2, "Мегафон", "*205#", 0, "*100#"},
    {250, 20, "Теле2", "*201#", 0, "*105#"},
    {250, 3, "НСС", "*110#", 0, "*100#"},
    {250, 28, "Beeline", "*110*10#", 1, "*102#"},
    {250, 99, "Beeline", "*110*10#", 1, "*102#"},
    {250, 17, "Utel", "110#", 0, "*102#"},
    {250, 39, "Utel", "110#", 0, "*102#"},
    {297, 1, "Promonte GSM", "", 0, ""},
    {297, 2, "Monet/T-mobile", "", 0, ""},
    {297, 3, "Mtel", "", 0, ""},
    {289, 88, "А-Мобайл", "*0770#", -1, "*0500#"},
    {289, 67, "Аквафон", "*111*00#", -1, "*0500#"},
    {250, 11, "Yota", "*103#", 0, "*100#"},
};

} // namespace

class TestModemSettings : public QObject
{
    Q_OBJECT

private slots:
    // Must run first: it sees the values as the library starts with them.
    void settingsListAfterLoad();
    void startListFedBack();

    void roundTrip();
    void badEntries_data();
    void badEntries();
    void switchesFromInts_data();
    void switchesFromInts();
    void emptyList();
    void connectionsOrderSetter();

    void ports_data();
    void ports();

    void resourceRows();
    void resourceIsZlibCompressed();
    void tableLoaded();
    void tableThroughMapForm();
    void getOperatorData_data();
    void getOperatorData();
    void loadTableFromFile();
    void loadBrokenTableThenRetry_data();
    void loadBrokenTableThenRetry();

    void waitLockFileWithoutLock();
    void waitLockFileRunsEvents();
    void lockFilesBetweenProcesses();

    void concurrentUse();

    void modemsPath();

    void cleanup();
};

void TestModemSettings::cleanup()
{
    restoreStartValues();
}

void TestModemSettings::settingsListAfterLoad()
{
    const ModemSettings settings;
    const QVariantList list = settings.toSettingsList();
    const QVariantList expected{
        entry("MODEMSSRV", "connectionsOrder", QString()),
        entry("MODEMSSRV", "statusTimeout", 60),
        entry("MODEMSSRV", "ignoreQueryingError", 1),
        entry("MODEMSSRV", "notQuery", 0),
        entry("MODEMSSRV", "usePppOE", 0),
        entry("MODEMSSRV", "pppOEPeer", QString()),
        entry("MODEMSSRV", "skipInternetChecking", 1),
    };
    QCOMPARE(list, expected);
    // The switches travel as ints, not as booleans.
    for (int i : {1, 2, 3, 4, 6})
        QCOMPARE(list.at(i).toMap().value("value").userType(), int(QMetaType::Int));
    QCOMPARE(list.at(0).toMap().value("value").userType(), int(QMetaType::QString));

    QCOMPARE(ModemSettings::SECTION, QStringLiteral("MODEMSSRV"));
    QCOMPARE(ModemSettings::MODEMS_SECTION, QStringLiteral("MODEMS"));
    QCOMPARE(ModemSettings::MAPPED_IGNORE_QUERYING_ERROR, QStringLiteral("IGNORE_MODEM_QUERYING_ERRORS"));
    QCOMPARE(ModemSettings::MAPPED_NOT_QUERY_MODEM, QStringLiteral("NOT_QUERY_MODEM"));
    QCOMPARE(ModemSettings::MAPPED_SIM_NUMBER, QStringLiteral("SIM_NUMBER"));
}

void TestModemSettings::startListFedBack()
{
    ModemSettings settings;
    QVERIFY(settings.connectionsOrder().isEmpty());
    settings.setSettingsList(settings.toSettingsList());
    // An empty text splits into one empty name.
    QCOMPARE(settings.connectionsOrder(), QStringList{QString()});
    QCOMPARE(settings.statusTimeout(), 60);
    QCOMPARE(settings.ignoreQueryingErrors(), true);
    QCOMPARE(settings.notQueryModem(), false);
    QCOMPARE(settings.usePppOE(), false);
    QVERIFY(settings.pppOEPeer().isEmpty());
    QCOMPARE(settings.getSkipCheckInternetConnection(), true);
    QVERIFY(settings.modems().isEmpty());
}

void TestModemSettings::roundTrip()
{
    ModemSettings settings;
    ModemInfo mts = connection("mts", "/dev/ttyUSB2", "/dev/ttyUSB1");
    mts.setPhones({"*99#"});
    mts.addInitLine("AT+CGDCONT=1,\"IP\",\"internet.mts.ru\"");
    mts.setUserName("mts");
    mts.setPassword("mts");
    mts.setPhoneFromSms(true);
    const ModemInfo beeline = connection("beeline", "/dev/ttyACM0");
    settings.setModems(connectionMap({mts, beeline}));
    settings.setConnectionsOrder({"mts", "beeline"});
    settings.setStatusTimeout(15);
    settings.setIgnoreQueryingErrors(false);
    settings.setNotQueryModem(true);
    settings.setUsePppOE(true);
    settings.setPppOEPeer("dsl-provider");
    settings.setSkipCheckInternetConnection(false);

    const QVariantList list = settings.toSettingsList();
    QCOMPARE(list.size(), 9);
    QCOMPARE(list.at(0).toMap().value("value").toString(), QStringLiteral("mts\nbeeline"));
    QCOMPARE(list.at(2).toMap().value("value"), QVariant(0));
    QCOMPARE(list.at(3).toMap().value("value"), QVariant(1));
    // One entry per connection, in key order, as compact JSON of the map form.
    QCOMPARE(list.at(7).toMap(), entry("MODEMS", "beeline", connectionJson(beeline)));
    QCOMPARE(list.at(8).toMap(), entry("MODEMS", "mts", connectionJson(mts)));
    QVERIFY(!list.at(8).toMap().value("value").toString().contains('\n'));

    restoreStartValues();
    LogCapture log;
    settings.setSettingsList(list);
    QVERIFY(log.entries().isEmpty());
    QCOMPARE(settings.toSettingsList(), list);
    QCOMPARE(settings.modems(), connectionMap({mts, beeline}));
    QCOMPARE(settings.connectionsOrder(), (QStringList{"mts", "beeline"}));
    QCOMPARE(settings.statusTimeout(), 15);
    QCOMPARE(settings.ignoreQueryingErrors(), false);
    QCOMPARE(settings.notQueryModem(), true);
    QCOMPARE(settings.usePppOE(), true);
    QCOMPARE(settings.pppOEPeer(), QStringLiteral("dsl-provider"));
    QCOMPARE(settings.getSkipCheckInternetConnection(), false);
}

void TestModemSettings::badEntries_data()
{
    QTest::addColumn<QVariant>("bad");
    QTest::addColumn<QString>("warning");
    QTest::addColumn<QStringList>("connections");

    const QStringList good{"good"};
    QTest::newRow("connection not JSON")
        << QVariant(entry("MODEMS", "broken", "{\"portName\": ")) << "Invalid connection settings: key broken; value {\"portName\": . error "
        << good;
    QTest::newRow("connection plain text")
        << QVariant(entry("MODEMS", "broken", "ttyUSB0")) << "Invalid connection settings: key broken; value ttyUSB0. error "
        << good;
    QTest::newRow("connection name differs")
        << QVariant(entry("MODEMS", "A", connectionJson(connection("B", "/dev/ttyUSB5"))))
        << "Connection name checking error A != B" << QStringList{"B", "good"};
    QTest::newRow("unknown key")
        << QVariant(entry("MODEMSSRV", "dialTimeout", 5)) << "Unknown settings key: dialTimeout" << good;
    QTest::newRow("unknown group")
        << QVariant(entry("NETWORK", "statusTimeout", 5)) << "Unknown settings group: NETWORK" << good;
    QTest::newRow("group in lower case")
        << QVariant(entry("modemssrv", "statusTimeout", 5)) << "Unknown settings group: modemssrv" << good;
    QTest::newRow("not a map") << QVariant(17) << "Unknown settings group: " << good;
    QTest::newRow("no group") << QVariant(QVariantMap{{"key", "statusTimeout"}, {"value", 5}})
                              << "Unknown settings group: " << good;
}

void TestModemSettings::badEntries()
{
    QFETCH(QVariant, bad);
    QFETCH(QString, warning);
    QFETCH(QStringList, connections);

    ModemSettings settings;
    const QVariantList list{
        entry("MODEMSSRV", "statusTimeout", 42),
        bad,
        entry("MODEMS", "good", connectionJson(connection("good", "/dev/ttyUSB0"))),
        entry("MODEMSSRV", "pppOEPeer", "peer"),
    };

    LogCapture log;
    settings.setSettingsList(list);
    const QVector<LogCapture::Entry> entries = log.entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.at(0).type, QtWarningMsg);
    QVERIFY2(entries.at(0).message.startsWith(warning), qPrintable(entries.at(0).message));
    QVERIFY2(entries.at(0).file.contains("src/settings/modemsettings"), qPrintable(entries.at(0).file));
    QVERIFY2(entries.at(0).function.contains("setSettingsList"), qPrintable(entries.at(0).function));

    // Everything else in the list is applied.
    QCOMPARE(settings.statusTimeout(), 42);
    QCOMPARE(settings.pppOEPeer(), QStringLiteral("peer"));
    QCOMPARE(settings.modems().keys(), connections);
    QCOMPARE(settings.modems().value("good"), connection("good", "/dev/ttyUSB0"));
}

void TestModemSettings::switchesFromInts_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");

    for (const char* key : {"ignoreQueryingError", "notQuery", "usePppOE", "skipInternetChecking"}) {
        QTest::addRow("%s 1", key) << key << QVariant(1) << true;
        QTest::addRow("%s 0", key) << key << QVariant(0) << false;
        QTest::addRow("%s 2", key) << key << QVariant(2) << true;
        QTest::addRow("%s -1", key) << key << QVariant(-1) << true;
        QTest::addRow("%s text 1", key) << key << QVariant("1") << true;
        QTest::addRow("%s text 0", key) << key << QVariant("0") << false;
        // A boolean's text is no number: it reads as 0.
        QTest::addRow("%s text true", key) << key << QVariant("true") << false;
    }
}

void TestModemSettings::switchesFromInts()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(bool, expected);

    ModemSettings settings;
    settings.setSettingsList({entry("MODEMSSRV", key, value)});
    bool actual = false;
    if (key == "ignoreQueryingError")
        actual = settings.ignoreQueryingErrors();
    else if (key == "notQuery")
        actual = settings.notQueryModem();
    else if (key == "usePppOE")
        actual = settings.usePppOE();
    else
        actual = settings.getSkipCheckInternetConnection();
    QCOMPARE(actual, expected);
}

void TestModemSettings::emptyList()
{
    ModemSettings settings;
    settings.setModems(connectionMap({connection("a", "/dev/ttyUSB0")}));
    settings.setConnectionsOrder({"a"});
    settings.setStatusTimeout(7);
    settings.setUsePppOE(true);
    settings.setPppOEPeer("peer");

    settings.setSettingsList(QVariantList());
    QVERIFY(settings.modems().isEmpty());
    QCOMPARE(settings.connectionsOrder(), QStringList{"a"});
    QCOMPARE(settings.statusTimeout(), 7);
    QCOMPARE(settings.usePppOE(), true);
    QCOMPARE(settings.pppOEPeer(), QStringLiteral("peer"));
}

void TestModemSettings::connectionsOrderSetter()
{
    ModemSettings settings;
    settings.setConnectionsOrder({"a", "b"});
    settings.setConnectionsOrder({"c"});
    QCOMPARE(settings.connectionsOrder(), QStringList{"c"});

    // Each object sees the same process-wide values.
    const ModemSettings other;
    QCOMPARE(other.connectionsOrder(), QStringList{"c"});
}

void TestModemSettings::ports_data()
{
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<QList<ModemInfo>>("connections");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("same port, no command ports")
        << QStringList{"A", "B"}
        << QList<ModemInfo>{connection("A", "/dev/ttyUSB0"), connection("B", "/dev/ttyUSB0")}
        << QStringList{"/dev/ttyUSB0", ""};
    QTest::newRow("data and command ports in order")
        << QStringList{"B", "A"}
        << QList<ModemInfo>{connection("A", "/dev/ttyUSB2", "/dev/ttyUSB1"),
                            connection("B", "/dev/ttyACM0", "/dev/ttyACM1")}
        << QStringList{"/dev/ttyACM0", "/dev/ttyACM1", "/dev/ttyUSB2", "/dev/ttyUSB1"};
    QTest::newRow("shared command port")
        << QStringList{"A", "B"}
        << QList<ModemInfo>{connection("A", "/dev/ttyUSB2", "/dev/ttyUSB1"),
                            connection("B", "/dev/ttyUSB1", "/dev/ttyUSB2")}
        << QStringList{"/dev/ttyUSB2", "/dev/ttyUSB1"};
    QTest::newRow("connection missing from the order")
        << QStringList{"A"}
        << QList<ModemInfo>{connection("A", "/dev/ttyUSB0", "/dev/ttyUSB1"), connection("B", "/dev/ttyS0")}
        << QStringList{"/dev/ttyUSB0", "/dev/ttyUSB1"};
    QTest::newRow("unknown name in the order")
        << QStringList{"X", "A", ""}
        << QList<ModemInfo>{connection("A", "/dev/ttyUSB0", "/dev/ttyUSB1")}
        << QStringList{"/dev/ttyUSB0", "/dev/ttyUSB1"};
    QTest::newRow("name listed twice")
        << QStringList{"A", "A"}
        << QList<ModemInfo>{connection("A", "/dev/ttyUSB0", "/dev/ttyUSB1")}
        << QStringList{"/dev/ttyUSB0", "/dev/ttyUSB1"};
    QTest::newRow("no order") << QStringList() << QList<ModemInfo>{connection("A", "/dev/ttyUSB0")}
                              << QStringList();
}

void TestModemSettings::ports()
{
    QFETCH(QStringList, order);
    QFETCH(QList<ModemInfo>, connections);
    QFETCH(QStringList, expected);

    ModemSettings settings;
    settings.setConnectionsOrder(order);
    settings.setModems(connectionMap(connections));
    QCOMPARE(settings.ports(), expected);
}

void TestModemSettings::resourceRows()
{
    QFile file(ModemSettings::mncTablePath());
    QCOMPARE(ModemSettings::mncTablePath(), QStringLiteral(":/mnc/mnctable.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    const QJsonArray rows = document.array();
    QCOMPARE(rows.size(), int(sizeof(TABLE_ROWS) / sizeof(TABLE_ROWS[0])));

    const QStringList keyOrder{"mcc", "mnc", "name", "selfNumberPhone", "selfNumberFromSms",
                               "balancePhone", "userName", "password", "modemInitLine"};
    const QRegularExpression credential("^[A-Za-z0-9]{3,8}$");
    const QRegularExpression initLine("^AT\\+CGDCONT=1,\"IP\",\"[^\" ]+\"$");
    for (int i = 0; i < rows.size(); ++i) {
        const TableRow& want = TABLE_ROWS[i];
        const QJsonObject row = rows.at(i).toObject();
        QCOMPARE(row.keys().size(), keyOrder.size());
        for (const QString& key : keyOrder)
            QVERIFY2(row.contains(key), qPrintable(key));
        QVERIFY(row.value("mcc").isDouble());
        QVERIFY(row.value("mnc").isDouble());
        QCOMPARE(row.value("mcc").toInt(), want.mcc);
        QCOMPARE(row.value("mnc").toInt(), want.mnc);
        QCOMPARE(row.value("name").toString(), QString::fromUtf8(want.name));
        QCOMPARE(row.value("selfNumberPhone").toString(), QString::fromUtf8(want.selfNumberPhone));
        QCOMPARE(row.value("balancePhone").toString(), QString::fromUtf8(want.balancePhone));
        const QJsonValue fromSms = row.value("selfNumberFromSms");
        if (want.selfNumberFromSms < 0) {
            QVERIFY2(fromSms.isDouble(), "the number 0 is kept as data");
            QCOMPARE(fromSms.toDouble(), 0.0);
        } else {
            QVERIFY(fromSms.isBool());
            QCOMPARE(fromSms.toBool(), want.selfNumberFromSms == 1);
        }
        QVERIFY2(credential.match(row.value("userName").toString()).hasMatch(), want.name);
        QVERIFY2(credential.match(row.value("password").toString()).hasMatch(), want.name);
        QVERIFY2(initLine.match(row.value("modemInitLine").toString()).hasMatch(), want.name);
    }
    // The operators whose APN is "internet".
    for (int i : {1, 3, 8, 12})
        QCOMPARE(rows.at(i).toObject().value("modemInitLine").toString(),
                 QStringLiteral("AT+CGDCONT=1,\"IP\",\"internet\""));
}

void TestModemSettings::resourceIsZlibCompressed()
{
    const QResource resource(ModemSettings::mncTablePath());
    QVERIFY(resource.isValid());
    QCOMPARE(resource.compressionAlgorithm(), QResource::ZlibCompression);
    QVERIFY(resource.size() < resource.uncompressedSize());
}

void TestModemSettings::tableLoaded()
{
    const ModemSettings settings;
    const MncTable table = settings.mncTable();
    QCOMPARE(table.size(), 14);
    for (const TableRow& row : TABLE_ROWS) {
        const int key = row.mcc * 100 + row.mnc;
        QVERIFY2(table.contains(key), qPrintable(QString::number(key)));
        const OperatorData data = table.value(key);
        QVERIFY(data.isValid());
        QCOMPARE(data.name(), QString::fromUtf8(row.name));
        QCOMPARE(data.selfNumberFromSms(), row.selfNumberFromSms == 1);
        QCOMPARE(data.balancePhone(), QString::fromUtf8(row.balancePhone));
    }

    // Loading again keeps the table that is there.
    ModemSettings::loadMncTable();
    QCOMPARE(settings.mncTable(), table);
}

void TestModemSettings::tableThroughMapForm()
{
    const MncTable table = ModemSettings().mncTable();
    LogCapture log;
    QCOMPARE(OperatorData::mncTableFromMap(OperatorData::mncTableToMap(table)), table);
    QVERIFY(log.entries().isEmpty());
}

void TestModemSettings::getOperatorData_data()
{
    QTest::addColumn<int>("mcc");
    QTest::addColumn<int>("mnc");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("name");

    QTest::newRow("Megafon") << 250 << 2 << true << "Мегафон";
    QTest::newRow("Yota") << 250 << 11 << true << "Yota";
    QTest::newRow("Aquafon") << 289 << 67 << true << "Аквафон";
    QTest::newRow("Mtel") << 297 << 3 << true << "Mtel";
    QTest::newRow("unknown mnc") << 250 << 5 << false << "";
    QTest::newRow("unknown mcc") << 251 << 2 << false << "";
    QTest::newRow("zero") << 0 << 0 << false << "";
    // Only the computed key counts: 0 * 100 + 25002 is Megafon's key.
    QTest::newRow("mnc as whole key") << 0 << 25002 << true << "Мегафон";
}

void TestModemSettings::getOperatorData()
{
    QFETCH(int, mcc);
    QFETCH(int, mnc);
    QFETCH(bool, found);
    QFETCH(QString, name);

    const ModemSettings settings;
    OperatorData data;
    data.setName(QStringLiteral("untouched"));
    QCOMPARE(settings.getOperatorData(mcc, mnc, data), found);
    QCOMPARE(data.name(), found ? name : QStringLiteral("untouched"));
    if (found)
        QCOMPARE(data, settings.mncTable().value(mcc * 100 + mnc));
}

void TestModemSettings::loadTableFromFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath("table.json");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    // No validity test here, and a later entry replaces an earlier one.
    file.write(R"([
        {"mcc": 250, "mnc": 1, "name": "first"},
        {"mcc": 250, "mnc": 0, "name": "no mnc"},
        {"mcc": 250, "mnc": 1, "name": "second", "modemInitLine": "AT+CGDCONT=1, \"IP\", \"apn\""},
        "not an object"
    ])");
    file.close();

    LogCapture log;
    const MncTable table = ModemSettings::loadMncTable(path);
    QCOMPARE(table.keys(), (QList<int>{0, 25000, 25001}));
    QCOMPARE(table.value(25001).name(), QStringLiteral("second"));
    QCOMPARE(table.value(25001).modemInitLine(), QStringLiteral("AT+CGDCONT=1,\"IP\",\"apn\""));
    QVERIFY(!table.value(25000).isValid());
    QVERIFY(!table.value(0).isValid());
    // Every element is logged.
    const QStringList warnings = log.messages(QtWarningMsg);
    QCOMPARE(warnings.size(), 4);
    QVERIFY2(warnings.at(0).contains("first"), qPrintable(warnings.at(0)));
    QVERIFY2(warnings.at(3).contains("not an object"), qPrintable(warnings.at(3)));
    QVERIFY(log.messages(QtCriticalMsg).isEmpty());
}

void TestModemSettings::loadBrokenTableThenRetry_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("create");

    QTest::newRow("missing file") << QByteArray() << false;
    QTest::newRow("not JSON") << QByteArray("mcc=250;mnc=1") << true;
    QTest::newRow("truncated array") << QByteArray("[{\"mcc\": 250, \"mnc\": 1,") << true;
    QTest::newRow("empty file") << QByteArray() << true;
}

void TestModemSettings::loadBrokenTableThenRetry()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, create);

    QTemporaryDir dir;
    const QString path = dir.filePath("mnctable.json");
    if (create) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    LogCapture log;
    QVERIFY(ModemSettings::loadMncTable(path).isEmpty());
    const QStringList critical = log.messages(QtCriticalMsg);
    QCOMPARE(critical.size(), 1);
    QCOMPARE(log.entries().size(), 1);
    if (!create)
        QVERIFY2(critical.at(0).contains(path), qPrintable(critical.at(0)));

    // The next call reads the file as it is then.
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(R"([{"mcc": 250, "mnc": 2, "name": "Мегафон"}])");
    }
    log.clear();
    const MncTable table = ModemSettings::loadMncTable(path);
    QCOMPARE(table.keys(), QList<int>{25002});
    QCOMPARE(table.value(25002).name(), QStringLiteral("Мегафон"));
    QVERIFY(log.messages(QtCriticalMsg).isEmpty());
}

void TestModemSettings::waitLockFileWithoutLock()
{
    QTemporaryDir dir;
    const QString port = dir.filePath("ttyUSB0");
    QVERIFY(ModemSettings::waitLockFile(port));

    ModemSettings::createLockFile(port);
    QFile lock(port + ".lock");
    QVERIFY(lock.open(QIODevice::ReadOnly));
    QCOMPARE(lock.readAll(), QByteArray("LOCK"));
    lock.close();

    ModemSettings::removeLockFile(port);
    QVERIFY(!QFile::exists(port + ".lock"));
    // Removing a lock that is not there does no harm.
    ModemSettings::removeLockFile(port);
    QVERIFY(ModemSettings::waitLockFile(port));
}

void TestModemSettings::waitLockFileRunsEvents()
{
    QTemporaryDir dir;
    const QString port = dir.filePath("ttyUSB1");
    ModemSettings::createLockFile(port);
    QVERIFY(QFile::exists(port + ".lock"));

    // The wait keeps this thread's events turning: a timer lets the port go.
    QTimer::singleShot(100, this, [port] { ModemSettings::removeLockFile(port); });
    QVERIFY(ModemSettings::waitLockFile(port));
    QVERIFY(!QFile::exists(port + ".lock"));
}

void TestModemSettings::lockFilesBetweenProcesses()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString port = dir.filePath("ttyUSB3");
    const QString lockFile = port + ".lock";

    auto startHelper = [&port](QProcess& process, const QString& mode) {
        process.setProgram(QStringLiteral(LOCK_HELPER));
        process.setArguments({mode, port});
        process.start();
        return process.waitForStarted(5000);
    };
    auto readLine = [](QProcess& process) {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(10000))
                return QByteArray();
        }
        return process.readLine().trimmed();
    };

    QProcess holder;
    QVERIFY(startHelper(holder, "hold"));
    QCOMPARE(readLine(holder), QByteArray("held"));
    {
        QFile file(lockFile);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("LOCK"));
    }
    // Marked so that a second writer would show.
    {
        QFile file(lockFile);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("HELD");
    }

    // Two other processes want the port while it is held: both give up after
    // about two seconds; the one that would write its lock writes nothing.
    QProcess waiter;
    QProcess creator;
    QVERIFY(startHelper(waiter, "wait"));
    QVERIFY(startHelper(creator, "create"));
    QVERIFY(waiter.waitForFinished(15000));
    QVERIFY(creator.waitForFinished(15000));
    const QList<QByteArray> waited = waiter.readAllStandardOutput().trimmed().split('\n');
    QCOMPARE(waited.size(), 2);
    const QList<QByteArray> result = waited.at(1).split(' ');
    QCOMPARE(result.value(0), QByteArray("false"));
    QVERIFY2(result.value(1).toLongLong() >= 2000, result.value(1).constData());
    const QList<QByteArray> created = creator.readAllStandardOutput().trimmed().split('\n');
    QCOMPARE(created.size(), 2);
    QVERIFY2(created.at(1).toLongLong() >= 2000, created.at(1).constData());
    {
        QFile file(lockFile);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("HELD"));
    }

    // A process that is waiting gets through once the holder lets go.
    QProcess second;
    QVERIFY(startHelper(second, "wait"));
    QCOMPARE(readLine(second), QByteArray("waiting"));
    QThread::msleep(200);
    holder.write("release\n");
    QCOMPARE(readLine(holder), QByteArray("released"));
    QVERIFY(holder.waitForFinished(5000));
    QVERIFY(second.waitForFinished(5000));
    QCOMPARE(second.readAllStandardOutput().trimmed().split(' ').value(0), QByteArray("true"));
    QVERIFY(!QFile::exists(lockFile));
}

void TestModemSettings::concurrentUse()
{
    // Writers replace the whole settings list; readers must always see one
    // writer's list, never a mix, and nothing may deadlock.
    const int writers = 3;
    const int readers = 3;
    const int rounds = 300;
    QAtomicInt mixed(0);
    QAtomicInt badPorts(0);

    auto writer = [&](int id) {
        for (int i = 0; i < rounds; ++i) {
            const int stamp = id * 100000 + i;
            const QString name = QStringLiteral("conn%1").arg(id);
            ModemSettings settings;
            settings.setSettingsList({
                entry("MODEMSSRV", "connectionsOrder", name),
                entry("MODEMSSRV", "statusTimeout", stamp),
                entry("MODEMSSRV", "pppOEPeer", QString::number(stamp)),
                entry("MODEMS", name, connectionJson(connection(name, QStringLiteral("/dev/tty%1").arg(id)))),
            });
            settings.setUsePppOE(i % 2 == 0);
        }
    };
    auto reader = [&] {
        for (int i = 0; i < rounds; ++i) {
            const ModemSettings settings;
            const QVariantList list = settings.toSettingsList();
            const int timeout = list.at(1).toMap().value("value").toInt();
            const QString peer = list.at(5).toMap().value("value").toString();
            if (timeout != 60 && peer != QString::number(timeout))
                mixed.fetchAndAddRelaxed(1);
            if (list.size() > 8)
                mixed.fetchAndAddRelaxed(1);
            // The order and the map may come from different writers here
            // (two locks); one connection without a command port gives at
            // most its port and an empty name.
            if (settings.ports().size() > 2)
                badPorts.fetchAndAddRelaxed(1);
            settings.mncTable();
            OperatorData data;
            if (!settings.getOperatorData(250, 1, data))
                mixed.fetchAndAddRelaxed(1);
        }
    };

    std::vector<std::unique_ptr<QThread>> threads;
    for (int id = 0; id < writers; ++id)
        threads.emplace_back(QThread::create(writer, id));
    for (int id = 0; id < readers; ++id)
        threads.emplace_back(QThread::create(reader));
    for (auto& thread : threads)
        thread->start();
    for (auto& thread : threads)
        QVERIFY(thread->wait(60000));

    QCOMPARE(mixed.loadRelaxed(), 0);
    QCOMPARE(badPorts.loadRelaxed(), 0);
    const ModemSettings settings;
    QCOMPARE(settings.modems().size(), 1);
    QCOMPARE(settings.statusTimeout() % 100000, rounds - 1);
}

void TestModemSettings::modemsPath()
{
    QTemporaryDir dir;
    const QString config = dir.filePath("zel5.conf");
    {
        QFile file(config);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("workDir=/var/lib/x\n");
    }
    const QByteArray saved = qgetenv("QT5EXT_INITCONFIG");
    qputenv("QT5EXT_INITCONFIG", config.toLocal8Bit());
    const ModemsEnvs envs;
    const QString path = envs.modemsPath();
    const QString workDir = envs.workDir();
    if (saved.isNull())
        qunsetenv("QT5EXT_INITCONFIG");
    else
        qputenv("QT5EXT_INITCONFIG", saved);

    QCOMPARE(workDir, QStringLiteral("/var/lib/x"));
    QCOMPARE(path, QStringLiteral("/var/lib/x/modems"));
    QCOMPARE(envs.installationName(), QStringLiteral("orvel5zel"));
    // Through the base class, as the appliance's helpers see it.
    const qt5ext::InitConfig& base = envs;
    QCOMPARE(base.workDir(), workDir);
}

QTEST_GUILESS_MAIN(TestModemSettings)
#include "tst_modemsettings.moc"
