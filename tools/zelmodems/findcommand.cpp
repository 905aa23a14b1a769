// find: the library's parallel modem search, with live progress.
#include "commandline.h"
#include "tooltext.h"
#include "commands.h"
#include "console.h"
#include "modeminfo.h"
#include "modemsfinder.h"
#include "progressline.h"
#include "declaredports.h"
#include "simidentity.h"
#include "modemsession.h"
#include "atmodem.h"

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
    return QString::number(ms / 1000.0, 'f', 1) + QStringLiteral(" s");
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

// Why a port gave no modem, found out after the search (its probes have
// closed and unlocked every port): no device, a holder, silence, or a modem
// whose SIM cannot be read. Runs on a worker thread of its own.
QString reasonFor(const QString& device)
{
    if (!QFileInfo::exists(device))
        return Tool::tr("no such device");
    const QString holder = ModemSession::holderOf(device);
    if (!holder.isEmpty())
        return Tool::tr("in use by another program (%1)").arg(holder);
    {
        QSerialPort port(device);
        if (!port.open(QIODevice::ReadWrite))
            return Tool::tr("cannot be opened as a serial port: %1").arg(port.errorString());
    }
    AtModem modem;
    if (!modem.open(device, 115200, 1)) {
        if (!QFileInfo::exists(device))
            return Tool::tr("the device disappeared");
        const QString why = modem.lastError();
        return Tool::tr("not a modem: no answer to AT at 115200 baud%1 (a modem that takes only another "
                              "line speed: try zelmodems info --baud)")
            .arg(why.isEmpty() ? QString() : QStringLiteral(": ") + why);
    }
    QString imsi;
    if (!modem.getImsi(imsi)) {
        const QString text = zelmodems::SimIdentity::read(&modem).answer();
        if (text.isEmpty())
            return Tool::tr("a modem (%1) without SIM or operator: no answer to AT+CIMI").arg(modem.name());
        return Tool::tr("a modem (%1) without SIM or operator: AT+CIMI answered \"%2\"").arg(modem.name(), text);
    }
    int mcc = 0;
    int mnc = 0;
    if (!modem.getMnc(mcc, mnc))
        return Tool::tr("a modem (%1) whose SIM's operator cannot be read (IMSI %2)").arg(modem.name(), imsi);
    QString imei;
    modem.getImei(imei);
    // The found modems' IMEIs are compared with this one afterwards.
    return Tool::tr("a modem (%1, operator %2/%3) that the search did not take; see zelmodems info\n%4")
        .arg(modem.name())
        .arg(mcc)
        .arg(mnc, 2, 10, QLatin1Char('0'))
        .arg(imei);
}

// The reasons of every port in `ports`, found in parallel.
QMap<QString, QString> reasonsFor(const QStringList& ports, const zelmodems::DeclaredPorts* catalogue)
{
    QThreadPool pool;
    pool.setMaxThreadCount(qBound(1, ports.size(), 64));
    QMap<QString, QFuture<QString>> running;
    for (const QString& port : ports) {
        const QString device = catalogue ? catalogue->devicePath(port) : port;
        running.insert(port, QtConcurrent::run(&pool, reasonFor, device));
    }
    QMap<QString, QString> reasons;
    for (auto it = running.begin(); it != running.end(); ++it)
        reasons.insert(it.key(), it.value().result());
    return reasons;
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
    const QMap<QString, QString> reasons = reasonsFor(others, ports);
    QJsonArray without;
    QStringList reasonLines;
    for (auto it = reasons.cbegin(); it != reasons.cend(); ++it) {
        QString reason = it.value().section(QLatin1Char('\n'), 0, 0);
        const QString imei = it.value().section(QLatin1Char('\n'), 1);
        for (const ModemInfo& modem : qAsConst(found)) {
            if (!imei.isEmpty() && modem.imei() == imei)
                reason = Tool::tr("another interface of the modem on %1 (IMEI %2)").arg(modem.portName(), imei);
        }
        without.append(QJsonObject{ { QStringLiteral("port"), it.key() }, { QStringLiteral("reason"), reason } });
        reasonLines << QStringLiteral("  %1: %2").arg(it.key(), reason);
    }
    json.insert(QStringLiteral("withoutModem"), without);

    if (found.isEmpty()) {
        if (!reasonLines.isEmpty()) {
            report.line(Tool::tr("Ports without a modem:"));
            report.lines(reasonLines);
        }
        report.fail(Tool::tr("%1 (%2 port(s) probed in %3)")
                        .arg(noDevices.isEmpty() ? Tool::tr("no modem found") : noDevices)
                        .arg(names.size())
                        .arg(seconds(elapsed)), zelmodems::Failure::NotFound);
        return report;
    }

    QList<QStringList> rows;
    rows << QStringList{Tool::tr("PORT"),       Tool::tr("CMD PORT"), Tool::tr("BAUD"),
                        Tool::tr("IMEI"),       Tool::tr("CONNECTION"), Tool::tr("USER"),
                        Tool::tr("BALANCE CODE"), Tool::tr("INIT")};
    QJsonArray modems;
    for (const ModemInfo& modem : qAsConst(found)) {
        const QString dash = QStringLiteral("-");
        auto orDash = [&](const QString& s) { return s.isEmpty() ? dash : s; };
        rows << QStringList{modem.portName(),
                            orDash(modem.cmdPortName()),
                            QString::number(modem.baudrate()),
                            orDash(modem.imei()),
                            modem.connectionName(),
                            orDash(modem.userName()),
                            orDash(modem.balanceUssd()),
                            orDash(modem.initLines().join(QStringLiteral("; ")))};
        QJsonObject record = QJsonObject::fromVariantMap(modem.toMap());
        // The record's map form leaves the IMEI out; a user wants it.
        record.insert(QStringLiteral("imei"), modem.imei());
        modems.append(record);
    }
    json.insert(QStringLiteral("modems"), modems);
    report.lines(tableLines(rows));
    report.line();
    report.line(Tool::tr("%1 modem(s) on %2 port(s), probed in %3.")
                    .arg(found.size())
                    .arg(names.size())
                    .arg(seconds(elapsed)));
    if (!reasonLines.isEmpty()) {
        report.line(Tool::tr("Ports without a modem:"));
        report.lines(reasonLines);
    }
    return report;
}

} // namespace commands
