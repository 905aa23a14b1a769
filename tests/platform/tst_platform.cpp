// The platform stand-ins: the behaviour the library relies on.
#include <qt5ext/appversionmanager.h>
#include <qt5ext/initconfig.h>
#include <qt5ext/logformat.h>
#include <qt5ext/sysutils.h>
#include <zelbus/clientstate.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

class TestPlatform : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_lockDir;

    static void writeFile(const QString& path, const QByteArray& data)
    {
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(data);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_lockDir.isValid());
        qputenv("QT5EXT_LOCK_DIR", QFile::encodeName(m_lockDir.path()));
    }

    void lockFileNames_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("file");
        QTest::newRow("bare name") << "ttyUSB0" << "LCK..ttyUSB0";
        QTest::newRow("device path") << "/dev/ttyUSB0" << "LCK..ttyUSB0";
        QTest::newRow("pty") << "/dev/pts/3" << "LCK..pts_3";
    }

    void lockFileNames()
    {
        QFETCH(QString, port);
        QFETCH(QString, file);
        QCOMPARE(qt5ext::SysUtils::portLockFile(port), QDir(m_lockDir.path()).filePath(file));
    }

    void unlockPort_data()
    {
        QTest::addColumn<QByteArray>("content");   // empty: no lock file
        QTest::addColumn<bool>("force");
        QTest::addColumn<bool>("result");
        QTest::addColumn<bool>("lockRemains");

        // A pid that cannot be running: beyond the kernel's pid_max.
        const QByteArray deadPid = "4194305\nsomeapp\nhost\n";
        const QByteArray livePid = QByteArray::number(qint64(::getppid())) + "\nparent\nhost\n";
        QTest::newRow("nothing locked") << QByteArray() << false << true << false;
        QTest::newRow("stale text lock") << deadPid << false << true << false;
        QTest::newRow("stale binary lock") << QByteArray("\x01\x00\x40\x00", 4) << false << true << false;
        QTest::newRow("lock of a live process") << livePid << false << false << true;
        QTest::newRow("forced") << livePid << true << true << false;
        QTest::newRow("unreadable pid") << QByteArray("garbage") << false << true << false;
    }

    void unlockPort()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, force);
        QFETCH(bool, result);
        QFETCH(bool, lockRemains);
        const QString lock = qt5ext::SysUtils::portLockFile(QStringLiteral("ttyUSB7"));
        QFile::remove(lock);
        if (!content.isEmpty())
            writeFile(lock, content);
        QCOMPARE(qt5ext::SysUtils::unlockPort(QStringLiteral("/dev/ttyUSB7"), force), result);
        QCOMPARE(QFile::exists(lock), lockRemains);
    }

    void initConfig()
    {
        QTemporaryDir dir;
        const QString conf = dir.filePath(QStringLiteral("zel5.conf"));
        writeFile(conf, "workDir=/var/lib/x\nlocale=ru_RU\n");

        // Without a file: the installation's defaults.
        qputenv("QT5EXT_INITCONFIG", QFile::encodeName(dir.filePath(QStringLiteral("missing.conf"))));
        qt5ext::InitConfig defaults(QStringLiteral("orvel5zel"), false);
        QCOMPARE(defaults.workDir(), QStringLiteral("/opt/orvel5zel/var"));
        QCOMPARE(defaults.loggerPath(), QStringLiteral("/opt/orvel5zel/var/log"));

        qputenv("QT5EXT_INITCONFIG", QFile::encodeName(conf));
        qt5ext::InitConfig byName(QStringLiteral("orvel5zel"), false);
        QCOMPARE(byName.settingsFileName(), conf);
        QCOMPARE(byName.workDir(), QStringLiteral("/var/lib/x"));
        QCOMPARE(byName.runPath(), QStringLiteral("/var/lib/x/run"));
        QCOMPARE(byName.locale(), QStringLiteral("ru_RU"));
        QVERIFY(!byName.setlocale(QStringLiteral("en_US")));   // read-only

        qunsetenv("QT5EXT_INITCONFIG");
        qt5ext::InitConfig byPath(QStringLiteral("/opt/orvel5zel/etc/zel5.conf"), false);
        QCOMPARE(byPath.settingsFileName(), QStringLiteral("/opt/orvel5zel/etc/zel5.conf"));
        QCOMPARE(byPath.installationName(), QStringLiteral("orvel5zel"));

        qt5ext::InitConfig writable(conf, true);
        QVERIFY(writable.setlocale(QStringLiteral("en_US")));
        QCOMPARE(qt5ext::InitConfig(conf, false).locale(), QStringLiteral("en_US"));
    }

    void logFormatters_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("codec");
        QTest::addColumn<QString>("text");
        QTest::newRow("line ends") << QByteArray("AT\r\r\nOK\r\n") << QByteArray() << "AT\\r\\r\\nOK\\r\\n";
        QTest::newRow("control bytes") << QByteArray("a\x1a\x00z", 4) << QByteArray() << "a\\x1a\\x00z";
        QTest::newRow("utf-8") << QByteArray("\xd0\x91") << QByteArray("UTF-8") << QString(QChar(0x0411));
        QTest::newRow("latin-1") << QByteArray("\xd0") << QByteArray() << QString(QChar(0xd0));
    }

    void logFormatters()
    {
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, codec);
        QFETCH(QString, text);
        QCOMPARE(logbinary(data, codec.isEmpty() ? nullptr : codec.constData()), text);
    }

    void listAndVariantFormatters()
    {
        QCOMPARE(loglist({QStringLiteral("ttyS0"), QString()}), QStringLiteral("[\"ttyS0\", \"\"]"));
        QVariantMap map;
        map.insert(QStringLiteral("a"), 1);
        map.insert(QStringLiteral("b"), QStringList{QStringLiteral("x")});
        QCOMPARE(logvariant(map), QStringLiteral("{\"a\":1,\"b\":[\"x\"]}"));
        QCOMPARE(logvariant(QStringLiteral("s")), QStringLiteral("\"s\""));
        QCOMPARE(logvariant(QVariant()), QStringLiteral("null"));
        QString line;
        QTextStream(&line) << "a" << logtab << "b";
        QCOMPARE(line, QStringLiteral("a\tb"));
    }

    void versionRegistry()
    {
        const qt5ext::AppVersion v(QStringLiteral("1.2.3"), QStringLiteral("2021-05-11T13:12:16"));
        QVERIFY(!qt5ext::AppVersion().isValid());
        QCOMPARE(qt5ext::AppVersionManager::addVersion(QStringLiteral("tst"), v), v);
        QCOMPARE(qt5ext::AppVersionManager::version(QStringLiteral("tst")), v);
        QVERIFY(qt5ext::AppVersionManager::versions().contains(QStringLiteral("tst")));
        const int before = qt5ext::AppVersionManager::localisations().count(QStringLiteral("tst"));
        qt5ext::AppVersionManager::addLocalisation(QStringLiteral("tst"));
        qt5ext::AppVersionManager::addLocalisation(QStringLiteral("tst"));
        QCOMPARE(qt5ext::AppVersionManager::localisations().count(QStringLiteral("tst")), before + 2);
        // No translation file of that name exists.
        QVERIFY(!qt5ext::AppVersionManager::isLocalisationInstalled(QStringLiteral("tst")));
    }

    void busClientState()
    {
        const zelbus::ClientState state(zelbus::BUSNAME_ZELMODEMS, QStringLiteral("{}"));
        QVERIFY(!zelbus::BUSNAME_ZELMODEMS.isEmpty());
        QCOMPARE(state.owner(), zelbus::BUSNAME_ZELMODEMS);
        QCOMPARE(state.state(), QStringLiteral("{}"));
    }
};

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"
