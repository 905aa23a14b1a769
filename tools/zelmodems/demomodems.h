#pragma once
#include <QList>
#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace zelmodems {
class DeclaredPorts;
namespace sim {
class SimModem;
}
}

// The simulated modems of the demo, as a user would have them plugged in:
//  - a Huawei E3372 USB stick (12d1:1506) with three serial interfaces
//    that all answer AT commands, ttyUSB0 to ttyUSB2, the udev link
//    gsmmodem pointing at ttyUSB0 (data); a MegaFon SIM with a balance
//    reply, an own-number reply and stored SMS (one of them in two parts);
//  - a SIMCOM SIM7600 on a serial line, ttyS1, with a Beeline SIM whose
//    balance reply comes in UCS2.
// The devices are pseudo-terminals, linked under those names in a scratch
// folder and declared, with their USB identities, to the port information
// the modem search consults. Only these ports are listed while it lives.
class DemoModems
{
public:
    struct Port
    {
        QString name;        // ttyUSB0
        QString device;      // the link in the scratch folder
        QString description; // make, interface, SIM
    };

    DemoModems();
    ~DemoModems();

    DemoModems(const DemoModems&) = delete;
    DemoModems& operator=(const DemoModems&) = delete;

    // Starts the modems; false with `error` set when the system has no
    // pseudo-terminals to give.
    bool start(QString* error);

    QList<Port> ports() const { return m_ports; }
    // The udev-style link to the USB modem's data interface.
    QString dataPortLink() const;

private:
    zelmodems::sim::SimModem* add(const QString& name, std::unique_ptr<zelmodems::sim::SimModem> modem,
                            const QString& description, bool usb, QString* error);

    QTemporaryDir m_dir;
    std::unique_ptr<zelmodems::DeclaredPorts> m_portInfo;
    std::vector<std::unique_ptr<zelmodems::sim::SimModem>> m_modems;
    QList<Port> m_ports;
};
