#include "modemcommand.h"
#include "tooltext.h"
#include "modemsession.h"

#include <QFileInfo>

ModemCommand::ModemCommand(const QString& name, const QString& help)
    : m_commandLine(name, help)
{
    m_commandLine.addModemArguments();
}

Report ModemCommand::run(const QStringList& args, const Work& work)
{
    Report report;
    if (!m_commandLine.parse(args, report))
        return report;
    if (m_check && !m_check(m_commandLine, report))
        return report;
    ModemSession session;
    if (!session.open(m_commandLine, report))
        return report;
    work(session, m_commandLine, report);
    // A failure because the device went away (pulled out, powered off) is
    // named as such rather than as the command's own complaint.
    if (report.failed() && !QFileInfo::exists(session.devicePath()))
        report.fail(Tool::tr("%1 disappeared during the command (%2)").arg(session.portName(), report.error()), zelmodems::Failure::Gone);
    return report;
}
