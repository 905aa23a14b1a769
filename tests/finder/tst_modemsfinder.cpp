// The modem search end to end: a finder over simulated modems on
// pseudo-terminals, opened through real serial ports.
#include "finderfixture.h"

#include "atmodem.h"
#include "modemsettings.h"
#include "modemsfinder.h"
#include "operatordata.h"
#include "simmodem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>
#include <optional>

using namespace findertest;
using zelmodems::sim::Make;
using zelmodems::sim::Profile;
using zelmodems::sim::SimModem;

namespace {

// How long a whole search may take here: a silent port costs three tests of
// six two-second probes each, a modem refusing a rate three open attempts of
// six one-second probes.
constexpr int SEARCH_TIMEOUT_MS = 120000;

// The name the driver gives a modem that answers "ATI" with `ati`.
QString modemNameFor(const QByteArray& ati)
{
    AtModem modem;
    modem.setModemName(ati);
    return modem.name();
}

OperatorData operatorFor(int mcc, int mnc)
{
    const ModemSettings settings;
    return settings.mncTable().value(mcc * 100 + mnc);
}

// The record the search makes of a modem with a known operator.
ModemInfo expectedRecord(const QString& port, int baudrate, const QString& imei, const QString& modemName,
                         const OperatorData& op, const QString& cmdPort = QString())
{
    ModemInfo info;
    info.setPortName(port);
    info.setCmdPortName(cmdPort);
    info.setBaudrate(baudrate);
    info.setImei(imei);
    info.addInitLine(op.modemInitLine());
    info.setUserName(op.userName());
    info.setPassword(op.password());
    info.setConnectionName(connectionName(modemName, port, imei, op.name()));
    info.setBalanceUssd(op.balancePhone());
    info.setPhoneUssd(op.selfNumberPhone());
    info.setPhoneFromSms(op.selfNumberFromSms());
    return info;
}

QString usbKey(quint16 vendor, quint16 product, const QString& imei)
{
    return QStringLiteral("%1-%2").arg(qint64(vendor) * 65536 + product).arg(imei);
}

bool waitForFinished(SignalLog& log, int count = 1)
{
    return QTest::qWaitFor([&] { return log.names.count(QStringLiteral("finished")) >= count; },
                           SEARCH_TIMEOUT_MS);
}

} // namespace

class TestModemsFinder : public QObject
{
    Q_OBJECT

private:
    // A started simulator for `profile`.
    SimModem* addSim(const Profile& profile)
    {
        m_sims.emplace_back(new SimModem(profile));
        SimModem* sim = m_sims.back().get();
        QString error;
        if (!sim->start(&error))
            qFatal("simulator: %s", qPrintable(error));
        return sim;
    }

    std::vector<std::unique_ptr<SimModem>> m_sims;

private slots:
    void cleanup()
    {
        // Probes of an abandoned search run to their end; wait for them
        // before their modems go.
        QThreadPool::globalInstance()->waitForDone(SEARCH_TIMEOUT_MS);
        m_sims.clear();
    }

    // One search over every kind of port: USB modems of several interfaces
    // (with and without the data-port link), a plain serial modem above
    // 115200, a modem that refuses fast rates, an unknown operator, a modem
    // that will not tell its operator, a silent, a busy and a missing port.
    void searchMergesInterfacesAndDropsDeadPorts()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        SimPorts ports;

        // Huawei, three interfaces; the udev link names the first as data port.
        const quint16 huaweiVendor = 0x12d1, huaweiProduct = 0x1506;
        const QString huaweiImei = QStringLiteral("866111111111111");
        Profile huawei = Profile::forMake(Make::Huawei);
        huawei.imei = huaweiImei.toLatin1();
        huawei.imsi = "250021234567890";   // MegaFon
        for (int i = 0; i < 3; ++i) {
            SimModem* sim = addSim(huawei);
            const QString name = QStringLiteral("ttyUSB%1").arg(i);
            // The link's target is a file called after the port, as in /dev.
            QVERIFY(sim->createLink(dir.filePath(name)));
            ports.declareUsb(name, sim->devicePath(), huaweiVendor, huaweiProduct, QStringLiteral("huawei"));
        }
        QVERIFY(QFile::link(dir.filePath(QStringLiteral("ttyUSB0")), dir.filePath(QStringLiteral("gsmmodem"))));
        ports.setLink(dir.filePath(QStringLiteral("gsmmodem")));

        // ZTE, three interfaces, none of them linked.
        const quint16 zteVendor = 0x19d2, zteProduct = 0x0031;
        const QString zteImei = QStringLiteral("355222222222222");
        Profile zte = Profile::forMake(Make::Zte);
        zte.imei = zteImei.toLatin1();
        zte.imsi = "250201234567890";   // Tele2
        for (int i = 3; i < 6; ++i) {
            SimModem* sim = addSim(zte);
            ports.declareUsb(QStringLiteral("ttyUSB%1").arg(i), sim->devicePath(), zteVendor, zteProduct,
                             QStringLiteral("ZTE"));
        }

        // SIMCOM on one interface: deaf at 9600 and above 460800. It answers
        // the last first-contact rate (115200), so the climb starts above it.
        const quint16 simcomVendor = 0x1e0e, simcomProduct = 0x9001;
        Profile simcom = Profile::forMake(Make::SimCom);
        simcom.imsi = "250991234567890";   // Beeline
        SimModem* refusing = addSim(simcom);
        refusing->setAcceptedLineSpeeds({2400, 115200, 230400, 460800});
        ports.declareUsb(QStringLiteral("ttyUSB6"), refusing->devicePath(), simcomVendor, simcomProduct,
                         QStringLiteral("SIMCOM"));

        // A plain serial modem that follows every rate of the ladder; its
        // name holds a "/".
        Profile acme = Profile::forMake(Make::Unknown);
        acme.ati = "Acme/Modem GX-7";
        acme.imei = "490154203237518";
        acme.imsi = "250011234567890";   // MTS
        SimModem* serialModem = addSim(acme);
        ports.declareSerial(QStringLiteral("ttyS0"), serialModem->devicePath());

        // A SIM of an operator the table does not know, in a modem that
        // will not tell its IMEI.
        Profile foreign = Profile::forMake(Make::Cinterion);
        foreign.imei = "";
        foreign.imsi = "999011234567890";
        SimModem* foreignSim = addSim(foreign);
        ports.declareSerial(QStringLiteral("ttyS1"), foreignSim->devicePath());

        // Silent, busy, and a modem without a SIM.
        SimModem* silent = addSim(Profile::forMake(Make::Huawei));
        silent->setSilent(true);
        ports.declareSerial(QStringLiteral("ttyS2"), silent->devicePath());
        SimModem* busy = addSim(Profile::forMake(Make::Huawei));
        ports.declareSerial(QStringLiteral("ttyS3"), busy->devicePath(), true);
        SimModem* noSim = addSim(Profile::forMake(Make::Unknown));
        ports.declareSerial(QStringLiteral("ttyS4"), noSim->devicePath());

        LogRecorder logs(LogRecorder::Echo::NoDebug);
        ModemsFinder finder;
        SignalLog signalLog(finder);
        QStringList names;
        for (int i = 0; i < 7; ++i)
            names << QStringLiteral("ttyUSB%1").arg(i);
        names << QStringLiteral("ttyS0") << QStringLiteral("ttyS1") << QStringLiteral("ttyS2")
              << QStringLiteral("ttyS3") << QStringLiteral("ttyS4") << QStringLiteral("ttyS9")
              << QStringLiteral("ttyS0") << QString();
        QElapsedTimer clock;
        clock.start();
        finder.start(names);
        QVERIFY(waitForFinished(signalLog));
        qInfo("search over %d ports: %lld ms", int(names.size()), clock.elapsed());

        QCOMPARE(signalLog.names, QStringList({QStringLiteral("devicesFinded"), QStringLiteral("finished")}));
        const QList<ModemInfo> found = signalLog.found.value(0);
        QCOMPARE(finder.modems(), found);
        QCOMPARE(finder.validModems(), found);
        QCOMPARE(found.size(), 5);

        // Plain serial modems first, in the order their probes ended, capped
        // at 115200.
        QMap<QString, ModemInfo> serial;
        for (int i = 0; i < 2; ++i)
            serial.insert(found.at(i).portName(), found.at(i));
        QCOMPARE(serial.keys(), QStringList({QStringLiteral("ttyS0"), QStringLiteral("ttyS1")}));
        QCOMPARE(serial.value(QStringLiteral("ttyS0")),
                 expectedRecord(QStringLiteral("ttyS0"), 115200, QString::fromLatin1(acme.imei),
                                QStringLiteral("Acme/Modem_GX-7"), operatorFor(250, 1)));

        ModemInfo unknown;
        unknown.setPortName(QStringLiteral("ttyS1"));
        unknown.setBaudrate(115200);
        unknown.setConnectionName(connectionName(modemNameFor(foreign.ati), QStringLiteral("ttyS1"), QString(),
                                                 QStringLiteral("Unknown modem")));
        QCOMPARE(serial.value(QStringLiteral("ttyS1")), unknown);

        // Then the USB modems, one record each, in the order of their keys.
        QMap<QString, ModemInfo> usb;
        usb.insert(usbKey(huaweiVendor, huaweiProduct, huaweiImei),
                   expectedRecord(QStringLiteral("ttyUSB0"), 4000000, huaweiImei, modemNameFor(huawei.ati),
                                  operatorFor(250, 2), QStringLiteral("ttyUSB1")));
        usb.insert(usbKey(zteVendor, zteProduct, zteImei),
                   expectedRecord(QStringLiteral("ttyUSB5"), 4000000, zteImei, modemNameFor(zte.ati),
                                  operatorFor(250, 20), QStringLiteral("ttyUSB3")));
        usb.insert(usbKey(simcomVendor, simcomProduct, QString::fromLatin1(simcom.imei)),
                   expectedRecord(QStringLiteral("ttyUSB6"), 460800, QString::fromLatin1(simcom.imei),
                                  modemNameFor(simcom.ati), operatorFor(250, 99)));
        QCOMPARE(found.mid(2), usb.values());

        // One connection name spelt out, independent of the driver's naming.
        QCOMPARE(found.at(2).connectionName(),
                 QStringLiteral("huawei_E3372_") + QString::number(crc16Arc(QStringLiteral("ttyUSB0%1Мегафон").arg(huaweiImei).toUtf8()), 16));

        // The refusing modem's climb began above 115200: it never heard the
        // rates between its first contacts.
        QSet<qint32> heard;
        for (const zelmodems::sim::CommandRecord& r : refusing->log())
            heard.insert(r.lineSpeed);
        QCOMPARE(heard, QSet<qint32>({2400, 115200, 230400, 460800}));
        // The plain serial modem was climbed to the top of the ladder.
        bool topRate = false;
        for (const zelmodems::sim::CommandRecord& r : serialModem->log())
            topRate = topRate || r.lineSpeed == 4000000;
        QVERIFY(topRate);
        // Every modem found was left in command state with factory settings.
        QCOMPARE(serialModem->commands().mid(serialModem->commands().lastIndexOf("+++")),
                 QList<QByteArray>({"+++", "", "&F0"}));

        // Dead ports: nothing was said to the busy one.
        QVERIFY(busy->commands().isEmpty());
        // Warnings once each; the empty name is never searched.
        const QString cat = QStringLiteral("atmodem");
        for (const char* warning : {"Invalid port ttyS9", "The port ttyS3 is busy", "port ttyS4 mnc request error",
                                    "port ttyS0 search result true"})
            QVERIFY2(logs.find(QtWarningMsg, cat, QLatin1String(warning)).size() == 1, warning);
        QCOMPARE(logs.find(QtWarningMsg, cat, QStringLiteral("port ttyS4 search result")).size(), 0);
        for (const QString& line : {QStringLiteral("Modem on ttyS2 is not open"), QStringLiteral("Modem on ttyS0 is open"),
                                    QStringLiteral("port ttyS1: Mnc table does not contain mnc=1, mcc=999"),
                                    QStringLiteral("port ttyUSB6 baudrate 460800"), QStringLiteral("port ttyS0 mcc 250 mnc 1"),
                                    QStringLiteral("Port ttyUSB3:\t[\"product identifire is 0031\", "
                                                   "\"vendor identifire is 19d2\", \"manufacturer is ZTE\"]"),
                                    QStringLiteral("Port ttyS0:\t[\"manufacturer is \"]"), QStringLiteral("Search on ttyS0")})
            QVERIFY2(logs.countExact(line) == 1, qPrintable(line));
        QCOMPARE(logs.countExact(QStringLiteral("Search on ")), 0);
    }

    // Modems that vanish at different moments of their probe (before it, at
    // the first operator query of the rate climb, half-way up the climb)
    // beside one that keeps answering: the search ends, reports only the
    // healthy modem and leaves no port open, so the next search finds it
    // again. The ports are links to the ptys, as udev names them: a vanished
    // device takes its link with it, so its name never reaches a pty number
    // the system has since given to another program.
    void devicesVanishDuringSearch()
    {
        QTemporaryDir links;
        SimPorts ports;
        QStringList names;
        for (int i = 0; i < 4; ++i) {
            Profile profile = Profile::forMake(Make::Huawei);
            profile.imei = QByteArray::number(866000000000100LL + i);
            names << QStringLiteral("ttyS%1").arg(300 + i);
            QVERIFY(addSim(profile)->createLink(links.filePath(names.last())));
            ports.declareSerial(names.last(), m_sims.back()->devicePath());
        }
        // Descriptors of this process open on a device, the simulator's own included.
        const auto openOn = [](const QString& device) {
            const QString node = QFileInfo(device).canonicalFilePath();
            const QDir fds(QStringLiteral("/proc/self/fd"));
            int count = 0;
            for (const QString& fd : fds.entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot))
                count += QFile::symLinkTarget(fds.filePath(fd)) == node ? 1 : 0;
            return count;
        };
        const int simulatorOwn = openOn(m_sims.at(0)->devicePath());
        m_sims.at(1)->vanish();
        m_sims.at(2)->setFault("+CIMI", zelmodems::sim::Fault::Vanish);
        SimModem* dying = m_sims.at(3).get();
        auto identifications = std::make_shared<int>(0);
        dying->addHandler([dying, identifications](const QByteArray& command) -> std::optional<zelmodems::sim::Reply> {
            if (command == "I" && ++*identifications == 5)
                dying->setFault(QByteArray(), zelmodems::sim::Fault::Vanish);   // the next command, whatever it is
            return std::nullopt;
        });

        QList<ModemInfo> first;
        for (int search = 0; search < 2; ++search) {
            ModemsFinder finder;
            SignalLog signalLog(finder);
            finder.start(names);
            QVERIFY(waitForFinished(signalLog));
            QCOMPARE(signalLog.names, QStringList({QStringLiteral("devicesFinded"), QStringLiteral("finished")}));
            const QList<ModemInfo> found = signalLog.found.value(0);
            QCOMPARE(found.size(), 1);
            QCOMPARE(found.first().imei(), QStringLiteral("866000000000100"));
            QCOMPARE(openOn(m_sims.at(0)->devicePath()), simulatorOwn);
            for (int i = 1; i < 4; ++i)
                QVERIFY2(m_sims.at(i)->hasVanished(), qPrintable(names.at(i)));
            if (search == 1)
                QCOMPARE(found, first);
            first = found;
        }
    }

    // A second start cancels the running search (needCancel once, and once
    // per probe, then finished); the old probe's modem is never reported.
    // The second start lists the system's ports.
    void restartWhileProbing()
    {
        SimPorts ports;
        SimModem* first = addSim(Profile::forMake(Make::Huawei));
        ports.declareSerial(QStringLiteral("ttyS5"), first->devicePath());

        ModemsFinder finder;
        SignalLog signalLog(finder);
        finder.start({QStringLiteral("ttyS5")});
        QVERIFY(QTest::qWaitFor([&] { return !first->commands().isEmpty(); }, 10000));

        // Now the system has only the second modem.
        SimPorts later;
        Profile zte = Profile::forMake(Make::Zte);
        SimModem* second = addSim(zte);
        later.declareSerial(QStringLiteral("ttyS6"), second->devicePath());
        finder.start();
        QCOMPARE(signalLog.names, QStringList({QStringLiteral("needCancel"), QStringLiteral("needCancel"),
                                               QStringLiteral("finished")}));

        QVERIFY(waitForFinished(signalLog, 2));
        QCOMPARE(signalLog.names.mid(3), QStringList({QStringLiteral("devicesFinded"), QStringLiteral("finished")}));
        QCOMPARE(signalLog.found.size(), 1);
        QCOMPARE(signalLog.found.first().value(0).portName(), QStringLiteral("ttyS6"));
        QCOMPARE(signalLog.found.first().size(), 1);
        QCOMPARE(finder.modems(), signalLog.found.first());

        // The abandoned probe ran to its end all the same, and was dropped.
        QVERIFY(QThreadPool::globalInstance()->waitForDone(SEARCH_TIMEOUT_MS));
        QVERIFY(first->commands().contains("&F0"));
        QTest::qWait(50);
        QCOMPARE(signalLog.names.size(), 5);
    }
};

QTEST_MAIN(TestModemsFinder)
#include "tst_modemsfinder.moc"
