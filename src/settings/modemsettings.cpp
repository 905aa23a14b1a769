#include "modemsettings.h"
#include "settingslog_p.h"

#include <qt5ext/logformat.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QJsonObject>
#include <QJsonParseError>
#include <QMutexLocker>

const QString ModemSettings::SECTION = QStringLiteral("MODEMSSRV");
const QString ModemSettings::MODEMS_SECTION = QStringLiteral("MODEMS");
const QString ModemSettings::CONNECTIONS_ORDER = QStringLiteral("connectionsOrder");
const QString ModemSettings::STATUS_TIMEOUT = QStringLiteral("statusTimeout");
const QString ModemSettings::IGNORE_QUERYING_ERROR = QStringLiteral("ignoreQueryingError");
const QString ModemSettings::NOT_QUERY_MODEM = QStringLiteral("notQuery");
const QString ModemSettings::USE_PPPOE = QStringLiteral("usePppOE");
const QString ModemSettings::PPPOE_PEER = QStringLiteral("pppOEPeer");
const QString ModemSettings::SKIP_INTERNET_CHECKING = QStringLiteral("skipInternetChecking");
const QString ModemSettings::MAPPED_IGNORE_QUERYING_ERROR = QStringLiteral("IGNORE_MODEM_QUERYING_ERRORS");
const QString ModemSettings::MAPPED_NOT_QUERY_MODEM = QStringLiteral("NOT_QUERY_MODEM");
const QString ModemSettings::MAPPED_SIM_NUMBER = QStringLiteral("SIM_NUMBER");

QStringList ModemSettings::_connectionsOrder;
int ModemSettings::_statusTimeout = 60;
bool ModemSettings::_ignoreQueryingErrors = true;
bool ModemSettings::_notQuery = false;
bool ModemSettings::_usePppOE = false;
QString ModemSettings::_pppOEPeer;
bool ModemSettings::_skipCheckInternetConnection = true;
QMap<QString, ModemInfo> ModemSettings::_modems;
MncTable ModemSettings::_mncTable;
QMutex ModemSettings::_settingsMutex(QMutex::NonRecursive);

namespace {
const QString KEY_GROUP = QStringLiteral("group");
const QString KEY_KEY = QStringLiteral("key");
const QString KEY_VALUE = QStringLiteral("value");

// Milliseconds that a port's lock file is waited for.
const qint64 LOCK_WAIT_MS = 2000;

QVariantMap settingsEntry(const QString& group, const QString& key, const QVariant& value)
{
    QVariantMap entry;
    entry.insert(KEY_GROUP, group);
    entry.insert(KEY_KEY, key);
    entry.insert(KEY_VALUE, value);
    return entry;
}

QString lockFileName(const QString& portName)
{
    return portName + QStringLiteral(".lock");
}
} // namespace

ModemSettings::ModemSettings()
{
    loadMncTable();
}

ModemSettings::~ModemSettings() = default;

int ModemSettings::statusTimeout() const
{
    QMutexLocker lock(&_settingsMutex);
    return _statusTimeout;
}

void ModemSettings::setStatusTimeout(const int& statusTimeout)
{
    QMutexLocker lock(&_settingsMutex);
    _statusTimeout = statusTimeout;
}

bool ModemSettings::ignoreQueryingErrors() const
{
    QMutexLocker lock(&_settingsMutex);
    return _ignoreQueryingErrors;
}

void ModemSettings::setIgnoreQueryingErrors(bool ignore)
{
    QMutexLocker lock(&_settingsMutex);
    _ignoreQueryingErrors = ignore;
}

bool ModemSettings::notQueryModem() const
{
    QMutexLocker lock(&_settingsMutex);
    return _notQuery;
}

void ModemSettings::setNotQueryModem(bool notQuery)
{
    QMutexLocker lock(&_settingsMutex);
    _notQuery = notQuery;
}

bool ModemSettings::usePppOE() const
{
    QMutexLocker lock(&_settingsMutex);
    return _usePppOE;
}

void ModemSettings::setUsePppOE(bool usePppOE)
{
    QMutexLocker lock(&_settingsMutex);
    _usePppOE = usePppOE;
}

QString ModemSettings::pppOEPeer() const
{
    QMutexLocker lock(&_settingsMutex);
    return _pppOEPeer;
}

void ModemSettings::setPppOEPeer(const QString& peer)
{
    QMutexLocker lock(&_settingsMutex);
    _pppOEPeer = peer;
}

bool ModemSettings::getSkipCheckInternetConnection() const
{
    QMutexLocker lock(&_settingsMutex);
    return _skipCheckInternetConnection;
}

void ModemSettings::setSkipCheckInternetConnection(bool skip)
{
    QMutexLocker lock(&_settingsMutex);
    _skipCheckInternetConnection = skip;
}

QStringList ModemSettings::connectionsOrder() const
{
    QMutexLocker lock(&_settingsMutex);
    return _connectionsOrder;
}

void ModemSettings::setConnectionsOrder(const QStringList& order)
{
    QMutexLocker lock(&_settingsMutex);
    _connectionsOrder.clear();
    for (const QString& name : order)
        _connectionsOrder.append(name);
}

QMap<QString, ModemInfo> ModemSettings::modems() const
{
    QMutexLocker lock(&_settingsMutex);
    return _modems;
}

void ModemSettings::setModems(const QMap<QString, ModemInfo>& modems)
{
    QMutexLocker lock(&_settingsMutex);
    _modems = modems;
}

QStringList ModemSettings::ports() const
{
    // Two separate locked copies: the mutex is not recursive, and nothing
    // else here needs it.
    const QStringList order = connectionsOrder();
    const QMap<QString, ModemInfo> connections = modems();

    QStringList result;
    for (const QString& name : order) {
        const auto it = connections.constFind(name);
        if (it == connections.constEnd())
            continue;
        // A connection without a command port contributes an empty name
        // (once); callers rely on the list as it is.
        if (!result.contains(it->portName()))
            result.append(it->portName());
        if (!result.contains(it->cmdPortName()))
            result.append(it->cmdPortName());
    }
    return result;
}

QVariantList ModemSettings::toSettingsList() const
{
    QMutexLocker lock(&_settingsMutex);
    QVariantList list;
    // The switches travel as ints, as the configuration store keeps them.
    list.append(settingsEntry(SECTION, CONNECTIONS_ORDER, _connectionsOrder.join(QLatin1Char('\n'))));
    list.append(settingsEntry(SECTION, STATUS_TIMEOUT, _statusTimeout));
    list.append(settingsEntry(SECTION, IGNORE_QUERYING_ERROR, _ignoreQueryingErrors ? 1 : 0));
    list.append(settingsEntry(SECTION, NOT_QUERY_MODEM, _notQuery ? 1 : 0));
    list.append(settingsEntry(SECTION, USE_PPPOE, _usePppOE ? 1 : 0));
    list.append(settingsEntry(SECTION, PPPOE_PEER, _pppOEPeer));
    list.append(settingsEntry(SECTION, SKIP_INTERNET_CHECKING, _skipCheckInternetConnection ? 1 : 0));
    for (auto it = _modems.constBegin(); it != _modems.constEnd(); ++it) {
        const QJsonDocument document(QJsonObject::fromVariantMap(it->toMap()));
        list.append(settingsEntry(MODEMS_SECTION, it->connectionName(),
                                  QString::fromUtf8(document.toJson(QJsonDocument::Compact))));
    }
    return list;
}

void ModemSettings::setSettingsList(const QVariantList& list)
{
    QMutexLocker lock(&_settingsMutex);
    // The list carries every configured connection: those it lacks are gone.
    _modems.clear();

    for (const QVariant& item : list) {
        const QVariantMap entry = item.toMap();
        const QString group = entry.value(KEY_GROUP).toString();

        if (group == SECTION) {
            const QString key = entry.value(KEY_KEY).toString();
            const QVariant value = entry.value(KEY_VALUE);
            if (key == CONNECTIONS_ORDER) {
                _connectionsOrder.clear();
                const QStringList names = value.toString().split(QLatin1Char('\n'), Qt::KeepEmptyParts);
                for (const QString& name : names)
                    _connectionsOrder.append(name);
            } else if (key == STATUS_TIMEOUT) {
                _statusTimeout = value.toInt();
            } else if (key == IGNORE_QUERYING_ERROR) {
                _ignoreQueryingErrors = value.toInt() != 0;
            } else if (key == NOT_QUERY_MODEM) {
                _notQuery = value.toInt() != 0;
            } else if (key == USE_PPPOE) {
                _usePppOE = value.toInt() != 0;
            } else if (key == PPPOE_PEER) {
                _pppOEPeer = value.toString();
            } else if (key == SKIP_INTERNET_CHECKING) {
                _skipCheckInternetConnection = value.toInt() != 0;
            } else {
                ZML_SETTINGS_WARNING() << QStringLiteral("Unknown settings key: ") + key;
            }
        } else if (group == MODEMS_SECTION) {
            const QString key = entry.value(KEY_KEY).toString();
            const QString value = entry.value(KEY_VALUE).toString();
            QJsonParseError error;
            const QJsonDocument document = QJsonDocument::fromJson(value.toUtf8(), &error);
            if (error.error != QJsonParseError::NoError) {
                // The entry is logged to tell what is wrong with it, but not
                // the dial-up password it may carry.
                QString shown = value;
                shown.replace(QRegularExpression(QStringLiteral("(\"password\"\\s*:\\s*)(\"(?:[^\"\\\\]|\\\\.)*\"?|[^,}\\s]*)")),
                              QStringLiteral("\\1\"***\""));
                ZML_SETTINGS_WARNING() << QStringLiteral("Invalid connection settings: key %1; value %2. error %3.")
                                              .arg(key, shown, error.errorString());
                continue;
            }
            ModemInfo info;
            info.setMap(document.object().toVariantMap());
            if (info.connectionName() != key) {
                ZML_SETTINGS_WARNING() << QStringLiteral("Connection name checking error %1 != %2")
                                              .arg(key, info.connectionName());
            }
            _modems.insert(info.connectionName(), info);
        } else {
            ZML_SETTINGS_WARNING() << QStringLiteral("Unknown settings group: ") + group;
        }
    }
}

QString ModemSettings::mncTablePath()
{
    return QStringLiteral(":/mnc/mnctable.json");
}

MncTable ModemSettings::loadMncTable(const QString& path)
{
    MncTable table;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ZML_SETTINGS_CRITICAL() << QStringLiteral("Cannot open the operator table %1: %2").arg(path, file.errorString());
        return table;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    const QVariantList entries = document.toVariant().toList();
    file.close();
    if (error.error != QJsonParseError::NoError) {
        ZML_SETTINGS_CRITICAL() << QStringLiteral("Cannot parse the operator table %1: %2").arg(path, error.errorString());
        return table;
    }

    // The file is taken as it is: no validity test, a later entry replaces an
    // earlier one with the same key, and every entry is logged.
    for (const QVariant& entry : entries) {
        const OperatorData data = OperatorData::fromMap(entry.toMap());
        table.insert(data.mccmnc(), data);
        ZML_SETTINGS_WARNING() << logvariant(entry);
    }
    return table;
}

void ModemSettings::loadMncTable()
{
    QMutexLocker lock(&_settingsMutex);
    if (_mncTable.isEmpty())
        _mncTable = loadMncTable(mncTablePath());
}

MncTable ModemSettings::mncTable() const
{
    QMutexLocker lock(&_settingsMutex);
    return _mncTable;
}

bool ModemSettings::getOperatorData(int mcc, int mnc, OperatorData& data) const
{
    // The same key as OperatorData::mccmnc(), without overflow for any codes.
    const auto it = _mncTable.constFind(int(quint32(qint64(mcc) * 100 + mnc)));
    if (it == _mncTable.constEnd())
        return false;
    data = it.value();
    return true;
}

bool ModemSettings::waitLockFile(const QString& portName)
{
    const QString lockFile = lockFileName(portName);
    QElapsedTimer stopwatch;
    stopwatch.start();
    // The other process removes its lock file when it lets the port go; keep
    // the caller's events moving while waiting for that.
    while (QFile::exists(lockFile) && stopwatch.elapsed() < LOCK_WAIT_MS)
        QCoreApplication::processEvents();
    return !QFile::exists(lockFile);
}

void ModemSettings::createLockFile(const QString& portName)
{
    if (!waitLockFile(portName))
        return;
    QFile file(lockFileName(portName));
    // Every process of the appliance, whoever runs it, may take the port
    // over. The permissions are set before the file exists, so on a fresh
    // file they do not apply; that order is kept.
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner
                        | QFileDevice::ReadGroup | QFileDevice::WriteGroup
                        | QFileDevice::ReadOther | QFileDevice::WriteOther);
    file.open(QIODevice::WriteOnly);
    file.write("LOCK");
    file.close();
}

void ModemSettings::removeLockFile(const QString& portName)
{
    QFile::remove(lockFileName(portName));
}
