// The serial ports the modem search sees: the system's, or an installed catalogue.
#include "portcatalogue.h"
#include "finderlog_p.h"
#include "portlock.h"

#include <QFileInfo>
#include <QSerialPortInfo>

#include <atomic>

namespace zelmodems {

namespace {

std::atomic<const PortCatalogue*> installedCatalogue{nullptr};

} // namespace

PortCatalogue::PortCatalogue() = default;

PortCatalogue::~PortCatalogue() = default;

QStringList PortCatalogue::availablePorts() const
{
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& info : ports)
        names << info.portName();
    return names;
}

Failure PortCatalogue::availability(const QString& portName) const
{
    const QString device = devicePath(portName);
    // The system's serial layer opens a bare name under /dev.
    const QString path = device.contains(QLatin1Char('/')) ? device : QStringLiteral("/dev/") + device;
    Failure why;
    const PortLock lock = PortLock::of(device);
    if (!port(portName).exists && !QFileInfo::exists(path))
        why = Failure(Failure::NotFound, tr("no such port: %1").arg(portName));
    else if (lock.isHeld() && lock.pid() != QCoreApplication::applicationPid())
        why = Failure(Failure::Busy, tr("%1 is in use by another program (%2)").arg(portName, lock.holder()));
    if (why.isFailure())
        qCDebug(MODEMS_FINDER).noquote() << why.text();
    return why;
}

PortCatalogue::Port PortCatalogue::port(const QString& portName) const
{
    const QSerialPortInfo info(portName);
    Port port;
    port.exists = !info.isNull();
    if (!port.exists)
        return port;
    // Whether another process holds the port's lock, in any of the forms
    // serial programs write it (QSerialPortInfo reads only its own).
    port.busy = info.isBusy() || PortLock::of(info.systemLocation()).isHeld();
    port.hasVendorIdentifier = info.hasVendorIdentifier();
    port.vendorIdentifier = info.vendorIdentifier();
    port.hasProductIdentifier = info.hasProductIdentifier();
    port.productIdentifier = info.productIdentifier();
    port.manufacturer = info.manufacturer();
    return port;
}

QString PortCatalogue::devicePath(const QString& portName) const
{
    return portName;
}

QString PortCatalogue::dataPortLink() const
{
    return QStringLiteral("/dev/gsmmodem");
}

const PortCatalogue& PortCatalogue::system()
{
    static const PortCatalogue systemCatalogue;
    return systemCatalogue;
}

const PortCatalogue& PortCatalogue::instance()
{
    const PortCatalogue* installed = installedCatalogue.load();
    return installed ? *installed : system();
}

const PortCatalogue* PortCatalogue::install(const PortCatalogue* catalogue)
{
    qCDebug(MODEMS_FINDER) << (catalogue ? "a catalogue of the caller's is installed" : "the system's catalogue is in use");
    return installedCatalogue.exchange(catalogue);
}

} // namespace zelmodems
