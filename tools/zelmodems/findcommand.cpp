// find: the library's parallel modem search, with live progress.
#include "commandline.h"
#include "tooltext.h"
#include "commands.h"
#include "console.h"
#include "modeminfo.h"
#include "modemsfinder.h"
#include "progressline.h"
#include "declaredports.h"
#include "modemsession.h"
#include "atmodem.h"
#include "modemstate.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSerialPort>
#include <QThreadPool>
#include <QtConcurrent>
#include <QEventLoop>
#include <QFuture>
#include <QFutureWatcher>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QSet>
#include <QTimer>

#include <algorithm>

namespace {

// What the tool can see of a running search: the finder keeps one
// QFutureWatcher per probe as its child; copies of their futures stay valid
// after the finder has dropped a watcher, and a finished probe's result
// names its port.
class SearchWatch
{
public:
    SearchWatch(const ModemsFinder& finder, const QStringList& ports) : m_ports(ports)
    {
        const auto watchers = finder.findChildren<QFutureWatcherBase*>();
        for (QFutureWatcherBase* base : watchers) {
            if (auto* watcher = dynamic_cast<QFutureWatcher<ModemInfo>*>(base))
                m_futures << watcher->future();
        }
    }

    int total() const { return m_ports.size(); }

    // Ports whose probe has ended, with whether it found a modem.
    QMap<QString, bool> finished() const
    {
        QMap<QString, bool> done;
        for (const QFuture<ModemInfo>& future : m_futures) {
            if (future.isFinished() && !future.isCanceled() && future.resultCount() > 0) {
                const ModemInfo result = future.resultAt(0);
                done.insert(result.portName(), result.isValid());
            }
        }
        return done;
    }

    QStringList running(const QMap<QString, bool>& done) const
    {
        QStringList names;
        for (const QString& port : m_ports) {
            if (!done.contains(port))
                names << port;
        }
        return names;
    }

private:
    QStringList m_ports;
    QList<QFuture<ModemInfo>> m_futures;
};

QString seconds(qint64 ms)
{
    return Tool::tr("%1 s").arg(QString::number(ms / 1000.0, 'f', 1));
}

QString progressText(const SearchWatch& watch, qint64 elapsedMs)
{
    const QMap<QString, bool> done = watch.finished();
    int modems = 0;
    for (bool found : done)
        modems += found ? 1 : 0;
    const QStringList running = watch.running(done);
    QString names = running.mid(0, 4).join(QStringLiteral(", "));
    if (running.size() > 4)
        names += QStringLiteral(" +%1 more").arg(running.size() - 4);
    // Most telling first: the end of the line is cut on narrow terminals.
    return QStringLiteral("[%1] probed %2/%3 ports, %4 with a modem; running: %5")
        .arg(seconds(elapsedMs))
        .arg(done.size())
        .arg(watch.total())
        .arg(modems)
        .arg(running.isEmpty() ? QStringLiteral("-") : names);
}

QStringList tableLines(const QList<QStringList>& rows)
{
    QVector<int> widths;
    for (const QStringList& row : rows) {
        widths.resize(qMax(widths.size(), row.size()));
        for (int i = 0; i < row.size(); ++i)
            widths[i] = qMax(widths[i], row.at(i).size());
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line;
        for (int i = 0; i < row.size(); ++i)
            line += i + 1 < row.size() ? row.at(i).leftJustified(widths[i] + 2) : row.at(i);
        lines << line;
    }
    return lines;
}

// What a second look at a port finds once the search is over (its probes
// have closed and unlocked every port): no device, a holder, silence, or a
// modem, with the state of its SIM and registration.
struct Diagnosis
{
    bool modem = false;      // a modem answered
    QString reason;          // why the search did not take the port
    QString name;            // the modem's name
    QString imei;
    QString state;           // the modem's state in words: "ready", "SIM PIN required"
    QJsonObject json;        // sim, registration and problems, as status gives them
    QStringList problems;    // each with its next step
};

Diagnosis diagnose(const QString& device, const QString& port)
{
    Diagnosis d;
    if (!QFileInfo::exists(device)) {
        d.reason = Tool::tr("no such device");
        return d;
    }
    const QString holder = ModemSession::holderOf(device);
    if (!holder.isEmpty()) {
        d.reason = Tool::tr("in use by another program (%1)").arg(holder);
        return d;
    }
    {
        QSerialPort serial(device);
        if (!serial.open(QIODevice::ReadWrite)) {
            d.reason = Tool::tr("cannot be opened as a serial port: %1").arg(serial.errorString());
            return d;
        }
    }
    AtModem modem;
    if (!modem.open(device, 115200, 1)) {
        d.reason = QFileInfo::exists(device)
                       ? Tool::tr("not a modem: no answer to AT at 115200 baud (a modem that takes only another "
                                  "line speed: try zelmodems info --baud)")
                       : Tool::tr("the device disappeared");
        return d;
    }
    d.modem = true;
    d.name = modem.name();
    modem.getImei(d.imei);
    ModemState::askForReasons(modem);
    const ModemState state = ModemState::read(modem, ModemState::ReadSim | ModemState::ReadRegistration);
    d.json.insert(QStringLiteral("sim"), state.simJson());
    d.json.insert(QStringLiteral("registration"), state.registrationJson());
    d.json.insert(QStringLiteral("problems"), state.problemsJson(port));
    for (const ModemState::Problem& problem : state.problems(port))
        d.problems << (problem.next.isEmpty() ? problem.text
                                              : Tool::tr("%1; next: %2").arg(problem.text, problem.next));
    if (!state.sim().isReady())
        d.state = zelmodems::SimStatus::stateText(state.sim().state());
    else
        d.state = zelmodems::Registration::stateText(state.registration().state())
                  + (state.isRoaming() && !state.registration().isRoaming() ? Tool::tr(" (roaming)") : QString());
    int mcc = 0;
    int mnc = 0;
    if (!state.sim().isReady())
        d.reason = Tool::tr("a modem (%1) that cannot be used until its SIM is: %2").arg(d.name, d.state);
    else if (!modem.getMnc(mcc, mnc))
        d.reason = Tool::tr("a modem (%1) whose SIM names no operator (IMSI %2)").arg(d.name, state.imsi());
    else
        d.reason = Tool::tr("a modem (%1, operator %2/%3) that the search did not take; see zelmodems info %4")
                       .arg(d.name)
                       .arg(mcc)
                       .arg(mnc, 2, 10, QLatin1Char('0'))
                       .arg(port);
    return d;
}

// The port the state of a found modem is read on: its command port.
QString statePort(const ModemInfo& modem)
{
    return modem.cmdPortName().isEmpty() ? modem.portName() : modem.cmdPortName();
}

// The diagnoses of every port in `ports`, found in parallel.
QMap<QString, Diagnosis> diagnoses(const QStringList& ports, const zelmodems::DeclaredPorts* catalogue)
{
    QThreadPool pool;
    pool.setMaxThreadCount(qBound(1, ports.size(), 64));
    QMap<QString, QFuture<Diagnosis>> running;
    for (const QString& port : ports) {
        const QString device = catalogue ? catalogue->devicePath(port) : port;
        running.insert(port, QtConcurrent::run(&pool, diagnose, device, port));
    }
    QMap<QString, Diagnosis> found;
    for (auto it = running.begin(); it != running.end(); ++it)
        found.insert(it.key(), it.value().result());
    return found;
}

} // namespace

namespace commands {

Report find(const QStringList& args)
{
    Report report;
    CommandLine cl(QStringLiteral("find"),
                   Tool::tr("Searches the given ports, or every serial port of the system, for modems:\n"
                                  "all ports are probed at once; each probe finds the fastest line speed the\n"
                                  "modem answers at, reads the IMEI and the SIM's operator, and makes the\n"
                                  "dial-up connection record. The interfaces of one USB modem are merged\n"
                                  "into one record (data port and command port). Device paths the system\n"
                                  "does not list (a modemsim pseudo-terminal, a link) are probed as plain\n"
                                  "serial ports. On a terminal, progress is shown while the probes run."));
    cl.addPositional(QStringLiteral("PORT"),
                     Tool::tr("Ports to search (ttyUSB0, /dev/ttyS1, ...); default: all serial ports."),
                     false, true);
    if (!cl.parse(args, report))
        return report;

    const auto* ports = dynamic_cast<const zelmodems::DeclaredPorts*>(&zelmodems::PortCatalogue::instance());
    QStringList names;
    const QStringList given = cl.positional().isEmpty() && ports ? ports->availablePorts() : cl.positional();
    for (const QString& name : given) {
        const QString port = ports ? ports->normalize(name) : name;
        if (!port.isEmpty() && !names.contains(port))
            names << port;
    }

    ModemsFinder finder;
    QList<ModemInfo> found;
    QString noDevices;
    bool over = false;
    QEventLoop loop;
    QObject::connect(&finder, &ModemsFinder::devicesFinded, [&](const QList<ModemInfo>& modems) { found = modems; });
    QObject::connect(&finder, &ModemsFinder::noDevices, [&](const QString& why) {
        noDevices = why;
        // With no port at all the search ends here, without finished().
        over = true;
        loop.quit();
    });
    QObject::connect(&finder, &ModemsFinder::finished, [&]() {
        over = true;
        loop.quit();
    });

    QElapsedTimer clock;
    clock.start();
    finder.start(names);
    if (!over) {
        const SearchWatch watch(finder, names);
        ProgressLine progress(Console::outputIsTerminal() && !cl.json());
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, [&]() { progress.show(progressText(watch, clock.elapsed())); });
        if (progress.enabled()) {
            progress.show(progressText(watch, 0));
            tick.start(100);
        }
        loop.exec();
        progress.clear();
    }
    const qint64 elapsed = clock.elapsed();

    QJsonObject& json = report.json();
    json.insert(QStringLiteral("ports"), QJsonArray::fromStringList(names));
    json.insert(QStringLiteral("elapsedMs"), elapsed);

    // One line per port that gave no modem, with the reason.
    std::sort(found.begin(), found.end(),
              [](const ModemInfo& a, const ModemInfo& b) { return a.portName() < b.portName(); });
    QSet<QString> taken;
    for (const ModemInfo& modem : qAsConst(found))
        taken << modem.portName() << modem.cmdPortName();
    QStringList others;
    for (const QString& port : qAsConst(names)) {
        if (!taken.contains(port))
            others << port;
    }
    // The found modems' state is read too (their AT port, after the
    // search): a modem that is found but not registered is no modem to dial.
    QStringList statePorts;
    for (const ModemInfo& modem : qAsConst(found))
        statePorts << statePort(modem);
    const QMap<QString, Diagnosis> looked = diagnoses(others + statePorts, ports);
    QJsonArray without;
    QJsonArray unusable;
    QStringList reasonLines;
    QStringList attentionLines;
    for (const QString& port : qAsConst(others)) {
        const Diagnosis d = looked.value(port);
        QString reason = d.reason;
        bool otherInterface = false;
        for (const ModemInfo& modem : qAsConst(found)) {
            if (!d.imei.isEmpty() && modem.imei() == d.imei) {
                reason = Tool::tr("another interface of the modem on %1 (IMEI %2)").arg(modem.portName(), d.imei);
                otherInterface = true;
            }
        }
        if (d.modem && !otherInterface) {
            // A modem is a modem, whatever keeps it from working: it is
            // listed as one, with what to do.
            QJsonObject entry = d.json;
            entry.insert(QStringLiteral("port"), port);
            entry.insert(QStringLiteral("name"), d.name);
            entry.insert(QStringLiteral("imei"), d.imei.isEmpty() ? QJsonValue() : QJsonValue(d.imei));
            unusable.append(entry);
            attentionLines << QStringLiteral("  %1: %2 (%3)").arg(port, d.name, d.state);
            for (const QString& problem : d.problems.isEmpty() ? QStringList{d.reason} : d.problems)
                attentionLines << QStringLiteral("    - %1").arg(problem);
            continue;
        }
        without.append(QJsonObject{ { QStringLiteral("port"), port }, { QStringLiteral("reason"), reason } });
        reasonLines << QStringLiteral("  %1: %2").arg(port, reason);
    }
    json.insert(QStringLiteral("withoutModem"), without);
    json.insert(QStringLiteral("modemsNeedingAttention"), unusable);
    const auto attention = [&]() {
        if (attentionLines.isEmpty())
            return;
        report.line(Tool::tr("Modems that need attention before they can be used:"));
        report.lines(attentionLines);
    };

    if (found.isEmpty()) {
        attention();
        if (!reasonLines.isEmpty()) {
            report.line(Tool::tr("Ports without a modem:"));
            report.lines(reasonLines);
        }
        // The finder's own words ("There no devices finded") are the
        // appliance's; a person is told what was found.
        const QString what = unusable.isEmpty()
                                 ? Tool::tr("no modem found")
                                 : Tool::tr("no modem is ready to use; modems that need attention: %1 (above)")
                                       .arg(unusable.size());
        report.fail(Tool::tr("%1 (%2 port(s) probed in %3)").arg(what).arg(names.size()).arg(seconds(elapsed)),
                    unusable.isEmpty() ? zelmodems::Failure::NotFound : zelmodems::Failure::WrongState);
        return report;
    }

    QList<QStringList> rows;
    rows << QStringList{Tool::tr("PORT"),       Tool::tr("CMD PORT"), Tool::tr("BAUD"),
                        Tool::tr("IMEI"),       Tool::tr("STATE"), Tool::tr("CONNECTION"), Tool::tr("USER"),
                        Tool::tr("BALANCE CODE"), Tool::tr("INIT")};
    QJsonArray modems;
    for (const ModemInfo& modem : qAsConst(found)) {
        const QString dash = QStringLiteral("-");
        auto orDash = [&](const QString& s) { return s.isEmpty() ? dash : s; };
        rows << QStringList{modem.portName(),
                            orDash(modem.cmdPortName()),
                            QString::number(modem.baudrate()),
                            orDash(modem.imei()),
                            orDash(looked.value(statePort(modem)).state),
                            modem.connectionName(),
                            orDash(modem.userName()),
                            orDash(modem.balanceUssd()),
                            orDash(modem.initLines().join(QStringLiteral("; ")))};
        QJsonObject record = QJsonObject::fromVariantMap(modem.toMap());
        // The record's map form leaves the IMEI out; a user wants it.
        record.insert(QStringLiteral("imei"), modem.imei());
        const Diagnosis d = looked.value(statePort(modem));
        for (auto it = d.json.constBegin(); it != d.json.constEnd(); ++it)
            record.insert(it.key(), it.value());
        modems.append(record);
    }
    json.insert(QStringLiteral("modems"), modems);
    report.lines(tableLines(rows));
    report.line();
    report.line(Tool::tr("%1 modem(s) on %2 port(s), probed in %3.")
                    .arg(found.size())
                    .arg(names.size())
                    .arg(seconds(elapsed)));
    attention();
    if (!reasonLines.isEmpty()) {
        report.line(Tool::tr("Ports without a modem:"));
        report.lines(reasonLines);
    }
    return report;
}

} // namespace commands
