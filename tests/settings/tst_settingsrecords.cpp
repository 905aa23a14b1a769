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
        // What the map holds comes back from it (the dialer options are the
        // library's own and are not read).
        ModemInfo back;
        back.setMap(info.toMap());
        for (const char* key : {"portName", "cmdPortName", "connectionName", "phone", "phones", "initLines", "baudrate",
                                "userName", "password", "simNumber", "balanceUssd", "phoneUssd", "phoneFromSms"})
            QCOMPARE(back.toMap().value(key), expected.value(key));
    }

    // --- OperatorData ----------------------------------------------------------

    void operatorValidityAndMap()
    {
        // Codes from a table file can be any int; the key wraps instead of
        // overflowing (found by fuzzing loadMncTable).
        const struct { int mcc, mnc; const char* name; bool valid; int mccmnc; } rows[] = {
            {250, 1, "МТС", true, 25001}, {250, 0, "x", false, 25000}, {0, 1, "x", false, 1},
            {250, 1, "", false, 25001}, {2147483647, 99, "x", true, int(quint32(2147483647u * 100u + 99u))},
        };
        for (const auto& row : rows) {
            OperatorData data;
            data.setMcc(row.mcc);
            data.setMnc(row.mnc);
            data.setName(QString::fromUtf8(row.name));
            QCOMPARE(data.isValid(), row.valid);
            QCOMPARE(data.mccmnc(), row.mccmnc);
        }

        // setMap(): the switch from any number (JSON gives doubles), the init
        // line without blanks outside its quotes and inside them alike, and
        // missing keys overwritten with empty values.
        QVariantMap map = megafon().toMap();
        map.insert("selfNumberFromSms", 0.0);
        map.insert("modemInitLine", " AT + CGDCONT = 1 ,\"IP\",\"inter net\" ");
        OperatorData data;
        data.setSelfNumberFromSms(true);
        data.setMap(map);
        QCOMPARE(data, megafon());
        map.insert("selfNumberFromSms", 2);
        data.setMap(map);
        QVERIFY(data.selfNumberFromSms());
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
        QTest::newRow("mnc 0") << "mnc_25000" << op(250, 0, "x") << good << "Invalid operator data for 25000";
        QTest::newRow("no name") << "mnc_25003" << op(250, 3, "") << good << "Invalid operator data for 25003";
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

    // --- ModemServiceState -----------------------------------------------------

    void stateConnectionState()
    {
        // The connection state is kept only in mode 2; setMap() stores the
        // mode without that reset, and modes the enumeration does not name (a
        // newer service) as the ints they are (found by fuzzing setClientState).
        for (const int mode : {1, 2}) {
            ModemServiceState state;
            state.setConnectionState(ModemServiceState::CS_DISCONNECTING);
            state.setServiceMode(static_cast<ModemServiceState::EServiceMode>(mode));
            QCOMPARE(int(state.connectionState()), mode == 2 ? 3 : 0);
        }
        for (const int mode : {1, 7}) {
            ModemServiceState state;
            state.setMap({{"serviceMode", mode}, {"connectionState", 3}});
            QCOMPARE(state.toMap().value("serviceMode").toInt(), mode);
            QCOMPARE(int(state.serviceMode()), mode);
            QCOMPARE(int(state.connectionState()), 3);
        }
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

    void stateClientState()
    {
        // Only the modems service's own JSON object is read; anything else
        // leaves the state as it was. JSON that is no object is an empty map.
        ModemServiceState state;
        state.setSignalLevel(5);
        const ModemServiceState before = state;
        const QString json = QStringLiteral("{\"signalLevel\": 21}");
        QVERIFY(!state.setClientState(zelbus::ClientState(QStringLiteral("zel.other"), json)));
        QVERIFY(!state.setClientState(zelbus::ClientState(zelbus::BUSNAME_ZELMODEMS, QStringLiteral("signalLevel=21"))));
        QVERIFY(state == before);
        QVERIFY(state.setClientState(zelbus::ClientState(zelbus::BUSNAME_ZELMODEMS, json)));
        QCOMPARE(state.signalLevel(), 21);
        QVERIFY(state.setClientState(zelbus::ClientState(zelbus::BUSNAME_ZELMODEMS, QStringLiteral("[1, 2]"))));
        QVERIFY(state == ModemServiceState());
    }
};

QTEST_GUILESS_MAIN(TestSettingsRecords)
#include "tst_settingsrecords.moc"
