#include "operatordata.h"
#include "settingslog_p.h"

#include <QRegExp>
#include <QSharedData>

namespace {
const QString KEY_MCC = QStringLiteral("mcc");
const QString KEY_MNC = QStringLiteral("mnc");
const QString KEY_NAME = QStringLiteral("name");
const QString KEY_SELF_NUMBER_PHONE = QStringLiteral("selfNumberPhone");
const QString KEY_SELF_NUMBER_FROM_SMS = QStringLiteral("selfNumberFromSms");
const QString KEY_BALANCE_PHONE = QStringLiteral("balancePhone");
const QString KEY_USER_NAME = QStringLiteral("userName");
const QString KEY_PASSWORD = QStringLiteral("password");
const QString KEY_MODEM_INIT_LINE = QStringLiteral("modemInitLine");

const QString TABLE_KEY_PREFIX = QStringLiteral("mnc_");
} // namespace

class OperatorDataData : public QSharedData
{
public:
    int mcc = 0;
    int mnc = 0;
    QString name;
    QString selfNumberPhone;
    bool selfNumberFromSms = false;
    QString balancePhone;
    QString userName;
    QString password;
    QString modemInitLine;
};

OperatorData::OperatorData()
    : d(new OperatorDataData)
{
}

OperatorData::OperatorData(const OperatorData& other) = default;
OperatorData& OperatorData::operator=(const OperatorData& other) = default;
OperatorData::~OperatorData() = default;

int OperatorData::mcc() const { return d->mcc; }
void OperatorData::setMcc(const int& mcc) { d->mcc = mcc; }

int OperatorData::mnc() const { return d->mnc; }
void OperatorData::setMnc(const int& mnc) { d->mnc = mnc; }

QString OperatorData::name() const { return d->name; }
void OperatorData::setName(const QString& name) { d->name = name; }

QString OperatorData::selfNumberPhone() const { return d->selfNumberPhone; }
void OperatorData::setSelfNumberPhone(const QString& selfNumberPhone) { d->selfNumberPhone = selfNumberPhone; }

bool OperatorData::selfNumberFromSms() const { return d->selfNumberFromSms; }
void OperatorData::setSelfNumberFromSms(bool selfNumberFromSms) { d->selfNumberFromSms = selfNumberFromSms; }

QString OperatorData::balancePhone() const { return d->balancePhone; }
void OperatorData::setBalancePhone(const QString& balancePhone) { d->balancePhone = balancePhone; }

QString OperatorData::userName() const { return d->userName; }
void OperatorData::setUserName(const QString& userName) { d->userName = userName; }

QString OperatorData::password() const { return d->password; }
void OperatorData::setPassword(const QString& password) { d->password = password; }

QString OperatorData::modemInitLine() const { return d->modemInitLine; }
void OperatorData::setModemInitLine(const QString& modemInitLine) { d->modemInitLine = modemInitLine; }

int OperatorData::mccmnc() const
{
    // Codes read from a table file or a map can be any int: the key is
    // computed wide and wrapped into an int, never overflowed.
    return int(quint32(qint64(d->mcc) * 100 + d->mnc));
}

bool OperatorData::isValid() const
{
    return d->mcc > 0 && d->mnc > 0 && !d->name.isEmpty();
}

bool OperatorData::operator==(const OperatorData& other) const
{
    if (d == other.d)
        return true;
    return d->mcc == other.d->mcc
        && d->mnc == other.d->mnc
        && d->name == other.d->name
        && d->selfNumberPhone == other.d->selfNumberPhone
        && d->selfNumberFromSms == other.d->selfNumberFromSms
        && d->balancePhone == other.d->balancePhone
        && d->userName == other.d->userName
        && d->password == other.d->password
        && d->modemInitLine == other.d->modemInitLine;
}

bool OperatorData::operator!=(const OperatorData& other) const
{
    return !(*this == other);
}

QVariantMap OperatorData::toMap() const
{
    QVariantMap map;
    map.insert(KEY_MCC, d->mcc);
    map.insert(KEY_MNC, d->mnc);
    map.insert(KEY_NAME, d->name);
    map.insert(KEY_SELF_NUMBER_PHONE, d->selfNumberPhone);
    map.insert(KEY_SELF_NUMBER_FROM_SMS, d->selfNumberFromSms);
    map.insert(KEY_BALANCE_PHONE, d->balancePhone);
    map.insert(KEY_USER_NAME, d->userName);
    map.insert(KEY_PASSWORD, d->password);
    map.insert(KEY_MODEM_INIT_LINE, d->modemInitLine);
    return map;
}

void OperatorData::setMap(const QVariantMap& map)
{
    d->mcc = map.value(KEY_MCC).toInt();
    d->mnc = map.value(KEY_MNC).toInt();
    d->name = map.value(KEY_NAME).toString();
    d->selfNumberPhone = map.value(KEY_SELF_NUMBER_PHONE).toString();
    // toBool: the table holds the number 0 in some rows; any other number
    // would read as true.
    d->selfNumberFromSms = map.value(KEY_SELF_NUMBER_FROM_SMS).toBool();
    d->balancePhone = map.value(KEY_BALANCE_PHONE).toString();
    d->userName = map.value(KEY_USER_NAME).toString();
    d->password = map.value(KEY_PASSWORD).toString();
    // The init line goes to the modem as it is; blanks typed after the
    // commas would make the modem reject it.
    d->modemInitLine = map.value(KEY_MODEM_INIT_LINE).toString().remove(QLatin1Char(' '), Qt::CaseSensitive);
}

OperatorData OperatorData::fromMap(const QVariantMap& map)
{
    OperatorData data;
    data.setMap(map);
    return data;
}

MncTable OperatorData::mncTableFromMap(const QVariantMap& map)
{
    MncTable table;
    QRegExp keyExpression(QStringLiteral("(mnc_)(\\d{5})"), Qt::CaseSensitive, QRegExp::RegExp);
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        const QString& key = it.key();
        if (!keyExpression.exactMatch(key) || keyExpression.capturedTexts().size() < 3) {
            ZML_SETTINGS_WARNING() << QStringLiteral("Invalid table key ") + key;
            continue;
        }
        const int tableKey = keyExpression.cap(2).toInt();
        const OperatorData data = fromMap(it.value().toMap());
        if (!data.isValid()) {
            ZML_SETTINGS_WARNING() << QStringLiteral("Invalid operator data for ") + QString::number(tableKey);
            continue;
        }
        if (data.mccmnc() != tableKey) {
            ZML_SETTINGS_WARNING() << QStringLiteral("Key mnc %1 != data mnc %2").arg(tableKey).arg(data.mccmnc());
        }
        table.insert(data.mccmnc(), data);
    }
    return table;
}

QVariantMap OperatorData::mncTableToMap(const MncTable& table)
{
    QVariantMap map;
    for (auto it = table.constBegin(); it != table.constEnd(); ++it)
        map.insert(TABLE_KEY_PREFIX + QString::number(it.key()), it.value().toMap());
    return map;
}
