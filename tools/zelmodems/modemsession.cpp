#include "modemsession.h"
#include "tooltext.h"
#include "commandline.h"
#include "report.h"
#include "declaredports.h"
#include "modemstate.h"
#include "simidentity.h"

#include "portlock.h"

#include <QCoreApplication>
#include <QFileInfo>

QString ModemSession::holderOf(const QString& device)
{
    const zelmodems::PortLock lock = zelmodems::PortLock::of(device);
    // This process's own lock is the recording relay's, never a holder.
    if (!lock.isHeld() || lock.pid() == QCoreApplication::applicationPid())
        return QString();
    return lock.holder();
}

ModemSession::~ModemSession()
{
    m_modem.close();
}

bool ModemSession::open(const CommandLine& commandLine, Report& report)
{
    m_portName = commandLine.port();
    // The tool's catalogue (main() installs it) knows declared ports and
    // device paths; without it the device node decides.
    const zelmodems::PortCatalogue& ports = zelmodems::PortCatalogue::instance();
    const auto* declared = dynamic_cast<const zelmodems::DeclaredPorts*>(&ports);
    if (declared)
        m_portName = declared->normalize(m_portName);
    const QString device = ports.devicePath(m_portName);
    m_device = device;
    const zelmodems::Failure available = ports.availability(m_portName);
    if (available.isFailure()) {
        report.fail(available);
        return false;
    }
    QString opened = device;
    const QString recording = commandLine.value(QStringLiteral("record"));
    if (!recording.isEmpty()) {
        m_recorder = std::make_unique<DialogueRecorder>();
        QString why;
        if (!m_recorder->start(m_portName, device, recording, &why)) {
            report.fail(Tool::tr("cannot record: %1").arg(why), zelmodems::Failure::SystemError);
            return false;
        }
        opened = m_recorder->clientPath();
        // What the library says of the relay's device is said of the port.
        Report::setDeviceAlias(opened, m_portName);
    }
    if (!m_modem.open(opened, commandLine.baud(), commandLine.attempts())) {
        const zelmodems::Failure taken = ports.availability(m_portName);
        if (taken.code() == zelmodems::Failure::Busy) {
            report.fail(taken);
            return false;
        }
        if (!QFileInfo::exists(device)) {
            report.fail(Tool::tr("%1 disappeared while it was being opened").arg(m_portName), zelmodems::Failure::Gone);
            return false;
        }
        // The driver's own text ("Modem is offline ...") is for the
        // appliance's log; a person gets what happened and what to try.
        report.fail(Tool::tr("no modem answers on %1 at %2 baud: nothing came back to AT. Check that the modem is "
                             "powered and that %1 is its AT port (a modem may have several ports), or try another "
                             "--baud")
                        .arg(m_portName)
                        .arg(commandLine.baud()), zelmodems::Failure::NoAnswer);
        return false;
    }
    // A refusal then says why ("+CME ERROR: 11": SIM PIN required) instead
    // of a bare ERROR.
    ModemState::askForReasons(m_modem);
    report.json().insert(QStringLiteral("port"), m_portName);
    report.json().insert(QStringLiteral("baudrate"), commandLine.baud());
    report.json().insert(QStringLiteral("name"), m_modem.name());
    report.json().insert(QStringLiteral("dialect"), m_modem.gsmDialect());
    return true;
}

bool ModemSession::operatorCodes(int& mcc, int& mnc, Report& report)
{
    mcc = 0;
    mnc = 0;
    if (m_modem.getMnc(mcc, mnc))
        return true;
    // Why there is no IMSI: the SIM says (no SIM, a PIN to enter, ...).
    const ModemState state = ModemState::read(m_modem, ModemState::ReadSim);
    const QList<ModemState::Problem> problems = state.problems(m_portName);
    if (!problems.isEmpty()) {
        const ModemState::Problem& first = problems.first();
        report.fail(Tool::tr("cannot read the SIM's operator codes on %1: %2%3")
                        .arg(m_portName, first.text,
                             first.next.isEmpty() ? QString() : Tool::tr("; next: %1").arg(first.next)),
                    zelmodems::Failure::WrongState);
        return false;
    }
    const zelmodems::SimIdentity identity = zelmodems::SimIdentity::read(&m_modem);
    report.fail(identity.failure().isFailure()
                    ? zelmodems::Failure(identity.failure().code(),
                                         Tool::tr("cannot read the SIM's operator codes on %1: %2")
                                             .arg(m_portName, identity.failure().text()),
                                         identity.failure().number())
                    : zelmodems::Failure(zelmodems::Failure::Malformed,
                                         Tool::tr("cannot read the SIM's operator codes on %1: the IMSI %2 names "
                                                  "no operator")
                                             .arg(m_portName, identity.imsi())));
    return false;
}
