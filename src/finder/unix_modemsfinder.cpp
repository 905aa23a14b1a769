// The modem search on Unix systems: serial ports as /dev nodes, USB modems
// marked by the udev link "/dev/gsmmodem".
#include "modemsfinder.h"

#include "atmodemlog_p.h"
#include "portcatalogue.h"
#include "portprobe_p.h"

#include <qt5ext/logformat.h>

#include <QFileInfo>
#include <QFuture>
#include <QLoggingCategory>
#include <QSet>
#include <QThreadPool>
#include <QtConcurrent>

namespace {

// Up to this many ports are probed at once.
constexpr int MAX_PARALLEL_PROBES = 100;

// Plain serial lines are not trusted above this rate.
constexpr int MAX_SERIAL_BAUDRATE = 115200;

} // namespace

ModemsFinder::ModemsFinder(QObject* parent) : QObject(parent)
{
    qRegisterMetaType<ModemInfo>();
    qRegisterMetaType<QList<ModemInfo>>();
    // Replaces whatever rules were set through the same call before.
    QLoggingCategory::setFilterRules(QStringLiteral("modems.finder.debug=true"));
    QThreadPool::globalInstance()->setMaxThreadCount(MAX_PARALLEL_PROBES);
}

ModemsFinder::~ModemsFinder() = default;

QList<ModemInfo> ModemsFinder::modems() const
{
    return m_modems;
}

QList<ModemInfo> ModemsFinder::validModems() const
{
    return m_modems;
}

void ModemsFinder::start()
{
    start(zelmodems::PortCatalogue::instance().availablePorts());
}

void ModemsFinder::start(QStringList portNames)
{
    m_modems.clear();

    // The order of the ports does not matter: the probes run side by side.
    const QSet<QString> unique(portNames.cbegin(), portNames.cend());
    portNames = QStringList(unique.cbegin(), unique.cend());

    if (portNames.isEmpty())
        emit noDevices(tr("There are no available ports"));

    if (!watchers.isEmpty()) {
        cancel();
        watchers.clear();
    }

    qCDebug(AT_MODEM()).noquote() << loglist(portNames);

    const PortProbe probePort;
    for (const QString& name : qAsConst(portNames)) {
        if (name.isEmpty())
            continue;
        const QFuture<ModemInfo> future =
            QtConcurrent::run(QThreadPool::globalInstance(), [probePort, name]() { return probePort(name); });
        auto* watcher = new QFutureWatcher<ModemInfo>(this);
        // Connected before the future is set: a probe that is already over
        // still reports.
        connect(watcher, &QFutureWatcher<ModemInfo>::finished, this, &ModemsFinder::watcherFinished);
        watchers.insert(name, QPointer<QFutureWatcher<ModemInfo>>(watcher));
        watcher->setFuture(future);
    }
}

void ModemsFinder::watcherFinished()
{
    auto* watcher = dynamic_cast<QFutureWatcher<ModemInfo>*>(sender());
    if (watcher) {
        const QFuture<ModemInfo> future = watcher->future();
        // A probe that never ran (its future cancelled before it started)
        // has no result.
        const bool hasResult = !future.isCanceled() && future.resultCount() > 0;
        const ModemInfo result = hasResult ? future.resultAt(0) : ModemInfo();
        if (result.isValid())
            m_modems.append(result);

        // Deleted once this handler has returned; the entry goes at once.
        watcher->disconnect(this);
        watcher->deleteLater();
        auto entry = watchers.find(result.portName());
        if (entry == watchers.end() || entry.value() != watcher) {
            for (entry = watchers.begin(); entry != watchers.end(); ++entry) {
                if (entry.value() == watcher)
                    break;
            }
        }
        if (entry != watchers.end())
            watchers.erase(entry);
    }

    if (!watchers.isEmpty())
        return;
    if (m_modems.isEmpty()) {
        emit noDevices(tr("There no devices finded"));
    } else {
        prepareUsbModems();
        emit devicesFinded(QList<ModemInfo>(m_modems));
    }
    emit finished();
}

void ModemsFinder::cancel()
{
    emit needCancel();
    const QList<QPointer<QFutureWatcher<ModemInfo>>> registered = watchers.values();
    for (const QPointer<QFutureWatcher<ModemInfo>>& watcher : registered) {
        // Once more per registered probe, as listeners count on it.
        emit needCancel();
        if (watcher)
            watcher->cancel();
        if (watcher)
            delete watcher.data();
    }
    watchers.clear();
    emit finished();
}

void ModemsFinder::prepareUsbModems()
{
    const zelmodems::PortCatalogue& ports = zelmodems::PortCatalogue::instance();

    QList<ModemInfo> usb;
    QList<ModemInfo> serial;
    for (const ModemInfo& modem : qAsConst(m_modems)) {
        const zelmodems::PortCatalogue::Port port = ports.port(modem.portName());
        if (modem.portName().toLower().contains(QLatin1String("usb")) && port.hasProductIdentifier
            && port.hasVendorIdentifier)
            usb.append(modem);
        else
            serial.append(modem);
    }

    m_modems = serial;
    for (ModemInfo& modem : m_modems) {
        if (modem.baudrate() > MAX_SERIAL_BAUDRATE)
            modem.setBaudrate(MAX_SERIAL_BAUDRATE);
    }
    if (usb.isEmpty())
        return;

    // The interfaces of one USB modem share its vendor, product and IMEI.
    QMap<QString, QList<ModemInfo>> groups;
    for (const ModemInfo& modem : qAsConst(usb)) {
        const zelmodems::PortCatalogue::Port port = ports.port(modem.portName());
        const qint64 id = qint64(port.vendorIdentifier) * 65536 + port.productIdentifier;
        groups[QStringLiteral("%1-%2").arg(id).arg(modem.imei())].append(modem);
    }

    // The udev rules link the data interface of a USB modem.
    const QFileInfo link(ports.dataPortLink());
    const QString linkedName =
        link.exists() && link.isSymLink() ? QFileInfo(link.symLinkTarget()).fileName() : QString();

    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (group.value().size() == 1) {
            m_modems.append(group.value().first());
            continue;
        }
        QMap<QString, ModemInfo> byPort;
        for (const ModemInfo& modem : group.value())
            byPort.insert(modem.portName(), modem);
        QStringList names = byPort.keys();
        ModemInfo data;
        QString commandPort;
        if (!linkedName.isEmpty() && names.contains(linkedName)) {
            data = byPort.value(linkedName);
            names.removeAll(linkedName);
        } else {
            data = byPort.value(names.last());
        }
        if (!names.isEmpty())
            commandPort = names.first();
        data.setCmdPortName(commandPort);
        m_modems.append(data);
    }
}
