#include "modemcommand.h"
#include "modemsession.h"

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
    return report;
}
