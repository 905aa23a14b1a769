// The live modem against simulated modems: events as they happen (each
// kind, and in the middle of another command's answer), errors with their
// number, one operation at a time while a caller's timer asks for more,
// cancelling, and a port that vanishes and comes back.
#include "messagestore.h"
#include "modem.h"
#include "simfixture.h"
#include "smssender.h"
#include "ussdrequest.h"

#include <QFutureWatcher>
#include <QSerialPort>
#include <QSignalSpy>

using zelmodems::Failure;
using zelmodems::Modem;
using zelmodems::ModemResult;
using zelmodems::Registration;
using namespace zelmodems::sim;

namespace {

// Waits for `future` while the event loop runs (timers, signals).
template <typename T>
ModemResult<T> await(const QFuture<ModemResult<T>>& future, int ms = 10000)
{
    QFutureWatcher<ModemResult<T>> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(future);
    if (!future.isFinished())
        QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    if (!future.isFinished())
        loop.exec();
    return future.isFinished() && !future.isCanceled() ? future.result() : ModemResult<T>();
}

bool openOn(SimModem& sim, Modem& modem)
{
    QString error;
    if (!sim.start(&error) || !zmltest::giveOwnLink(sim)) {
        qWarning("simulator: %s", qPrintable(error));
        return false;
    }
    if (!modem.open(sim.devicePath())) {
        qWarning("open: %s", qPrintable(modem.failure().text()));
        return false;
    }
    return true;
}

} // namespace

class TestModem : public QObject
{
    Q_OBJECT

private:
    zmltest::LockDir m_locks;

private slots:
    void initTestCase() { QVERIFY(m_locks.install()); }

    // Each event the modem writes on its own reaches its signal, read and
    // decoded, and only that signal.
    void events_data()
    {
        QTest::addColumn<QString>("event");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QString>("expected");
        QTest::newRow("message (+CMTI, read from the store)") << "sms" << QByteArray(SIGNAL(messageReceived(zelmodems::StoredMessage)))
                                                  << "+79161234567: Hello [1]";
        QTest::newRow("message (+CMT, not stored)") << "cmt" << QByteArray(SIGNAL(messageReceived(zelmodems::StoredMessage)))
                                                    << "+79161234567: Direct []";
        QTest::newRow("long message, passed on when whole") << "long" << QByteArray(SIGNAL(messageReceived(zelmodems::StoredMessage)))
                                                            << "+79161234567: Привет, мир [1,2]";
        QTest::newRow("delivery report (+CDS)") << "report" << QByteArray(SIGNAL(deliveryReported(zelmodems::StoredMessage)))
                                                << "report 42 status 0 for +79161234567";
        QTest::newRow("roaming (+CREG)") << "roaming" << QByteArray(SIGNAL(registrationChanged(zelmodems::Registration)))
                                         << "roaming 00AB 0000CDEF AcT 2";
        QTest::newRow("denied (+CREG)") << "denied" << QByteArray(SIGNAL(registrationChanged(zelmodems::Registration)))
                                        << "denied   AcT -1";
        QTest::newRow("network USSD menu") << "ussd" << QByteArray(SIGNAL(ussdReceived(zelmodems::UssdReply)))
                                           << "1: 1 Balance 2 Exit";
        QTest::newRow("signal (^RSSI)") << "signal" << QByteArray(SIGNAL(signalChanged(zelmodems::SignalQuality)))
                                        << "17/99";
        QTest::newRow("signal (^HCSQ, -70 dBm)") << "hcsq" << QByteArray(SIGNAL(signalChanged(zelmodems::SignalQuality)))
                                                 << "22/99";
        QTest::newRow("signal (^HCSQ, strongest)") << "hcsq-max" << QByteArray(SIGNAL(signalChanged(zelmodems::SignalQuality)))
                                                   << "31/99";
        QTest::newRow("caller (+CLIP)") << "ring" << QByteArray(SIGNAL(callerIdentified(QString)))
                                        << "+79161234567";
        QTest::newRow("unknown code, passed on raw") << "unknown" << QByteArray(SIGNAL(unsolicited(QByteArray, QByteArray)))
                                                     << "^NEWTHING: 1,2";
    }
    void events()
    {
        QFETCH(QString, event);
        QFETCH(QByteArray, signal);
        QFETCH(QString, expected);
        SimModem sim(Make::Huawei);
        Modem modem;
        QVERIFY(openOn(sim, modem));
        QSignalSpy spy(&modem, signal.constData());
        QSignalSpy messages(&modem, &Modem::messageReceived);
        QSignalSpy ussd(&modem, &Modem::ussdReceived);
        const QDateTime time = zmltest::minutesAgo(1);
        if (event == QLatin1String("sms")) {
            sim.receiveSms(DeliverPdu::gsm7("+79161234567", time, "Hello"));
        } else if (event == QLatin1String("cmt")) {
            const QByteArray pdu = DeliverPdu::gsm7("+79161234567", time, "Direct");
            sim.sendUnsolicited("\r\n+CMT: ," + QByteArray::number(pdu.size() / 2 - 8) + "\r\n" + pdu + "\r\n");
        } else if (event == QLatin1String("long")) {
            sim.receiveSms(DeliverPdu::ucs2("+79161234567", time, QStringLiteral("Привет, "), 7, 1, 2));
            QTest::qWait(100);
            QCOMPARE(messages.count(), 0);   // held until the rest comes
            sim.receiveSms(DeliverPdu::ucs2("+79161234567", time, QStringLiteral("мир"), 7, 2, 2));
        } else if (event == QLatin1String("report")) {
            sim.receiveReport(StatusReportPdu::build(42, "+79161234567", time, 0));
        } else if (event == QLatin1String("roaming")) {
            sim.setRegistration(5, "00AB", "0000CDEF", 2);
        } else if (event == QLatin1String("denied")) {
            sim.setRegistration(3);
        } else if (event == QLatin1String("ussd")) {
            sim.sendNetworkUssd(Ussd::plain("1 Balance 2 Exit", 15, 1));
        } else if (event == QLatin1String("signal")) {
            sim.setSignal(17);
        } else if (event == QLatin1String("hcsq")) {
            sim.sendUnsolicited("\r\n^HCSQ: \"LTE\",50,40,120,20\r\n");
        } else if (event == QLatin1String("hcsq-max")) {
            sim.sendUnsolicited("\r\n^HCSQ: \"LTE\",96,97,251,34\r\n");
        } else if (event == QLatin1String("ring")) {
            sim.ring("+79161234567");
        } else {
            sim.sendUnsolicited("\r\n^NEWTHING: 1,2\r\n");
        }
        // The initial registration of open() may come first.
        QTRY_VERIFY_WITH_TIMEOUT(!spy.isEmpty(), 5000);
        QTest::qWait(50);
        const QVariant value = spy.last().value(0);
        QString got;
        if (value.canConvert<zelmodems::StoredMessage>() && event != QLatin1String("report")) {
            const auto m = value.value<zelmodems::StoredMessage>();
            QStringList indexes;
            for (int index : m.indexes())
                indexes << QString::number(index);
            got = QStringLiteral("%1: %2 [%3]").arg(m.address(), m.text(), indexes.join(QLatin1Char(',')));
            QCOMPARE(messages.count(), 1);
        } else if (event == QLatin1String("report")) {
            const auto m = value.value<zelmodems::StoredMessage>();
            got = QStringLiteral("report %1 status %2 for %3").arg(m.reportReference()).arg(m.reportStatus()).arg(m.address());
        } else if (value.canConvert<Registration>()) {
            const auto r = value.value<Registration>();
            got = QStringLiteral("%1 %2 %3 AcT %4").arg(Registration::stateName(r.state()), r.area(), r.cell()).arg(r.accessTechnology());
        } else if (value.canConvert<zelmodems::UssdReply>()) {
            const auto r = value.value<zelmodems::UssdReply>();
            got = QStringLiteral("%1: %2").arg(r.status).arg(r.text);
        } else if (value.canConvert<zelmodems::SignalQuality>()) {
            const auto q = value.value<zelmodems::SignalQuality>();
            got = QStringLiteral("%1/%2").arg(q.rssi()).arg(q.ber());
        } else {
            got = value.toString();
        }
        QCOMPARE(got, expected);
        if (event != QLatin1String("ussd"))
            QCOMPARE(ussd.count(), 0);
    }

    // A modem that does not report its level is read at the period set,
    // and a reading that did not change is not reported again.
    void signalByPolling()
    {
        SimModem sim(Make::SimCom);
        sim.setAnswer("+CSQ", "+CSQ: 5,99");
        Modem modem;
        QVERIFY(openOn(sim, modem));
        QSignalSpy signal(&modem, &Modem::signalChanged);
        QTest::qWait(150);
        QCOMPARE(signal.count(), 0);   // nothing without a period
        modem.setSignalPollInterval(40);
        QTRY_COMPARE(signal.count(), 1);
        QCOMPARE(signal.at(0).at(0).value<zelmodems::SignalQuality>().rssi(), 5);
        QTest::qWait(200);
        QCOMPARE(signal.count(), 1);
        sim.setAnswer("+CSQ", "+CSQ: 21,99");
        QTRY_COMPARE(signal.count(), 2);
        QCOMPARE(signal.at(1).at(0).value<zelmodems::SignalQuality>().rssi(), 21);
        // 0 ends the polling.
        modem.setSignalPollInterval(0);
        QTest::qWait(100);
        sim.setAnswer("+CSQ", "+CSQ: 9,99");
        QTest::qWait(200);
        QCOMPARE(signal.count(), 2);
    }

    // A port that is not there, or that another program holds, is refused
    // with the reason, and the holder's port is left alone.
    void openRefusals()
    {
        Modem modem;
        QVERIFY(!modem.open(QStringLiteral("/nonexistent/ttyUSB9")));
        QCOMPARE(modem.failure().code(), Failure::NotFound);
        SimModem sim(Make::Huawei);
        QVERIFY(sim.start());
        QVERIFY(zmltest::giveOwnLink(sim));
        QSerialPort holder(sim.devicePath());
        QVERIFY(holder.open(QIODevice::ReadWrite));
        QVERIFY(!modem.open(sim.devicePath()));
        QCOMPARE(modem.failure().code(), Failure::Busy);
        QVERIFY2(modem.failure().text().contains(QStringLiteral("pid %1").arg(QCoreApplication::applicationPid())),
                 qPrintable(modem.failure().text()));
        QVERIFY(sim.commands().isEmpty());
        QVERIFY(!modem.isOpen());
    }

    // Registration reports in the forms modems write them.
    void registrationForms_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("answer");
        QTest::addColumn<QString>("expected");
        QTest::newRow("short report") << QByteArray("+CREG: 1") << false << "CREG home   -1";
        QTest::newRow("roaming with place") << QByteArray("+CREG: 5,\"00ab\",\"0000CDEF\",2") << false
                                            << "CREG roaming 00AB 0000CDEF 2";
        QTest::newRow("EPS, no space") << QByteArray("+CEREG:1,\"1A2B\",\"01C3D4E5\",7") << false
                                       << "CEREG home 1A2B 01C3D4E5 7";
        QTest::newRow("answer with n") << QByteArray("+CREG: 2,1,\"1A2B\",\"01C3D4E5\",7") << true
                                       << "CREG home 1A2B 01C3D4E5 7";
        QTest::newRow("GPRS answer, denied") << QByteArray("+CGREG: 0,3") << true << "CGREG denied   -1";
        QTest::newRow("no such state") << QByteArray("+CREG: 9") << false << "CREG none   -1";
    }
    void registrationForms()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, answer);
        QFETCH(QString, expected);
        const Registration r = answer ? Registration::fromAnswer(line) : Registration::fromUnsolicited(line);
        QCOMPARE(QStringLiteral("%1 %2 %3 %4 %5")
                     .arg(Registration::domainName(r.domain()), Registration::stateName(r.state()), r.area(), r.cell())
                     .arg(r.accessTechnology()),
                 expected);
    }

    // Unsolicited codes in the middle of an answer go to their listeners
    // and stay out of the answer.
    void unsolicitedInsideAnswer()
    {
        SimModem sim(Make::Huawei);
        Modem modem;
        QVERIFY(openOn(sim, modem));
        const int index = sim.storeSms(DeliverPdu::gsm7("+79161234567", zmltest::minutesAgo(2), "Inside"), 0);
        sim.setReply("+CGMR", Reply::raw("\r\n+CMTI: \"SM\"," + QByteArray::number(index)
                                         + "\r\n11.608.13.02.00\r\n+CREG: 5,\"0A0B\",\"0C0D0E0F\",7\r\n\r\nOK\r\n"));
        QSignalSpy registrations(&modem, &Modem::registrationChanged);
        QSignalSpy messages(&modem, &Modem::messageReceived);
        const ModemResult<zelmodems::ModemAnswer> answer = await(modem.command("+CGMR"));
        QVERIFY(answer.ok());
        QCOMPARE(answer.value.lines, QList<QByteArray>{"11.608.13.02.00"});
        QCOMPARE(answer.value.finalCode, QByteArray("OK"));
        QTRY_COMPARE(messages.count(), 1);
        QCOMPARE(messages.at(0).at(0).value<zelmodems::StoredMessage>().text(), QStringLiteral("Inside"));
        QVERIFY(!registrations.isEmpty());
        QCOMPARE(registrations.last().at(0).value<Registration>().state(), Registration::Roaming);
    }

    // A refusal carries its number and what it means.
    void errorsWithTheirCode_data()
    {
        QTest::addColumn<QByteArray>("finalCode");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("meaning");
        QTest::newRow("CME 11") << QByteArray("+CME ERROR: 11") << int(Failure::CmeError) << 11 << "SIM PIN required";
        QTest::newRow("CMS 321") << QByteArray("+CMS ERROR: 321") << int(Failure::CmsError) << 321 << "invalid memory index";
        QTest::newRow("plain ERROR") << QByteArray("ERROR") << int(Failure::Refused) << -1 << "ERROR";
    }
    void errorsWithTheirCode()
    {
        QFETCH(QByteArray, finalCode);
        QFETCH(int, code);
        QFETCH(int, number);
        QFETCH(QString, meaning);
        SimModem sim(Make::Huawei);
        Modem modem;
        QVERIFY(openOn(sim, modem));
        sim.setReply("+CPIN?", Reply::raw("\r\n" + finalCode + "\r\n"));
        const auto result = await(modem.command("+CPIN?"));
        QCOMPARE(int(result.failure.code()), code);
        QCOMPARE(result.failure.number(), number);
        QVERIFY2(result.failure.text().endsWith(meaning + (number >= 0 ? ")" : "")), qPrintable(result.failure.text()));
        QVERIFY(sim.commands().contains("+CMEE=1"));
    }

    // A timer that asks for the signal while a USSD request waits for the
    // network waits its turn, and the reply goes to the request.
    void timerDuringUssdWaitsItsTurn()
    {
        SimModem sim(Make::Huawei);
        sim.setUssdReply("*100#", Ussd::plain("Balance 12.50"));
        sim.setUssdDelay(300);
        sim.setSignal(20);
        Modem modem;
        QVERIFY(openOn(sim, modem));
        QSignalSpy network(&modem, &Modem::ussdReceived);
        QStringList order;
        auto balance = modem.requestUssd("*100#");
        QFutureWatcher<ModemResult<zelmodems::UssdReply>> ussdWatcher;
        connect(&ussdWatcher, &QFutureWatcherBase::finished, [&] { order << "ussd"; });
        ussdWatcher.setFuture(balance);
        QFuture<ModemResult<zelmodems::SignalQuality>> signal;
        QFutureWatcher<ModemResult<zelmodems::SignalQuality>> signalWatcher;
        connect(&signalWatcher, &QFutureWatcherBase::finished, [&] { order << "signal"; });
        QTimer::singleShot(50, [&] {
            signal = modem.readSignal();
            signalWatcher.setFuture(signal);
        });
        QTRY_COMPARE_WITH_TIMEOUT(order.size(), 2, 10000);
        QCOMPARE(order, (QStringList{"ussd", "signal"}));
        QCOMPARE(balance.result().value.text, QStringLiteral("Balance 12.50"));
        QCOMPARE(signal.result().value.rssi(), 20);
        QCOMPARE(network.count(), 0);
        const QList<QByteArray> commands = sim.commands();
        QVERIFY(commands.lastIndexOf("+CSQ") > commands.lastIndexOf("+CUSD=1,\"*100#\",15"));
    }

    // The blocking services run on a live modem in its queue, and the reply
    // a USSD request waits for is not also reported as a network message.
    void blockingServicesOnALiveModem()
    {
        SimModem sim(Make::Huawei);
        sim.setUssdReply("*100#", Ussd::plain("Balance 3.00"));
        Modem modem;
        QVERIFY(openOn(sim, modem));
        QSignalSpy network(&modem, &Modem::ussdReceived);
        sim.storeSms(DeliverPdu::gsm7("+79161234567", zmltest::minutesAgo(3), "Stored"));
        QList<zelmodems::StoredMessage> messages;
        zelmodems::MessageStore store(&modem);
        QVERIFY2(store.listMessages(messages), qPrintable(store.failure().text()));
        QCOMPARE(messages.size(), 1);
        QCOMPARE(messages.at(0).text(), QStringLiteral("Stored"));
        QVERIFY(store.remove(messages.at(0).indexes()));
        QVERIFY(sim.storedSms().isEmpty());
        zelmodems::UssdRequest ussd(&modem);
        QVERIFY2(ussd.send("*100#"), qPrintable(ussd.failure().text()));
        QCOMPARE(ussd.text(), QStringLiteral("Balance 3.00"));
        zelmodems::SmsSender sender(&modem);
        QVERIFY2(sender.send("+79161234567", "Hi"), qPrintable(sender.failure().text()));
        QCOMPARE(sender.references().size(), 1);
        QTest::qWait(150);
        QCOMPARE(network.count(), 0);
        sim.vanish();
        QTRY_VERIFY(!modem.isOpen());
        QVERIFY(!store.listMessages(messages));
        QCOMPARE(store.failure().code(), Failure::Gone);
    }

    // A queued operation cancelled never runs; a USSD request cancelled
    // while the network is still to answer ends the session.
    void cancel()
    {
        SimModem sim(Make::Huawei);
        sim.setUssdReply("*100#", QByteArray());   // the network never answers
        Modem modem;
        QVERIFY(openOn(sim, modem));
        sim.clearLog();
        auto ussd = modem.requestUssd("*100#");
        auto queued = modem.command("+CGMR");
        queued.cancel();
        QTest::qWait(200);
        ussd.cancel();
        QTRY_VERIFY(ussd.isFinished());
        await(modem.command("")); // the queue has moved on
        const QList<QByteArray> commands = sim.commands();
        QVERIFY(!commands.contains("+CGMR"));
        QVERIFY2(commands.contains("+CUSD=2"), commands.join(' ').constData());
    }

    // A port that vanishes ends the operation that waits and every queued
    // one at once; the modem opens again when the device returns.
    void vanishEndsEverythingAndReturns()
    {
        SimModem sim(Make::Huawei);
        sim.setFault("+CGMR", Fault::Silence);
        Modem modem;
        QVERIFY(openOn(sim, modem));
        QSignalSpy gone(&modem, &Modem::gone);
        QElapsedTimer clock;
        clock.start();
        auto waiting = modem.command("+CGMR", 20000);
        auto queued = modem.readSignal();
        sim.vanishAfter(100);
        const auto first = await(waiting, 15000);
        const auto second = await(queued, 15000);
        QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(first.failure.code(), Failure::Gone);
        QCOMPARE(second.failure.code(), Failure::Gone);
        QTRY_COMPARE(gone.count(), 1);
        QCOMPARE(await(modem.readSignal()).failure.code(), Failure::Gone);

        QVERIFY(sim.reappear());
        QVERIFY(modem.open(sim.devicePath()));
        QVERIFY(await(modem.readSignal()).ok());
    }

    // An idle modem that is unplugged is noticed without any command.
    void idleVanish()
    {
        SimModem sim(Make::Huawei);
        Modem modem;
        QVERIFY(openOn(sim, modem));
        QSignalSpy gone(&modem, &Modem::gone);
        sim.vanish();
        QTRY_COMPARE_WITH_TIMEOUT(gone.count(), 1, 3000);
        QVERIFY(!modem.isOpen());
    }
};

QTEST_MAIN(TestModem)
#include "tst_modem.moc"
