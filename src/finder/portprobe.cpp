#include "portprobe_p.h"

#include "atmodem.h"
#include "atmodemlog_p.h"
#include "crc_p.h"
#include "modemsettings.h"
#include "modemsfinder.h"
#include "operatordata.h"
#include "portcatalogue.h"

#include <qt5ext/logformat.h>

#include <QByteArray>
#include <QLatin1Char>
#include <QStringList>

namespace {

// The speeds at which a first answer is looked for. Most modems answer at
// one of them whatever their autobauding; all three are tried and the last
// that answers counts, so the climb starts as high as possible.
const qint32 FIRST_CONTACT_RATES[] = {2400, 9600, 115200};

// Every open during the search gets this many tries.
constexpr qint32 OPEN_ATTEMPTS = 3;

// What a connection is named after when the SIM's operator is not known. It
// is data (it goes into the name's checksum), so it is not translated.
const char UNKNOWN_MODEM[] = "Unknown modem";

QString hex4(quint16 value)
{
    return QStringLiteral("%1").arg(value, 4, 16, QLatin1Char('0'));
}

} // namespace

const QList<int>& PortProbe::rateLadder()
{
    static const QList<int> ladder = {
        2400,    4800,    9600,    19200,   38400,   57600,   115200,
        230400,  460800,  500000,  576000,  921600,  1000000, 1152000,
        1500000, 2000000, 2500000, 3000000, 3500000, 4000000,
    };
    return ladder;
}

ModemInfo PortProbe::operator()(const QString& portName) const
{
    qCDebug(AT_MODEM()).noquote() << ModemsFinder::tr("Search on %1").arg(portName);

    ModemInfo result;
    result.setPortName(portName);

    const zelmodems::PortCatalogue& ports = zelmodems::PortCatalogue::instance();
    const zelmodems::PortCatalogue::Port info = ports.port(portName);
    if (!info.exists) {
        qCWarning(AT_MODEM()).noquote() << ModemsFinder::tr("Invalid port %1").arg(portName);
        return result;
    }
    if (info.busy) {
        qCWarning(AT_MODEM()).noquote() << ModemsFinder::tr("The port %1 is busy").arg(portName);
        return result;
    }

    QStringList description;
    if (info.hasProductIdentifier)
        description << ModemsFinder::tr("product identifire is %1").arg(hex4(info.productIdentifier));
    if (info.hasVendorIdentifier)
        description << ModemsFinder::tr("vendor identifire is %1").arg(hex4(info.vendorIdentifier));
    description << ModemsFinder::tr("manufacturer is %1").arg(info.manufacturer);
    qCDebug(AT_MODEM()).noquote().nospace() << ModemsFinder::tr("Port %1:").arg(portName) << logtab
                                            << loglist(description);

    // The driver opens the device behind the name; the record keeps the name.
    const QString device = ports.devicePath(portName);
    AtModem modem(nullptr);
    result.setPortName(portName);

    // First contact.
    qint32 rate = 0;
    for (qint32 tried : FIRST_CONTACT_RATES) {
        if (modem.test(device, tried))
            rate = tried;
    }
    qCDebug(AT_MODEM()).noquote() << ModemsFinder::tr("Modem on %1 %2")
                                         .arg(portName,
                                              rate > 0 ? ModemsFinder::tr("is open")
                                                       : ModemsFinder::tr("is not open"));
    if (rate == 0)
        return result;

    // Climb while the modem still answers an operator query: a modem that
    // cannot follow a rate hears only noise there. The first refusal ends
    // the climb, and the port is opened again one rung below.
    const QList<int>& ladder = rateLadder();
    int mcc = 0;
    int mnc = 0;
    const int start = ladder.indexOf(rate) + 1;
    int position = start;
    for (; position < ladder.size(); ++position) {
        modem.close();
        mcc = 0;
        mnc = 0;
        if (!modem.open(device, ladder.at(position), OPEN_ATTEMPTS))
            break;
        if (!modem.getMnc(mcc, mnc))
            break;
    }
    if (position < ladder.size()) {
        modem.close();
        modem.test(device, position > 0 ? ladder.at(position - 1) : rate);
    }

    // Fix the rate and ask the operator once more at it.
    qCDebug(AT_MODEM()).noquote()
        << ModemsFinder::tr("port %1 baudrate %2").arg(portName, QString::number(modem.baudrate()));
    result.setBaudrate(modem.baudrate());
    modem.close();
    modem.open(device, result.baudrate(), OPEN_ATTEMPTS);
    mcc = 0;
    mnc = 0;
    if (!modem.getMnc(mcc, mnc)) {
        qCWarning(AT_MODEM()).noquote() << ModemsFinder::tr("port %1 mnc request error").arg(portName);
        return result;
    }
    qCDebug(AT_MODEM()).noquote()
        << ModemsFinder::tr("port %1 mcc %2 mnc %3")
               .arg(portName, QString::number(mcc), QString::number(mnc));

    const int key = mcc * 100 + mnc;
    QString imei;
    if (modem.getImei(imei))
        result.setImei(imei);

    // The connection name: the modem's name and a short checksum that keeps
    // it unique per port, modem and operator.
    const CrcArc checksum;
    auto connectionNameFor = [&](const QString& operatorName) {
        const QByteArray bytes = (portName + imei + operatorName).toUtf8();
        const quint16 sum = checksum(bytes.constData(), std::size_t(bytes.size()), true);
        QString name = modem.name() + QLatin1Char('_') + QString::number(sum, 16);
        name.replace(QLatin1Char('/'), QLatin1Char('_'));
        return name;
    };

    const ModemSettings settings;
    const MncTable table = settings.mncTable();
    if (table.contains(key) && table.value(key).isValid()) {
        const OperatorData entry = table.value(key);
        result.addInitLine(entry.modemInitLine());
        result.setUserName(entry.userName());
        result.setPassword(entry.password());
        result.setConnectionName(connectionNameFor(entry.name()));
        result.setBalanceUssd(entry.balancePhone());
        result.setPhoneUssd(entry.selfNumberPhone());
        result.setPhoneFromSms(entry.selfNumberFromSms());
    } else {
        qCWarning(AT_MODEM()).noquote() << ModemsFinder::tr("port %1: %2 mnc=%3, mcc=%4")
                                               .arg(portName, ModemsFinder::tr("Mnc table does not contain"),
                                                    QString::number(mnc), QString::number(mcc));
        // A SIM of an unknown operator still gives a usable modem.
        result.setConnectionName(QString::fromLatin1(UNKNOWN_MODEM));
        result.setConnectionName(connectionNameFor(result.connectionName()));
    }

    // Leave the modem ready for the dialer.
    modem.reset(false);
    modem.beforeDial();
    modem.close();
    qCWarning(AT_MODEM()).noquote()
        << ModemsFinder::tr("port %1 search result %2")
               .arg(portName, result.isValid() ? QStringLiteral("true") : QStringLiteral("false"));
    return result;
}
