// The Debian packages of the library, its development files and its tools:
// names, control fields, dependencies, contents, and the packaged tool
// running from a scratch root with only the packaged libraries.
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString VERSION = QStringLiteral(PACKAGE_VERSION);
const QString RUNTIME = QStringLiteral("libzelmodemslib" SONAME_VERSION);
const QString SIMULATOR = QStringLiteral("libzelmodemssim" SONAME_VERSION);
const QString DEVELOPMENT = QStringLiteral("libzelmodemslib-dev");
const QString TOOLS = QStringLiteral("zelmodems-tools");

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

Run run(const QString& program, const QStringList& args, const QProcessEnvironment& env = QProcessEnvironment(),
        const QString& workDir = QString(), int timeoutMs = 120000)
{
    QProcess process;
    if (!env.isEmpty())
        process.setProcessEnvironment(env);
    if (!workDir.isEmpty())
        process.setWorkingDirectory(workDir);
    process.start(program, args);
    Run result;
    if (!process.waitForStarted(10000))
        return result;
    if (!process.waitForFinished(timeoutMs))
        process.kill();
    process.waitForFinished(2000);
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

// One line of `dpkg-deb -c`: permissions ... path [-> target].
struct Entry
{
    QString path;     // without the leading "."
    QString target;   // of a symbolic link
    bool directory = false;
};

} // namespace

class TestPackages : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_packages;                  // folder of the .deb files
    QMap<QString, QString> m_files;      // package name -> .deb path
    QMap<QString, QList<Entry>> m_contents;

    QString field(const QString& package, const QString& name) const
    {
        return run(QStringLiteral("dpkg-deb"), {QStringLiteral("-f"), m_files.value(package), name}).out.trimmed();
    }

    // The entry of `package` whose path ends with `suffix`.
    Entry find(const QString& package, const QString& suffix) const
    {
        for (const Entry& e : m_contents.value(package)) {
            if (e.path.endsWith(suffix))
                return e;
        }
        return Entry();
    }

    static QStringList dependencyNames(const QString& depends)
    {
        QStringList names;
        for (const QString& item : depends.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            // "libfoo (>= 1)" or alternatives "a | b": the first name.
            names << item.trimmed().split(QRegularExpression(QStringLiteral("[ |(]"))).value(0);
        }
        return names;
    }

private slots:
    void initTestCase()
    {
        for (const char* tool : {"dpkg-deb", "dpkg", "dpkg-query"}) {
            if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
                QSKIP(qPrintable(QStringLiteral("%1 is not installed (Debian's dpkg tools are needed)").arg(tool)));
        }
        QVERIFY(m_dir.isValid());
        m_packages = qEnvironmentVariable("ZELMODEMS_PACKAGES_DIR");
        if (m_packages.isEmpty()) {
            m_packages = m_dir.filePath(QStringLiteral("packages"));
            const Run cpack = run(QStringLiteral(CPACK_COMMAND),
                                  {QStringLiteral("-G"), QStringLiteral("DEB"), QStringLiteral("--config"),
                                   QStringLiteral(BUILD_DIR "/CPackConfig.cmake"), QStringLiteral("-B"), m_packages},
                                  QProcessEnvironment(), QStringLiteral(BUILD_DIR), 240000);
            QVERIFY2(cpack.exitCode == 0, qPrintable(cpack.out + cpack.err));
        }
        const QString arch = run(QStringLiteral("dpkg"), {QStringLiteral("--print-architecture")}).out.trimmed();
        for (const QString& package : {RUNTIME, SIMULATOR, DEVELOPMENT, TOOLS}) {
            const QString file = QStringLiteral("%1/%2_%3_%4.deb").arg(m_packages, package, VERSION, arch);
            QVERIFY2(QFileInfo::exists(file), qPrintable(file));
            m_files.insert(package, file);
            const Run listing = run(QStringLiteral("dpkg-deb"), {QStringLiteral("-c"), file});
            QCOMPARE(listing.exitCode, 0);
            QList<Entry> entries;
            for (const QString& line : listing.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
                // drwxr-xr-x root/root 0 2021-05-11 13:12 ./usr/lib/ [-> target]
                const QStringList parts = line.split(QRegularExpression(QStringLiteral("\\s+")));
                Entry e;
                e.directory = line.startsWith(QLatin1Char('d'));
                e.path = parts.value(5).mid(1);
                if (parts.value(6) == QLatin1String("->"))
                    e.target = parts.value(7);
                entries << e;
            }
            m_contents.insert(package, entries);
        }
    }

    void controlFields_data()
    {
        QTest::addColumn<QString>("package");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QStringList>("depends");
        QTest::newRow("runtime") << RUNTIME << "libs"
                                 << QStringList{"libqt5core5a", "libqt5serialport5", "libstdc++6", "libc6"};
        QTest::newRow("development")
            << DEVELOPMENT << "libdevel"
            << QStringList{RUNTIME + " (= " + VERSION + ")", SIMULATOR + " (= " + VERSION + ")", "qtbase5-dev",
                           "libqt5serialport5-dev"};
        QTest::newRow("simulator") << SIMULATOR << "libs" << QStringList{"libqt5core5a", "libstdc++6"};
        QTest::newRow("tools") << TOOLS << "utils"
                               << QStringList{RUNTIME + " (= " + VERSION + ")", SIMULATOR + " (= " + VERSION + ")",
                                              "libqt5core5a"};
    }

    void controlFields()
    {
        QFETCH(QString, package);
        QFETCH(QString, section);
        QFETCH(QStringList, depends);
        QCOMPARE(field(package, QStringLiteral("Package")), package);
        QCOMPARE(field(package, QStringLiteral("Version")), VERSION);
        QCOMPARE(field(package, QStringLiteral("Section")), section);
        QVERIFY(!field(package, QStringLiteral("Maintainer")).isEmpty());
        QVERIFY(!field(package, QStringLiteral("Description")).isEmpty());

        const QString dependsField = field(package, QStringLiteral("Depends"));
        QStringList listed;
        for (const QString& item : dependsField.split(QLatin1Char(',')))
            listed << item.trimmed();
        for (const QString& expected : depends) {
            const bool exact = expected.contains(QLatin1Char('('));
            bool found = false;
            for (const QString& item : listed)
                found |= exact ? item == expected : item.section(QLatin1Char(' '), 0, 0) == expected;
            QVERIFY2(found, qPrintable(expected + " not in: " + dependsField));
        }
        // Every other package named is a real one: the machine that built
        // the packages has it installed.
        for (const QString& name : dependencyNames(dependsField)) {
            if (name == RUNTIME || name == SIMULATOR)
                continue;
            const Run query = run(QStringLiteral("dpkg-query"), {QStringLiteral("-W"), name});
            QVERIFY2(query.exitCode == 0, qPrintable(name + ": " + query.err));
        }
    }

    void runtimeDeclaresItsLibrary()
    {
        // Packages built against the library get a dependency on it.
        const Run shlibs = run(QStringLiteral("dpkg-deb"),
                               {QStringLiteral("--info"), m_files.value(RUNTIME), QStringLiteral("shlibs")});
        QCOMPARE(shlibs.exitCode, 0);
        QVERIFY2(shlibs.out.split(QLatin1Char('\n'))
                     .contains(QStringLiteral("libzelmodemslib %1 %2 (>= %3)").arg(SONAME_VERSION, RUNTIME, VERSION)),
                 qPrintable(shlibs.out));
    }

    void contents_data()
    {
        QTest::addColumn<QString>("package");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QString>("linkTarget");   // empty: a regular file
        const QString so = QStringLiteral("libzelmodemslib.so");
        QTest::newRow("library") << RUNTIME << "/" + so + "." + VERSION << QString();
        QTest::newRow("soname link") << RUNTIME << "/" + so + "." SONAME_VERSION << so + "." + VERSION;
        QTest::newRow("translation") << RUNTIME << "/share/qt5ext/translations/zelmodemslib_ru.qm" << QString();
        if (!SYSTEM_PLATFORM) {
            QTest::newRow("qt5ext stand-in") << RUNTIME << "/libqt5ext.so.1" << "libqt5ext.so.1.0.0";
            QTest::newRow("zelbus stand-in") << RUNTIME << "/libzelbus.so.1" << "libzelbus.so.1.0.0";
        }
        QTest::newRow("development link") << DEVELOPMENT << "/" + so << so + "." SONAME_VERSION;
        QTest::newRow("header") << DEVELOPMENT << "/include/zelmodemslib/atmodem.h" << QString();
        QTest::newRow("export header") << DEVELOPMENT << "/include/zelmodemslib/zelmodemslib_export.h" << QString();
        QTest::newRow("finder header") << DEVELOPMENT << "/include/zelmodemslib/modemsfinder.h" << QString();
        QTest::newRow("cmake package") << DEVELOPMENT << "/cmake/ZelModemsLib/ZelModemsLibConfig.cmake" << QString();
        QTest::newRow("cmake version") << DEVELOPMENT << "/cmake/ZelModemsLib/ZelModemsLibConfigVersion.cmake"
                                       << QString();
        QTest::newRow("pkg-config") << DEVELOPMENT << "/pkgconfig/zelmodemslib.pc" << QString();
        QTest::newRow("zelmodems") << TOOLS << "/bin/zelmodems" << QString();
        QTest::newRow("modemsim") << TOOLS << "/bin/modemsim" << QString();
        QTest::newRow("simulator library") << SIMULATOR << "/libzelmodemssim.so." SONAME_VERSION
                                           << "libzelmodemssim.so." + VERSION;
        QTest::newRow("simulator header") << DEVELOPMENT << "/include/zelmodemslib/simmodem.h" << QString();
        QTest::newRow("simulator cmake targets")
            << DEVELOPMENT << "/cmake/ZelModemsLib/ZelModemsLibSimulatorTargets.cmake" << QString();
        for (const QString& package : {RUNTIME, SIMULATOR, DEVELOPMENT, TOOLS})
            QTest::newRow(qPrintable(package + " copyright"))
                << package << "/share/doc/" + package + "/copyright" << QString();
    }

    void contents()
    {
        QFETCH(QString, package);
        QFETCH(QString, suffix);
        QFETCH(QString, linkTarget);
        const Entry e = find(package, suffix);
        QVERIFY2(!e.path.isEmpty(), qPrintable(suffix + " missing from " + package));
        QVERIFY(!e.directory);
        QCOMPARE(e.target, linkTarget);
    }

    void eachFileInOnePackage()
    {
        // dpkg refuses to install two packages that own the same file.
        QMap<QString, QString> owner;
        for (auto it = m_contents.cbegin(); it != m_contents.cend(); ++it) {
            for (const Entry& e : it.value()) {
                if (e.directory)
                    continue;
                QVERIFY2(!owner.contains(e.path),
                         qPrintable(e.path + " in " + owner.value(e.path) + " and " + it.key()));
                owner.insert(e.path, it.key());
            }
        }
        // The runtime package carries no development files, the tools none
        // of the library.
        for (const Entry& e : m_contents.value(RUNTIME))
            QVERIFY2(!e.path.contains(QStringLiteral("/include/")) && !e.path.endsWith(QStringLiteral(".so")),
                     qPrintable(e.path));
        QStringList toolFiles;
        for (const Entry& e : m_contents.value(TOOLS)) {
            QVERIFY2(e.directory || e.path.contains(QStringLiteral("/bin/"))
                         || e.path.contains(QStringLiteral("/share/doc/"))
                         || e.path.contains(QStringLiteral("/share/man/man1/"))
                         || e.path.contains(QStringLiteral("/share/bash-completion/completions/"))
                         || e.path.endsWith(QStringLiteral("/zelmodems_ru.qm")),
                     qPrintable(e.path));
            toolFiles << e.path.section(QLatin1Char('/'), -2);
        }
        for (const char* file : { "man1/zelmodems.1", "man1/modemsim.1", "completions/zelmodems", "completions/modemsim" })
            QVERIFY2(toolFiles.contains(QLatin1String(file)), file);
    }

    void packagedToolRunsFromScratchRoot()
    {
        const QString root = m_dir.filePath(QStringLiteral("root"));
        for (const QString& file : m_files) {
            const Run unpack = run(QStringLiteral("dpkg"), {QStringLiteral("-x"), file, root});
            QVERIFY2(unpack.exitCode == 0, qPrintable(unpack.err));
        }
        const QString library = find(RUNTIME, QStringLiteral("/libzelmodemslib.so." SONAME_VERSION)).path;
        const QString libDir = root + QFileInfo(library).path();
        const QString tool = root + find(TOOLS, QStringLiteral("/bin/zelmodems")).path;
        QVERIFY(QFileInfo(tool).isExecutable());

        // Only the packaged libraries: nothing of the build tree.
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("LD_LIBRARY_PATH"), libDir);
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        env.remove(QStringLiteral("QT5EXT_TRANSLATIONS_DIR"));
        const Run version = run(tool, {QStringLiteral("--version")}, env);
        QCOMPARE(version.exitCode, 0);
        QCOMPARE(version.out, QStringLiteral("zelmodems %1\n").arg(VERSION));
        const Run encode = run(tool, {QStringLiteral("pdu"), QStringLiteral("encode"), QStringLiteral("+79161234567"),
                                      QStringLiteral("Hello")},
                               env);
        QCOMPARE(encode.out, QStringLiteral("AT+CMGS=18\n0001000B919761214365F7000005C8329BFD06\n"));

        // The main job, from the packaged files.
        const Run demo = run(tool, {QStringLiteral("demo"), QStringLiteral("--json")}, env, QString(), 60000);
        QVERIFY2(demo.exitCode == 0, qPrintable(demo.err));
        const QJsonObject result = QJsonDocument::fromJson(demo.out.toUtf8()).object();
        QCOMPARE(result.value(QStringLiteral("steps")).toArray().size(), 8);

        // The pkg-config file finds its prefix from where it lies.
        if (QStandardPaths::findExecutable(QStringLiteral("pkg-config")).isEmpty())
            QSKIP("pkg-config is not installed");
        const QString pc = root + find(DEVELOPMENT, QStringLiteral("/pkgconfig/zelmodemslib.pc")).path;
        QProcessEnvironment pcEnv = QProcessEnvironment::systemEnvironment();
        pcEnv.insert(QStringLiteral("PKG_CONFIG_PATH"), QFileInfo(pc).path());
        const Run libs = run(QStringLiteral("pkg-config"), {QStringLiteral("--libs"), QStringLiteral("zelmodemslib")},
                             pcEnv);
        QVERIFY2(libs.exitCode == 0, qPrintable(libs.err));
        QVERIFY2(libs.out.contains(QStringLiteral("-lzelmodemslib")), qPrintable(libs.out));
        QVERIFY2(libs.out.contains(QStringLiteral("-L") + QDir(libDir).canonicalPath())
                     || libs.out.contains(QStringLiteral("-L") + libDir),
                 qPrintable(libs.out));
    }
};

QTEST_GUILESS_MAIN(TestPackages)
#include "tst_packages.moc"
