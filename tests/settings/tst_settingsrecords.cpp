// The value records of the configuration: ModemInfo, OperatorData and
// ModemServiceState, their validity, equality and map forms, including the
// deliberate asymmetries of those map forms.
#include "logcapture.h"
#include "modeminfo.h"
#include "modemservicestate.h"
#include "operatordata.h"

#include <zelbus/clientstate.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <functional>

namespace {

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

// One change per field; every one of them must make two records unequal.
using ModemInfoChange = std::function<void(ModemInfo&)>;
const QVector<QPair<const char*, ModemInfoChange>>& modemInfoChanges()
{
    static const QVector<QPair<const char*, ModemInfoChange>> changes = {
        {"portName", [](ModemInfo& m) { m.setPortName(QStringLiteral("/dev/ttyS0")); }},
        {"cmdPortName", [](ModemInfo& m) { m.setCmdPortName(QStringLiteral("/dev/ttyS1")); }},
        {"connectionName", [](ModemInfo& m) { m.setConnectionName(QStringLiteral("other")); }},
        {"imei", [](ModemInfo& m) { m.setImei(QStringLiteral("356938035643809")); }},
        {"phone", [](ModemInfo& m) { m.setPhone(QStringLiteral("*99#")); }},
        {"phones", [](ModemInfo& m) { m.setPhones({QStringLiteral("1")}); }},
        {"initLines", [](ModemInfo& m) { m.addInitLine(QStringLiteral("ATE0")); }},
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
        {"phoneFromSms", [](ModemInfo& m) { m.setPhoneFromSms(true); }},
    };
    return changes;
}

using OperatorChange = std::function<void(OperatorData&)>;
const QVector<QPair<const char*, OperatorChange>>& operatorChanges()
{
    static const QVector<QPair<const char*, OperatorChange>> changes = {
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

using StateChange = std::function<void(ModemServiceState&)>;
const QVector<QPair<const char*, StateChange>>& stateChanges()
{
    static const QVector<QPair<const char*, StateChange>> changes = {
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

QVariantMap operatorMap(int mcc, int mnc, const QString& name)
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
    // ModemInfo
    void modemInfoDefaults();
    void modemInfoValidity_data();
    void modemInfoValidity();
    void modemInfoPhoneFallback_data();
    void modemInfoPhoneFallback();
    void modemInfoEmptyConnectionName();
    void modemInfoEquality_data();
    void modemInfoEquality();
    void modemInfoCopyIsIndependent();
    void modemInfoToMap();
    void modemInfoRoundTrip();
    void modemInfoMapKeepsDialerOptions_data();
    void modemInfoMapKeepsDialerOptions();
    void modemInfoSetMapEmpty();
    void modemInfoFromJson();

    // OperatorData and the table's map form
    void operatorValidity_data();
    void operatorValidity();
    void operatorEquality_data();
    void operatorEquality();
    void operatorMapRoundTrip();
    void operatorSetMap_data();
    void operatorSetMap();
    void mncTableFromMap_data();
    void mncTableFromMap();
    void mncTableToMap();

    // ModemServiceState
    void stateServiceModeReset_data();
    void stateServiceModeReset();
    void stateSetMapKeepsConnectionState();
    void stateBalanceText_data();
    void stateBalanceText();
    void stateActiveConnection_data();
    void stateActiveConnection();
    void stateEquality_data();
    void stateEquality();
    void stateMapRoundTrip();
    void stateSetMapEmpty();
    void stateClientState_data();
    void stateClientState();
};

// --- ModemInfo -------------------------------------------------------------

void TestSettingsRecords::modemInfoDefaults()
{
    const ModemInfo info;
    QVERIFY(info.portName().isEmpty());
    QVERIFY(info.cmdPortName().isEmpty());
    QVERIFY(info.connectionName().isEmpty());
    QVERIFY(info.imei().isEmpty());
    QCOMPARE(info.phone(), QStringLiteral("*99***1#"));
    QVERIFY(info.phones().isEmpty());
    QVERIFY(info.initLines().isEmpty());
    QCOMPARE(info.baudrate(), 0);
    QVERIFY(info.userName().isEmpty());
    QVERIFY(info.password().isEmpty());
    QCOMPARE(info.dialCommand(), QStringLiteral("ATDT"));
    QCOMPARE(info.newPppd(), true);
    QCOMPARE(info.stupidMode(), true);
    QCOMPARE(info.isdn(), 0);
    QCOMPARE(info.modemType(), QStringLiteral("Analog Modem"));
    QVERIFY(info.simNumber().isEmpty());
    QVERIFY(info.balanceUssd().isEmpty());
    QVERIFY(info.phoneUssd().isEmpty());
    QCOMPARE(info.phoneFromSms(), false);
    QVERIFY(!info.isValid());
}

void TestSettingsRecords::modemInfoValidity_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("baudrate");
    QTest::addColumn<bool>("valid");

    QTest::newRow("all set, rate 1") << "/dev/ttyUSB0" << "conn" << 1 << true;
    QTest::newRow("all set, high rate") << "/dev/ttyUSB0" << "conn" << 4000000 << true;
    QTest::newRow("rate 0") << "/dev/ttyUSB0" << "conn" << 0 << false;
    QTest::newRow("negative rate") << "/dev/ttyUSB0" << "conn" << -9600 << false;
    QTest::newRow("no port") << "" << "conn" << 9600 << false;
    QTest::newRow("no name") << "/dev/ttyUSB0" << "" << 9600 << false;
}

void TestSettingsRecords::modemInfoValidity()
{
    QFETCH(QString, port);
    QFETCH(QString, name);
    QFETCH(int, baudrate);
    QFETCH(bool, valid);

    ModemInfo info;
    info.setPortName(port);
    info.setConnectionName(name);
    info.setBaudrate(baudrate);
    QCOMPARE(info.isValid(), valid);
}

void TestSettingsRecords::modemInfoPhoneFallback_data()
{
    QTest::addColumn<bool>("setPhone");
    QTest::addColumn<QString>("phone");
    QTest::addColumn<QStringList>("phones");
    QTest::addColumn<QString>("expected");

    QTest::newRow("default number") << false << QString() << QStringList() << "*99***1#";
    QTest::newRow("own number wins") << true << "*99#" << QStringList{"111", "222"} << "*99#";
    QTest::newRow("first of the list") << true << "" << QStringList{"111", "222"} << "111";
    QTest::newRow("nothing at all") << true << "" << QStringList() << "";
}

void TestSettingsRecords::modemInfoPhoneFallback()
{
    QFETCH(bool, setPhone);
    QFETCH(QString, phone);
    QFETCH(QStringList, phones);
    QFETCH(QString, expected);

    ModemInfo info;
    if (setPhone)
        info.setPhone(phone);
    info.setPhones(phones);
    QCOMPARE(info.phone(), expected);
}

void TestSettingsRecords::modemInfoEmptyConnectionName()
{
    ModemInfo info;
    info.setPortName(QStringLiteral("/dev/ttyUSB0"));
    info.setBaudrate(115200);
    info.setConnectionName(QStringLiteral("first"));
    QVERIFY(info.isValid());

    // No name is generated in place of an empty one: the record loses it.
    QVERIFY(info.generateConnectionName().isEmpty());
    info.setConnectionName(QString());
    QVERIFY(info.connectionName().isEmpty());
    QVERIFY(!info.isValid());
}

void TestSettingsRecords::modemInfoEquality_data()
{
    QTest::addColumn<int>("change");
    for (int i = 0; i < modemInfoChanges().size(); ++i)
        QTest::newRow(modemInfoChanges().at(i).first) << i;
}

void TestSettingsRecords::modemInfoEquality()
{
    QFETCH(int, change);
    const ModemInfo base;
    ModemInfo changed = base;
    QVERIFY(changed == base);
    modemInfoChanges().at(change).second(changed);
    QVERIFY(changed != base);
    QVERIFY(!(changed == base));
    QVERIFY(base != changed);
}

void TestSettingsRecords::modemInfoCopyIsIndependent()
{
    ModemInfo a = filledModemInfo();
    ModemInfo b = a;
    QCOMPARE(b, a);
    b.addInitLine(QStringLiteral("ATE0"));
    QCOMPARE(a.initLines().size(), 2);
    QCOMPARE(b.initLines().size(), 3);
    QCOMPARE(b.initLines().last(), QStringLiteral("ATE0"));

    // The order of the init lines matters.
    ModemInfo reordered = a;
    QStringList lines = a.initLines();
    std::reverse(lines.begin(), lines.end());
    reordered.setInitLines(lines);
    QVERIFY(reordered != a);
}

void TestSettingsRecords::modemInfoToMap()
{
    ModemInfo info = filledModemInfo();
    info.setImei(QStringLiteral("356938035643809"));
    info.setPhone(QString());
    const QVariantMap map = info.toMap();

    const QStringList keys{"portName", "cmdPortName", "connectionName", "phone", "phones", "initLines",
                           "baudrate", "userName", "password", "dialCommand", "newPppd", "stupidMode",
                           "isdn", "modemType", "simNumber", "balanceUssd", "phoneUssd", "phoneFromSms"};
    QStringList sortedKeys = keys;
    sortedKeys.sort();
    QCOMPARE(map.keys(), sortedKeys);
    QVERIFY(!map.contains(QStringLiteral("imei")));

    // The stored number, not the fallback to the list.
    QCOMPARE(map.value("phone").toString(), QString());
    QCOMPARE(map.value("phones").userType(), int(QMetaType::QVariantList));
    QCOMPARE(map.value("phones").toList(), (QVariantList{"*99***2#", "#777"}));
    QCOMPARE(map.value("initLines").toList(),
             (QVariantList{"ATZ", "AT+CGDCONT=1,\"IP\",\"internet\""}));
    QCOMPARE(map.value("baudrate").userType(), int(QMetaType::Int));
    QCOMPARE(map.value("baudrate").toInt(), 460800);
    QCOMPARE(map.value("newPppd").userType(), int(QMetaType::Bool));
    QCOMPARE(map.value("isdn").userType(), int(QMetaType::Int));
    QCOMPARE(map.value("dialCommand").toString(), QStringLiteral("ATDT"));
    QCOMPARE(map.value("modemType").toString(), QStringLiteral("Analog Modem"));
    QCOMPARE(map.value("phoneFromSms").toBool(), true);
}

void TestSettingsRecords::modemInfoRoundTrip()
{
    const ModemInfo info = filledModemInfo();
    QCOMPARE(ModemInfo::fromMap(info.toMap()), info);
    QCOMPARE(ModemInfo::fromMap(ModemInfo().toMap()), ModemInfo());
}

void TestSettingsRecords::modemInfoMapKeepsDialerOptions_data()
{
    QTest::addColumn<int>("change");
    // The six fields that do not travel back through setMap().
    for (const char* field : {"imei", "dialCommand", "newPppd", "stupidMode", "isdn", "modemType"}) {
        for (int i = 0; i < modemInfoChanges().size(); ++i) {
            if (qstrcmp(modemInfoChanges().at(i).first, field) == 0)
                QTest::newRow(field) << i;
        }
    }
}

void TestSettingsRecords::modemInfoMapKeepsDialerOptions()
{
    QFETCH(int, change);
    const ModemInfo base = filledModemInfo();
    ModemInfo source = base;
    modemInfoChanges().at(change).second(source);
    QVERIFY(source != base);

    // fromMap() starts from the defaults: the change is lost.
    QCOMPARE(ModemInfo::fromMap(source.toMap()), base);

    // setMap() on a record leaves that record's own value in place.
    ModemInfo target = source;
    target.setMap(base.toMap());
    QCOMPARE(target, source);
}

void TestSettingsRecords::modemInfoSetMapEmpty()
{
    ModemInfo info = filledModemInfo();
    info.setImei(QStringLiteral("356938035643809"));
    info.setDialCommand(QStringLiteral("ATDP"));
    info.setNewPppd(false);
    info.setStupidMode(false);
    info.setIsdn(1);
    info.setModemType(QStringLiteral("USB Modem"));

    info.setMap(QVariantMap());
    QVERIFY(info.portName().isEmpty());
    QVERIFY(info.cmdPortName().isEmpty());
    QVERIFY(info.connectionName().isEmpty());
    QVERIFY(info.phone().isEmpty());
    QVERIFY(info.phones().isEmpty());
    QVERIFY(info.initLines().isEmpty());
    QCOMPARE(info.baudrate(), 0);
    QVERIFY(info.userName().isEmpty());
    QVERIFY(info.password().isEmpty());
    QVERIFY(info.simNumber().isEmpty());
    QVERIFY(info.balanceUssd().isEmpty());
    QVERIFY(info.phoneUssd().isEmpty());
    QCOMPARE(info.phoneFromSms(), false);

    QCOMPARE(info.imei(), QStringLiteral("356938035643809"));
    QCOMPARE(info.dialCommand(), QStringLiteral("ATDP"));
    QCOMPARE(info.newPppd(), false);
    QCOMPARE(info.stupidMode(), false);
    QCOMPARE(info.isdn(), 1);
    QCOMPARE(info.modemType(), QStringLiteral("USB Modem"));

    const ModemInfo fromEmpty = ModemInfo::fromMap(QVariantMap());
    QVERIFY(fromEmpty.phone().isEmpty());
    QCOMPARE(fromEmpty.dialCommand(), QStringLiteral("ATDT"));
}

void TestSettingsRecords::modemInfoFromJson()
{
    // The settings store keeps the map as JSON: numbers come back as other
    // numeric types and lists as variant lists.
    const ModemInfo info = filledModemInfo();
    const QByteArray json = QJsonDocument(QJsonObject::fromVariantMap(info.toMap())).toJson();
    const QVariantMap map = QJsonDocument::fromJson(json).object().toVariantMap();
    QVERIFY(map.value("baudrate").userType() != int(QMetaType::Int));
    QCOMPARE(ModemInfo::fromMap(map), info);
}

// --- OperatorData ----------------------------------------------------------

void TestSettingsRecords::operatorValidity_data()
{
    QTest::addColumn<int>("mcc");
    QTest::addColumn<int>("mnc");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("mccmnc");

    QTest::newRow("MTS") << 250 << 1 << "МТС" << true << 25001;
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

void TestSettingsRecords::operatorValidity()
{
    QFETCH(int, mcc);
    QFETCH(int, mnc);
    QFETCH(QString, name);
    QFETCH(bool, valid);
    QFETCH(int, mccmnc);

    OperatorData data;
    QVERIFY(!data.isValid());
    data.setMcc(mcc);
    data.setMnc(mnc);
    data.setName(name);
    QCOMPARE(data.isValid(), valid);
    QCOMPARE(data.mccmnc(), mccmnc);
}

void TestSettingsRecords::operatorEquality_data()
{
    QTest::addColumn<int>("change");
    for (int i = 0; i < operatorChanges().size(); ++i)
        QTest::newRow(operatorChanges().at(i).first) << i;
}

void TestSettingsRecords::operatorEquality()
{
    QFETCH(int, change);
    const OperatorData base = megafon();
    OperatorData changed = base;
    QVERIFY(changed == base);
    operatorChanges().at(change).second(changed);
    QVERIFY(changed != base);
    QVERIFY(!(changed == base));
}

void TestSettingsRecords::operatorMapRoundTrip()
{
    const OperatorData data = megafon();
    const QVariantMap map = data.toMap();
    QCOMPARE(map.size(), 9);
    QCOMPARE(map.value("mcc").userType(), int(QMetaType::Int));
    QCOMPARE(map.value("selfNumberFromSms").userType(), int(QMetaType::Bool));
    QCOMPARE(OperatorData::fromMap(map), data);
}

void TestSettingsRecords::operatorSetMap_data()
{
    QTest::addColumn<QVariant>("selfNumberFromSms");
    QTest::addColumn<QString>("initLine");
    QTest::addColumn<bool>("expectedFromSms");
    QTest::addColumn<QString>("expectedInitLine");

    const QString clean = QStringLiteral("AT+CGDCONT=1,\"IP\",\"internet\"");
    QTest::newRow("true") << QVariant(true) << clean << true << clean;
    QTest::newRow("number 0") << QVariant(0) << clean << false << clean;
    QTest::newRow("number 0.0 from JSON") << QVariant(0.0) << clean << false << clean;
    QTest::newRow("number 2") << QVariant(2) << clean << true << clean;
    QTest::newRow("missing") << QVariant() << clean << false << clean;
    QTest::newRow("spaces after commas") << QVariant(false) << "AT+CGDCONT=1, \"IP\", \"internet\"" << false << clean;
    QTest::newRow("spaces everywhere") << QVariant(false) << " AT + CGDCONT = 1 ,\"IP\",\"inter net\" "
                                       << false << "AT+CGDCONT=1,\"IP\",\"internet\"";
}

void TestSettingsRecords::operatorSetMap()
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

void TestSettingsRecords::mncTableFromMap_data()
{
    QTest::addColumn<QVariantMap>("extra");
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QStringList>("warnings");

    const QList<int> good{25001};
    QTest::newRow("valid entry") << QVariantMap{{"mnc_25002", operatorMap(250, 2, "Мегафон")}}
                                 << QList<int>{25001, 25002} << QStringList();
    QTest::newRow("four digits") << QVariantMap{{"mnc_2500", operatorMap(250, 0, "x")}}
                                 << good << QStringList{"Invalid table key mnc_2500"};
    QTest::newRow("six digits") << QVariantMap{{"mnc_250020", operatorMap(250, 2, "x")}}
                                << good << QStringList{"Invalid table key mnc_250020"};
    QTest::newRow("capital prefix") << QVariantMap{{"MNC_25002", operatorMap(250, 2, "x")}}
                                    << good << QStringList{"Invalid table key MNC_25002"};
    QTest::newRow("leading text") << QVariantMap{{"xmnc_25002", operatorMap(250, 2, "x")}}
                                  << good << QStringList{"Invalid table key xmnc_25002"};
    QTest::newRow("letters") << QVariantMap{{"mnc_25a02", operatorMap(250, 2, "x")}}
                             << good << QStringList{"Invalid table key mnc_25a02"};
    QTest::newRow("mnc 0") << QVariantMap{{"mnc_25000", operatorMap(250, 0, "x")}}
                           << good << QStringList{"Invalid operator data for 25000"};
    QTest::newRow("no name") << QVariantMap{{"mnc_25003", operatorMap(250, 3, "")}}
                             << good << QStringList{"Invalid operator data for 25003"};
    QTest::newRow("value not a map") << QVariantMap{{"mnc_25003", QStringLiteral("НСС")}}
                                     << good << QStringList{"Invalid operator data for 25003"};
    // Filed under its own code, with a warning, and replacing the entry that
    // the good key put there (keys are read in order: mnc_25001 first).
    QTest::newRow("key and data differ") << QVariantMap{{"mnc_25099", operatorMap(250, 1, "other")}}
                                         << good << QStringList{"Key mnc 25099 != data mnc 25001"};
    QTest::newRow("zero-padded key") << QVariantMap{{"mnc_00101", operatorMap(1, 1, "Test")}}
                                     << QList<int>{101, 25001} << QStringList();
}

void TestSettingsRecords::mncTableFromMap()
{
    QFETCH(QVariantMap, extra);
    QFETCH(QList<int>, keys);
    QFETCH(QStringList, warnings);

    QVariantMap map = extra;
    map.insert("mnc_25001", operatorMap(250, 1, "МТС"));

    LogCapture log;
    const MncTable table = OperatorData::mncTableFromMap(map);
    QCOMPARE(table.keys(), keys);
    QCOMPARE(log.messages(QtWarningMsg), warnings);
    for (const LogCapture::Entry& entry : log.entries()) {
        QVERIFY2(entry.file.contains("operatordata"), qPrintable(entry.file));
        QVERIFY2(entry.function.contains("mncTableFromMap"), qPrintable(entry.function));
    }
    for (auto it = table.constBegin(); it != table.constEnd(); ++it)
        QCOMPARE(it.value().mccmnc(), it.key());

    // The free function is the same conversion.
    log.clear();
    QCOMPARE(::mncTableFromMap(map).keys(), keys);
}

void TestSettingsRecords::mncTableToMap()
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
    LogCapture log;
    const MncTable back = OperatorData::mncTableFromMap(OperatorData::mncTableToMap(table));
    QCOMPARE(back.keys(), QList<int>{25002});
    QCOMPARE(back.value(25002), megafon());
    QCOMPARE(log.messages(QtWarningMsg), QStringList{"Invalid table key mnc_101"});
}

// --- ModemServiceState -----------------------------------------------------

void TestSettingsRecords::stateServiceModeReset_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("expectedConnectionState");

    QTest::newRow("0 resets") << 0 << 0;
    QTest::newRow("1 resets") << 1 << 0;
    QTest::newRow("2 keeps") << 2 << 3;
    QTest::newRow("3 resets") << 3 << 0;
}

void TestSettingsRecords::stateServiceModeReset()
{
    QFETCH(int, mode);
    QFETCH(int, expectedConnectionState);

    ModemServiceState state;
    state.setConnectionState(ModemServiceState::CS_DISCONNECTING);
    state.setServiceMode(static_cast<ModemServiceState::EServiceMode>(mode));
    QCOMPARE(int(state.serviceMode()), mode);
    QCOMPARE(int(state.connectionState()), expectedConnectionState);
}

void TestSettingsRecords::stateSetMapKeepsConnectionState()
{
    ModemServiceState state;
    state.setMap({{"serviceMode", 1}, {"connectionState", 3}});
    QCOMPARE(int(state.serviceMode()), 1);
    QCOMPARE(int(state.connectionState()), 3);

    // Values the enumerations do not name (a newer service) are kept as
    // the ints they are, and go out again unchanged (found by fuzzing
    // setClientState).
    state.setMap({{"serviceMode", 7}, {"connectionState", -4}});
    QCOMPARE(int(state.serviceMode()), 7);
    QCOMPARE(int(state.connectionState()), -4);
    QCOMPARE(state.toMap().value("serviceMode").toInt(), 7);
    QCOMPARE(state.toMap().value("connectionState").toInt(), -4);
    QVERIFY(ModemServiceState::fromMap(state.toMap()) == state);
}

void TestSettingsRecords::stateBalanceText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("plain") << "Balance 10.50 rub" << "Balance 10.50 rub";
    QTest::newRow("two NULs") << QString("12") + QChar(0) + "34" + QChar(0) << "12(0|0)34(0|0)";
    QTest::newRow("adjacent NULs") << QString(2, QChar(0)) << "(0|0)(0|0)";
    QTest::newRow("empty") << "" << "";
}

void TestSettingsRecords::stateBalanceText()
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

void TestSettingsRecords::stateActiveConnection_data()
{
    QTest::addColumn<QVariantMap>("modemInfo");
    QTest::addColumn<QString>("expected");

    QTest::newRow("name") << QVariantMap{{"name", "MTS modem"}} << "MTS modem";
    QTest::newRow("no name") << QVariantMap{{"portName", "/dev/ttyUSB0"}} << "";
    QTest::newRow("empty") << QVariantMap() << "";
    QTest::newRow("ModemInfo map") << filledModemInfo().toMap() << "";
}

void TestSettingsRecords::stateActiveConnection()
{
    QFETCH(QVariantMap, modemInfo);
    QFETCH(QString, expected);

    ModemServiceState state;
    state.setModemInfo(modemInfo);
    QCOMPARE(state.activeConnection(), expected);
}

void TestSettingsRecords::stateEquality_data()
{
    QTest::addColumn<int>("change");
    for (int i = 0; i < stateChanges().size(); ++i)
        QTest::newRow(stateChanges().at(i).first) << i;
}

void TestSettingsRecords::stateEquality()
{
    QFETCH(int, change);
    ModemServiceState base;
    ModemServiceState changed = base;
    QVERIFY(changed == base);
    stateChanges().at(change).second(changed);
    QVERIFY(changed != base);
    QVERIFY(!(changed == base));
}

void TestSettingsRecords::stateMapRoundTrip()
{
    ModemServiceState state;
    for (const auto& change : stateChanges())
        change.second(state);
    // The connection state survives only in mode 2.
    state.setServiceMode(ModemServiceState::SM_CONNECTION);
    state.setConnectionState(ModemServiceState::CS_CONNECTED);

    const QVariantMap map = state.toMap();
    QCOMPARE(map.size(), 10);
    QCOMPARE(map.value("serviceMode").userType(), int(QMetaType::Int));
    QCOMPARE(map.value("balance").userType(), int(QMetaType::Double));
    QCOMPARE(map.value("modemInfo").userType(), int(QMetaType::QVariantMap));
    ModemServiceState back = ModemServiceState::fromMap(map);
    QVERIFY(back == state);

    // Published on the bus as a JSON object and read back by a client.
    const QString text = QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(map)).toJson());
    ModemServiceState client;
    QVERIFY(client.setClientState(zelbus::ClientState(zelbus::BUSNAME_ZELMODEMS, text)));
    QVERIFY(client == state);
}

void TestSettingsRecords::stateSetMapEmpty()
{
    ModemServiceState state;
    for (const auto& change : stateChanges())
        change.second(state);
    state.setMap(QVariantMap());
    QVERIFY(state == ModemServiceState());
    QCOMPARE(state.balance(), 0.0);
}

void TestSettingsRecords::stateClientState_data()
{
    QTest::addColumn<QString>("owner");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<int>("signalLevel");

    const QString json = QStringLiteral("{\"signalLevel\": 21, \"balance\": -3.5, \"balanceText\": \"минус 3.50\"}");
    QTest::newRow("modems service") << zelbus::BUSNAME_ZELMODEMS << json << true << 21;
    QTest::newRow("other owner") << "zel.other" << json << false << 5;
    QTest::newRow("empty owner") << "" << json << false << 5;
    QTest::newRow("not JSON") << zelbus::BUSNAME_ZELMODEMS << "signalLevel=21" << false << 5;
    QTest::newRow("truncated JSON") << zelbus::BUSNAME_ZELMODEMS << "{\"signalLevel\": 2" << false << 5;
    QTest::newRow("empty text") << zelbus::BUSNAME_ZELMODEMS << "" << false << 5;
    // Valid JSON that is no object reads as an empty map: every field reset.
    QTest::newRow("JSON array") << zelbus::BUSNAME_ZELMODEMS << "[1, 2]" << true << 0;
}

void TestSettingsRecords::stateClientState()
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

QTEST_GUILESS_MAIN(TestSettingsRecords)
#include "tst_settingsrecords.moc"
