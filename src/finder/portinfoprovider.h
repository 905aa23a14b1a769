#pragma once
#include <QString>
#include <QStringList>
#include <QtGlobal>

// What the modem search needs to know about the serial ports of the system:
// which ports there are, whether one exists and is busy, its USB identity,
// the device a port name opens, and the udev link that marks a USB modem's
// data interface.
//
// The system's answers come from QSerialPortInfo and "/dev/gsmmodem".
// Another provider can be installed for the whole process (a development
// bench with simulated modems on pseudo-terminals, which QSerialPortInfo
// neither lists nor gives USB identities); it must answer from any thread.
class PortInfoProvider
{
public:
    // One port as the system describes it.
    struct Port
    {
        bool exists = false;             // false: no such port on the system
        bool busy = false;
        bool hasVendorIdentifier = false;
        quint16 vendorIdentifier = 0;
        bool hasProductIdentifier = false;
        quint16 productIdentifier = 0;
        QString manufacturer;
    };

    PortInfoProvider();
    virtual ~PortInfoProvider();

    PortInfoProvider(const PortInfoProvider&) = delete;
    PortInfoProvider& operator=(const PortInfoProvider&) = delete;

    // Names of the serial ports of the system (bare names such as ttyUSB0).
    virtual QStringList availablePorts() const;
    // The port called `portName`.
    virtual Port port(const QString& portName) const;
    // What the modem driver opens for `portName`. The system's serial port
    // layer maps bare names to /dev itself, so the name is passed through.
    virtual QString devicePath(const QString& portName) const;
    // The link that the appliance's device rules make to a USB modem's data
    // interface.
    virtual QString dataPortLink() const;

    // The provider in use: the installed one, else the system's.
    static const PortInfoProvider& instance();
    // Installs `provider` for the whole process (null: back to the system's).
    // The caller keeps ownership and must keep it alive while searches run.
    static void install(const PortInfoProvider* provider);
};
