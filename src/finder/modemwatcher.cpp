// Serial devices coming and going: udev's monitor or a folder of links,
// debounced, and modems opened on them.
#include "modemwatcher.h"

#include "finderlog_p.h"
#include "modem.h"

#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QMap>
#include <QSocketNotifier>
#include <QTimer>

#include <libudev.h>

namespace zelmodems {

namespace {

// Serial devices a modem can sit behind: USB serial and ACM, and any tty
// that udev places on a bus. Virtual consoles and pseudo-terminals are not.
bool isSerialModemDevice(udev_device* device)
{
    const QString node = QString::fromLocal8Bit(udev_device_get_devnode(device));
    if (node.isEmpty())
        return false;
    const QString name = QFileInfo(node).fileName();
    return name.startsWith(QLatin1String("ttyUSB")) || name.startsWith(QLatin1String("ttyACM"))
        || udev_device_get_property_value(device, "ID_BUS") != nullptr;
}

WatchedPort portOf(udev_device* device)
{
    const auto property = [device](const char* key) {
        return QString::fromLocal8Bit(udev_device_get_property_value(device, key));
    };
    WatchedPort port;
    port.devicePath = QString::fromLocal8Bit(udev_device_get_devnode(device));
    port.name = QFileInfo(port.devicePath).fileName();
    port.vendorId = property("ID_VENDOR_ID");
    port.productId = property("ID_MODEL_ID");
    const QString serial = property("ID_SERIAL");
    port.identity = serial.isEmpty() ? port.devicePath
                                     : serial + QLatin1Char(':') + property("ID_USB_INTERFACE_NUM");
    return port;
}

} // namespace

class ModemWatcherPrivate
{
public:
    ModemWatcher* q = nullptr;
    QString folder;
    int debounceMs = ModemWatcher::DefaultDebounceMs;
    bool openModems = false;
    qint32 baudRate = 115200;
    QStringList wanted;
    Failure failure;

    udev* context = nullptr;
    udev_monitor* monitor = nullptr;
    QSocketNotifier* notifier = nullptr;
    QFileSystemWatcher* folderWatcher = nullptr;
    QTimer settle;

    QMap<QString, WatchedPort> present;    // by device path: what the source says now
    QMap<QString, WatchedPort> announced;  // by device path: what was reported
    QMap<QString, Modem*> modems;          // by identity, open or waiting for the port's return

    bool isWanted(const WatchedPort& port) const
    {
        return wanted.isEmpty() || wanted.contains(port.name) || wanted.contains(port.devicePath);
    }

    void rescanFolder()
    {
        present.clear();
        const QDir dir(folder);
        for (const QFileInfo& entry : dir.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
            // A link whose device is gone is no port.
            if (!entry.exists())
                continue;
            WatchedPort port;
            port.name = entry.fileName();
            port.devicePath = entry.filePath();
            // The link's name is what stays when the device behind it changes.
            port.identity = entry.filePath();
            // A link that now leads elsewhere is another device: the key
            // holds the target, so the change is a removal and an addition.
            present.insert(entry.filePath() + QLatin1Char('>') + entry.symLinkTarget(), port);
        }
        settle.start(debounceMs);
    }

    void readUdev()
    {
        udev_device* device = udev_monitor_receive_device(monitor);
        if (!device)
            return;
        const QString action = QString::fromLatin1(udev_device_get_action(device));
        if (isSerialModemDevice(device)) {
            const WatchedPort port = portOf(device);
            if (action == QLatin1String("remove"))
                present.remove(port.devicePath);
            else if (action == QLatin1String("add"))
                present.insert(port.devicePath, port);
            settle.start(debounceMs);
        }
        udev_device_unref(device);
    }

    bool startUdev()
    {
        context = udev_new();
        monitor = context ? udev_monitor_new_from_netlink(context, "udev") : nullptr;
        if (!monitor || udev_monitor_filter_add_match_subsystem_devtype(monitor, "tty", nullptr) < 0
            || udev_monitor_enable_receiving(monitor) < 0) {
            failure = Failure(Failure::SystemError,
                              ModemWatcher::tr("cannot watch the system's devices (no udev monitor here, as in a "
                                               "container): give the ports to watch, or a folder of links"));
            return false;
        }
        notifier = new QSocketNotifier(udev_monitor_get_fd(monitor), QSocketNotifier::Read, q);
        QObject::connect(notifier, &QSocketNotifier::activated, q, [this] { readUdev(); });
        udev_enumerate* enumerate = udev_enumerate_new(context);
        udev_enumerate_add_match_subsystem(enumerate, "tty");
        udev_enumerate_scan_devices(enumerate);
        for (udev_list_entry* entry = udev_enumerate_get_list_entry(enumerate); entry;
             entry = udev_list_entry_get_next(entry)) {
            udev_device* device = udev_device_new_from_syspath(context, udev_list_entry_get_name(entry));
            if (device && isSerialModemDevice(device)) {
                const WatchedPort port = portOf(device);
                present.insert(port.devicePath, port);
            }
            if (device)
                udev_device_unref(device);
        }
        udev_enumerate_unref(enumerate);
        return true;
    }

    // Reports the difference between what was reported and what is there.
    void announce()
    {
        for (auto it = announced.begin(); it != announced.end();) {
            if (present.contains(it.key())) {
                ++it;
                continue;
            }
            const WatchedPort port = it.value();
            it = announced.erase(it);
            qCInfo(MODEMS_FINDER()).noquote() << "removed" << port.devicePath;
            emit q->removed(port);
            Modem* modem = modems.value(port.identity);
            if (modem && modem->portName() == port.devicePath) {
                modem->close();
                emit q->modemRemoved(modem);
            }
        }
        for (auto it = present.cbegin(); it != present.cend(); ++it) {
            if (announced.contains(it.key()) || !isWanted(it.value()))
                continue;
            const WatchedPort port = it.value();
            announced.insert(it.key(), port);
            qCInfo(MODEMS_FINDER()).noquote() << "added" << port.devicePath;
            emit q->added(port);
            if (openModems)
                openOn(port);
        }
    }

    void openOn(const WatchedPort& port)
    {
        Modem* modem = modems.value(port.identity);
        const bool known = modem != nullptr;
        if (!known)
            modem = new Modem(q);
        if (!modem->open(port.devicePath, baudRate)) {
            const Failure why = modem->failure();
            if (!known)
                delete modem;
            emit q->notAModem(port, why);
            return;
        }
        modems.insert(port.identity, modem);
        emit q->modemAdded(modem);
    }
};

ModemWatcher::ModemWatcher(QObject* parent) : QObject(parent), d(new ModemWatcherPrivate)
{
    qRegisterMetaType<zelmodems::WatchedPort>("zelmodems::WatchedPort");
    d->q = this;
    d->settle.setSingleShot(true);
    connect(&d->settle, &QTimer::timeout, this, [this] { d->announce(); });
}

ModemWatcher::~ModemWatcher()
{
    if (d->monitor)
        udev_monitor_unref(d->monitor);
    if (d->context)
        udev_unref(d->context);
}

void ModemWatcher::setFolder(const QString& path) { d->folder = path; }
QString ModemWatcher::folder() const { return d->folder; }
void ModemWatcher::setDebounce(int ms) { d->debounceMs = qMax(0, ms); }
int ModemWatcher::debounce() const { return d->debounceMs; }
void ModemWatcher::setPorts(const QStringList& ports) { d->wanted = ports; }
Failure ModemWatcher::failure() const { return d->failure; }

void ModemWatcher::setOpenModems(bool on, qint32 baudRate)
{
    d->openModems = on;
    d->baudRate = baudRate;
}

bool ModemWatcher::start()
{
    d->failure = Failure();
    if (d->folder.isEmpty()) {
        if (!d->startUdev())
            return false;
    } else {
        if (!QFileInfo(d->folder).isDir()) {
            d->failure = Failure(Failure::NotFound, tr("no folder %1 to watch").arg(d->folder));
            return false;
        }
        d->folderWatcher = new QFileSystemWatcher(QStringList{d->folder}, this);
        connect(d->folderWatcher, &QFileSystemWatcher::directoryChanged, this, [this] { d->rescanFolder(); });
        d->rescanFolder();
    }
    // What is there at start is reported at once.
    d->settle.stop();
    d->announce();
    return true;
}

QList<WatchedPort> ModemWatcher::ports() const
{
    return d->announced.values();
}

QList<Modem*> ModemWatcher::modems() const
{
    QList<Modem*> open;
    for (Modem* modem : d->modems) {
        if (modem->isOpen())
            open << modem;
    }
    return open;
}

} // namespace zelmodems
