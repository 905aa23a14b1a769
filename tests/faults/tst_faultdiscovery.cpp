// Discovery while devices fail: modems that vanish at different moments of
// their probe (before it, at the first operator query of the rate climb, a
// few hundred milliseconds in) beside one that keeps answering. The search
// must end, report only the healthy modem, and leave no port open or locked,
// so that a second search finds the healthy modem again.
#include "faultfixture.h"

#include "modeminfo.h"
#include "modemsfinder.h"
#include "simmodem.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <optional>
#include <vector>

using zelmodems::sim::Fault;
using zelmodems::sim::Make;
using zelmodems::sim::Profile;
using zelmodems::sim::SimModem;

namespace {

// A probe of an answering modem takes a little over two seconds (the fixed
// sleep before dialling); a vanished device fails its opens at once. This
// bound only tells a hang from a finished search.
constexpr int SEARCH_DEADLINE_MS = 60000;

// One search over `names`: the finder's signals, once it has ended.
struct Search
{
    explicit Search(const QStringList& names) : log(finder)
    {
        finder.start(names);
        (void)QTest::qWaitFor([this] { return log.names.contains(QStringLiteral("finished")); }, SEARCH_DEADLINE_MS);
    }
    QList<ModemInfo> modems() const { return log.found.value(0); }

    ModemsFinder finder;
    findertest::SignalLog log;
};

const QStringList FOUND = {QStringLiteral("devicesFinded"), QStringLiteral("finished")};

} // namespace

class TestFaultDiscovery : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { faults::installQuietHandler(); }

    void devicesVanishDuringSearch()
    {
        // The ports are links to the ptys, as udev names them: a vanished
        // device takes its link with it, so its name never reaches a pty
        // number that the system has since given to another program.
        QTemporaryDir links;
        QVERIFY(links.isValid());
        findertest::SimPorts ports;
        std::vector<std::unique_ptr<SimModem>> sims;
        QStringList names;
        for (int i = 0; i < 4; ++i) {
            Profile profile = Profile::forMake(Make::Huawei);
            profile.imei = QByteArray::number(866000000000100LL + i);
            sims.emplace_back(new SimModem(profile));
            QString error;
            QVERIFY2(sims.back()->start(&error), qPrintable(error));
            names << QStringLiteral("ttyS%1").arg(300 + i);
            QVERIFY(sims.back()->createLink(links.filePath(names.last())));
            ports.declareSerial(names.last(), sims.back()->devicePath());
        }
        QStringList nodes;
        QList<int> ownDescriptors;   // the simulator's own hold on its device
        for (const auto& sim : sims) {
            nodes << faults::deviceNode(sim->devicePath());
            ownDescriptors << faults::openDescriptors(nodes.last());
        }

        // ttyS300 answers throughout. ttyS301 is gone before its probe
        // starts; ttyS302 vanishes at the first operator query (the first
        // step of the rate climb); ttyS303 vanishes half-way up the climb,
        // right after identifying itself for the fifth time.
        sims.at(1)->vanish();
        sims.at(2)->setFault("+CIMI", Fault::Vanish);
        SimModem* dying = sims.at(3).get();
        auto identifications = std::make_shared<int>(0);
        dying->addHandler([dying, identifications](const QByteArray& command) -> std::optional<zelmodems::sim::Reply> {
            if (command == "I" && ++*identifications == 5)
                dying->setFault(QByteArray(), Fault::Vanish);   // the next command, whatever it is
            return std::nullopt;
        });

        const Search first(names);
        QCOMPARE(first.log.names, FOUND);
        QCOMPARE(first.modems().size(), 1);
        QCOMPARE(first.modems().first().portName(), QStringLiteral("ttyS300"));
        QCOMPARE(first.modems().first().imei(), QStringLiteral("866000000000100"));
        QVERIFY(first.modems().first().isValid());
        for (int i = 1; i < 4; ++i)
            QVERIFY2(sims.at(i)->hasVanished(), qPrintable(names.at(i)));

        // Nothing is left open or locked, on the vanished devices or on the
        // healthy one.
        for (int i = 0; i < 4; ++i)
            QVERIFY2(faults::released(nodes.at(i), i == 0 ? ownDescriptors.at(0) : 0, links.filePath(names.at(i))),
                     qPrintable(names.at(i)));

        // So the healthy modem is found again by the next search.
        const Search second(names);
        QCOMPARE(second.log.names, FOUND);
        QCOMPARE(second.modems(), first.modems());
        QVERIFY(faults::released(nodes.at(0), ownDescriptors.at(0), links.filePath(names.at(0))));
    }

};

QTEST_GUILESS_MAIN(TestFaultDiscovery)
#include "tst_faultdiscovery.moc"
