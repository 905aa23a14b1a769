// zelmodems watch: a modem's events as they happen, until interrupted.
#include "commands.h"
#include "commandline.h"
#include "console.h"
#include "tooltext.h"

#include <QJsonArray>
#include "pdu.h"

#include "declaredports.h"
#include "modem.h"
#include "modemerror.h"
#include "modemwatcher.h"
#include "modemstate.h"
#include "cellrecord.h"
#include "ussdrequest.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// The unsolicited codes the watch shows as events of their own; any other
// is shown as it came.
const char* const EXPLAINED[] = {"+CMTI:", "+CMT:", "+CDSI:", "+CDS:", "+CUSD:", "+CREG:", "+CGREG:", "+CEREG:",
                                 "^RSSI:", "^HCSQ:", "RING", "+CRING:", "+CLIP:"};

// Prints events one a line: time, port, event, details; or one JSON object
// a line.
// A registration report in the keys every command uses for it.
QJsonObject registrationDetails(const zelmodems::Registration& r)
{
    using zelmodems::Registration;
    QJsonObject json{{QStringLiteral("domain"), Registration::domainName(r.domain())},
                     {QStringLiteral("state"), Registration::stateName(r.state())},
                     {QStringLiteral("stateText"), Registration::stateText(r.state())},
                     {QStringLiteral("technology"), r.accessTechnology() < 0
                                                        ? QJsonValue()
                                                        : QJsonValue(Registration::technologyName(r.accessTechnology()))}};
    ModemState::insertCode(json, QStringLiteral("lac"), zelmodems::CellRecord::parseNumber(r.area(), 16));
    ModemState::insertCode(json, QStringLiteral("cid"), zelmodems::CellRecord::parseNumber(r.cell(), 16));
    return json;
}

class EventPrinter
{
public:
    explicit EventPrinter(bool json) : m_json(json) {}

    void print(const QString& port, const QString& event, const QString& details, QJsonObject fields = {})
    {
        const QDateTime now = QDateTime::currentDateTime();
        if (m_json) {
            fields.insert(QStringLiteral("time"), now.toString(Qt::ISODateWithMs));
            fields.insert(QStringLiteral("port"), port);
            fields.insert(QStringLiteral("event"), event);
            fields.insert(QStringLiteral("details"), details);
            Console::out() << QJsonDocument(fields).toJson(QJsonDocument::Compact) << '\n';
        } else {
            Console::out() << now.toString(QStringLiteral("HH:mm:ss.zzz")) << "  " << port << "  " << event
                           << "  " << Report::escaped(details) << '\n';
        }
        Console::out().flush();
    }

    void follow(zelmodems::Modem* modem, const QString& port)
    {
        using zelmodems::Modem;
        QObject::connect(modem, &Modem::messageReceived, modem, [this, port](const zelmodems::StoredMessage& m) {
            QStringList indexes;
            QJsonArray stored;
            for (int index : m.indexes()) {
                indexes << QString::number(index);
                stored.append(index);
            }
            print(port, QStringLiteral("message"),
                  Tool::tr("from %1: %2").arg(m.address(), m.isDecoded() ? m.text() : m.problem())
                      + (indexes.isEmpty() ? QString() : Tool::tr(" (stored at %1)").arg(indexes.join(QLatin1Char(',')))),
                  {{QStringLiteral("sender"), m.address()}, {QStringLiteral("text"), m.text()},
                   {QStringLiteral("indexes"), stored}});
        });
        QObject::connect(modem, &Modem::deliveryReported, modem, [this, port](const zelmodems::StoredMessage& r) {
            print(port, QStringLiteral("delivery-report"),
                  Tool::tr("message %1 to %2: status %3").arg(r.reportReference()).arg(r.address()).arg(r.reportStatus()),
                  {{QStringLiteral("reference"), r.reportReference()}, {QStringLiteral("recipient"), r.address()},
                   {QStringLiteral("reportStatus"), r.reportStatus()},
                   {QStringLiteral("reportStatusText"), zelmodems::PDU::statusMeaning(r.reportStatus())}});
        });
        QObject::connect(modem, &Modem::ussdReceived, modem, [this, port](const zelmodems::UssdReply& reply) {
            print(port, QStringLiteral("ussd"),
                  reply.text + (reply.waitsForAnswer() ? Tool::tr(" (a menu: answer with zelmodems ussd)")
                                                       : QString()),
                  {{QStringLiteral("status"), reply.status}, {QStringLiteral("reply"), reply.text},
                   {QStringLiteral("statusText"), zelmodems::UssdRequest::statusMeaning(reply.status)}});
        });
        QObject::connect(modem, &Modem::registrationChanged, modem, [this, port](const zelmodems::Registration& r) {
            using zelmodems::Registration;
            QString details = QStringLiteral("%1: %2").arg(Registration::domainName(r.domain()),
                                                           Registration::stateText(r.state()));
            if (!r.area().isEmpty())
                details += Tool::tr(", area %1, cell %2").arg(r.area(), r.cell());
            if (r.accessTechnology() >= 0)
                details += QStringLiteral(", ") + Registration::technologyName(r.accessTechnology());
            print(port, QStringLiteral("registration"), details,
                  registrationDetails(r));
        });
        QObject::connect(modem, &Modem::signalChanged, modem, [this, port](const zelmodems::SignalQuality& q) {
            print(port, QStringLiteral("signal"),
                  q.isKnown() ? Tool::tr("%1 dBm (%2)").arg(q.dbm()).arg(zelmodems::SignalQuality::ratingText(q.rating()))
                              : Tool::tr("unknown"),
                  {{QStringLiteral("dbm"), q.isKnown() ? QJsonValue(q.dbm()) : QJsonValue()},
                   {QStringLiteral("rating"), zelmodems::SignalQuality::ratingName(q.rating())}});
        });
        QObject::connect(modem, &Modem::ringing, modem, [this, port](const QString& type) {
            print(port, QStringLiteral("ring"), type.isEmpty() ? Tool::tr("incoming call") : type,
                  {{QStringLiteral("type"), type.isEmpty() ? QJsonValue() : QJsonValue(type)}});
        });
        QObject::connect(modem, &Modem::callerIdentified, modem, [this, port](const QString& number) {
            print(port, QStringLiteral("caller"), number, {{QStringLiteral("number"), number}});
        });
        QObject::connect(modem, &Modem::unsolicited, modem, [this, port](const QByteArray& line, const QByteArray&) {
            for (const char* prefix : EXPLAINED) {
                if (line.startsWith(prefix))
                    return;
            }
            print(port, QStringLiteral("unsolicited"), QString::fromLatin1(line),
                  {{QStringLiteral("line"), QString::fromLatin1(line)}});
        });
        QObject::connect(modem, &Modem::gone, modem, [this, port] {
            print(port, QStringLiteral("gone"), Tool::tr("the port went away (unplugged or reset); waiting for it to return"));
        });
    }

private:
    bool m_json;
};

} // namespace

namespace commands {

Report watch(const QStringList& args)
{
    Report report;
    CommandLine commandLine(QStringLiteral("watch"),
                            Tool::tr("Prints the modems' events as they happen (new messages, delivery reports,\n"
                                     "network USSD, registration, signal, calls, the port going and returning),\n"
                                     "one a line: time, port, event, details. Without ports it watches every\n"
                                     "serial modem present and every one plugged in later. Runs until Ctrl-C."));
    const QString FOLDER = QStringLiteral("folder");
    const QString BAUD = QStringLiteral("baud");
    const QString POLL = QStringLiteral("poll-signal");
    commandLine.addPositional(QStringLiteral("PORT"), Tool::tr("Ports to watch (device paths or bare names)."),
                              false, true);
    commandLine.addOption(QCommandLineOption(FOLDER, Tool::tr("Watch a folder of links to serial devices (as made "
                                                              "by modemsim --link-dir) instead of the system's."),
                                             QStringLiteral("dir")));
    commandLine.addOption(QCommandLineOption(BAUD, Tool::tr("Line speed (default 115200)."), QStringLiteral("rate"),
                                             QStringLiteral("115200")));
    commandLine.addOption(QCommandLineOption(POLL, Tool::tr("Read the signal every this many seconds (default: "
                                                            "only when the modem reports it)."),
                                             QStringLiteral("s"), QStringLiteral("0")));
    if (!commandLine.parse(args, report))
        return report;
    bool ok = false;
    const qint32 baud = commandLine.value(BAUD).toInt(&ok);
    const int pollSeconds = commandLine.value(POLL).toInt(&ok) ;
    if (baud <= 0 || !ok || pollSeconds < 0) {
        report.fail(Tool::tr("--baud takes a line speed and --poll-signal a number of seconds"), Report::UsageError);
        return report;
    }
    EventPrinter printer(commandLine.json());
    zelmodems::ModemWatcher watcher;
    watcher.setOpenModems(true, baud);
    QStringList ports;
    QString folder = commandLine.value(FOLDER);
    const zelmodems::PortCatalogue& catalogue = zelmodems::PortCatalogue::instance();
    const auto* declared = dynamic_cast<const zelmodems::DeclaredPorts*>(&catalogue);
    for (const QString& port : commandLine.positional()) {
        const QString device = catalogue.devicePath(declared ? declared->normalize(port) : port);
        const QString path = device.startsWith(QLatin1Char('/')) ? device : QStringLiteral("/dev/") + device;
        ports << path;
        // Ports outside /dev (links to simulated modems) are watched in
        // their folder; those in /dev through udev.
        if (folder.isEmpty() && !path.startsWith(QLatin1String("/dev/")))
            folder = QFileInfo(path).absolutePath();
    }
    watcher.setPorts(ports);
    watcher.setFolder(folder);
    QObject::connect(&watcher, &zelmodems::ModemWatcher::added, &watcher, [&](const zelmodems::WatchedPort& port) {
        printer.print(port.name, QStringLiteral("added"), port.devicePath,
                      {{QStringLiteral("device"), port.devicePath}, {QStringLiteral("identity"), port.identity}});
    });
    QObject::connect(&watcher, &zelmodems::ModemWatcher::removed, &watcher, [&](const zelmodems::WatchedPort& port) {
        printer.print(port.name, QStringLiteral("removed"), port.devicePath, {{QStringLiteral("device"), port.devicePath}});
    });
    QObject::connect(&watcher, &zelmodems::ModemWatcher::notAModem, &watcher,
                     [&](const zelmodems::WatchedPort& port, const zelmodems::Failure& why) {
                         printer.print(port.name, QStringLiteral("not-a-modem"), why.text(),
                                       {{QStringLiteral("errorCode"), zelmodems::Failure::codeName(why.code())}});
                     });
    QSet<zelmodems::Modem*> followed;
    QObject::connect(&watcher, &zelmodems::ModemWatcher::modemAdded, &watcher, [&](zelmodems::Modem* modem) {
        const QString name = QFileInfo(modem->portName()).fileName();
        printer.print(name, QStringLiteral("opened"), modem->name(), {{QStringLiteral("modem"), modem->name()}});
        if (!followed.contains(modem)) {
            followed.insert(modem);
            printer.follow(modem, name);
        }
        if (pollSeconds > 0)
            modem->setSignalPollInterval(pollSeconds * 1000);
    });
    if (!watcher.start()) {
        report.fail(watcher.failure());
        return report;
    }
    if (watcher.ports().isEmpty())
        printer.print(QString(), QStringLiteral("waiting"),
                      ports.isEmpty() ? Tool::tr("no serial modem yet: waiting for one to be plugged in")
                                      : Tool::tr("none of the ports is there yet: waiting for it"));
    QEventLoop loop;
    loop.exec();   // until Ctrl-C ends the tool
    report.setPrinted();
    return report;
}

} // namespace commands
