#include "modemsession.h"
#include "commandline.h"
#include "report.h"
#include "declaredports.h"

#include <QFileInfo>

ModemSession::~ModemSession()
{
    m_modem.close();
}

bool ModemSession::open(const CommandLine& commandLine, Report& report)
{
    m_portName = commandLine.port();
    const zelmodems::PortCatalogue& ports = zelmodems::PortCatalogue::instance();
    const QString device = ports.devicePath(m_portName);
    const auto* tool = dynamic_cast<const zelmodems::DeclaredPorts*>(&ports);
    const bool known = tool ? tool->exists(m_portName)
                            : ports.port(m_portName).exists || QFileInfo::exists(device);
    if (!known) {
        report.fail(QStringLiteral("no such port: %1").arg(m_portName));
        return false;
    }
    if (!m_modem.open(device, commandLine.baud(), commandLine.attempts())) {
        QString why = m_modem.lastError();
        if (why.isEmpty())
            why = QStringLiteral("no answer to AT");
        report.fail(QStringLiteral("no modem answers on %1 at %2 baud: %3")
                        .arg(m_portName)
                        .arg(commandLine.baud())
                        .arg(why));
        return false;
    }
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
    QString why = m_modem.lastError();
    if (why.isEmpty())
        why = QStringLiteral("the SIM gives no IMSI (no SIM card, or a PIN is needed?)");
    report.fail(QStringLiteral("cannot read the SIM's operator codes on %1: %2").arg(m_portName, why));
    return false;
}
