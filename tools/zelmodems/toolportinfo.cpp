#include "toolportinfo.h"

#include <QFileInfo>
#include <QReadLocker>
#include <QWriteLocker>

#include <sys/stat.h>

namespace {

bool isCharacterDevice(const QString& path)
{
    struct stat st;
    return !path.isEmpty() && ::stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISCHR(st.st_mode);
}

// A bare name is a device below /dev.
QString pathOf(const QString& portName)
{
    return portName.startsWith(QLatin1Char('/')) ? portName : QStringLiteral("/dev/") + portName;
}

ToolPortInfo* installedTool = nullptr;

} // namespace

ToolPortInfo::ToolPortInfo() : m_previous(installedTool)
{
    installedTool = this;
    PortInfoProvider::install(this);
}

ToolPortInfo::~ToolPortInfo()
{
    installedTool = m_previous;
    PortInfoProvider::install(m_previous);
}

ToolPortInfo* ToolPortInfo::current()
{
    return installedTool;
}

void ToolPortInfo::declare(const QString& name, const QString& device, const Port& port)
{
    QWriteLocker lock(&m_lock);
    m_names.removeAll(name);
    m_names.append(name);
    m_devices.insert(name, device);
    m_ports.insert(name, port);
}

void ToolPortInfo::setDataPortLink(const QString& path)
{
    QWriteLocker lock(&m_lock);
    m_link = path;
}

void ToolPortInfo::setDeclaredOnly(bool on)
{
    QWriteLocker lock(&m_lock);
    m_declaredOnly = on;
}

QString ToolPortInfo::normalize(const QString& portName) const
{
    {
        QReadLocker lock(&m_lock);
        if (m_ports.contains(portName))
            return portName;
    }
    if (portName.startsWith(QStringLiteral("/dev/"))) {
        const QString bare = portName.mid(5);
        if (!bare.contains(QLatin1Char('/')) && PortInfoProvider::port(bare).exists)
            return bare;
    }
    return portName;
}

bool ToolPortInfo::exists(const QString& portName) const
{
    return port(portName).exists || QFileInfo::exists(pathOf(devicePath(portName)));
}

QStringList ToolPortInfo::availablePorts() const
{
    QReadLocker lock(&m_lock);
    if (m_declaredOnly)
        return m_names;
    QStringList names = PortInfoProvider::availablePorts();
    for (const QString& name : m_names) {
        if (!names.contains(name))
            names << name;
    }
    return names;
}

PortInfoProvider::Port ToolPortInfo::port(const QString& portName) const
{
    {
        QReadLocker lock(&m_lock);
        auto declared = m_ports.constFind(portName);
        if (declared != m_ports.constEnd())
            return declared.value();
        if (m_declaredOnly)
            return Port();
    }
    Port system = PortInfoProvider::port(portName);
    if (system.exists || portName.isEmpty())
        return system;

    // Not in the system's list: a device path given by the user.
    const QFileInfo file(pathOf(portName));
    if (!file.exists())
        return system;
    const QString target = file.canonicalFilePath();
    if (target.startsWith(QStringLiteral("/dev/"))) {
        const Port linked = PortInfoProvider::port(QFileInfo(target).fileName());
        if (linked.exists)
            return linked;
    }
    if (!isCharacterDevice(target))
        return system;
    Port device;
    device.exists = true;
    return device;
}

QString ToolPortInfo::devicePath(const QString& portName) const
{
    {
        QReadLocker lock(&m_lock);
        auto declared = m_devices.constFind(portName);
        if (declared != m_devices.constEnd())
            return declared.value();
    }
    return PortInfoProvider::devicePath(portName);
}

QString ToolPortInfo::dataPortLink() const
{
    QReadLocker lock(&m_lock);
    return m_link.isEmpty() ? PortInfoProvider::dataPortLink() : m_link;
}
