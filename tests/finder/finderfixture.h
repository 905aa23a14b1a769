#pragma once
// Helpers shared by the modem search tests: simulated serial ports with USB
// identities, a recorder of log messages from any thread, the finder's
// signals in the order they came, and an independent CRC-16/ARC.
#include "modeminfo.h"
#include "modemsfinder.h"
#include "logrecorder.h"
#include "declaredports.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

namespace findertest {

using zmltest::LogRecorder;

// Ports declared by a test: bare names (ttyUSB0) mapped to simulated devices
// with the USB identity and busy flag the test gives them. Names that are
// not declared do not exist. Installed for the whole process while it lives.
class SimPorts : public zelmodems::DeclaredPorts
{
public:
    SimPorts()
    {
        setDeclaredOnly(true);
        setLink(QStringLiteral("/nonexistent/gsmmodem"));
        install();
    }
    void declareSerial(const QString& name, const QString& device, bool busy = false)
    {
        Port port;
        port.busy = busy;
        declare(name, device, port);
    }
    void declareUsb(const QString& name, const QString& device, quint16 vendor, quint16 product,
                    const QString& manufacturer)
    {
        Port port;
        port.hasVendorIdentifier = port.hasProductIdentifier = true;
        port.vendorIdentifier = vendor;
        port.productIdentifier = product;
        port.manufacturer = manufacturer;
        declare(name, device, port);
    }
    void setLink(const QString& path) { setDataPortLink(path); }
};

// The finder's signals, in the order they were emitted.
class SignalLog : public QObject
{
public:
    explicit SignalLog(ModemsFinder& finder)
    {
        connect(&finder, &ModemsFinder::devicesFinded, this, [this](QList<ModemInfo> modems) {
            names << QStringLiteral("devicesFinded");
            found << modems;
        });
        connect(&finder, &ModemsFinder::noDevices, this, [this](QString err) {
            names << QStringLiteral("noDevices");
            errors << err;
        });
        connect(&finder, &ModemsFinder::finished, this, [this] { names << QStringLiteral("finished"); });
        connect(&finder, &ModemsFinder::needCancel, this, [this] { names << QStringLiteral("needCancel"); });
    }

    QStringList names;
    QList<QList<ModemInfo>> found;
    QStringList errors;
};

// CRC-16/ARC written out on its own (reflected polynomial 0xA001, LSB
// first), to check the library's connection names against.
inline quint16 crc16Arc(const QByteArray& data)
{
    quint16 crc = 0;
    for (const char c : data) {
        crc ^= quint8(c);
        for (int i = 0; i < 8; ++i)
            crc = (crc & 1) ? quint16((crc >> 1) ^ 0xA001) : quint16(crc >> 1);
    }
    return crc;
}

// The connection name the search gives a modem called `modemName` on
// `port`, with `imei`, for the operator (or "Unknown modem") `operatorName`.
inline QString connectionName(const QString& modemName, const QString& port, const QString& imei,
                              const QString& operatorName)
{
    const quint16 sum = crc16Arc((port + imei + operatorName).toUtf8());
    return QString(modemName + QLatin1Char('_') + QString::number(sum, 16)).replace(QLatin1Char('/'), QLatin1Char('_'));
}

} // namespace findertest
