// The value records of the configuration: ModemInfo, OperatorData and
// ModemServiceState, their validity, equality and map forms, including the
// deliberate asymmetries of those map forms.
#include "logrecorder.h"
#include "modeminfo.h"
#include "modemservicestate.h"
#include "operatordata.h"

#include <zelbus/clientstate.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <functional>

namespace {

template <class T>
using Changes = QVector<QPair<const char*, std::function<void(T&)>>>;

ModemInfo filledModemInfo()
{
    ModemInfo info;
    info.setPortName(QStringLiteral("/dev/ttyUSB2"));
    info.setCmdPortName(QStringLiteral("/dev/ttyUSB1"));
    info.setConnectionName(QStringLiteral("E173_1a2b"));
    info.setPhone(QStringLiteral("*99#"));
    info.setPhones({QStringLiteral("*99***2#"), QStringLiteral("#777")});
    info.setInitLines({QStringLiteral("ATZ"), QStringLiteral("AT+CGDCONT=1,\"IP\",\"internet\"")});
    info.setBaudrate(460800);
    info.setUserName(QStringLiteral("gdata"));
    info.setPassword(QStringLiteral("secret"));
    info.setSimNumber(QStringLiteral("+79001234567"));
    info.setBalanceUssd(QStringLiteral("*100#"));
    info.setPhoneUssd(QStringLiteral("*205#"));
    info.setPhoneFromSms(true);
    return info;
}

OperatorData megafon()
{
    OperatorData data;
    data.setMcc(250);
    data.setMnc(2);
    data.setName(QStringLiteral("Мегафон"));
    data.setSelfNumberPhone(QStringLiteral("*205#"));
    data.setBalancePhone(QStringLiteral("*100#"));
    data.setUserName(QStringLiteral("gdata"));
    data.setPassword(QStringLiteral("gdata"));
    data.setModemInitLine(QStringLiteral("AT+CGDCONT=1,\"IP\",\"internet\""));
    return data;
}

// One change per field, each away from filledModemInfo(), megafon() and a
// default state respectively.
const Changes<ModemInfo>& modemInfoChanges()
{
    static const Changes<ModemInfo> changes = {
        {"portName", [](ModemInfo& m) { m.setPortName(QStringLiteral("/dev/ttyS0")); }},
        {"cmdPortName", [](ModemInfo& m) { m.setCmdPortName(QStringLiteral("/dev/ttyS1")); }},
        {"connectionName", [](ModemInfo& m) { m.setConnectionName(QStringLiteral("other")); }},
        {"imei", [](ModemInfo& m) { m.setImei(QStringLiteral("356938035643809")); }},
        {"phone", [](ModemInfo& m) { m.setPhone(QStringLiteral("#777")); }},
        {"phones", [](ModemInfo& m) { m.setPhones({QStringLiteral("1")}); }},
        {"initLines", [](ModemInfo& m) { m.addInitLine(QStringLiteral("ATE0")); }},
        {"initLines order", [](ModemInfo& m) {
             QStringList lines = m.initLines();
             std::reverse(lines.begin(), lines.end());
             m.setInitLines(lines);
         }},
        {"baudrate", [](ModemInfo& m) { m.setBaudrate(9600); }},
        {"userName", [](ModemInfo& m) { m.setUserName(QStringLiteral("u")); }},
        {"password", [](ModemInfo& m) { m.setPassword(QStringLiteral("p")); }},
        {"dialCommand", [](ModemInfo& m) { m.setDialCommand(QStringLiteral("ATDP")); }},
        {"newPppd", [](ModemInfo& m) { m.setNewPppd(false); }},
        {"stupidMode", [](ModemInfo& m) { m.setStupidMode(false); }},
        {"isdn", [](ModemInfo& m) { m.setIsdn(1); }},
        {"modemType", [](ModemInfo& m) { m.setModemType(QStringLiteral("USB Modem")); }},
        {"simNumber", [](ModemInfo& m) { m.setSimNumber(QStringLiteral("+7")); }},
        {"balanceUssd", [](ModemInfo& m) { m.setBalanceUssd(QStringLiteral("*102#")); }},
        {"phoneUssd", [](ModemInfo& m) { m.setPhoneUssd(QStringLiteral("*110#")); }},
        {"phoneFromSms", [](ModemInfo& m) { m.setPhoneFromSms(false); }},
    };
    return changes;
}

const Changes<OperatorData>& operatorChanges()
{
    static const Changes<OperatorData> changes = {
        {"mcc", [](OperatorData& o) { o.setMcc(251); }},
        {"mnc", [](OperatorData& o) { o.setMnc(3); }},
        {"name", [](OperatorData& o) { o.setName(QStringLiteral("x")); }},
        {"selfNumberPhone", [](OperatorData& o) { o.setSelfNumberPhone(QStringLiteral("*1#")); }},
        {"selfNumberFromSms", [](OperatorData& o) { o.setSelfNumberFromSms(true); }},
        {"balancePhone", [](OperatorData& o) { o.setBalancePhone(QStringLiteral("*2#")); }},
        {"userName", [](OperatorData& o) { o.setUserName(QStringLiteral("u")); }},
        {"password", [](OperatorData& o) { o.setPassword(QStringLiteral("p")); }},
        {"modemInitLine", [](OperatorData& o) { o.setModemInitLine(QStringLiteral("AT")); }},
    };
    return changes;
}

const Changes<ModemServiceState>& stateChanges()
{
    static const Changes<ModemServiceState> changes = {
        {"serviceMode", [](ModemServiceState& s) { s.setServiceMode(ModemServiceState::SM_SEARCHING); }},
        {"connectionState", [](ModemServiceState& s) { s.setConnectionState(ModemServiceState::CS_CONNECTED); }},
        {"balance", [](ModemServiceState& s) { s.setBalance(0.5); }},
        {"balanceText", [](ModemServiceState& s) { s.setBalanceText(QStringLiteral("0.50")); }},
        {"mcc", [](ModemServiceState& s) { s.setMcc(QStringLiteral("250")); }},
        {"mnc", [](ModemServiceState& s) { s.setMnc(QStringLiteral("01")); }},
        {"lac", [](ModemServiceState& s) { s.setLac(QStringLiteral("1F")); }},
        {"cid", [](ModemServiceState& s) { s.setCid(QStringLiteral("2E")); }},
        {"modemInfo", [](ModemServiceState& s) { s.setModemInfo({{QStringLiteral("name"), QStringLiteral("a")}}); }},
        {"signalLevel", [](ModemServiceState& s) { s.setSignalLevel(17); }},
    };
    return changes;
}

// The fields that ModemInfo::setMap() does not read.
const char* const DIALER_FIELDS[] = {"imei", "dialCommand", "newPppd", "stupidMode", "isdn", "modemType"};

void applyModemInfoChange(ModemInfo& info, const char* field)
{
    for (const auto& change : modemInfoChanges()) {
        if (qstrcmp(change.first, field) == 0)
            change.second(info);
    }
}

// A copy changed in one field must differ from its source, and the source
// must not have changed with it (the records share their data until written).
template <class T, class Change>
bool changeIsSeen(T base, const Change& change)
{
    T changed = base;
    if (!(changed == base))
        return false;
    change(changed);
    return changed != base && base != changed && !(changed == base);
}

// The first difference between two map forms, comparing each value's type as
// well (QVariant's equality converts between numbers and booleans).
QString mapDifference(const QVariantMap& actual, const QVariantMap& expected)
{
    if (actual.keys() != expected.keys())
        return QStringLiteral("keys %1").arg(actual.keys().join(','));
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        const QVariant value = actual.value(it.key());
        if (value.userType() != it.value().userType() || value != it.value())
            return QStringLiteral("%1: %2 (%3)").arg(it.key(), value.toString(), QString::fromLatin1(value.typeName()));
    }
    return QString();
}

// The map form of an entry with only its codes and name.
QVariant op(int mcc, int mnc, const QString& name)
{
    OperatorData data;
    data.setMcc(mcc);
    data.setMnc(mnc);
    data.setName(name);
    return data.toMap();
}

} // namespace

class TestSettingsRecords : public QObject
{
    Q_OBJECT

private slots:
    void equality_data()
    {
        QTest::addColumn<int>("record");
        QTest::addColumn<int>("change");
        for (int i = 0; i < modemInfoChanges().size(); ++i)
            QTest::addRow("ModemInfo %s", modemInfoChanges().at(i).first) << 0 << i;
        for (int i = 0; i < operatorChanges().size(); ++i)
            QTest::addRow("OperatorData %s", operatorChanges().at(i).first) << 1 << i;
        for (int i = 0; i < stateChanges().size(); ++i)
            QTest::addRow("ModemServiceState %s", stateChanges().at(i).first) << 2 << i;
    }

    void equality()
    {
        QFETCH(int, record);
        QFETCH(int, change);
        if (record == 0)
            QVERIFY(changeIsSeen(filledModemInfo(), modemInfoChanges().at(change).second));
        else if (record == 1)
            QVERIFY(changeIsSeen(megafon(), operatorChanges().at(change).second));
        else
            QVERIFY(changeIsSeen(ModemServiceState(), stateChanges().at(change).second));
    }

    // --- ModemInfo -------------------------------------------------------------

    void modemInfoValidity_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("baudrate");
        QTest::addColumn<bool>("valid");

        QTest::newRow("all set, rate 1") << "/dev/ttyUSB0" << "conn" << 1 << true;
        QTest::newRow("rate 0") << "/dev/ttyUSB0" << "conn" << 0 << false;
        QTest::newRow("negative rate") << "/dev/ttyUSB0" << "conn" << -9600 << false;
        QTest::newRow("no port") << "" << "conn" << 9600 << false;
        // No name is generated in place of an empty one: the earlier name is lost.
        QTest::newRow("name emptied") << "/dev/ttyUSB0" << "" << 9600 << false;
    }

    void modemInfoValidity()
    {
        QFETCH(QString, port);
        QFETCH(QString, name);
        QFETCH(int, baudrate);
        QFETCH(bool, valid);

        ModemInfo info;
        QVERIFY(!info.isValid());
        info.setConnectionName(QStringLiteral("earlier"));
        info.setPortName(port);
        info.setConnectionName(name);
        info.setBaudrate(baudrate);
        QCOMPARE(info.connectionName(), name);
        QCOMPARE(info.isValid(), valid);
    }

    void modemInfoToMap_data()
    {
        QTest::addColumn<ModemInfo>("info");
        QTest::addColumn<QVariantMap>("expected");
        QTest::addColumn<QString>("phone");   // phone(): falls back to the list

        // The 18 keys with the defaults' values and types; "imei" is never written.
        const QVariantMap defaults{
            {"portName", ""}, {"cmdPortName", ""}, {"connectionName", ""}, {"phone", "*99***1#"},
            {"phones", QVariantList()}, {"initLines", QVariantList()}, {"baudrate", 0}, {"userName", ""},
            {"password", ""}, {"dialCommand", "ATDT"}, {"newPppd", true}, {"stupidMode", true}, {"isdn", 0},
            {"modemType", "Analog Modem"}, {"simNumber", ""}, {"balanceUssd", ""}, {"phoneUssd", ""},
            {"phoneFromSms", false},
        };
        QTest::newRow("defaults") << ModemInfo() << defaults << "*99***1#";
        ModemInfo noNumber;
        noNumber.setPhone(QString());
        QVariantMap noNumberMap = defaults;
        noNumberMap.insert("phone", "");
        QTest::newRow("no number at all") << noNumber << noNumberMap << "";

        // The stored number, not the fallback to the list.
        ModemInfo info = filledModemInfo();
        info.setImei(QStringLiteral("356938035643809"));
        info.setPhone(QString());
        QVariantMap filled = defaults;
        filled.insert({{"portName", "/dev/ttyUSB2"}, {"cmdPortName", "/dev/ttyUSB1"}, {"connectionName", "E173_1a2b"},
                       {"phone", ""}, {"phones", QVariantList{"*99***2#", "#777"}},
                       {"initLines", QVariantList{"ATZ", "AT+CGDCONT=1,\"IP\",\"internet\""}}, {"baudrate", 460800},
                       {"userName", "gdata"}, {"password", "secret"}, {"simNumber", "+79001234567"},
                       {"balanceUssd", "*100#"}, {"phoneUssd", "*205#"}, {"phoneFromSms", true}});
        QTest::newRow("filled, no own number") << info << filled << "*99***2#";
        filled.insert("phone", "*99#");
        QTest::newRow("filled") << filledModemInfo() << filled << "*99#";
    }

    void modemInfoToMap()
    {
        QFETCH(ModemInfo, info);
        QFETCH(QVariantMap, expected);
        QFETCH(QString, phone);
        const QString difference = mapDifference(info.toMap(), expected);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QCOMPARE(info.phone(), phone);
    }

    void modemInfoThroughJson()
    {
        // The settings keep the map as JSON: numbers come back as doubles.
        const ModemInfo info = filledModemInfo();
        const QByteArray json = QJsonDocument(QJsonObject::fromVariantMap(info.toMap())).toJson();
        const QVariantMap map = QJsonDocument::fromJson(json).object().toVariantMap();
        QVERIFY(map.value("baudrate").userType() != int(QMetaType::Int));
        QCOMPARE(ModemInfo::fromMap(map), info);
    }

    void modemInfoMapKeepsDialerOptions_data()
    {
        QTest::addColumn<QString>("field");
        for (const char* field : DIALER_FIELDS)
            QTest::newRow(field) << QString::fromLatin1(field);
    }

    void modemInfoMapKeepsDialerOptions()
    {
        QFETCH(QString, field);
        const ModemInfo base = filledModemInfo();
        ModemInfo source = base;
        applyModemInfoChange(source, qPrintable(field));
        QVERIFY(source != base);

        // fromMap() starts from the defaults: the change is lost, the rest
        // comes back.
        QCOMPARE(ModemInfo::fromMap(source.toMap()), base);

        // setMap() on a record leaves that record's own value in place.
        ModemInfo target = source;
        target.setMap(base.toMap());
        QCOMPARE(target, source);
    }

    void modemInfoSetMapEmpty()
    {
        // The 13 fields read are overwritten with empty values (the number too,
        // no default there); the six others keep what the record had.
        ModemInfo info = filledModemInfo();
        ModemInfo expected;
        expected.setPhone(QString());
        const ModemInfo fromEmpty = expected;
        for (const char* field : DIALER_FIELDS) {
            applyModemInfoChange(info, field);
            applyModemInfoChange(expected, field);
        }
        info.setMap(QVariantMap());
        QCOMPARE(info, expected);
        QCOMPARE(ModemInfo::fromMap(QVariantMap()), fromEmpty);
    }

    // --- OperatorData ----------------------------------------------------------

    void operatorValidity_data()
    {
        QTest::addColumn<int>("mcc");
        QTest::addColumn<int>("mnc");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<int>("mccmnc");

        QTest::newRow("MTS") << 250 << 1 << "МТС" << true << 25001;
        // Collides with 251/01; accepted.
        QTest::newRow("three-digit mnc") << 250 << 101 << "x" << true << 25101;
        QTest::newRow("mnc 0") << 250 << 0 << "x" << false << 25000;
        QTest::newRow("mcc 0") << 0 << 1 << "x" << false << 1;
        QTest::newRow("no name") << 250 << 1 << "" << false << 25001;
        QTest::newRow("negative mnc") << 250 << -1 << "x" << false << 24999;
        // Codes from a table file can be any int; the key wraps instead of
        // overflowing (found by fuzzing loadMncTable).
        QTest::newRow("huge mcc") << 2147483647 << 99 << "x" << true << int(quint32(2147483647u * 100u + 99u));
        QTest::newRow("most negative mcc") << int(-2147483647 - 1) << -1 << "x" << false
                                           << int(quint32(0x80000000u * 100u - 1u));
    }

    void operatorValidity()
    {
        QFETCH(int, mcc);
        QFETCH(int, mnc);
        QFETCH(QString, name);
        QFETCH(bool, valid);
        QFETCH(int, mccmnc);

        OperatorData data;
        data.setMcc(mcc);
        data.setMnc(mnc);
        data.setName(name);
        QCOMPARE(data.isValid(), valid);
        QCOMPARE(data.mccmnc(), mccmnc);
    }

    void operatorMapForm()
    {
        const QVariantMap expected{
            {"mcc", 250}, {"mnc", 2}, {"name", "Мегафон"}, {"selfNumberPhone", "*205#"}, {"selfNumberFromSms", false},
            {"balancePhone", "*100#"}, {"userName", "gdata"}, {"password", "gdata"},
            {"modemInitLine", "AT+CGDCONT=1,\"IP\",\"internet\""},
        };
        const QString difference = mapDifference(megafon().toMap(), expected);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QCOMPARE(OperatorData::fromMap(expected), megafon());
    }

    void operatorSetMap_data()
    {
        QTest::addColumn<QVariant>("selfNumberFromSms");
        QTest::addColumn<QString>("initLine");
        QTest::addColumn<bool>("expectedFromSms");
        QTest::addColumn<QString>("expectedInitLine");

        const QString clean = QStringLiteral("AT+CGDCONT=1,\"IP\",\"internet\"");
        QTest::newRow("true") << QVariant(true) << clean << true << clean;
        QTest::newRow("number 0.0 from JSON") << QVariant(0.0) << clean << false << clean;
        QTest::newRow("number 2") << QVariant(2) << clean << true << clean;
        QTest::newRow("missing") << QVariant() << clean << false << clean;
        QTest::newRow("spaces after commas") << QVariant(false) << "AT+CGDCONT=1, \"IP\", \"internet\"" << false << clean;
        QTest::newRow("spaces everywhere") << QVariant(false) << " AT + CGDCONT = 1 ,\"IP\",\"inter net\" " << false << clean;
    }

    void operatorSetMap()
    {
        QFETCH(QVariant, selfNumberFromSms);
        QFETCH(QString, initLine);
        QFETCH(bool, expectedFromSms);
        QFETCH(QString, expectedInitLine);

        QVariantMap map = megafon().toMap();
        map.insert("modemInitLine", initLine);
        if (selfNumberFromSms.isValid())
            map.insert("selfNumberFromSms", selfNumberFromSms);
        else
            map.remove("selfNumberFromSms");

        OperatorData data;
        data.setSelfNumberFromSms(!expectedFromSms);
        data.setMap(map);
        QCOMPARE(data.selfNumberFromSms(), expectedFromSms);
        QCOMPARE(data.modemInitLine(), expectedInitLine);
        QCOMPARE(data.name(), QStringLiteral("Мегафон"));

        // Missing keys overwrite with empty values.
        data.setMap(QVariantMap());
        QCOMPARE(data, OperatorData());
    }

    void mncTableFromMap_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("warning");

        const QList<int> good{25001};
        QTest::newRow("valid entry") << "mnc_25002" << op(250, 2, "Мегафон") << QList<int>{25001, 25002} << "";
        QTest::newRow("four digits") << "mnc_2500" << op(250, 0, "x") << good << "Invalid table key mnc_2500";
        QTest::newRow("six digits") << "mnc_250020" << op(250, 2, "x") << good << "Invalid table key mnc_250020";
        QTest::newRow("capital prefix") << "MNC_25002" << op(250, 2, "x") << good << "Invalid table key MNC_25002";
        QTest::newRow("leading text") << "xmnc_25002" << op(250, 2, "x") << good << "Invalid table key xmnc_25002";
        QTest::newRow("letters") << "mnc_25a02" << op(250, 2, "x") << good << "Invalid table key mnc_25a02";
        QTest::newRow("mnc 0") << "mnc_25000" << op(250, 0, "x") << good << "Invalid operator data for 25000";
        QTest::newRow("no name") << "mnc_25003" << op(250, 3, "") << good << "Invalid operator data for 25003";
        QTest::newRow("value not a map") << "mnc_25003" << QVariant("НСС") << good << "Invalid operator data for 25003";
        // Filed under its own code, with a warning, and replacing the entry that
        // the good key put there (keys are read in order: mnc_25001 first).
        QTest::newRow("key and data differ") << "mnc_25099" << op(250, 1, "other") << good
                                             << "Key mnc 25099 != data mnc 25001";
        QTest::newRow("zero-padded key") << "mnc_00101" << op(1, 1, "Test") << QList<int>{101, 25001} << "";
    }

    void mncTableFromMap()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QFETCH(QList<int>, keys);
        QFETCH(QString, warning);

        const QVariantMap map{{key, value}, {"mnc_25001", op(250, 1, "МТС")}};
        zmltest::LogRecorder log(zmltest::LogRecorder::Echo::Nothing);
        const MncTable table = OperatorData::mncTableFromMap(map);
        QCOMPARE(table.keys(), keys);
        QCOMPARE(log.find(QtWarningMsg, "default", QString()), warning.isEmpty() ? QStringList() : QStringList{warning});
        for (auto it = table.constBegin(); it != table.constEnd(); ++it)
            QCOMPARE(it.value().mccmnc(), it.key());
        // The free function is the same conversion.
        QCOMPARE(::mncTableFromMap(map).keys(), keys);
    }

    void mncTableToMap()
    {
        MncTable table;
        table.insert(25002, megafon());
        OperatorData small;
        small.setMcc(1);
        small.setMnc(1);
        small.setName(QStringLiteral("Test"));
        table.insert(small.mccmnc(), small);

        const QVariantMap map = ::mncTableToMap(table);
        // Keys are not padded.
        QCOMPARE(map.keys(), (QStringList{"mnc_101", "mnc_25002"}));
        QCOMPARE(map.value("mnc_25002").toMap(), megafon().toMap());

        // Back again: the short key is not of the table's shape.
        zmltest::LogRecorder log(zmltest::LogRecorder::Echo::Nothing);
        const MncTable back = OperatorData::mncTableFromMap(OperatorData::mncTableToMap(table));
        QCOMPARE(back.keys(), QList<int>{25002});
        QCOMPARE(back.value(25002), megafon());
        QCOMPARE(log.find(QtWarningMsg, "default", QString()), QStringList{"Invalid table key mnc_101"});
    }

    // --- ModemServiceState -----------------------------------------------------

    void stateConnectionState_data()
    {
        QTest::addColumn<bool>("throughMap");
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("connectionState");   // 3 given; what is kept

        QTest::newRow("mode 0 resets") << false << 0 << 0;
        QTest::newRow("mode 1 resets") << false << 1 << 0;
        QTest::newRow("mode 2 keeps") << false << 2 << 3;
        QTest::newRow("mode 3 resets") << false << 3 << 0;
        // setMap() stores the mode directly, without the reset.
        QTest::newRow("map, mode 1 keeps") << true << 1 << 3;
        // Values the enumerations do not name (a newer service) are kept as
        // the ints they are (found by fuzzing setClientState).
        QTest::newRow("map, unnamed mode") << true << 7 << 3;
    }

    void stateConnectionState()
    {
        QFETCH(bool, throughMap);
        QFETCH(int, mode);
        QFETCH(int, connectionState);

        ModemServiceState state;
        if (throughMap) {
            state.setMap({{"serviceMode", mode}, {"connectionState", 3}});
        } else {
            state.setConnectionState(ModemServiceState::CS_DISCONNECTING);
            state.setServiceMode(static_cast<ModemServiceState::EServiceMode>(mode));
        }
        QCOMPARE(state.toMap().value("serviceMode").toInt(), mode);
        QCOMPARE(state.toMap().value("connectionState").toInt(), connectionState);
        QCOMPARE(int(state.serviceMode()), mode);
        QCOMPARE(int(state.connectionState()), connectionState);
    }

    void stateBalanceText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");

        QTest::newRow("plain") << "Balance 10.50 rub" << "Balance 10.50 rub";
        QTest::newRow("two NULs") << QString("12") + QChar(0) + "34" + QChar(0) << "12(0|0)34(0|0)";
        QTest::newRow("adjacent NULs") << QString(2, QChar(0)) << "(0|0)(0|0)";
    }

    void stateBalanceText()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);

        ModemServiceState state;
        state.setBalanceText(text);
        QCOMPARE(state.balanceText(), expected);

        // setMap() stores through the same rule.
        state.setMap({{"balanceText", text}});
        QCOMPARE(state.balanceText(), expected);
    }

    void stateActiveConnection()
    {
        ModemServiceState state;
        state.setModemInfo({{"name", "MTS modem"}});
        QCOMPARE(state.activeConnection(), QStringLiteral("MTS modem"));
        // Looked up under "name", not the record's "connectionName".
        state.setModemInfo(filledModemInfo().toMap());
        QCOMPARE(state.activeConnection(), QString());
    }

    void stateMapForm()
    {
        ModemServiceState state;
        for (const auto& change : stateChanges())
            change.second(state);
        // The connection state survives only in mode 2.
        state.setServiceMode(ModemServiceState::SM_CONNECTION);
        state.setConnectionState(ModemServiceState::CS_CONNECTED);

        const QVariantMap map = state.toMap();
        const QVariantMap expected{
            {"serviceMode", 2}, {"connectionState", 2}, {"balance", 0.5}, {"balanceText", "0.50"},
            {"mcc", "250"}, {"mnc", "01"}, {"lac", "1F"}, {"cid", "2E"},
            {"modemInfo", QVariantMap{{"name", "a"}}}, {"signalLevel", 17},
        };
        const QString difference = mapDifference(map, expected);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QVERIFY(ModemServiceState::fromMap(map) == state);

        // Published on the bus as a JSON object and read back by a client.
        const QString text = QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(map)).toJson());
        ModemServiceState client;
        QVERIFY(client.setClientState(zelbus::ClientState(zelbus::BUSNAME_ZELMODEMS, text)));
        QVERIFY(client == state);

        // Every key missing: every field back to its default.
        state.setMap(QVariantMap());
        QVERIFY(state == ModemServiceState());
    }

    void stateClientState_data()
    {
        QTest::addColumn<QString>("owner");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("signalLevel");

        const QString json = QStringLiteral("{\"signalLevel\": 21, \"balance\": -3.5, \"balanceText\": \"минус 3.50\"}");
        QTest::newRow("modems service") << zelbus::BUSNAME_ZELMODEMS << json << true << 21;
        QTest::newRow("other owner") << "zel.other" << json << false << 5;
        QTest::newRow("not JSON") << zelbus::BUSNAME_ZELMODEMS << "signalLevel=21" << false << 5;
        QTest::newRow("truncated JSON") << zelbus::BUSNAME_ZELMODEMS << "{\"signalLevel\": 2" << false << 5;
        QTest::newRow("empty text") << zelbus::BUSNAME_ZELMODEMS << "" << false << 5;
        // Valid JSON that is no object reads as an empty map: every field reset.
        QTest::newRow("JSON array") << zelbus::BUSNAME_ZELMODEMS << "[1, 2]" << true << 0;
    }

    void stateClientState()
    {
        QFETCH(QString, owner);
        QFETCH(QString, text);
        QFETCH(bool, accepted);
        QFETCH(int, signalLevel);

        ModemServiceState state;
        state.setSignalLevel(5);
        state.setMcc(QStringLiteral("250"));
        const ModemServiceState before = state;

        QCOMPARE(state.setClientState(zelbus::ClientState(owner, text)), accepted);
        QCOMPARE(state.signalLevel(), signalLevel);
        if (!accepted)
            QVERIFY(state == before);
        else
            QVERIFY(state.mcc().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSettingsRecords)
#include "tst_settingsrecords.moc"
