// zelmodems balance, ussd, own-number and the sms commands against
// simulated modems whose network answers at once.
#include "clifixture.h"

#include <QJsonArray>
#include "pdu.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QProcess>
#include <QSerialPort>
#include <QtTest>

#include <csignal>

#include <memory>

using clitest::run;
using zelmodems::sim::Fault;
using zelmodems::sim::DeliverPdu;
using zelmodems::sim::Make;
using zelmodems::sim::SimModem;
using zelmodems::sim::Ussd;

class TestCliExchange : public QObject
{
    Q_OBJECT

private slots:
    // Nothing is reported as a fact that the modem or the network did not say.
    void truthfulAnswers_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("csq");
        QTest::addColumn<QByteArray>("ussdReply");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected");   // in stdout, or stderr for a failure
        QTest::newRow("no signal") << QStringList{"signal"} << QByteArray("+CSQ: 99,99") << QByteArray() << 0
                                   << "Signal:       unknown (the modem reports no signal)";
        QTest::newRow("no signal, JSON") << QStringList{"signal", "--json"} << QByteArray("+CSQ: 99,99")
                                         << QByteArray() << 0 << "\"dbm\": null";
        QTest::newRow("USSD reply") << QStringList{"ussd", "*100#"} << QByteArray()
                                    << Ussd::plain("Tarif: Vse vklyucheno") << 0 << "Reply:        Tarif: Vse vklyucheno\n";
        QTest::newRow("USSD not supported") << QStringList{"balance", "--code", "*100#"} << QByteArray()
                                            << Ussd::statusOnly(4) << 1 << "status 4: operation not supported";
        QTest::newRow("USSD refused") << QStringList{"ussd", "*100#"} << QByteArray() << Ussd::statusOnly(4) << 1
                                      << "zelmodems ussd: *100#: ";
        QTest::newRow("ended by the network, JSON error")
            << QStringList{"--json", "ussd", "*100#"} << QByteArray() << Ussd::plain("Bye", 15, 2) << 1
            << "\"errorCode\": \"refused\"";
        // A menu the network keeps open is closed again (AT+CUSD=2).
        QTest::newRow("USSD menu") << QStringList{"ussd", "*100#"} << QByteArray()
                                   << Ussd::plain("1 Balans 2 Tarif", 15, 1) << 0
                                   << "Reply:        1 Balans 2 Tarif\nThe network's menu waited for an answer; it was "
                                      "closed (AT+CUSD=2).\n";
        QTest::newRow("reply without an amount") << QStringList{"balance", "--code", "*100#", "--json"}
                                                 << QByteArray() << Ussd::plain("Service unavailable") << 0
                                                 << "\"amount\": null";
    }

    void truthfulAnswers()
    {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, csq);
        QFETCH(QByteArray, ussdReply);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        if (!csq.isEmpty())
            modem->setAnswer("+CSQ", csq);
        if (!ussdReply.isEmpty())
            modem->setUssdReply("*100#", ussdReply);
        // The port goes after the command's name, options may stand before it.
        int at = 0;
        while (args.value(at).startsWith("--"))
            ++at;
        args.insert(at + 1, modem->devicePath());
        const clitest::Result r = run(args);
        QCOMPARE(r.exitCode, exitCode);
        QVERIFY2((exitCode == 0 || args.contains("--json") ? r.out : r.err).contains(expected), r.describe());
        QCOMPARE(modem->commands().contains("+CUSD=2"), QString(QTest::currentDataTag()) == "USSD menu");
    }

    // A menu answered from a script: each answer goes to the network in
    // turn, and the last reply is the result.
    void ussdMenuAnswered()
    {
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        modem->setUssdReply("*111#", Ussd::plain("1 Balance 2 Exit", 15, 1));
        modem->setUssdReply("1", Ussd::plain("1 RUB 2 USD", 15, 1));
        modem->setUssdReply("2", Ussd::plain("Balance 5 USD"));
        const clitest::Result r = run({"ussd", modem->devicePath(), "*111#", "--reply", "1", "--reply", "2", "--json"});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.json().value("reply").toString(), QStringLiteral("Balance 5 USD"));
        QCOMPARE(r.json().value("exchange").toArray().size(), 3);
        QCOMPARE(modem->ussdRequests(), (QList<QByteArray>{"*111#", "1", "2"}));
        QVERIFY(!modem->commands().contains("+CUSD=2"));
    }

    // On a terminal the menu is shown and the answer asked for.
    void ussdMenuOnATerminal()
    {
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        modem->setUssdReply("*111#", Ussd::plain("1 Balance 2 Exit", 15, 1));
        modem->setUssdReply("1", Ussd::plain("Balance 5 USD"));
        // script(1) runs the tool with a pseudo-terminal as its input and output.
        QProcess terminal;
        terminal.setProcessEnvironment(clitest::environment());
        terminal.start(QStringLiteral("script"),
                       {"-qec", QStringLiteral("%1 ussd %2 '*111#'").arg(ZELMODEMS_PATH, modem->devicePath()),
                        "/dev/null"});
        QVERIFY(terminal.waitForStarted(10000));
        QByteArray seen;
        QElapsedTimer clock;
        clock.start();
        while (!seen.contains("closes the menu") && clock.elapsed() < 10000) {
            terminal.waitForReadyRead(100);
            seen += terminal.readAllStandardOutput();
        }
        QVERIFY2(seen.contains("Reply: 1 Balance 2 Exit"), seen.constData());
        terminal.write("1\n");
        QVERIFY(terminal.waitForFinished(15000));
        seen += terminal.readAllStandardOutput();
        QVERIFY2(seen.contains("Balance 5 USD"), seen.constData());
        QCOMPARE(terminal.exitCode(), 0);
        QCOMPARE(modem->ussdRequests(), (QList<QByteArray>{"*111#", "1"}));
    }

    // zelmodems watch shows each event within a second of its happening.
    void watchShowsEvents()
    {
        auto modem = clitest::startModem(Make::Huawei);
        QVERIFY(modem);
        QProcess watch;
        watch.setProcessEnvironment(clitest::environment());
        watch.start(QStringLiteral(ZELMODEMS_PATH), {"watch", "--json", modem->devicePath()});
        QVERIFY(watch.waitForStarted(10000));
        QStringList seen;
        QByteArray lines;
        // The events of the lines that came, read until `event` is among them.
        const auto waitFor = [&](const QString& event) {
            QElapsedTimer clock;
            clock.start();
            while (clock.elapsed() < 1000) {
                while (watch.canReadLine()) {
                    const QByteArray text = watch.readLine();
                    lines += text;
                    const QJsonObject line = QJsonDocument::fromJson(text).object();
                    seen << line.value("event").toString() + QLatin1Char(' ') + line.value("state").toString()
                                + line.value("text").toString() + line.value("reply").toString();
                }
                if (!seen.filter(event).isEmpty())
                    return true;
                watch.waitForReadyRead(50);
            }
            return false;
        };
        QVERIFY2(waitFor("opened"), qPrintable(seen.join('\n') + watch.readAllStandardError()));
        modem->receiveSms(DeliverPdu::gsm7("+79161234567", QDateTime::currentDateTime(), "Hello"));
        QVERIFY2(waitFor("message Hello"), qPrintable(seen.join('\n')));
        modem->setRegistration(5);
        QVERIFY2(waitFor("registration roaming"), qPrintable(seen.join('\n')));
        modem->sendNetworkUssd(Ussd::plain("Your bonus", 15, 0));
        QVERIFY2(waitFor("ussd Your bonus"), qPrintable(seen.join('\n')));
        modem->vanish();
        QVERIFY2(waitFor("gone"), qPrintable(seen.join('\n')));
        clitest::checkSchema({"watch", "--json"}, QString::fromUtf8(lines));
        watch.terminate();
        QVERIFY(watch.waitForFinished(5000));
        QCOMPARE(watch.exitCode(), 143);
    }

    void infoOnAModemThatGoesSilent()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        // Answers the opening dialogue and the first queries, then nothing.
        auto count = std::make_shared<int>(0);
        modem->addHandler([count](const QByteArray&) -> std::optional<zelmodems::sim::Reply> {
            if (++*count > 8)
                return zelmodems::sim::Reply::none();
            return std::nullopt;
        });
        const clitest::Result r = run({"info", modem->devicePath(), "--attempts", "1"}, 90000);
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("stopped answering"), r.describe());
    }

    void busyPortNamesItsHolder()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        QSerialPort holder(modem->devicePath());
        QVERIFY2(holder.open(QIODevice::ReadWrite), qPrintable(holder.errorString()));
        const clitest::Result r = run({"signal", modem->devicePath(), "--attempts", "1", "--json"});
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains(QStringLiteral("is in use by another program (pid %1")
                                    .arg(QCoreApplication::applicationPid())),
                 r.describe());
        QCOMPARE(r.json().value("errorCode").toString(), QStringLiteral("busy"));
    }

    void ownNumberBySmsDeletesOnlyTheReply()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const int kept = modem->storeSms(DeliverPdu::ucs2("+79031112233", now, "Call me at 89031112233"));
        modem->setUssdSmsReply("*110*10#", DeliverPdu::ucs2("Beeline", now, "Vash nomer 79057654321"));
        const clitest::Result r = run({"own-number", modem->devicePath(), "--code", "*110*10#", "--sms"});
        QVERIFY2(r.exitCode == 0, r.describe());
        QCOMPARE(r.out, QStringLiteral("Own number:   +79057654321 (national 9057654321)\n"));
        QCOMPARE(modem->storedSms().keys(), QList<int>{kept});
    }

    // A store of two long messages from two senders that share a reference,
    // the lone first half of a third, a stored outgoing message (and one
    // whose status is the modem's own 7), port-addressed 8-bit data, a
    // status report, and two long messages of one sender under one
    // reference, stored A1 B1 A2 B2.
    std::unique_ptr<SimModem> storeModem()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        if (!modem)
            return modem;
        const QDateTime t = QDateTime::currentDateTimeUtc().addSecs(-60);
        modem->storeSms(DeliverPdu::ucs2("+79161234567", t, "Ключ ", 7, 1, 2));
        modem->storeSms(DeliverPdu::ucs2("+79031112233", t, "Back ", 7, 1, 2));
        modem->storeSms(DeliverPdu::ucs2("+79161234567", t, "под ковриком", 7, 2, 2));
        modem->storeSms(DeliverPdu::ucs2("+79031112233", t, "at 6", 7, 2, 2));
        modem->storeSms(DeliverPdu::ucs2("+79990000000", t, "first half", 9, 1, 2));
        modem->storeSms(zelmodems::encodeSmsSubmit("+79161234567", "Outgoing").at(0).toHex().toLatin1(), 3);
        modem->storeSms(zelmodems::encodeSmsSubmit("+79167654321", "Sto sent").at(0).toHex().toLatin1(), 7);
        modem->storeSms("07919761989901F0440B919761333333F30004621142907524211A0605040B8423F0010603BEAF8462696E6172"
                        "797061796C6F6164");
        modem->storeSms("07919761989901F0062A0B919761214365F7621142907524216211429075242146");
        modem->storeSms(DeliverPdu::ucs2("+79995550000", t, "A1 ", 5, 1, 2));
        modem->storeSms(DeliverPdu::ucs2("+79995550000", t, "B1 ", 5, 1, 2));
        modem->storeSms(DeliverPdu::ucs2("+79995550000", t, "A2", 5, 2, 2));
        modem->storeSms(DeliverPdu::ucs2("+79995550000", t, "B2", 5, 2, 2));
        return modem;
    }

    void smsTakeDeletesOnlyWhatItShowed()
    {
        auto modem = storeModem();
        QVERIFY(modem);
        // Every kind in full, by its TPDU type whatever the store's status.
        const clitest::Result listed = run({"sms", "list", "--json", modem->devicePath()});
        QVERIFY2(listed.exitCode == 0, listed.describe());
        QHash<QString, QJsonObject> byKind;
        int ambiguous = 0;
        for (const QJsonValue& value : listed.json().value("messages").toArray()) {
            const QJsonObject m = value.toObject();
            byKind.insert(m.value("kind").toString() + (m.contains("data") ? "-data" : "")
                              + (m.value("status").toString() == "unknown" ? "-7" : ""),
                          m);
            ambiguous += m.value("ambiguous").toBool() ? 1 : 0;
            // A joined message keeps its parts' time.
            if (m.value("complete").toBool() && m.value("partCount").toInt() == 2)
                QVERIFY2(m.value("dateTime").toString().endsWith("+00:00"), listed.describe());
            QVERIFY2(!m.value("text").toString().startsWith("A1 B1") && m.value("text") != "B1 A2", listed.describe());
        }
        QCOMPARE(ambiguous, 4);
        QCOMPARE(byKind.value("submit-7").value("recipient").toString(), QStringLiteral("+79167654321"));
        const QJsonObject data = byKind.value("deliver-data");
        QCOMPARE(data.value("data").toString(), QStringLiteral("010603BEAF8462696E6172797061796C6F6164"));
        QCOMPARE(data.value("destinationPort").toInt(), 2948);
        QCOMPARE(data.value("originatorPort").toInt(), 9200);
        const QJsonObject report = byKind.value("status-report");
        QCOMPARE(report.value("recipient").toString(), QStringLiteral("+79161234567"));
        QCOMPARE(report.value("reference").toInt(), 42);
        QCOMPARE(report.value("reportStatus").toInt(), 0x46);
        QVERIFY2(report.value("dischargeTime").toString().startsWith("2026-11-24T09:57:42"), listed.describe());
        const clitest::Result text = run({"sms", "list", modem->devicePath()});
        QVERIFY2(text.out.contains("status report for message 42 to +79161234567") && text.out.contains("(0x46)")
                     && text.out.contains("data, 19 octet(s), port 2948 (from port 9200):")
                     && text.out.contains("to +79167654321") && text.out.contains("not joined"),
                 text.describe());

        // Output that cannot be written: nothing is deleted.
        const clitest::Result full = run({"sms", "take", modem->devicePath()}, 30000, clitest::environment(),
                                         QStringLiteral("/dev/full"));
        QCOMPARE(full.exitCode, 1);
        QVERIFY2(full.err.contains("none was deleted"), full.describe());
        QCOMPARE(modem->storedSms().size(), 13);

        const clitest::Result taken = run({"sms", "take", modem->devicePath()});
        QVERIFY2(taken.exitCode == 0, taken.describe());
        QVERIFY2(taken.out.startsWith("4 message(s), taken from the modem:"), taken.describe());
        // The lone half, both outgoing ones and the four doubtful halves stay.
        QCOMPARE(modem->storedSms().size(), 7);

        const int left = modem->storedSms().firstKey();
        const clitest::Result deleted = run({"sms", "delete", modem->devicePath(), QString::number(left), "29"});
        QCOMPARE(deleted.exitCode, 1);   // 29 was never there: reported, the other deleted
        QVERIFY2(deleted.out.contains(QStringLiteral("Deleted message %1.").arg(left)), deleted.describe());
        QVERIFY2(deleted.err.contains("+CMS ERROR: 321"), deleted.describe());
        QCOMPARE(modem->storedSms().size(), 6);
    }

    void smsSendConfirmedOrRefused()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        const clitest::Result r =
            run({"sms", "send", "--json", modem->devicePath(), "+79161234567", "Ключ под ковриком"});
        QVERIFY2(r.exitCode == 0, r.describe());
        QCOMPARE(r.json().value("references").toArray().size(), 1);
        QCOMPARE(modem->sentMessages().size(), 1);

        // Injection attempts: refused, and the modem receives nothing at all.
        modem->clearLog();
        for (const QStringList& bad : {QStringList{"+79161234567", "hello\x1a" "AT+CFUN=0\r"},
                                       QStringList{"+7916\rAT+CFUN=0", "hello"}}) {
            const clitest::Result refused = run(QStringList{"sms", "send", modem->devicePath()} + bad);
            QCOMPARE(refused.exitCode, 1);
            QVERIFY2(refused.err.contains("nothing sent"), refused.describe());
        }
        QVERIFY(!modem->commands().contains("+CFUN=0"));
        QCOMPARE(modem->sentMessages().size(), 1);

        // Refused is told apart from unconfirmed: it will not arrive.
        modem->setSmsRefusal("+CMS ERROR: 38");
        const clitest::Result refused = run({"sms", "send", "--json", modem->devicePath(), "+79161234567", "x"});
        QCOMPARE(refused.exitCode, 1);
        const QJsonObject part = refused.json().value("partResults").toArray().at(0).toObject();
        QCOMPARE(part.value("state").toString(), QStringLiteral("refused"));
        QCOMPARE(part.value("errorCode").toInt(), 38);
        QVERIFY2(refused.json().value("error").toString().contains("network out of order")
                     && !refused.json().value("error").toString().contains("may still arrive"),
                 refused.describe());
        QCOMPARE(refused.json().value("errorCode").toString(), QStringLiteral("cms-error"));
        QCOMPARE(refused.json().value("errorNumber").toInt(), 38);
        modem->setSmsRefusal(QByteArray());

        modem->setSmsConfirmation(false);
        const clitest::Result silent = run({"sms", "send", modem->devicePath(), "--wait", "1", "+79161234567", "x"});
        QCOMPARE(silent.exitCode, 1);
        QVERIFY2(silent.err.contains("not confirmed within 1 s") && silent.err.contains("check before sending again"),
                 silent.describe());
    }

    void interruptReleasesThePort_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("Ctrl-C") << int(SIGINT);
        QTest::newRow("SIGTERM") << int(SIGTERM);
    }

    void interruptReleasesThePort()
    {
        // The signal comes while the tool waits on a modem that no longer
        // answers the signal query: it ends at once and leaves no lock behind.
        QFETCH(int, signal);
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        modem->setFault("+CSQ", Fault::Silence);
        QProcess tool;
        tool.setProcessEnvironment(clitest::environment());
        tool.start(QStringLiteral(ZELMODEMS_PATH), {"signal", modem->devicePath()});
        QVERIFY(tool.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(!modem->log().isEmpty() && modem->log().last().command == "+CSQ", 20000);
        QElapsedTimer clock;
        clock.start();
        ::kill(pid_t(tool.processId()), signal);
        QVERIFY(tool.waitForFinished(5000));
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(tool.exitCode(), 128 + signal);
        // The port's lock file went with it.
        QString name = modem->devicePath();
        name = name.mid(name.startsWith("/dev/") ? 5 : 0).replace(QLatin1Char('/'), QLatin1Char('_'));
        QVERIFY(!QFile::exists(QStringLiteral("/var/lock/LCK..") + name));
    }

    // Ctrl-C in the middle of a long message: the user learns which parts
    // went out (text for a person, JSON for a program).
    void interruptedSendSaysWhatWentOut()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        auto prompts = std::make_shared<int>(0);
        modem->addHandler([prompts](const QByteArray& command) -> std::optional<zelmodems::sim::Reply> {
            if (command.startsWith("+CMGS=") && ++*prompts == 2)
                return zelmodems::sim::Reply::none();   // the second part hangs
            return std::nullopt;
        });
        QProcess tool;
        tool.setProcessEnvironment(clitest::environment());
        tool.start(QStringLiteral(ZELMODEMS_PATH),
                   {"sms", "send", "--json", modem->devicePath(), "+79161234567", QString(400, QLatin1Char('x'))});
        QVERIFY(tool.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(*prompts == 2, 20000);
        ::kill(pid_t(tool.processId()), SIGINT);
        QVERIFY(tool.waitForFinished(5000));
        QCOMPARE(tool.exitCode(), 130);
        const QJsonObject json = QJsonDocument::fromJson(tool.readAllStandardOutput()).object();
        QStringList states;
        for (const QJsonValue& part : json.value("partResults").toArray())
            states << part.toObject().value("state").toString();
        QCOMPARE(states, (QStringList{"sent", "interrupted", "not sent"}));
        QCOMPARE(json.value("partResults").toArray().at(0).toObject().value("reference").toInt(), 1);
        const QString err = QString::fromUtf8(tool.readAllStandardError());
        QVERIFY2(err.contains("1 of 3 part(s) sent: 1 (reference 1); part 2 was being handed to the modem"),
                 qPrintable(err));
    }

    // What modems and senders write cannot drive the terminal: escape
    // sequences, a line feed in a sender's name, bidirectional overrides.
    void terminalSafety()
    {
        auto modem = clitest::startModem(Make::Cinterion);
        QVERIFY(modem);
        modem->setAnswer("I", "Cinterion\x1b]0;OWNED\x07\x1b[2J");
        modem->storeSms(DeliverPdu::ucs2("Bank\n(3) x", QDateTime::currentDateTimeUtc(),
                                         QStringLiteral("pay \u202Eevil\u2066 now\n[2] from +7916")));
        const clitest::Result r = run({"sms", "list", "--verbose", modem->devicePath()});
        QVERIFY2(r.exitCode == 0, r.describe());
        for (const QString& output : {r.out, r.err}) {
            QVERIFY2(!output.contains(QChar(0x1b)) && !output.contains(QChar(0x202E)) && !output.contains(QChar(0x2066))
                         && !output.contains(QChar(0x07)),
                     r.describe());
        }
        QVERIFY2(r.out.contains("pay \\u202eevil\\u2066 now"), r.describe());
        QVERIFY2(r.err.contains("\\x1b]0;OWNED"), r.describe());
        QVERIFY2(r.out.contains("from Bank\\x0a(3) x"), r.describe());
        // The text's own line break is indented, so it cannot pass for a header.
        QVERIFY2(r.out.contains("\n  [2] from +7916"), r.describe());
    }
};

QTEST_GUILESS_MAIN(TestCliExchange)
#include "tst_cli_exchange.moc"
