#include "modemservicestate.h"

#include <zelbus/clientstate.h>

#include <QJsonDocument>
#include <QJsonParseError>
#include <QSharedData>

namespace {
const QString KEY_SERVICE_MODE = QStringLiteral("serviceMode");
const QString KEY_CONNECTION_STATE = QStringLiteral("connectionState");
const QString KEY_BALANCE = QStringLiteral("balance");
const QString KEY_BALANCE_TEXT = QStringLiteral("balanceText");
const QString KEY_MCC = QStringLiteral("mcc");
const QString KEY_MNC = QStringLiteral("mnc");
const QString KEY_LAC = QStringLiteral("lac");
const QString KEY_CID = QStringLiteral("cid");
const QString KEY_MODEM_INFO = QStringLiteral("modemInfo");
const QString KEY_SIGNAL_LEVEL = QStringLiteral("signalLevel");

const QString KEY_ACTIVE_CONNECTION = QStringLiteral("name");
const QString NUL_MARKER = QStringLiteral("(0|0)");
} // namespace

class ModemServiceStateData : public QSharedData
{
public:
    ModemServiceState::EServiceMode serviceMode = ModemServiceState::SM_STOPPED;
    ModemServiceState::EConnectionState connectionState = ModemServiceState::CS_DISCONNECTED;
    double balance = 0.0;
    QString balanceText;
    QString mcc;
    QString mnc;
    QString lac;
    QString cid;
    QVariantMap modemInfo;
    int signalLevel = 0;
};

ModemServiceState::ModemServiceState()
    : d(new ModemServiceStateData)
{
}

ModemServiceState::ModemServiceState(const ModemServiceState& other) = default;
ModemServiceState& ModemServiceState::operator=(const ModemServiceState& other) = default;
ModemServiceState::~ModemServiceState() = default;

ModemServiceState::EServiceMode ModemServiceState::serviceMode() const { return d->serviceMode; }

void ModemServiceState::setServiceMode(const EServiceMode& mode)
{
    d->serviceMode = mode;
    if (mode != SM_CONNECTION)
        d->connectionState = CS_DISCONNECTED;
}

ModemServiceState::EConnectionState ModemServiceState::connectionState() const { return d->connectionState; }
void ModemServiceState::setConnectionState(const EConnectionState& state) { d->connectionState = state; }

double ModemServiceState::balance() const { return d->balance; }
void ModemServiceState::setBalance(double balance) { d->balance = balance; }

QString ModemServiceState::balanceText() const { return d->balanceText; }

void ModemServiceState::setBalanceText(const QString& text)
{
    QString marked = text;
    marked.replace(QChar(0), NUL_MARKER);
    d->balanceText = marked;
}

QString ModemServiceState::mcc() const { return d->mcc; }
void ModemServiceState::setMcc(const QString& mcc) { d->mcc = mcc; }

QString ModemServiceState::mnc() const { return d->mnc; }
void ModemServiceState::setMnc(const QString& mnc) { d->mnc = mnc; }

QString ModemServiceState::lac() const { return d->lac; }
void ModemServiceState::setLac(const QString& lac) { d->lac = lac; }

QString ModemServiceState::cid() const { return d->cid; }
void ModemServiceState::setCid(const QString& cid) { d->cid = cid; }

QVariantMap ModemServiceState::modemInfo() const { return d->modemInfo; }
void ModemServiceState::setModemInfo(const QVariantMap& modemInfo) { d->modemInfo = modemInfo; }

int ModemServiceState::signalLevel() const { return d->signalLevel; }
void ModemServiceState::setSignalLevel(const int& signalLevel) { d->signalLevel = signalLevel; }

QString ModemServiceState::activeConnection() const
{
    // Looked up under "name", which the service puts there; a plain ModemInfo
    // map carries "connectionName" instead and so yields no name.
    const auto it = d->modemInfo.constFind(KEY_ACTIVE_CONNECTION);
    return it == d->modemInfo.constEnd() ? QString() : it->toString();
}

bool ModemServiceState::operator==(const ModemServiceState& other)
{
    if (d == other.d)
        return true;
    return d->serviceMode == other.d->serviceMode
        && d->connectionState == other.d->connectionState
        && d->balance == other.d->balance
        && d->balanceText == other.d->balanceText
        && d->mcc == other.d->mcc
        && d->mnc == other.d->mnc
        && d->lac == other.d->lac
        && d->cid == other.d->cid
        && d->modemInfo == other.d->modemInfo
        && d->signalLevel == other.d->signalLevel;
}

bool ModemServiceState::operator!=(const ModemServiceState& other)
{
    return !(*this == other);
}

QVariantMap ModemServiceState::toMap() const
{
    QVariantMap map;
    map.insert(KEY_SERVICE_MODE, static_cast<int>(d->serviceMode));
    map.insert(KEY_CONNECTION_STATE, static_cast<int>(d->connectionState));
    map.insert(KEY_BALANCE, d->balance);
    map.insert(KEY_BALANCE_TEXT, d->balanceText);
    map.insert(KEY_MCC, d->mcc);
    map.insert(KEY_MNC, d->mnc);
    map.insert(KEY_LAC, d->lac);
    map.insert(KEY_CID, d->cid);
    map.insert(KEY_MODEM_INFO, d->modemInfo);
    map.insert(KEY_SIGNAL_LEVEL, d->signalLevel);
    return map;
}

void ModemServiceState::setMap(const QVariantMap& map)
{
    // The mode is stored as it came: a published connection state stays
    // whatever the mode.
    d->serviceMode = static_cast<EServiceMode>(map.value(KEY_SERVICE_MODE).toInt());
    d->connectionState = static_cast<EConnectionState>(map.value(KEY_CONNECTION_STATE).toInt());
    d->balance = map.value(KEY_BALANCE).toDouble();
    setBalanceText(map.value(KEY_BALANCE_TEXT).toString());
    d->mcc = map.value(KEY_MCC).toString();
    d->mnc = map.value(KEY_MNC).toString();
    d->lac = map.value(KEY_LAC).toString();
    d->cid = map.value(KEY_CID).toString();
    d->modemInfo = map.value(KEY_MODEM_INFO).toMap();
    d->signalLevel = map.value(KEY_SIGNAL_LEVEL).toInt();
}

ModemServiceState ModemServiceState::fromMap(const QVariantMap& map)
{
    ModemServiceState state;
    state.setMap(map);
    return state;
}

bool ModemServiceState::setClientState(const zelbus::ClientState& clientState)
{
    if (clientState.owner() != zelbus::BUSNAME_ZELMODEMS)
        return false;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(clientState.state().toUtf8(), &error);
    if (error.error != QJsonParseError::NoError)
        return false;
    setMap(document.toVariant().toMap());
    return true;
}
