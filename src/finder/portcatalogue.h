#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace zelmodems {

/// What the modem search (ModemsFinder, ModemInfoLoader) knows about the
/// serial ports: which ports there are, whether one exists and is busy, its
/// USB identity, the device a port name opens, and the udev link that marks
/// a USB modem's data interface.
///
/// The catalogue in use unless another is installed is the system's:
/// QSerialPortInfo's port list and identities, and "/dev/gsmmodem". A
/// service, a bench or a test installs another for the whole process to
/// have the search see ports the system does not list, pseudo-terminals of
/// simulated modems and symbolic links among them (DeclaredPorts is a
/// ready-made one). Catalogues are asked from the search's worker threads,
/// so every member must be safe to call from any thread.
class ZELMODEMSLIB_EXPORT PortCatalogue
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::PortCatalogue)

public:
    /// One port as the catalogue describes it. The layout of this structure
    /// is part of the library's binary interface.
    struct Port
    {
        bool exists = false;             ///< false: no such port
        bool busy = false;               ///< another program holds it
        bool hasVendorIdentifier = false;
        quint16 vendorIdentifier = 0;
        bool hasProductIdentifier = false;
        quint16 productIdentifier = 0;
        QString manufacturer;
    };

    PortCatalogue();
    virtual ~PortCatalogue();

    PortCatalogue(const PortCatalogue&) = delete;
    PortCatalogue& operator=(const PortCatalogue&) = delete;

    /// Names of the serial ports (bare names such as ttyUSB0).
    virtual QStringList availablePorts() const;
    /// The port called `portName`.
    virtual Port port(const QString& portName) const;
    /// What the modem driver opens for `portName`. The system's serial port
    /// layer maps bare names to /dev itself, so the name is passed through.
    virtual QString devicePath(const QString& portName) const;
    /// The link that the appliance's device rules make to a USB modem's data
    /// interface.
    virtual QString dataPortLink() const;

    /// Whether `portName` can be opened now: not-found when neither the
    /// catalogue nor the file system has it, busy (with the holder) when
    /// another program's lock holds its device; no failure otherwise.
    /// This process's own locks never make a port busy.
    Failure availability(const QString& portName) const;

    /// The catalogue in use: the installed one, else the system's.
    static const PortCatalogue& instance();
    /// The system's catalogue.
    static const PortCatalogue& system();
    /// Installs `catalogue` for the whole process (null: back to the
    /// system's) and returns the one installed before. The caller keeps
    /// ownership and keeps it alive while searches run.
    static const PortCatalogue* install(const PortCatalogue* catalogue);
};

} // namespace zelmodems
