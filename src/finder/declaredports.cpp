// A port catalogue of the system's ports plus declared ones and device paths.
#include "declaredports.h"
#include "finderlog_p.h"
#include "portlock.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QReadWriteLock>

#include <sys/stat.h>

namespace zelmodems {

namespace {

bool isCharacterDevice(const QString& path)
{
    struct stat st;
    return !path.isEmpty() && ::stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISCHR(st.st_mode);
}

// A bare name is a device below /dev.
// A bare name is a device below /dev, from any working directory; a path
// with a slash is taken from the working directory.
QString pathOf(const QString& portName)
{
    if (portName.isEmpty() || portName.startsWith(QLatin1Char('/')))
        return portName;
    if (portName.contains(QLatin1Char('/')))
        return QFileInfo(portName).absoluteFilePath();
    return QStringLiteral("/dev/") + portName;
}

} // namespace

class DeclaredPortsPrivate
{
public:
    mutable QReadWriteLock lock;
    QStringList names;
    QMap<QString, QString> devices;
    QMap<QString, PortCatalogue::Port> ports;
    QString link;
    bool declaredOnly = false;
    bool installed = false;
    const PortCatalogue* previous = nullptr;
};

DeclaredPorts::DeclaredPorts() : d(new DeclaredPortsPrivate) {}

DeclaredPorts::~DeclaredPorts()
{
    if (d->installed && &PortCatalogue::instance() == this)
        PortCatalogue::install(d->previous);
}

void DeclaredPorts::install()
{
    if (d->installed && &PortCatalogue::instance() == this)
        return;
    d->previous = PortCatalogue::install(this);
    d->installed = true;
}

bool DeclaredPorts::isInstalled() const
{
    return d->installed && &PortCatalogue::instance() == this;
}

void DeclaredPorts::declare(const QString& name, const QString& device, const Port& port)
{
    QWriteLocker lock(&d->lock);
    d->names.removeAll(name);
    d->names.append(name);
    d->devices.insert(name, device);
    Port declared = port;
    declared.exists = true;
    d->ports.insert(name, declared);
    qCDebug(MODEMS_FINDER).noquote() << "declared" << name << "as" << device;
}

void DeclaredPorts::undeclare(const QString& name)
{
    QWriteLocker lock(&d->lock);
    d->names.removeAll(name);
    d->devices.remove(name);
    d->ports.remove(name);
}

void DeclaredPorts::setDataPortLink(const QString& path)
{
    QWriteLocker lock(&d->lock);
    d->link = path;
}

void DeclaredPorts::setDeclaredOnly(bool on)
{
    QWriteLocker lock(&d->lock);
    d->declaredOnly = on;
}

QString DeclaredPorts::normalize(const QString& portName) const
{
    {
        QReadLocker lock(&d->lock);
        if (d->ports.contains(portName))
            return portName;
    }
    // A relative path (./ttySIM0, sim/ttySIM0) is taken from the working
    // directory; a bare name (ttyUSB0) stays a name below /dev.
    if (portName.contains(QLatin1Char('/')) && !portName.startsWith(QLatin1Char('/')))
        return QFileInfo(portName).absoluteFilePath();
    if (portName.startsWith(QStringLiteral("/dev/"))) {
        const QString bare = portName.mid(5);
        if (!bare.contains(QLatin1Char('/')) && PortCatalogue::port(bare).exists)
            return bare;
    }
    return portName;
}

bool DeclaredPorts::exists(const QString& portName) const
{
    return port(portName).exists || QFileInfo::exists(pathOf(devicePath(portName)));
}

QStringList DeclaredPorts::availablePorts() const
{
    QReadLocker lock(&d->lock);
    if (d->declaredOnly)
        return d->names;
    QStringList names = PortCatalogue::availablePorts();
    for (const QString& name : d->names) {
        if (!names.contains(name))
            names << name;
    }
    return names;
}

PortCatalogue::Port DeclaredPorts::port(const QString& portName) const
{
    {
        QReadLocker lock(&d->lock);
        auto declared = d->ports.constFind(portName);
        if (declared != d->ports.constEnd())
            return declared.value();
        if (d->declaredOnly)
            return Port();
    }
    Port system = PortCatalogue::port(portName);
    if (system.exists || portName.isEmpty())
        return system;

    // Not in the system's list: a device path.
    const QFileInfo file(pathOf(portName));
    if (!file.exists())
        return system;
    const QString target = file.canonicalFilePath();
    if (target.startsWith(QStringLiteral("/dev/"))) {
        const Port linked = PortCatalogue::port(QFileInfo(target).fileName());
        if (linked.exists)
            return linked;
    }
    if (!isCharacterDevice(target))
        return system;
    Port device;
    device.exists = true;
    device.busy = PortLock::of(target).isHeld();
    return device;
}

QString DeclaredPorts::devicePath(const QString& portName) const
{
    {
        QReadLocker lock(&d->lock);
        auto declared = d->devices.constFind(portName);
        if (declared != d->devices.constEnd())
            return declared.value();
    }
    return pathOf(PortCatalogue::devicePath(portName));
}

QString DeclaredPorts::dataPortLink() const
{
    QReadLocker lock(&d->lock);
    return d->link.isEmpty() ? PortCatalogue::dataPortLink() : d->link;
}

} // namespace zelmodems
