// The state readings: the SIM and its codes, the network, the measures, the
// stores and the registration, parsed from the makes' answers and read
// from simulated modems through a real serial port.
#include "networkoperator.h"
#include "registration.h"
#include "signalmeasures.h"
#include "simfixture.h"
#include "simlock.h"
#include "simstatus.h"
#include "storeuse.h"

#include <QLoggingCategory>
#include <QtTest>

using zelmodems::Failure;
using zelmodems::NetworkOperator;
using zelmodems::Registration;
using zelmodems::SignalMeasures;
using zelmodems::SimLock;
using zelmodems::SimStatus;
using zelmodems::StoreUse;
using zelmodems::sim::Make;
using zelmodems::sim::SimState;

Q_DECLARE_METATYPE(SimState)

class TestModemState : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_locks.install()); }

    void simAnswer_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("state");
        QTest::newRow("ready") << QByteArray("+CPIN: READY\r\nOK") << "ready";
        QTest::newRow("pin") << QByteArray("+CPIN: SIM PIN\r\nOK") << "pin-required";
        QTest::newRow("puk quoted") << QByteArray("+CPIN: \"SIM PUK\"\r\nOK") << "puk-required";
        QTest::newRow("pin2") << QByteArray("+CPIN: SIM PIN2") << "pin2-required";
        QTest::newRow("ph-sim") << QByteArray("+CPIN: PH-SIM PIN") << "phone-to-sim-pin";
        QTest::newRow("ph-net") << QByteArray("+CPIN: PH-NET PIN") << "network-locked";
        QTest::newRow("no sim by number") << QByteArray("+CME ERROR: 10") << "not-inserted";
        QTest::newRow("no sim in words") << QByteArray("+CME ERROR: SIM not inserted") << "not-inserted";
        QTest::newRow("pin in words") << QByteArray("+CME ERROR: SIM PIN required") << "pin-required";
        QTest::newRow("failure") << QByteArray("+CME ERROR: 13") << "failure";
        QTest::newRow("wrong sim") << QByteArray("+CME ERROR: 15") << "failure";
        QTest::newRow("busy") << QByteArray("+CME ERROR: 14") << "busy";
        QTest::newRow("network personalisation") << QByteArray("+CME ERROR: 40") << "network-locked";
        QTest::newRow("not inserted line") << QByteArray("+CPIN: NOT INSERTED") << "not-inserted";
        QTest::newRow("bare error") << QByteArray("ERROR") << "unknown";
        QTest::newRow("other error") << QByteArray("+CME ERROR: 100") << "unknown";
        QTest::newRow("nonsense") << QByteArray("+CPIN: MAYBE") << "unknown";
    }
    void simAnswer()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, state);
        QCOMPARE(SimStatus::stateName(SimStatus::fromAnswer(answer).state()), state);
    }

    void attempts_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("pin");
        QTest::addColumn<int>("puk");
        QTest::newRow("huawei pin") << QByteArray("^CPIN: SIM PIN,2,10,2,10,3\r\nOK") << 2 << 10;
        QTest::newRow("huawei ready") << QByteArray("^CPIN: READY,,9,3,10,3") << 3 << 9;
        QTest::newRow("simcom") << QByteArray("+SPIC: 1,10,3,10") << 1 << 10;
        QTest::newRow("zte") << QByteArray("+ZPINPUK: 3,7") << 3 << 7;
        QTest::newRow("quectel") << QByteArray("+QPINC: \"P2\",3,10\r\n+QPINC: \"SC\",2,9") << 2 << 9;
        QTest::newRow("quectel pin2 only") << QByteArray("+QPINC: \"P2\",3,10") << -1 << -1;
        QTest::newRow("short huawei") << QByteArray("^CPIN: SIM PIN,3") << -1 << -1;
        QTest::newRow("none") << QByteArray("OK") << -1 << -1;
        QTest::newRow("PUK used up, PIN count missing") << QByteArray("+ZPINPUK: ,0") << -1 << 0;
    }
    void attempts()
    {
        QFETCH(QByteArray, answer);
        QFETCH(int, pin);
        QFETCH(int, puk);
        SimStatus sim;
        QCOMPARE(sim.takeAttempts(answer), pin >= 0 || puk >= 0);
        QCOMPARE(sim.pinAttempts(), pin);
        QCOMPARE(sim.pukAttempts(), puk);
    }

    // Each make tells the attempts its own way; the generic modem not at all.
    void readSim_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<SimState>("simState");
        QTest::addColumn<QString>("state");
        QTest::addColumn<int>("attempts");
        QTest::newRow("huawei pin") << Make::Huawei << SimState::Pin << "pin-required" << 2;
        QTest::newRow("huawei puk") << Make::Huawei << SimState::Puk << "puk-required" << 7;
        QTest::newRow("simcom pin") << Make::SimCom << SimState::Pin << "pin-required" << 2;
        QTest::newRow("zte ready") << Make::Zte << SimState::Ready << "ready" << 2;
        QTest::newRow("cinterion pin") << Make::Cinterion << SimState::Pin << "pin-required" << -1;
        QTest::newRow("no sim") << Make::Huawei << SimState::NotInserted << "not-inserted" << -1;
        QTest::newRow("broken sim") << Make::SimCom << SimState::Failure << "failure" << -1;
    }
    void readSim()
    {
        QFETCH(Make, make);
        QFETCH(SimState, simState);
        QFETCH(QString, state);
        QFETCH(int, attempts);
        ZML_OPEN(make);
        sim.setSim(simState, 2, 7);
        QByteArray said;
        modem.sendCommand("+CMEE=1", said, 1000);
        const SimStatus status = SimStatus::read(&modem);
        QCOMPARE(SimStatus::stateName(status.state()), state);
        QCOMPARE(status.attemptsLeft(), attempts);
        QVERIFY(!status.failure().isFailure());
    }

    // With numbered errors off, a modem without a SIM says only ERROR: the
    // reading says so and what turns them on, rather than guessing.
    void readSimWithoutNumberedErrors()
    {
        ZML_OPEN(Make::Huawei);
        sim.setSim(SimState::NotInserted);
        const SimStatus status = SimStatus::read(&modem);
        QCOMPARE(status.state(), SimStatus::NotRead);
        QCOMPARE(status.failure().code(), Failure::Refused);
        QVERIFY(status.failure().text().contains(QLatin1String("AT+CMEE=1")));
    }

    void unlock_data()
    {
        QTest::addColumn<QString>("pin");
        QTest::addColumn<int>("attemptsBefore");
        QTest::addColumn<bool>("allowLast");
        QTest::addColumn<bool>("sent");
        QTest::addColumn<QString>("failure");
        QTest::addColumn<QString>("stateAfter");
        QTest::addColumn<int>("attemptsAfter");
        QTest::newRow("right") << "1234" << 3 << false << true << "none" << "ready" << 3;
        QTest::newRow("wrong") << "9999" << 3 << false << true << "cme-error" << "pin-required" << 2;
        QTest::newRow("last attempt held back") << "1234" << 1 << false << false << "last-attempt"
                                                << "pin-required" << 1;
        QTest::newRow("last attempt allowed") << "1234" << 1 << true << true << "none" << "ready" << 3;
        QTest::newRow("wrong last attempt blocks") << "9999" << 1 << true << true << "cme-error"
                                                   << "puk-required" << 10;
        QTest::newRow("letters") << "12a4" << 3 << false << false << "bad-input" << "pin-required" << 3;
        QTest::newRow("injection") << "1234\";+CFUN=0;\"" << 3 << false << false << "bad-input"
                                   << "pin-required" << 3;
        QTest::newRow("too short") << "123" << 3 << false << false << "bad-input" << "pin-required" << 3;
        QTest::newRow("too long") << "123456789" << 3 << false << false << "bad-input" << "pin-required" << 3;
    }
    void unlock()
    {
        QFETCH(QString, pin);
        QFETCH(int, attemptsBefore);
        QFETCH(bool, allowLast);
        QFETCH(bool, sent);
        QFETCH(QString, failure);
        QFETCH(QString, stateAfter);
        QFETCH(int, attemptsAfter);
        ZML_OPEN(Make::Huawei);
        sim.setSim(SimState::Pin, attemptsBefore, 10);
        QByteArray said;
        modem.sendCommand("+CMEE=1", said, 1000);
        sim.clearLog();
        SimLock lock(&modem);
        lock.setLastAttemptAllowed(allowLast);
        QCOMPARE(lock.unlock(pin), failure == QLatin1String("none"));
        QCOMPARE(Failure::codeName(lock.failure().code()), failure);
        bool tried = false;
        for (const QByteArray& command : sim.commands())
            tried = tried || command.startsWith("+CPIN=");
        QCOMPARE(tried, sent);
        const SimStatus after = SimStatus::read(&modem);
        QCOMPARE(SimStatus::stateName(after.state()), stateAfter);
        QCOMPARE(after.attemptsLeft(), attemptsAfter);
        if (failure == QLatin1String("cme-error"))
            QVERIFY2(lock.failure().text().contains(QStringLiteral("attempts left: %1").arg(attemptsAfter)),
                     qPrintable(lock.failure().text()));
    }

    // A PIN for a SIM that asks for none, the PUK and a new PIN, a change.
    void codesInOtherStates()
    {
        ZML_OPEN(Make::SimCom);
        QByteArray said;
        modem.sendCommand("+CMEE=1", said, 1000);
        SimLock lock(&modem);
        QVERIFY(!lock.unlock(QStringLiteral("1234")));
        QCOMPARE(lock.failure().code(), Failure::WrongState);

        QVERIFY(!lock.changePin(QStringLiteral("12"), QStringLiteral("4321")));
        QCOMPARE(lock.failure().code(), Failure::BadInput);
        QVERIFY(!lock.changePin(QStringLiteral("0000"), QStringLiteral("4321")));
        QCOMPARE(lock.failure().code(), Failure::CmeError);
        QCOMPARE(lock.failure().number(), 16);
        QVERIFY(lock.changePin(QStringLiteral("1234"), QStringLiteral("4321")));
        QCOMPARE(sim.simPin(), QByteArray("4321"));

        sim.setSim(SimState::Puk, 0, 10);
        QVERIFY(!lock.unlockWithPuk(QStringLiteral("1234"), QStringLiteral("5555")));
        QCOMPARE(lock.failure().code(), Failure::BadInput);
        QVERIFY(!lock.unlockWithPuk(QStringLiteral("87654321"), QStringLiteral("5555")));
        QCOMPARE(lock.status().pukAttempts(), 9);
        QVERIFY(lock.unlockWithPuk(QStringLiteral("12345678"), QStringLiteral("5555")));
        QCOMPARE(sim.simPin(), QByteArray("5555"));
        QVERIFY(lock.status().isReady());
    }

    // The codes never reach the debug log.
    void codesStayOutOfTheLog()
    {
        ZML_OPEN(Make::Huawei);
        sim.setSim(SimState::Pin);
        QLoggingCategory::setFilterRules(QStringLiteral("atmodem.debug=true"));
        zmltest::LogRecorder log(zmltest::LogRecorder::Echo::Nothing);
        SimLock lock(&modem);
        QVERIFY(lock.unlock(QStringLiteral("1234")));
        QVERIFY(lock.changePin(QStringLiteral("1234"), QStringLiteral("8765")));
        QLoggingCategory::setFilterRules(QString());
        QVERIFY(!log.find(QStringLiteral("atmodem"), QStringLiteral("AT+CPIN=\"****\"")).isEmpty());
        QVERIFY(!log.find(QStringLiteral("atmodem"), QStringLiteral("AT+CPWD=\"SC\",\"****\",\"****\"")).isEmpty());
        QVERIFY(log.find(QStringLiteral("atmodem"), QStringLiteral("1234")).isEmpty());
        QVERIFY(log.find(QStringLiteral("atmodem"), QStringLiteral("8765")).isEmpty());
    }

    void network()
    {
        ZML_OPEN(Make::Zte);
        const NetworkOperator home = NetworkOperator::read(&modem);
        QCOMPARE(home.name(), QStringLiteral("MegaFon"));
        QCOMPARE(home.numeric(), QStringLiteral("25020"));
        QCOMPARE(home.mcc(), 250);
        QCOMPARE(home.mnc(), 20);
        QCOMPARE(home.accessTechnology(), 7);
        QVERIFY(!home.isForeignTo(QStringLiteral("250201234567890")));
        QVERIFY(home.isForeignTo(QStringLiteral("250011234567890")));
        // The appliance's calls expect long names afterwards.
        QCOMPARE(sim.commands().last(), QByteArray("+COPS?"));
        QVERIFY(sim.commands().contains("+COPS=3,0"));

        sim.setRegistration(3);
        const NetworkOperator none = NetworkOperator::read(&modem);
        QVERIFY(!none.isKnown());
        QCOMPARE(none.mode(), 0);
        QVERIFY(!none.failure().isFailure());
    }

    void operatorAnswers_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("numeric");
        QTest::newRow("numeric") << QByteArray("+COPS: 0,2,\"25099\",7") << "" << "25099";
        QTest::newRow("three-digit mnc") << QByteArray("+COPS: 1,2,\"310410\",2") << "" << "310410";
        QTest::newRow("name with comma") << QByteArray("+COPS: 0,0,\"Tele2, RU\",2") << "Tele2, RU" << "";
        QTest::newRow("numeric not digits") << QByteArray("+COPS: 0,2,\"25A99\"") << "" << "";
        QTest::newRow("no network") << QByteArray("+COPS: 2") << "" << "";
    }
    void operatorAnswers()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, name);
        QFETCH(QString, numeric);
        NetworkOperator network;
        network.take(answer);
        QCOMPARE(network.name(), name);
        QCOMPARE(network.numeric(), numeric);
    }

    void measures_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("technology");
        QTest::addColumn<QString>("values");   // name=value for the known measures
        QTest::newRow("lte") << QByteArray("+CESQ: 99,99,255,255,22,56") << "LTE" << "rsrp=-85 rsrq=-9";
        QTest::newRow("umts") << QByteArray("+CESQ: 99,99,40,30,255,255") << "UMTS" << "rscp=-81 ecno=-9.5";
        QTest::newRow("gsm") << QByteArray("+CESQ: 40,0,255,255,255,255") << "GSM" << "rssi=-71 ber=0";
        QTest::newRow("tops") << QByteArray("+CESQ: 63,7,96,49,34,97") << "LTE"
                              << "rssi=-48 ber=7 rscp=-25 ecno=0 rsrp=-44 rsrq=-3";
        QTest::newRow("nothing known") << QByteArray("+CESQ: 99,99,255,255,255,255") << "" << "";
        QTest::newRow("beyond the scales") << QByteArray("+CESQ: 64,8,97,50,35,98") << "" << "";
        QTest::newRow("huawei lte") << QByteArray("^HCSQ: \"LTE\",61,56,151,22") << "LTE"
                                    << "rssi=-60 rsrp=-85 rsrq=-9 sinr=10.2";
        QTest::newRow("huawei wcdma") << QByteArray("^HCSQ: \"WCDMA\",50,40,30") << "UMTS"
                                      << "rssi=-71 rscp=-81 ecno=-17.5";
        QTest::newRow("huawei tops") << QByteArray("^HCSQ: \"LTE\",96,97,251,34") << "LTE"
                                     << "rssi=-25 rsrp=-44 rsrq=-3 sinr=30.2";
        QTest::newRow("huawei unknowns") << QByteArray("^HCSQ: \"LTE\",255,255,255,255") << "LTE" << "";
        QTest::newRow("huawei no service") << QByteArray("^HCSQ: \"NOSERVICE\"") << "" << "";
    }
    void measures()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, technology);
        QFETCH(QString, values);
        const SignalMeasures m = answer.startsWith("^") ? SignalMeasures::fromHcsq(answer)
                                                       : SignalMeasures::fromCesq(answer);
        QVERIFY(m.isAnswered());
        QCOMPARE(m.technology(), technology);
        QStringList known;
        for (int i = 0; i < SignalMeasures::MeasureCount; ++i) {
            const auto measure = SignalMeasures::Measure(i);
            if (m.has(measure))
                known << QStringLiteral("%1=%2").arg(SignalMeasures::measureName(measure)).arg(m.value(measure));
        }
        QStringList expected = values.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        std::sort(known.begin(), known.end());
        std::sort(expected.begin(), expected.end());
        QCOMPARE(known, expected);
    }

    // +CESQ where the modem has it, ^HCSQ on a Huawei, a failure otherwise.
    void readMeasures_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<QString>("technology");
        QTest::addColumn<bool>("failed");
        QTest::newRow("simcom") << Make::SimCom << "LTE" << false;
        QTest::newRow("huawei") << Make::Huawei << "LTE" << false;
        QTest::newRow("cinterion") << Make::Cinterion << "" << true;
    }
    void readMeasures()
    {
        QFETCH(Make, make);
        QFETCH(QString, technology);
        QFETCH(bool, failed);
        ZML_OPEN(make);
        const SignalMeasures m = SignalMeasures::read(&modem);
        QCOMPARE(m.technology(), technology);
        QCOMPARE(m.failure().isFailure(), failed);
        QCOMPARE(m.has(SignalMeasures::Rsrp), !failed);
    }

    void stores_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("stores");   // name used/total roles, ";"-joined
        QTest::addColumn<bool>("receivingFull");
        QTest::newRow("one store") << QByteArray("+CPMS: \"SM\",3,30,\"SM\",3,30,\"SM\",3,30") << "SM 3/30 7" << false;
        QTest::newRow("full") << QByteArray("+CPMS: \"SM\",30,30,\"SM\",30,30,\"SM\",30,30") << "SM 30/30 7" << true;
        QTest::newRow("two stores") << QByteArray("+CPMS: \"ME\",2,23,\"ME\",2,23,\"SM\",10,10")
                                    << "ME 2/23 3;SM 10/10 4" << true;
        QTest::newRow("full but not receiving") << QByteArray("+CPMS: \"SM\",10,10,\"SM\",10,10,\"ME\",0,23")
                                                << "SM 10/10 3;ME 0/23 4" << false;
        QTest::newRow("old modem") << QByteArray("+CPMS: \"SM\",1,20") << "SM 1/20 1" << false;
        QTest::newRow("no numbers") << QByteArray("+CPMS: \"SM\",x,20") << "" << false;
    }
    void stores()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, stores);
        QFETCH(bool, receivingFull);
        const StoreUse use = StoreUse::fromAnswer(answer);
        QStringList seen;
        for (const StoreUse::Store& store : use.stores())
            seen << QStringLiteral("%1 %2/%3 %4").arg(store.name).arg(store.used).arg(store.total).arg(store.roles);
        QCOMPARE(seen.join(QLatin1Char(';')), stores);
        QCOMPARE(use.isReceivingFull(), receivingFull);
    }

    void readStores()
    {
        ZML_OPEN(Make::Cinterion);
        sim.setStoreSize(1);
        QVERIFY(!StoreUse::read(&modem).isReceivingFull());
        sim.storeSms(zelmodems::sim::DeliverPdu::gsm7("+79161234567", QDateTime::currentDateTime(), "hi"));
        const StoreUse use = StoreUse::read(&modem);
        QVERIFY(use.isReceivingFull());
        QCOMPARE(use.stores().value(0).used, 1);
        QByteArray said;
        modem.sendCommand("+CMEE=1", said, 1000);
        sim.setSim(SimState::Pin);
        const StoreUse locked = StoreUse::read(&modem);
        QVERIFY(!locked.isRead());
        QCOMPARE(locked.failure().number(), 11);
    }

    // The registration read from the modem: the forms the state takes.
    void readRegistration_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("cell");
        QTest::newRow("home") << 1 << "home" << "01C3D4E5";
        QTest::newRow("roaming") << 5 << "roaming" << "01C3D4E5";
        QTest::newRow("denied") << 3 << "denied" << "";
        QTest::newRow("searching") << 2 << "searching" << "";
    }
    void readRegistration()
    {
        QFETCH(int, state);
        QFETCH(QString, name);
        QFETCH(QString, cell);
        ZML_OPEN(Make::Huawei);
        sim.setRegistration(state);
        const Registration registration = Registration::read(&modem);
        QCOMPARE(Registration::stateName(registration.state()), name);
        QCOMPARE(registration.cell(), cell);
        QCOMPARE(registration.accessTechnology(), cell.isEmpty() ? -1 : 7);
        QVERIFY(sim.commands().contains("+CREG=2"));
    }

    void registrationWithoutSim()
    {
        ZML_OPEN(Make::Huawei);
        sim.setSim(SimState::NotInserted);
        QCOMPARE(Registration::read(&modem).state(), Registration::NotRegistered);
        sim.setSim(SimState::Ready);
        sim.setReply("+CREG?", zelmodems::sim::Reply::error());
        const Registration refused = Registration::read(&modem);
        QVERIFY(!refused.isValid());
        QCOMPARE(refused.failure().code(), Failure::Refused);
    }

private:
    zmltest::LockDir m_locks;
};

QTEST_GUILESS_MAIN(TestModemState)
#include "tst_modemstate.moc"
