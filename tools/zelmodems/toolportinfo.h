#pragma once
#include "portinfoprovider.h"

#include <QMap>
#include <QReadWriteLock>
#include <QString>
#include <QStringList>

// The serial ports as the tool sees them: the system's ports, plus
//  - device paths the system's port list does not show: a pseudo-terminal
//    of the modem simulator, a symbolic link such as /dev/gsmmodem (a link
//    to a listed port takes that port's USB identity; any other character
//    device is a plain serial port);
//  - ports declared by the tool itself (the demo's simulated modems, with
//    the USB identities of the device they play).
// Installed for the whole process while it lives, so that the modem search
// of the library sees the same ports.
class ToolPortInfo : public PortInfoProvider
{
public:
    // Installs itself; the destructor puts back the one installed before.
    ToolPortInfo();
    ~ToolPortInfo() override;

    // The one installed last, or null.
    static ToolPortInfo* current();

    // Declares `name`, opened through `device`, with the given identity.
    void declare(const QString& name, const QString& device, const Port& port);
    // Where the data-interface link is looked for (the system's
    // /dev/gsmmodem unless set).
    void setDataPortLink(const QString& path);
    // Only the declared ports are listed by availablePorts().
    void setDeclaredOnly(bool on);

    // The name the search should use for what the user typed: /dev/ttyUSB0
    // becomes ttyUSB0 when the system lists it (the library groups a USB
    // modem's interfaces and matches the data-interface link by bare names).
    QString normalize(const QString& portName) const;
    // The port or device exists (for a clear message before opening it).
    bool exists(const QString& portName) const;

    QStringList availablePorts() const override;
    Port port(const QString& portName) const override;
    QString devicePath(const QString& portName) const override;
    QString dataPortLink() const override;

private:
    mutable QReadWriteLock m_lock;
    QStringList m_names;
    QMap<QString, QString> m_devices;
    QMap<QString, Port> m_ports;
    QString m_link;
    bool m_declaredOnly = false;
    ToolPortInfo* m_previous = nullptr;
};
