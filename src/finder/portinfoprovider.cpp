#include "portinfoprovider.h"

#include <QSerialPortInfo>

#include <atomic>

namespace {

std::atomic<const PortInfoProvider*> installedProvider{nullptr};

} // namespace

PortInfoProvider::PortInfoProvider() = default;

PortInfoProvider::~PortInfoProvider() = default;

QStringList PortInfoProvider::availablePorts() const
{
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& info : ports)
        names << info.portName();
    return names;
}

PortInfoProvider::Port PortInfoProvider::port(const QString& portName) const
{
    const QSerialPortInfo info(portName);
    Port port;
    port.exists = !info.isNull();
    if (!port.exists)
        return port;
    // Whether another process holds the port's lock.
    port.busy = info.isBusy();
    port.hasVendorIdentifier = info.hasVendorIdentifier();
    port.vendorIdentifier = info.vendorIdentifier();
    port.hasProductIdentifier = info.hasProductIdentifier();
    port.productIdentifier = info.productIdentifier();
    port.manufacturer = info.manufacturer();
    return port;
}

QString PortInfoProvider::devicePath(const QString& portName) const
{
    return portName;
}

QString PortInfoProvider::dataPortLink() const
{
    return QStringLiteral("/dev/gsmmodem");
}

const PortInfoProvider& PortInfoProvider::instance()
{
    static const PortInfoProvider systemProvider;
    const PortInfoProvider* installed = installedProvider.load();
    return installed ? *installed : systemProvider;
}

void PortInfoProvider::install(const PortInfoProvider* provider)
{
    installedProvider.store(provider);
}
