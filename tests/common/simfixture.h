#pragma once
// Helpers shared by the driver tests: a lock directory of the test's own, a
// simulated modem opened through a real serial port, and a recorder of the
// log messages written meanwhile.
#include "atmodem.h"
#include "logrecorder.h"
#include "ownlink.h"
#include "simmodem.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QList>
#include <QString>
#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(zelmodems::sim::Make)
Q_DECLARE_METATYPE(QList<QByteArray>)

namespace zmltest {

// The name QSerialPort gives a device path: "/dev/" dropped.
inline QString portNameOf(const QString& path)
{
    return path.startsWith(QLatin1String("/dev/")) ? path.mid(5) : path;
}

// A directory of the test's own for the port locks, so that tests running
// side by side (and the machine's own locks) never meet.
class LockDir
{
public:
    // Points the port locking at the directory; false when it could not be
    // made.
    bool install()
    {
        if (!m_dir.isValid())
            return false;
        qputenv("QT5EXT_LOCK_DIR", QFile::encodeName(m_dir.path()));
        return true;
    }
    QString filePath(const QString& name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
};

// A time stamp `minutes` before now, in whole seconds: the time stamp of an
// SMS has no milliseconds.
inline QDateTime minutesAgo(int minutes)
{
    const QDateTime now = QDateTime::currentDateTime();
    return now.addMSecs(-now.time().msec()).addSecs(-60 * minutes);
}

// Starts the simulator, opens the driver on it and forgets the commands of
// the opening dialogue, so that a test sees only its own commands.
inline bool startAndOpen(zelmodems::sim::SimModem& sim, AtModem& modem, qint32 baudRate = 115200)
{
    QString error;
    if (!sim.start(&error) || !giveOwnLink(sim)) {
        qWarning("simulator: %s", qPrintable(error));
        return false;
    }
    if (!modem.open(sim.devicePath(), baudRate, 1)) {
        qWarning("open: %s", qPrintable(modem.lastError()));
        return false;
    }
    sim.clearLog();
    return true;
}

// Sets the simulator's answer to `command`: empty leaves the profile's,
// "ERROR" makes the command fail, anything else is the body before OK.
inline void answerWith(zelmodems::sim::SimModem& sim, const QByteArray& command, const QByteArray& body)
{
    if (body == "ERROR")
        sim.setReply(command, zelmodems::sim::Reply::error());
    else if (!body.isEmpty())
        sim.setAnswer(command, body);
}

} // namespace zmltest

// A simulated modem of `make` as `sim`, and `modem` opened on it.
#define ZML_OPEN(make)                                                                                                 \
    zelmodems::sim::SimModem sim(make);                                                                                \
    AtModem modem;                                                                                                     \
    QVERIFY(zmltest::startAndOpen(sim, modem))
