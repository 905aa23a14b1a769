// The platform stand-ins: the behaviour the library relies on.
#include <qt5ext/sysutils.h>

#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

class TestPlatform : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_lockDir;

private slots:
    void initTestCase()
    {
        QVERIFY(m_lockDir.isValid());
        qputenv("QT5EXT_LOCK_DIR", QFile::encodeName(m_lockDir.path()));
    }

    void unlockPort_data()
    {
        QTest::addColumn<QByteArray>("content");   // empty: no lock file
        QTest::addColumn<bool>("force");
        QTest::addColumn<bool>("result");
        QTest::addColumn<bool>("lockRemains");
        QTest::addColumn<int>("ageSeconds");   // of the lock file

        // A pid that cannot be running: beyond the kernel's pid_max.
        const QByteArray deadPid = "4194305\nsomeapp\nhost\n";
        const QByteArray livePid = QByteArray::number(qint64(::getppid())) + "\nparent\nhost\n";
        QTest::newRow("nothing locked") << QByteArray() << false << true << false << 0;
        QTest::newRow("stale text lock") << deadPid << false << true << false << 0;
        QTest::newRow("stale binary lock") << QByteArray("\x01\x00\x40\x00", 4) << false << true << false << 0;
        QTest::newRow("lock of a live process") << livePid << false << false << true << 0;
        QTest::newRow("forced") << livePid << true << true << false << 0;
        // Its owner may still be writing its pid.
        QTest::newRow("unreadable pid, just written") << QByteArray("garbage") << false << false << true << 0;
        QTest::newRow("unreadable pid, a minute old") << QByteArray("garbage") << false << true << false << 60;
    }

    void unlockPort()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, force);
        QFETCH(bool, result);
        QFETCH(bool, lockRemains);
        QFETCH(int, ageSeconds);
        const QString lock = qt5ext::SysUtils::portLockFile(QStringLiteral("ttyUSB7"));
        QFile::remove(lock);
        if (!content.isEmpty()) {
            QFile file(lock);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush());
            QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds), QFileDevice::FileModificationTime));
        }
        QCOMPARE(qt5ext::SysUtils::unlockPort(QStringLiteral("/dev/ttyUSB7"), force), result);
        QCOMPARE(QFile::exists(lock), lockRemains);
    }
};

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"
