#include "demomodems.h"
#include "pdu.h"
#include "simmodem.h"
#include "toolportinfo.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <unistd.h>

using modemsim::Make;
using modemsim::Profile;
using modemsim::SimModem;
using modemsim::Ussd;

namespace {

// Huawei E3372 in modem mode.
const quint16 HUAWEI_VENDOR = 0x12d1;
const quint16 E3372_PRODUCT = 0x1506;
const QByteArray HUAWEI_IMEI = "866123456789012";
const QByteArray MEGAFON_IMSI = "250021234567890";   // MCC 250, MNC 02
const QByteArray BEELINE_IMSI = "250991234567890";   // MCC 250, MNC 99

// A value of two decimal digits in swapped semi-octets.
char swappedBcd(int value)
{
    return static_cast<char>(((value % 10) << 4) | (value / 10 % 10));
}

// Service-centre address: length in octets, type of address, semi-octets.
QByteArray serviceCentre(const QString& digits)
{
    QByteArray address = PDU::encodeAddress(digits, PDU::InternationalNumber);
    // The TP address counts digits; the service centre counts octets.
    address[0] = static_cast<char>(address.size() - 1);
    return address;
}

// TP-OA: a number, or an alphanumeric name in packed 7-bit characters.
QByteArray originatingAddress(const QString& sender)
{
    bool numeric = !sender.isEmpty();
    for (const QChar c : sender)
        numeric &= c.isDigit() || c == QLatin1Char('+');
    if (numeric)
        return PDU::encodeAddress(sender);
    const QByteArray septets = PDU::toGsm7(sender);
    const QByteArray packed = PDU::packSeptets(septets);
    QByteArray address;
    address.append(static_cast<char>((septets.size() * 7 + 3) / 4)); // useful semi-octets
    address.append(static_cast<char>(0xD0));                         // alphanumeric
    address.append(packed);
    return address;
}

QByteArray timeStamp(const QDateTime& time)
{
    const QDate d = time.date();
    const QTime t = time.time();
    QByteArray octets;
    octets.append(swappedBcd(d.year() % 100));
    octets.append(swappedBcd(d.month()));
    octets.append(swappedBcd(d.day()));
    octets.append(swappedBcd(t.hour()));
    octets.append(swappedBcd(t.minute()));
    octets.append(swappedBcd(t.second()));
    const int offset = time.offsetFromUtc();
    char zone = swappedBcd(qAbs(offset) / 900);
    if (offset < 0)
        zone = static_cast<char>(zone | 0x08);
    octets.append(zone);
    return octets;
}

} // namespace

DemoModems::DemoModems() = default;

DemoModems::~DemoModems()
{
    // The port information goes first: nothing may look a port up while the
    // modems behind it stop.
    m_portInfo.reset();
    m_modems.clear();
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
            *error = QStringLiteral("cannot link %1 to %2").arg(device, modem->ptyPath());
        return nullptr;
    }
    PortInfoProvider::Port port;
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
            *error = QStringLiteral("cannot create a scratch folder: %1").arg(m_dir.errorString());
        return false;
    }
    m_portInfo = std::make_unique<ToolPortInfo>();
    m_portInfo->setDeclaredOnly(true);
    m_portInfo->setDataPortLink(dataPortLink());

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
        modem->storeSms(deliverPdu(QStringLiteral("MegaFon"), QStringLiteral("Vash tarif: Internet XS. Ostatok 3 GB"),
                                   now.addSecs(-3 * 3600), false));
        modem->storeSms(deliverPdu(QStringLiteral("+79161234567"),
                                   QStringLiteral("The router in the cabinet is back online."),
                                   now.addSecs(-600), false));
        const QString first = QStringLiteral("Уважаемый абонент! Пакет интернета с 1 числа стоит 350 руб. ");
        const QString second = QStringLiteral("Подробности на сайте оператора.");
        modem->storeSms(deliverPdu(QStringLiteral("+79262000500"), second, now.addSecs(-1800), true, 0x2a, 2, 2));
        modem->storeSms(deliverPdu(QStringLiteral("+79262000500"), first, now.addSecs(-1800), true, 0x2a, 1, 2));
    }
    // The udev rules point gsmmodem at the data interface.
    if (::symlink("ttyUSB0", QFile::encodeName(dataPortLink()).constData()) != 0) {
        if (error)
            *error = QStringLiteral("cannot create the link %1").arg(dataPortLink());
        return false;
    }

    // A SIMCOM module on a serial line.
    Profile simcom = Profile::forMake(Make::SimCom);
    simcom.imsi = BEELINE_IMSI;
    simcom.answers.insert("+COPS?", "+COPS: 0,0,\"Beeline\",7");
    SimModem* module = add(QStringLiteral("ttyS1"), std::make_unique<SimModem>(simcom),
                           QStringLiteral("SIMCOM SIM7600E-H on a serial line, Beeline SIM"), false, error);
    if (!module)
        return false;
    module->setUssdReply("*102#", Ussd::ucs2(QStringLiteral("Баланс: -15.20 р. Пополните счёт.")));
    return true;
}

QByteArray DemoModems::deliverPdu(const QString& sender, const QString& text, const QDateTime& sent, bool ucs2,
                                  int reference, int part, int count)
{
    const bool concatenated = count > 1;
    QByteArray header;
    if (concatenated) {
        // Concatenated short message, 8-bit reference.
        header = QByteArray::fromHex("050003");
        header.append(static_cast<char>(reference & 0xff));
        header.append(static_cast<char>(count));
        header.append(static_cast<char>(part));
    }

    QByteArray userData;
    int userDataLength = 0;
    if (ucs2) {
        for (const QChar c : text) {
            userData.append(static_cast<char>(c.unicode() >> 8));
            userData.append(static_cast<char>(c.unicode() & 0xff));
        }
        userData.prepend(header);
        userDataLength = userData.size();
    } else {
        const QByteArray septets = PDU::toGsm7(text);
        // The text starts on a septet boundary after the header.
        const int headerBits = header.size() * 8;
        const int fill = (7 - headerBits % 7) % 7;
        userData = header + PDU::packSeptets(septets, fill);
        userDataLength = (headerBits + fill) / 7 + septets.size();
    }

    QByteArray pdu = serviceCentre(QStringLiteral("+79262909090"));
    // SMS-DELIVER, no more messages to send, user-data header if any.
    pdu.append(static_cast<char>(0x04 | (concatenated ? 0x40 : 0x00)));
    pdu.append(originatingAddress(sender));
    pdu.append('\0');                                   // protocol identifier
    pdu.append(static_cast<char>(ucs2 ? 0x08 : 0x00)); // data coding scheme
    pdu.append(timeStamp(sent));
    pdu.append(static_cast<char>(userDataLength));
    pdu.append(userData);
    return pdu.toHex().toUpper();
}
