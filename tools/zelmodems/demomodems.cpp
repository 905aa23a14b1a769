#include "demomodems.h"
#include "tooltext.h"
#include "interruption.h"
#include "simmodem.h"
#include "declaredports.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <unistd.h>

using zelmodems::sim::DeliverPdu;
using zelmodems::sim::Make;
using zelmodems::sim::Profile;
using zelmodems::sim::SimModem;
using zelmodems::sim::Ussd;

namespace {

// Huawei E3372 in modem mode.
const quint16 HUAWEI_VENDOR = 0x12d1;
const quint16 E3372_PRODUCT = 0x1506;
const QByteArray HUAWEI_IMEI = "866123456789012";
const QByteArray MEGAFON_IMSI = "250021234567890";   // MCC 250, MNC 02
const QByteArray BEELINE_IMSI = "250991234567890";   // MCC 250, MNC 99

} // namespace

DemoModems::DemoModems() = default;

DemoModems::~DemoModems()
{
    // The port information goes first: nothing may look a port up while the
    // modems behind it stop.
    m_portInfo.reset();
    m_modems.clear();
    Interruption::keepOnInterrupt(m_dir.path());
}

QString DemoModems::dataPortLink() const
{
    return m_dir.filePath(QStringLiteral("gsmmodem"));
}

SimModem* DemoModems::add(const QString& name, std::unique_ptr<SimModem> modem, const QString& description,
                          bool usb, QString* error)
{
    if (!modem->start(error))
        return nullptr;
    const QString device = m_dir.filePath(name);
    if (!modem->createLink(device)) {
        if (error)
            *error = Tool::tr("cannot link %1 to %2").arg(device, modem->ptyPath());
        return nullptr;
    }
    zelmodems::PortCatalogue::Port port;
    port.exists = true;
    if (usb) {
        port.hasVendorIdentifier = true;
        port.vendorIdentifier = HUAWEI_VENDOR;
        port.hasProductIdentifier = true;
        port.productIdentifier = E3372_PRODUCT;
        port.manufacturer = QStringLiteral("HUAWEI");
    }
    m_portInfo->declare(name, device, port);
    m_ports.append({name, device, description});
    m_modems.push_back(std::move(modem));
    return m_modems.back().get();
}

bool DemoModems::start(QString* error)
{
    if (!m_dir.isValid()) {
        if (error)
            *error = Tool::tr("cannot create a scratch folder: %1").arg(m_dir.errorString());
        return false;
    }
    Interruption::removeOnInterrupt(m_dir.path());
    m_portInfo = std::make_unique<zelmodems::DeclaredPorts>();
    m_portInfo->setDeclaredOnly(true);
    m_portInfo->setDataPortLink(dataPortLink());
    m_portInfo->install();

    // The USB stick: three interfaces of one modem, one IMEI, one SIM.
    Profile huawei = Profile::forMake(Make::Huawei);
    huawei.imei = HUAWEI_IMEI;
    huawei.imsi = MEGAFON_IMSI;
    const QDateTime now = QDateTime::currentDateTime();
    const QString usb = QStringLiteral("Huawei E3372 USB %1:%2")
                            .arg(HUAWEI_VENDOR, 4, 16, QLatin1Char('0'))
                            .arg(E3372_PRODUCT, 4, 16, QLatin1Char('0'));
    const struct
    {
        const char* name;
        const char* role;
    } interfaces[] = {
        {"ttyUSB0", "interface 0 (data)"},
        {"ttyUSB1", "interface 1"},
        {"ttyUSB2", "interface 2"},
    };
    for (const auto& iface : interfaces) {
        SimModem* modem = add(QString::fromLatin1(iface.name), std::make_unique<SimModem>(huawei),
                              QStringLiteral("%1, %2, MegaFon SIM").arg(usb, QString::fromLatin1(iface.role)),
                              true, error);
        if (!modem)
            return false;
        modem->setUssdReply("*100#", Ussd::plain("Balans 123,45 r. Limit 0,00 r."));
        modem->setUssdReply("*205#", Ussd::plain("Vash nomer +7 (926) 123-45-67"));
        // Stored messages: a notice from the operator's short name, a
        // message from a number, and a long one in two parts (UCS2).
        modem->storeSms(DeliverPdu::gsm7("MegaFon", now.addSecs(-3 * 3600), "Vash tarif: Internet XS. Ostatok 3 GB"));
        modem->storeSms(
            DeliverPdu::gsm7("+79161234567", now.addSecs(-600), "The router in the cabinet is back online."));
        const QString first = QStringLiteral("Уважаемый абонент! Пакет интернета с 1 числа стоит 350 руб. ");
        const QString second = QStringLiteral("Подробности на сайте оператора.");
        modem->storeSms(DeliverPdu::ucs2("+79262000500", now.addSecs(-1800), second, 0x2a, 2, 2));
        modem->storeSms(DeliverPdu::ucs2("+79262000500", now.addSecs(-1800), first, 0x2a, 1, 2));
    }
    // The udev rules point gsmmodem at the data interface.
    if (::symlink("ttyUSB0", QFile::encodeName(dataPortLink()).constData()) != 0) {
        if (error)
            *error = Tool::tr("cannot create the link %1").arg(dataPortLink());
        return false;
    }

    // A SIMCOM module on a serial line.
    Profile simcom = Profile::forMake(Make::SimCom);
    simcom.imsi = BEELINE_IMSI;
    simcom.answers.insert("+COPS?", "+COPS: 0,0,\"Beeline\",7");
    SimModem* module = add(QStringLiteral("ttyS1"), std::make_unique<SimModem>(simcom),
                           Tool::tr("SIMCOM SIM7600E-H on a serial line, Beeline SIM"), false, error);
    if (!module)
        return false;
    module->setUssdReply("*102#", Ussd::ucs2(QStringLiteral("Баланс: -15.20 р. Пополните счёт.")));
    return true;
}
