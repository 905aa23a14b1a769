// ModemSettings: the process-wide settings and their settings-list form, the
// port list, the operator table and its resource, the port lock files.
#include "logrecorder.h"
#include "modemsettings.h"
#include "testfiles.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

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

    void switchesFromInts()
    {
        // Any number but 0 is true; a value not applied would show as its
        // start value for one of the two.
        ModemSettings settings;
        for (const int value : {0, 2}) {
            settings.setSettingsList({entry("MODEMSSRV", "ignoreQueryingError", value),
                                      entry("MODEMSSRV", "notQuery", value), entry("MODEMSSRV", "usePppOE", value),
                                      entry("MODEMSSRV", "skipInternetChecking", value)});
            const QList<bool> read{settings.ignoreQueryingErrors(), settings.notQueryModem(), settings.usePppOE(),
                                   settings.getSkipCheckInternetConnection()};
            QCOMPARE(read, (QList<bool>{value != 0, value != 0, value != 0, value != 0}));
        }
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

        // Every row valid and loaded as it stands; init lines of the one form
        // the dialer takes.
        const QRegularExpression initLine("^AT\\+CGDCONT=1,\"IP\",\"[^\" ]+\"$");
        for (const QJsonValue& value : rows) {
            const QJsonObject row = value.toObject();
            const QByteArray name = row.value("name").toString().toUtf8();
            QVERIFY2(initLine.match(row.value("modemInitLine").toString()).hasMatch(), name);
            OperatorData found;
            QVERIFY(settings.getOperatorData(row.value("mcc").toInt(), row.value("mnc").toInt(), found));
            QVERIFY2(found.isValid(), name);
            QCOMPARE(found.toMap(), OperatorData::fromMap(row.toVariantMap()).toMap());
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
    }

    void loadBrokenTableThenRetry()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("mnctable.json");
        QVERIFY(writeFile(path, "mcc=250;mnc=1"));
        {
            LogRecorder log(LogRecorder::Echo::Nothing);
            QVERIFY(ModemSettings::loadMncTable(path).isEmpty());
            const QStringList critical = log.find(QtCriticalMsg, "default", QString());
            QCOMPARE(critical.size(), 1);
            QCOMPARE(log.find("default", QString()).size(), 1);
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
};

QTEST_GUILESS_MAIN(TestModemSettings)
#include "tst_modemsettings.moc"
