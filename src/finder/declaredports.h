#pragma once
#include "portcatalogue.h"

#include <QScopedPointer>

namespace zelmodems {

class DeclaredPortsPrivate;

/// A port catalogue of the system's ports plus
///  - ports declared by the caller, each with the device it opens and the
///    USB identity it should have (simulated modems, with the identity of
///    the device they play);
///  - device paths the system's port list does not show, given as port
///    names: a pseudo-terminal, a symbolic link such as /dev/gsmmodem (a link
///    to a listed port takes that port's USB identity; any other character
///    device is a plain serial port).
///
///     zelmodems::DeclaredPorts ports;
///     zelmodems::PortCatalogue::Port usb;
///     usb.exists = true;
///     usb.hasVendorIdentifier = usb.hasProductIdentifier = true;
///     usb.vendorIdentifier = 0x12d1;
///     usb.productIdentifier = 0x1506;
///     ports.declare("ttyUSB0", "/tmp/bench/ttyUSB0", usb);
///     ports.install();               // until `ports` goes
///     ModemsFinder finder;
///     finder.start({"ttyUSB0", "/dev/pts/7"});
///
/// Safe to use from any thread.
class ZELMODEMSLIB_EXPORT DeclaredPorts : public PortCatalogue
{
public:
    DeclaredPorts();
    /// Puts back the catalogue installed before, if this one is installed.
    ~DeclaredPorts() override;

    /// Makes this the process's catalogue.
    void install();
    bool isInstalled() const;

    /// Declares `name`, opened through `device`, with the given identity
    /// (`port.exists` is taken as true).
    void declare(const QString& name, const QString& device, const Port& port = Port());
    void undeclare(const QString& name);
    /// Where the data-interface link is looked for (the system's
    /// /dev/gsmmodem unless set).
    void setDataPortLink(const QString& path);
    /// Only the declared ports are listed and known; the system's are not.
    void setDeclaredOnly(bool on);

    /// The name the search should use for what a person typed: /dev/ttyUSB0
    /// becomes ttyUSB0 when the system lists it (the search groups a USB
    /// modem's interfaces and matches the data-interface link by bare names);
    /// a relative path becomes absolute, taken from the working directory.
    QString normalize(const QString& portName) const;
    /// The port or device exists (for a clear message before opening it).
    bool exists(const QString& portName) const;

    QStringList availablePorts() const override;
    Port port(const QString& portName) const override;
    /// The device's path: a declared port's device, /dev/NAME for a bare
    /// name (whatever the working directory), a relative path made absolute.
    QString devicePath(const QString& portName) const override;
    QString dataPortLink() const override;

private:
    QScopedPointer<DeclaredPortsPrivate> d;
};

} // namespace zelmodems
