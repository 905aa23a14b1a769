// The wvdialconf runner against a stand-in tool (and the real one when the
// system has it). A stand-in `sudo` first on PATH records the dialer stops,
// so that no process of the machine is touched.
#include "wvdialconfwrapper.h"

#include "logrecorder.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <memory>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using zmltest::readFile;
using zmltest::writeScript;

} // namespace

class TestWvDialConfWrapper : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_work;
    std::unique_ptr<zmltest::LogRecorder> m_log;

    // Messages of `type` (default category) that start with `prefix`.
    QStringList messagesOf(QtMsgType type, const QString& prefix) const
    {
        QStringList found;
        for (const QString& text : m_log->find(type, QStringLiteral("default"), prefix))
            if (text.startsWith(prefix))
                found << text;
        return found;
    }

    QString path(const QString& name) const { return m_dir.filePath(name); }
    QString searchFile() const { return m_work + QStringLiteral("/modems/wvdial.conf.srch"); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_work = QDir(path(QStringLiteral("work"))).canonicalPath();
        QVERIFY(QDir().mkpath(path(QStringLiteral("work/modems"))));
        m_work = QFileInfo(path(QStringLiteral("work"))).canonicalFilePath();

        // The appliance's configuration, with its work directory here.
        QFile conf(path(QStringLiteral("zel5.conf")));
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nworkDir=" + m_work.toUtf8() + "\n");
        conf.close();
        qputenv("QT5EXT_INITCONFIG", path(QStringLiteral("zel5.conf")).toLocal8Bit());

        QVERIFY(QDir().mkpath(path(QStringLiteral("bin"))));
        QVERIFY(writeScript(path(QStringLiteral("bin/sudo")),
                            "echo \"$*\" >> \"" + path(QStringLiteral("sudo.log")).toUtf8() + "\"\n"));
        qputenv("PATH", path(QStringLiteral("bin")).toLocal8Bit() + ":" + qgetenv("PATH"));
        qputenv("TOOL_OUT", m_dir.path().toLocal8Bit());

        // The stand-in tool: notes how it was run and prints the prepared
        // output on both channels.
        QVERIFY(writeScript(path(QStringLiteral("tool")),
                            "cp \"$TOOL_OUT/sudo.log\" \"$TOOL_OUT/sudo.seen\"\n"
                            "pwd > \"$TOOL_OUT/cwd\"\n"
                            "echo $# > \"$TOOL_OUT/argc\"\n"
                            "printf '%s' \"$1\" > \"$TOOL_OUT/arg1\"\n"
                            "cat \"$TOOL_OUT/stdout.bin\"\n"
                            "cat \"$TOOL_OUT/stderr.bin\" >&2\n"));
        // One that runs until it is told to finish.
        QVERIFY(writeScript(path(QStringLiteral("slowtool")),
                            "while [ ! -f \"$TOOL_OUT/go\" ]; do sleep 0.05; done\n"
                            "echo done > \"$TOOL_OUT/done\"\n"));
    }

    void init()
    {
        QFile::remove(path(QStringLiteral("sudo.log")));
        m_log.reset();
        m_log.reset(new zmltest::LogRecorder);
    }

    // The dialers are stopped first, the tool gets the search file as its
    // only argument and runs in the work directory, and each output channel
    // is logged as lines (up to a NUL) and as raw text.
    void runsTool_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QString>("lines");
        QTest::addColumn<QString>("raw");
        QTest::newRow("empty line kept") << QByteArray("a\n\nb") << QStringLiteral("[\"a\", \"\", \"b\"]")
                                         << QStringLiteral("a\\n\\nb");
        QTest::newRow("text ends at NUL") << QByteArray("x\0y", 3) << QStringLiteral("[\"x\"]")
                                          << QStringLiteral("x\\x00y");
        QTest::newRow("UTF-8") << QByteArray("Модем\r\n") << QStringLiteral("[\"Модем\r\", \"\"]")
                               << QStringLiteral("Модем\\r\\n");
    }
    void runsTool()
    {
        QFETCH(QByteArray, output);
        QFETCH(QString, lines);
        QFETCH(QString, raw);
        QFile out(path(QStringLiteral("stdout.bin")));
        QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(output);
        out.close();
        QFile err(path(QStringLiteral("stderr.bin")));
        QVERIFY(err.open(QIODevice::WriteOnly | QIODevice::Truncate));
        err.write("no modem\nhere");
        err.close();

        WvDialConfWrapper::WVDIAL_COMMAND = path(QStringLiteral("tool"));
        {
            WvDialConfWrapper wrapper;
            wrapper.start(30000);
        }
        WvDialConfWrapper::WVDIAL_COMMAND = QStringLiteral("/usr/bin/wvdialconf");

        const QByteArray stops = "killall pppd\nkillall wvdial\n";
        QCOMPARE(readFile(path(QStringLiteral("sudo.log"))), stops);
        QCOMPARE(readFile(path(QStringLiteral("sudo.seen"))), stops);
        QCOMPARE(readFile(path(QStringLiteral("argc"))), QByteArray("1\n"));
        QCOMPARE(QString::fromUtf8(readFile(path(QStringLiteral("arg1")))), searchFile());
        QCOMPARE(QString::fromUtf8(readFile(path(QStringLiteral("cwd")))).trimmed(), m_work);

        QCOMPARE(messagesOf(QtDebugMsg, QStringLiteral("wvdial\t")),
                 QStringList({QStringLiteral("wvdial\t") + lines + QLatin1Char('\t') + raw}));
        QCOMPARE(messagesOf(QtCriticalMsg, QStringLiteral("wvdial error")),
                 QStringList({QStringLiteral("wvdial error\t[\"no modem\", \"here\"]\tno modem\\nhere")}));
    }

    // start(0) stops the dialers and starts the tool, and does not wait.
    void startWithoutWaiting()
    {
        QFile::remove(path(QStringLiteral("go")));
        QFile::remove(path(QStringLiteral("done")));
        WvDialConfWrapper::WVDIAL_COMMAND = path(QStringLiteral("slowtool"));
        WvDialConfWrapper wrapper;
        WvDialConfWrapper::WVDIAL_COMMAND = QStringLiteral("/usr/bin/wvdialconf");
        wrapper.start(0);
        QCOMPARE(readFile(path(QStringLiteral("sudo.log"))), QByteArray("killall pppd\nkillall wvdial\n"));
        // The tool cannot have finished: it waits for the go file.
        QVERIFY(!QFile::exists(path(QStringLiteral("done"))));
        QFile go(path(QStringLiteral("go")));
        QVERIFY(go.open(QIODevice::WriteOnly));
        go.close();
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path(QStringLiteral("done"))), 10000);
    }

    // A tool that is not there leaves only a log line.
    void missingTool()
    {
        WvDialConfWrapper::WVDIAL_COMMAND = path(QStringLiteral("no-such-tool"));
        WvDialConfWrapper wrapper;
        WvDialConfWrapper::WVDIAL_COMMAND = QStringLiteral("/usr/bin/wvdialconf");
        wrapper.start(5000);
        QCOMPARE(readFile(path(QStringLiteral("sudo.log"))), QByteArray("killall pppd\nkillall wvdial\n"));
        QCOMPARE(messagesOf(QtWarningMsg, QStringLiteral("wvdial\t")).size(), 1);
    }

    // Debian's wvdialconf, when installed: it is told the search file and
    // says so on its standard output.
    void realWvdialconf()
    {
        if (!QFileInfo(QStringLiteral("/usr/bin/wvdialconf")).isExecutable())
            QSKIP("wvdialconf is not installed");
        WvDialConfWrapper wrapper;
        wrapper.start(60000);
        QCOMPARE(readFile(path(QStringLiteral("sudo.log"))), QByteArray("killall pppd\nkillall wvdial\n"));
        const QString editing = QStringLiteral("Editing `%1'.").arg(searchFile());
        bool told = false;
        for (const QString& text : messagesOf(QtDebugMsg, QStringLiteral("wvdial\t")))
            told = told || text.contains(editing);
        QVERIFY2(told, qPrintable(messagesOf(QtDebugMsg, QStringLiteral("wvdial\t")).join(QLatin1Char('\n'))));
    }
};

QTEST_MAIN(TestWvDialConfWrapper)
#include "tst_wvdialconfwrapper.moc"
