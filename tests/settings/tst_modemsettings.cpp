// ModemSettings: the process-wide settings and their settings-list form, the
// port list, the operator table and its resource, the port lock files, and
// use from several threads at once. ModemsEnvs' directory.
#include "logrecorder.h"
#include "modemsenvs.h"
#include "modemsettings.h"
#include "testfiles.h"

#include <QAtomicInt>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include <memory>
#include <vector>

namespace {

using zmltest::LogRecorder;

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

bool writeFile(const QString& path, const QByteArray& data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size();
}

// Where the last warning came from, for the test of the source location.
QString lastWarningSource;
void recordWarningSource(QtMsgType type, const QMessageLogContext& context, const QString&)
{
    if (type == QtWarningMsg)
        lastWarningSource = QString::fromUtf8(context.file) + ' ' + QString::fromUtf8(context.function);
}

} // namespace

class TestModemSettings : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        // The settings as they are when the library has just been loaded.
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

    // Must run first: it sees the values as the library starts with them.
    void startValues()
    {
        ModemSettings settings;
        const QVariantList start{
            entry("MODEMSSRV", "connectionsOrder", QString()),
            entry("MODEMSSRV", "statusTimeout", 60),
            entry("MODEMSSRV", "ignoreQueryingError", 1),
            entry("MODEMSSRV", "notQuery", 0),
            entry("MODEMSSRV", "usePppOE", 0),
            entry("MODEMSSRV", "pppOEPeer", QString()),
            entry("MODEMSSRV", "skipInternetChecking", 1),
        };
        const QVariantList list = settings.toSettingsList();
        QCOMPARE(list, start);
        // The switches travel as ints, not as booleans.
        for (int i = 0; i < start.size(); ++i)
            QCOMPARE(list.at(i).toMap().value("value").userType(), start.at(i).toMap().value("value").userType());

        // Fed back, the empty order text becomes one empty name.
        settings.setSettingsList(list);
        QCOMPARE(settings.connectionsOrder(), QStringList{QString()});
        QCOMPARE(settings.toSettingsList(), start);
    }

    void roundTrip()
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

        // One entry per connection, in key order, as compact JSON of the map form.
        const QVariantList expected{
            entry("MODEMSSRV", "connectionsOrder", "mts\nbeeline"),
            entry("MODEMSSRV", "statusTimeout", 15),
            entry("MODEMSSRV", "ignoreQueryingError", 0),
            entry("MODEMSSRV", "notQuery", 1),
            entry("MODEMSSRV", "usePppOE", 1),
            entry("MODEMSSRV", "pppOEPeer", "dsl-provider"),
            entry("MODEMSSRV", "skipInternetChecking", 0),
            entry("MODEMS", "beeline", connectionJson(beeline)),
            entry("MODEMS", "mts", connectionJson(mts)),
        };
        const QVariantList list = settings.toSettingsList();
        QCOMPARE(list, expected);

        cleanup();
        LogRecorder log(LogRecorder::Echo::Nothing);
        settings.setSettingsList(list);
        QVERIFY(log.find("default", QString()).isEmpty());
        QCOMPARE(settings.toSettingsList(), expected);
        QCOMPARE(settings.modems(), connectionMap({mts, beeline}));
    }

    void badEntries_data()
    {
        QTest::addColumn<QVariant>("bad");
        QTest::addColumn<QString>("warning");
        QTest::addColumn<QStringList>("connections");

        const QStringList good{"good"};
        QTest::newRow("connection not JSON") << QVariant(entry("MODEMS", "broken", "{\"portName\": "))
                                             << "Invalid connection settings: key broken; value {\"portName\": . error "
                                             << good;
        QTest::newRow("connection not JSON, password masked")
            << QVariant(entry("MODEMS", "broken", "{\"password\": \"s3cr\\\"et\", \"portName\": "))
            << "Invalid connection settings: key broken; value {\"password\": \"***\", \"portName\": . error " << good;
        QTest::newRow("connection name differs")
            << QVariant(entry("MODEMS", "A", connectionJson(connection("B", "/dev/ttyUSB5"))))
            << "Connection name checking error A != B" << QStringList{"B", "good"};
        QTest::newRow("unknown key") << QVariant(entry("MODEMSSRV", "dialTimeout", 5))
                                     << "Unknown settings key: dialTimeout" << good;
        QTest::newRow("unknown group") << QVariant(entry("NETWORK", "statusTimeout", 5))
                                       << "Unknown settings group: NETWORK" << good;
        QTest::newRow("group in lower case") << QVariant(entry("modemssrv", "statusTimeout", 5))
                                             << "Unknown settings group: modemssrv" << good;
        QTest::newRow("not a map") << QVariant(17) << "Unknown settings group: " << good;
    }

    void badEntries()
    {
        QFETCH(QVariant, bad);
        QFETCH(QString, warning);
        QFETCH(QStringList, connections);

        ModemSettings settings;
        LogRecorder log(LogRecorder::Echo::Nothing);
        settings.setSettingsList({
            entry("MODEMSSRV", "statusTimeout", 42),
            bad,
            entry("MODEMS", "good", connectionJson(connection("good", "/dev/ttyUSB0"))),
            entry("MODEMSSRV", "pppOEPeer", "peer"),
        });
        const QList<LogRecorder::Entry> logged = log.find("default", QString());
        QCOMPARE(logged.size(), 1);
        QCOMPARE(logged.at(0).type, QtWarningMsg);
        QVERIFY2(logged.at(0).text.startsWith(warning), qPrintable(logged.at(0).text));

        // Everything else in the list is applied.
        QCOMPARE(settings.statusTimeout(), 42);
        QCOMPARE(settings.pppOEPeer(), QStringLiteral("peer"));
        QCOMPARE(settings.modems().keys(), connections);
        QCOMPARE(settings.modems().value("good"), connection("good", "/dev/ttyUSB0"));
    }

    void warningsCarrySourceLocation()
    {
        // Also in a release build, where a plain qWarning() carries none.
        const QtMessageHandler previous = qInstallMessageHandler(recordWarningSource);
        ModemSettings().setSettingsList({entry("MODEMSSRV", "dialTimeout", 5)});
        const QString settingsSource = lastWarningSource;
        OperatorData::mncTableFromMap({{"mnc_1", QVariantMap()}});
        const QString tableSource = lastWarningSource;
        qInstallMessageHandler(previous);

        QVERIFY2(settingsSource.contains("src/settings/modemsettings") && settingsSource.contains("setSettingsList"),
                 qPrintable(settingsSource));
        QVERIFY2(tableSource.contains("src/settings/operatordata") && tableSource.contains("mncTableFromMap"),
                 qPrintable(tableSource));
    }

    void switchesFromInts_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("expected");

        // A true and a false for each key, so that a value not applied shows
        // whatever the start value.
        for (const char* key : {"ignoreQueryingError", "notQuery", "usePppOE", "skipInternetChecking"}) {
            QTest::addRow("%s 0", key) << key << QVariant(0) << false;
            QTest::addRow("%s 2", key) << key << QVariant(2) << true;
            // A boolean's text is no number: it reads as 0.
            QTest::addRow("%s text true", key) << key << QVariant("true") << false;
        }
    }

    void switchesFromInts()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QFETCH(bool, expected);

        ModemSettings settings;
        settings.setSettingsList({entry("MODEMSSRV", key, value)});
        const bool actual = key == "ignoreQueryingError" ? settings.ignoreQueryingErrors()
                            : key == "notQuery"          ? settings.notQueryModem()
                            : key == "usePppOE"          ? settings.usePppOE()
                                                         : settings.getSkipCheckInternetConnection();
        QCOMPARE(actual, expected);
    }

    void emptyList()
    {
        ModemSettings settings;
        settings.setModems(connectionMap({connection("a", "/dev/ttyUSB0")}));
        settings.setConnectionsOrder({"a"});
        settings.setStatusTimeout(7);
        settings.setUsePppOE(true);
        settings.setPppOEPeer("peer");
        const QVariantList before = settings.toSettingsList();
        QCOMPARE(before.size(), 8);

        // The connections go; every other value stays.
        settings.setSettingsList(QVariantList());
        QVERIFY(settings.modems().isEmpty());
        QCOMPARE(settings.toSettingsList(), before.mid(0, 7));
    }

    void ports_data()
    {
        QTest::addColumn<QStringList>("order");
        QTest::addColumn<QList<ModemInfo>>("connections");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("same port, no command ports")
            << QStringList{"A", "B"} << QList<ModemInfo>{connection("A", "/dev/ttyUSB0"), connection("B", "/dev/ttyUSB0")}
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
            << QStringList{"X", "A", ""} << QList<ModemInfo>{connection("A", "/dev/ttyUSB0", "/dev/ttyUSB1")}
            << QStringList{"/dev/ttyUSB0", "/dev/ttyUSB1"};
        QTest::newRow("no order") << QStringList() << QList<ModemInfo>{connection("A", "/dev/ttyUSB0")}
                                  << QStringList();
    }

    void ports()
    {
        QFETCH(QStringList, order);
        QFETCH(QList<ModemInfo>, connections);
        QFETCH(QStringList, expected);

        ModemSettings settings;
        // A new order replaces the old one entirely.
        settings.setConnectionsOrder({"B", "A"});
        settings.setConnectionsOrder(order);
        settings.setModems(connectionMap(connections));
        // Any object sees the same process-wide values.
        QCOMPARE(ModemSettings().ports(), expected);
    }

    // The shipped table: every row complete and loaded, the credentials and
    // init lines of the dialer's form, numbers 0 read as false.
    void operatorTable()
    {
        QFile file(ModemSettings::mncTablePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QJsonParseError error;
        const QJsonArray rows = QJsonDocument::fromJson(file.readAll(), &error).array();
        QCOMPARE(error.error, QJsonParseError::NoError);
        const ModemSettings settings;
        const MncTable table = settings.mncTable();
        QVERIFY(rows.size() > 10);
        QCOMPARE(table.size(), rows.size());

        const QStringList keys{"balancePhone", "mcc", "mnc", "modemInitLine", "name",
                               "password", "selfNumberFromSms", "selfNumberPhone", "userName"};
        const QRegularExpression credential("^[A-Za-z0-9]{3,8}$");
        const QRegularExpression initLine("^AT\\+CGDCONT=1,\"IP\",\"[^\" ]+\"$");
        for (const QJsonValue& value : rows) {
            const QJsonObject row = value.toObject();
            const QByteArray name = row.value("name").toString().toUtf8();
            QCOMPARE(row.keys(), keys);
            QVERIFY2(credential.match(row.value("userName").toString()).hasMatch(), name);
            QVERIFY2(credential.match(row.value("password").toString()).hasMatch(), name);
            QVERIFY2(initLine.match(row.value("modemInitLine").toString()).hasMatch(), name);
            OperatorData found;
            QVERIFY(settings.getOperatorData(row.value("mcc").toInt(), row.value("mnc").toInt(), found));
            QVERIFY2(found.isValid(), name);
            QCOMPARE(found.name(), row.value("name").toString());
            QCOMPARE(found.selfNumberFromSms(), row.value("selfNumberFromSms").toVariant().toBool());
            QCOMPARE(found.modemInitLine(), row.value("modemInitLine").toString());
        }
        OperatorData data;
        QVERIFY(settings.getOperatorData(250, 1, data));
        QCOMPARE(data.selfNumberPhone(), QStringLiteral("*111*0887#"));
        QVERIFY(data.selfNumberFromSms());
        // An unknown code leaves the result as it was; only the computed key
        // counts, so 0 and 25002 find Megafon.
        data.setName(QStringLiteral("untouched"));
        QVERIFY(!settings.getOperatorData(250, 5, data));
        QVERIFY(!settings.getOperatorData(251, 2, data));
        QCOMPARE(data.name(), QStringLiteral("untouched"));
        QVERIFY(settings.getOperatorData(0, 25002, data));
        QCOMPARE(data.name(), QStringLiteral("Мегафон"));

        // Through the map form and back unchanged, without a warning.
        LogRecorder log(LogRecorder::Echo::Nothing);
        QCOMPARE(OperatorData::mncTableFromMap(OperatorData::mncTableToMap(table)), table);
        QVERIFY(log.find("default", QString()).isEmpty());
    }

    void loadTableFromFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("table.json");
        // No validity test here, and a later entry replaces an earlier one.
        QVERIFY(writeFile(path, R"([
            {"mcc": 250, "mnc": 1, "name": "first"},
            {"mcc": 250, "mnc": 0, "name": "no mnc"},
            {"mcc": 250, "mnc": 1, "name": "second"},
            "not an object"
        ])"));

        LogRecorder log(LogRecorder::Echo::Nothing);
        const MncTable table = ModemSettings::loadMncTable(path);
        QCOMPARE(table.keys(), (QList<int>{0, 25000, 25001}));
        QCOMPARE(table.value(25001).name(), QStringLiteral("second"));
        QVERIFY(!table.value(25000).isValid());
        // Every element is logged.
        const QStringList warnings = log.find(QtWarningMsg, "default", QString());
        QCOMPARE(warnings.size(), 4);
        QVERIFY2(warnings.at(0).contains("first"), qPrintable(warnings.at(0)));
        QVERIFY2(warnings.at(3).contains("not an object"), qPrintable(warnings.at(3)));
        QVERIFY(log.find(QtCriticalMsg, "default", QString()).isEmpty());
    }

    void loadBrokenTableThenRetry_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("create");

        QTest::newRow("missing file") << QByteArray() << false;
        QTest::newRow("not JSON") << QByteArray("mcc=250;mnc=1") << true;
        QTest::newRow("empty file") << QByteArray() << true;
    }

    void loadBrokenTableThenRetry()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, create);

        QTemporaryDir dir;
        const QString path = dir.filePath("mnctable.json");
        if (create)
            QVERIFY(writeFile(path, content));
        {
            LogRecorder log(LogRecorder::Echo::Nothing);
            QVERIFY(ModemSettings::loadMncTable(path).isEmpty());
            const QStringList critical = log.find(QtCriticalMsg, "default", QString());
            QCOMPARE(critical.size(), 1);
            QCOMPARE(log.find("default", QString()).size(), 1);
            if (!create)
                QVERIFY2(critical.at(0).contains(path), qPrintable(critical.at(0)));
        }

        // The next call reads the file as it is then.
        QVERIFY(writeFile(path, R"([{"mcc": 250, "mnc": 2, "name": "Мегафон"}])"));
        LogRecorder log(LogRecorder::Echo::Nothing);
        const MncTable table = ModemSettings::loadMncTable(path);
        QCOMPARE(table.keys(), QList<int>{25002});
        QCOMPARE(table.value(25002).name(), QStringLiteral("Мегафон"));
        QVERIFY(log.find(QtCriticalMsg, "default", QString()).isEmpty());
    }

    void lockFiles()
    {
        QTemporaryDir dir;
        const QString port = dir.filePath("ttyUSB0");
        const QString lock = port + ".lock";
        QVERIFY(ModemSettings::waitLockFile(port));
        ModemSettings::createLockFile(port);
        QCOMPARE(zmltest::readFile(lock), QByteArray("LOCK"));
        ModemSettings::removeLockFile(port);
        QVERIFY(!QFile::exists(lock));

        // The lock is nothing but the file, whoever made it. The wait keeps
        // this thread's events turning: a timer lets the port go.
        QVERIFY(writeFile(lock, "HELD"));
        QTimer::singleShot(100, this, [lock] { QFile::remove(lock); });
        QVERIFY(ModemSettings::waitLockFile(port));

        // A lock that stays: the wait gives up after two seconds, and the
        // one who would take it writes nothing.
        QVERIFY(writeFile(lock, "HELD"));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!ModemSettings::waitLockFile(port));
        QVERIFY2(timer.elapsed() >= 2000, qPrintable(QString::number(timer.elapsed())));
        ModemSettings::createLockFile(port);
        QVERIFY2(timer.elapsed() >= 4000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(zmltest::readFile(lock), QByteArray("HELD"));
    }

    void concurrentUse()
    {
        // Writers replace the whole settings list; readers must always see one
        // writer's list, never a mix, and nothing may deadlock.
        const int writers = 3;
        const int readers = 3;
        const int rounds = 300;
        QAtomicInt mixed(0);

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
                // The order and the map may come from different writers (two
                // locks), but the map holds one connection without a command
                // port: at most its port and an empty name.
                if (list.size() > 8 || settings.ports().size() > 2)
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
        const ModemSettings settings;
        QCOMPARE(settings.modems().size(), 1);
        QCOMPARE(settings.statusTimeout() % 100000, rounds - 1);
    }

    void modemsPath()
    {
        QTemporaryDir dir;
        const QString config = dir.filePath("zel5.conf");
        QVERIFY(writeFile(config, "workDir=/var/lib/x\n"));
        const QByteArray saved = qgetenv("QT5EXT_INITCONFIG");
        qputenv("QT5EXT_INITCONFIG", config.toLocal8Bit());
        const ModemsEnvs envs;
        const QString path = envs.modemsPath();
        if (saved.isNull())
            qunsetenv("QT5EXT_INITCONFIG");
        else
            qputenv("QT5EXT_INITCONFIG", saved);

        QCOMPARE(path, QStringLiteral("/var/lib/x/modems"));
        QCOMPARE(envs.installationName(), QStringLiteral("orvel5zel"));
    }
};

QTEST_GUILESS_MAIN(TestModemSettings)
#include "tst_modemsettings.moc"
