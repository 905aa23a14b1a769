// A service's test built only on the installed package (library and
// simulator): two simulated modems the system does not list, found by the
// modem search through a declared-ports catalogue, then queried.
#include <zelmodemslib/atmodem.h>
#include <zelmodemslib/declaredports.h>
#include <zelmodemslib/modeminfo.h>
#include <zelmodemslib/modemsfinder.h>
#include <zelmodemslib/simmodem.h>

#include <QCoreApplication>
#include <QTextStream>

using namespace zelmodems;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);

    sim::SimModem huawei(sim::Make::Huawei);
    sim::SimModem simcom(sim::Make::SimCom);
    simcom.setImei("861234567890123");
    simcom.setAnswer("+CSQ", "+CSQ: 20,99");
    if (!huawei.start() || !simcom.start())
        return 1;

    DeclaredPorts ports;
    ports.setDeclaredOnly(true);
    ports.declare(QStringLiteral("ttyUSB0"), huawei.devicePath());
    ports.declare(QStringLiteral("ttyS1"), simcom.devicePath());
    ports.install();

    QList<ModemInfo> found;
    ModemsFinder finder;
    QObject::connect(&finder, &ModemsFinder::devicesFinded, [&](QList<ModemInfo> modems) { found = modems; });
    QObject::connect(&finder, &ModemsFinder::finished, &app, &QCoreApplication::quit);
    finder.start();
    app.exec();

    std::sort(found.begin(), found.end(),
              [](const ModemInfo& a, const ModemInfo& b) { return a.portName() < b.portName(); });
    for (const ModemInfo& modem : found)
        out << "found " << modem.portName() << ' ' << modem.imei() << '\n';

    AtModem modem(nullptr);
    int level = 0;
    if (!modem.open(simcom.devicePath(), 115200, 1) || !modem.getSignalLevel(level))
        return 2;
    out << "signal " << level << '\n';
    return 0;
}
