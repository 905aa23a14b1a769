// zelmodems balance, ussd, own-number, sms list and sms send against
// simulated modems whose network answers at once.
#include "clifixture.h"

#include <QJsonArray>

using clitest::run;
using zelmodems::sim::Fault;
using zelmodems::sim::Make;
using zelmodems::sim::Profile;
using zelmodems::sim::SimModem;
using zelmodems::sim::Ussd;

namespace {

// SMS-DELIVER from +79161234567, "Hello", 2022-11-22 17:18:05 +03.
const QByteArray OLDER = "07919761980614F8040B919761214365F700002211227181502105C8329BFD06";
// SMS-DELIVER from +79031112233, "Привет" in UCS2, 2023-01-15 10:00:00 +03.
const QByteArray NEWER = "07919761980614F8" "04" "0B919730112132F3" "00" "08" "32105101000021" "0C"
                         "041F04400438043204350442";

} // namespace

class TestCliExchange : public QObject
{
    Q_OBJECT

private slots:
    void balanceWithTheOperatorsCode()
    {
        // Huawei takes the USSD string packed; MegaFon's code is *100#.
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        modem->setUssdReply("*100#", Ussd::plain("Balans 12,50 r."));
        const clitest::Result text = run({"balance", modem->devicePath()});
        QVERIFY2(text.exitCode == 0, text.describe());
        QCOMPARE(text.out, QStringLiteral("Balance:      12.50\nReply:        Balans 12,50 r.\n"));
        QCOMPARE(modem->ussdRequests(), QList<QByteArray>{"*100#"});
    }

    void balanceJsonWithGivenCode()
    {
        auto modem = clitest::startModem(Make::SimCom);
        QVERIFY(modem);
        modem->setUssdReply("*111#", Ussd::ucs2(QStringLiteral("Баланс -15.20 р.")));
        const clitest::Result r = run({"balance", modem->devicePath(), "--code", "*111#", "--json"});
        QVERIFY2(r.exitCode == 0, r.describe());
        const QJsonObject json = r.json();
        QCOMPARE(json.value("code").toString(), QStringLiteral("*111#"));
        QCOMPARE(json.value("amount").toDouble(), -15.2);
        QCOMPARE(json.value("text").toString(), QStringLiteral("Баланс -15.20 р."));
        QCOMPARE(modem->ussdRequests(), QList<QByteArray>{"*111#"});
    }

    void balanceWithoutCode()
    {
        Profile profile = Profile::forMake(Make::Cinterion);
        profile.imsi = "001011234567890";   // not in the operator table
        auto modem = clitest::startModem(profile);
        QVERIFY(modem);
        const clitest::Result r = run({"balance", modem->devicePath()});
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("zelmodems balance: the operator table has no balance code for 001/01; "
                                "give one with --code"),
                 r.describe());
        QVERIFY(modem->ussdRequests().isEmpty());
    }

    void ussd()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        modem->setUssdReply("*105*1#", Ussd::plain("Tarif: Vse vklyucheno"));
        const clitest::Result text = run({"ussd", modem->devicePath(), "*105*1#"});
        QVERIFY2(text.exitCode == 0, text.describe());
        QCOMPARE(text.out, QStringLiteral("Reply:        Tarif: Vse vklyucheno\n"));
        const clitest::Result json = run({"ussd", "--json", modem->devicePath(), "*105*1#"});
        QCOMPARE(json.json().value("reply").toString(), QStringLiteral("Tarif: Vse vklyucheno"));
        QCOMPARE(json.json().value("code").toString(), QStringLiteral("*105*1#"));

        // The modem refuses the request.
        modem->setFault("+CUSD=1,\"*106#\",15", Fault::Error);
        const clitest::Result refused = run({"ussd", modem->devicePath(), "*106#"});
        QCOMPARE(refused.exitCode, 1);
        QVERIFY2(refused.err.startsWith("zelmodems ussd: no USSD reply to *106#: "), refused.describe());
        QVERIFY(refused.out.isEmpty());
    }

    void ownNumberFromTheUssdReply()
    {
        // MegaFon answers *205# in the USSD reply (operator table).
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        modem->setUssdReply("*205#", Ussd::plain("Vash nomer +7 (912) 345-67-89"));
        const clitest::Result text = run({"own-number", modem->devicePath()});
        QVERIFY2(text.exitCode == 0, text.describe());
        QCOMPARE(text.out, QStringLiteral("Own number:   9123456789\n"));
        const clitest::Result json = run({"own-number", "--json", modem->devicePath()});
        QCOMPARE(json.json().value("number").toString(), QStringLiteral("9123456789"));
        QCOMPARE(json.json().value("fromSms").toBool(), false);
        QCOMPARE(json.json().value("code").toString(), QStringLiteral("*205#"));

        // A reply without a number.
        modem->setUssdReply("*999#", Ussd::plain("Usluga nedostupna"));
        const clitest::Result none = run({"own-number", modem->devicePath(), "--code", "*999#", "--ussd-reply"});
        QCOMPARE(none.exitCode, 1);
        QVERIFY2(none.err.contains("zelmodems own-number: the operator's reply held no telephone number"),
                 none.describe());
    }

    void smsListReadsAndDeletes()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        modem->storeSms(NEWER);
        modem->storeSms(OLDER);
        const clitest::Result json = run({"sms", "list", "--json", modem->devicePath()});
        QVERIFY2(json.exitCode == 0, json.describe());
        const QJsonArray messages = json.json().value("messages").toArray();
        QCOMPARE(messages.size(), 2);
        // Oldest first, whatever the order in the store.
        QCOMPARE(messages.at(0).toObject().value("sender").toString(), QStringLiteral("+79161234567"));
        QCOMPARE(messages.at(0).toObject().value("text").toString(), QStringLiteral("Hello"));
        QCOMPARE(messages.at(1).toObject().value("sender").toString(), QStringLiteral("+79031112233"));
        QCOMPARE(messages.at(1).toObject().value("text").toString(), QStringLiteral("Привет"));
        QVERIFY(messages.at(0).toObject().value("dateTime").toString() <
                messages.at(1).toObject().value("dateTime").toString());
        // Read means consumed.
        QVERIFY(modem->storedSms().isEmpty());

        const clitest::Result empty = run({"sms", "list", modem->devicePath()});
        QCOMPARE(empty.exitCode, 0);
        QCOMPARE(empty.out, QStringLiteral("No messages.\n"));
        const clitest::Result emptyJson = run({"sms", "list", "--json", modem->devicePath()});
        QCOMPARE(emptyJson.json().value("messages").toArray().size(), 0);

        modem->storeSms(OLDER);
        const clitest::Result text = run({"sms", "list", modem->devicePath()});
        const QStringList lines = text.out.split('\n');
        QCOMPARE(lines.value(0), QStringLiteral("1 message(s), deleted from the modem:"));
        QVERIFY2(lines.value(2).endsWith("  from +79161234567"), text.describe());
        QCOMPARE(lines.value(3), QStringLiteral("  Hello"));
    }

    void smsSend()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        const clitest::Result r =
            run({"sms", "send", "--json", modem->devicePath(), "+79161234567", "Ключ под ковриком"});
        QVERIFY2(r.exitCode == 0, r.describe());
        QCOMPARE(r.json().value("sent").toBool(), true);
        QCOMPARE(r.json().value("number").toString(), QStringLiteral("+79161234567"));
        const auto sent = modem->sentMessages();
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent.at(0).first, QByteArray("+79161234567"));
        QCOMPARE(QString::fromUtf8(sent.at(0).second), QStringLiteral("Ключ под ковриком"));

        const clitest::Result text = run({"sms", "send", modem->devicePath(), "+79031112233", "Back at 6"});
        QVERIFY2(text.exitCode == 0, text.describe());
        QCOMPARE(text.out, QStringLiteral("Sent to +79031112233.\n"));
        QCOMPARE(modem->sentMessages().size(), 2);
        QCOMPARE(modem->sentMessages().at(1).second, QByteArray("Back at 6"));

        // No prompt: the modem refuses to take the text.
        modem->setFault("+CMGS=+79160000000", Fault::Error);
        const clitest::Result refused = run({"sms", "send", modem->devicePath(), "+79160000000", "x"});
        QCOMPARE(refused.exitCode, 1);
        QVERIFY2(refused.err.startsWith("zelmodems sms send: the modem did not send the message to +79160000000"),
                 refused.describe());
        QCOMPARE(modem->sentMessages().size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestCliExchange)
#include "tst_cli_exchange.moc"
