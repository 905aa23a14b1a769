#pragma once
#include "failure.h"
#include "modem.h"
#include "zelmodemslib_export.h"

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QScopedPointer>
#include <QString>

namespace zelmodems {

class ModemWatcherPrivate;

/// A serial port as the watcher saw it come or go.
struct WatchedPort
{
    /// The name shown to people: "ttyUSB2", or the link's name in a folder.
    QString name;
    /// What to open: "/dev/ttyUSB2", or the link.
    QString devicePath;
    /// What stays the same when the device comes back under another name
    /// (a USB modem re-enumerated after a reset): the USB serial number and
    /// interface, else the device path.
    QString identity;
    /// USB vendor and product as udev gives them ("12d1", "1506"); empty
    /// for other devices.
    QString vendorId;
    QString productId;
};

/// Serial devices plugged in and out, as they happen: through udev's
/// monitor (the system's serial devices), or through a folder of links to
/// devices (the port catalogue that tests and simulated modems use). Changes
/// are debounced: a device that comes and goes within the debounce time
/// makes no noise, and a device replaced under the same name is reported
/// removed, then added.
///
/// With setOpenModems(true) the watcher also opens a Modem on every port
/// that answers as a modem, and opens the same Modem object again when a
/// port of the same identity returns, so that connections made to it stay.
///
///     zelmodems::ModemWatcher watcher;
///     watcher.setOpenModems(true);
///     connect(&watcher, &zelmodems::ModemWatcher::modemAdded, [](zelmodems::Modem* modem) {
///         qInfo() << modem->portName() << modem->name();
///     });
///     if (!watcher.start())
///         qWarning() << watcher.failure().text();
///
/// Lives on the thread that created it (which needs an event loop). With
/// setOpenModems, each modem is opened (identified) on that thread in turn,
/// which takes up to about a second for a port that does not answer.
class ZELMODEMSLIB_EXPORT ModemWatcher : public QObject
{
    Q_OBJECT

public:
    /// Debounce time at start, in milliseconds.
    static constexpr int DefaultDebounceMs = 300;

    explicit ModemWatcher(QObject* parent = nullptr);
    ~ModemWatcher() override;

    /// Watches `path`, a folder of links to serial devices, instead of udev.
    /// Set before start().
    void setFolder(const QString& path);
    QString folder() const;
    void setDebounce(int ms);
    int debounce() const;
    /// Opens a Modem on each port added (at `baudRate`); set before start().
    void setOpenModems(bool on, qint32 baudRate = 115200);
    /// Only these ports (names or device paths) are reported; empty: all.
    void setPorts(const QStringList& ports);

    /// Reports the ports present now as added, then every change. False,
    /// with failure(), when the source cannot be watched (no udev monitor
    /// in a container, a folder that does not exist).
    bool start();
    Failure failure() const;

    /// The ports present, as last reported.
    QList<WatchedPort> ports() const;
    /// The modems open now (with setOpenModems).
    QList<Modem*> modems() const;

signals:
    void added(const zelmodems::WatchedPort& port);
    void removed(const zelmodems::WatchedPort& port);
    /// A modem was opened on an added port (or opened again when it came back).
    void modemAdded(zelmodems::Modem* modem);
    /// An added port did not answer as a modem.
    void notAModem(const zelmodems::WatchedPort& port, const zelmodems::Failure& why);
    /// The modem's port went away; the Modem object is kept for its return.
    void modemRemoved(zelmodems::Modem* modem);

private:
    QScopedPointer<ModemWatcherPrivate> d;
};

} // namespace zelmodems

Q_DECLARE_METATYPE(zelmodems::WatchedPort)
