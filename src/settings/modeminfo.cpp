#include "modeminfo.h"

#include <QSharedData>
#include <QVariantList>

namespace {
const QString KEY_PORT_NAME = QStringLiteral("portName");
const QString KEY_CMD_PORT_NAME = QStringLiteral("cmdPortName");
const QString KEY_CONNECTION_NAME = QStringLiteral("connectionName");
const QString KEY_PHONE = QStringLiteral("phone");
const QString KEY_PHONES = QStringLiteral("phones");
const QString KEY_INIT_LINES = QStringLiteral("initLines");
const QString KEY_BAUDRATE = QStringLiteral("baudrate");
const QString KEY_USER_NAME = QStringLiteral("userName");
const QString KEY_PASSWORD = QStringLiteral("password");
const QString KEY_DIAL_COMMAND = QStringLiteral("dialCommand");
const QString KEY_NEW_PPPD = QStringLiteral("newPppd");
const QString KEY_STUPID_MODE = QStringLiteral("stupidMode");
const QString KEY_ISDN = QStringLiteral("isdn");
const QString KEY_MODEM_TYPE = QStringLiteral("modemType");
const QString KEY_SIM_NUMBER = QStringLiteral("simNumber");
const QString KEY_BALANCE_USSD = QStringLiteral("balanceUssd");
const QString KEY_PHONE_USSD = QStringLiteral("phoneUssd");
const QString KEY_PHONE_FROM_SMS = QStringLiteral("phoneFromSms");

QVariantList toVariantList(const QStringList& list)
{
    QVariantList result;
    result.reserve(list.size());
    for (const QString& item : list)
        result.append(item);
    return result;
}

QStringList toStringList(const QVariant& value)
{
    QStringList result;
    const QVariantList list = value.toList();
    for (const QVariant& item : list)
        result.append(item.toString());
    return result;
}
} // namespace

class ModemInfoData : public QSharedData
{
public:
    QString portName;
    QString cmdPortName;
    QString connectionName;
    QString imei;
    // "*99***1#" dialed with "ATDT" opens a GSM packet-data connection.
    QString phone = QStringLiteral("*99***1#");
    QStringList phones;
    QStringList initLines;
    int baudrate = 0;
    QString userName;
    QString password;
    QString dialCommand = QStringLiteral("ATDT");
    bool newPppd = true;
    bool stupidMode = true;
    int isdn = 0;
    // The dialer configuration expects this type even for GSM modems.
    QString modemType = QStringLiteral("Analog Modem");
    QString simNumber;
    QString balanceUssd;
    QString phoneUssd;
    bool phoneFromSms = false;
};

ModemInfo::ModemInfo()
    : d(new ModemInfoData)
{
}

ModemInfo::ModemInfo(const ModemInfo& other) = default;
ModemInfo& ModemInfo::operator=(const ModemInfo& other) = default;
ModemInfo::~ModemInfo() = default;

QString ModemInfo::portName() const { return d->portName; }
void ModemInfo::setPortName(const QString& portName) { d->portName = portName; }

QString ModemInfo::cmdPortName() const { return d->cmdPortName; }
void ModemInfo::setCmdPortName(const QString& cmdPortName) { d->cmdPortName = cmdPortName; }

QString ModemInfo::connectionName() const { return d->connectionName; }

void ModemInfo::setConnectionName(const QString& name)
{
    d->connectionName = name.isEmpty() ? generateConnectionName() : name;
}

QString ModemInfo::generateConnectionName() const
{
    return QString();
}

QString ModemInfo::imei() const { return d->imei; }
void ModemInfo::setImei(const QString& imei) { d->imei = imei; }

QString ModemInfo::phone() const
{
    if (!d->phone.isEmpty())
        return d->phone;
    if (!d->phones.isEmpty())
        return d->phones.first();
    return QString();
}

void ModemInfo::setPhone(const QString& phone) { d->phone = phone; }

QStringList ModemInfo::phones() const { return d->phones; }
void ModemInfo::setPhones(const QStringList& phones) { d->phones = phones; }

QStringList ModemInfo::initLines() const { return d->initLines; }
void ModemInfo::setInitLines(const QStringList& initLines) { d->initLines = initLines; }
void ModemInfo::addInitLine(const QString& line) { d->initLines.append(line); }

int ModemInfo::baudrate() const { return d->baudrate; }
void ModemInfo::setBaudrate(const int& baudrate) { d->baudrate = baudrate; }

QString ModemInfo::userName() const { return d->userName; }
void ModemInfo::setUserName(const QString& userName) { d->userName = userName; }

QString ModemInfo::password() const { return d->password; }
void ModemInfo::setPassword(const QString& password) { d->password = password; }

QString ModemInfo::dialCommand() const { return d->dialCommand; }
void ModemInfo::setDialCommand(const QString& dialCommand) { d->dialCommand = dialCommand; }

bool ModemInfo::newPppd() const { return d->newPppd; }
void ModemInfo::setNewPppd(bool newPppd) { d->newPppd = newPppd; }

bool ModemInfo::stupidMode() const { return d->stupidMode; }
void ModemInfo::setStupidMode(bool stupidMode) { d->stupidMode = stupidMode; }

int ModemInfo::isdn() const { return d->isdn; }
void ModemInfo::setIsdn(const int& isdn) { d->isdn = isdn; }

QString ModemInfo::modemType() const { return d->modemType; }
void ModemInfo::setModemType(const QString& modemType) { d->modemType = modemType; }

QString ModemInfo::simNumber() const { return d->simNumber; }
void ModemInfo::setSimNumber(const QString& simNumber) { d->simNumber = simNumber; }

QString ModemInfo::balanceUssd() const { return d->balanceUssd; }
void ModemInfo::setBalanceUssd(const QString& balanceUssd) { d->balanceUssd = balanceUssd; }

QString ModemInfo::phoneUssd() const { return d->phoneUssd; }
void ModemInfo::setPhoneUssd(const QString& phoneUssd) { d->phoneUssd = phoneUssd; }

bool ModemInfo::phoneFromSms() const { return d->phoneFromSms; }
void ModemInfo::setPhoneFromSms(bool phoneFromSms) { d->phoneFromSms = phoneFromSms; }

bool ModemInfo::isValid() const
{
    return !d->connectionName.isEmpty() && !d->portName.isEmpty() && d->baudrate > 0;
}

bool ModemInfo::operator==(const ModemInfo& other) const
{
    if (d == other.d)
        return true;
    return d->portName == other.d->portName
        && d->cmdPortName == other.d->cmdPortName
        && d->connectionName == other.d->connectionName
        && d->imei == other.d->imei
        && d->phone == other.d->phone
        && d->phones == other.d->phones
        && d->initLines == other.d->initLines
        && d->baudrate == other.d->baudrate
        && d->userName == other.d->userName
        && d->password == other.d->password
        && d->dialCommand == other.d->dialCommand
        && d->newPppd == other.d->newPppd
        && d->stupidMode == other.d->stupidMode
        && d->isdn == other.d->isdn
        && d->modemType == other.d->modemType
        && d->simNumber == other.d->simNumber
        && d->balanceUssd == other.d->balanceUssd
        && d->phoneUssd == other.d->phoneUssd
        && d->phoneFromSms == other.d->phoneFromSms;
}

bool ModemInfo::operator!=(const ModemInfo& other) const
{
    return !(*this == other);
}

QVariantMap ModemInfo::toMap() const
{
    QVariantMap map;
    map.insert(KEY_PORT_NAME, d->portName);
    map.insert(KEY_CMD_PORT_NAME, d->cmdPortName);
    map.insert(KEY_CONNECTION_NAME, d->connectionName);
    // The stored number itself, not the fallback of phone().
    map.insert(KEY_PHONE, d->phone);
    map.insert(KEY_PHONES, toVariantList(d->phones));
    map.insert(KEY_INIT_LINES, toVariantList(d->initLines));
    map.insert(KEY_BAUDRATE, d->baudrate);
    map.insert(KEY_USER_NAME, d->userName);
    map.insert(KEY_PASSWORD, d->password);
    map.insert(KEY_DIAL_COMMAND, d->dialCommand);
    map.insert(KEY_NEW_PPPD, d->newPppd);
    map.insert(KEY_STUPID_MODE, d->stupidMode);
    map.insert(KEY_ISDN, d->isdn);
    map.insert(KEY_MODEM_TYPE, d->modemType);
    map.insert(KEY_SIM_NUMBER, d->simNumber);
    map.insert(KEY_BALANCE_USSD, d->balanceUssd);
    map.insert(KEY_PHONE_USSD, d->phoneUssd);
    map.insert(KEY_PHONE_FROM_SMS, d->phoneFromSms);
    return map;
}

void ModemInfo::setMap(const QVariantMap& map)
{
    // Every key read here overwrites its field, a missing key with the empty
    // value. The dialer options are left alone: the library fixes them.
    d->portName = map.value(KEY_PORT_NAME).toString();
    d->cmdPortName = map.value(KEY_CMD_PORT_NAME).toString();
    d->connectionName = map.value(KEY_CONNECTION_NAME).toString();
    d->phone = map.value(KEY_PHONE).toString();
    d->phones = toStringList(map.value(KEY_PHONES));
    d->initLines = toStringList(map.value(KEY_INIT_LINES));
    d->baudrate = map.value(KEY_BAUDRATE).toInt();
    d->userName = map.value(KEY_USER_NAME).toString();
    d->password = map.value(KEY_PASSWORD).toString();
    d->simNumber = map.value(KEY_SIM_NUMBER).toString();
    d->balanceUssd = map.value(KEY_BALANCE_USSD).toString();
    d->phoneUssd = map.value(KEY_PHONE_USSD).toString();
    d->phoneFromSms = map.value(KEY_PHONE_FROM_SMS).toBool();
}

ModemInfo ModemInfo::fromMap(const QVariantMap& map)
{
    ModemInfo info;
    info.setMap(map);
    return info;
}
