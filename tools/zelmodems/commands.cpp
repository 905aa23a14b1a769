#include "commands.h"
#include "tooltext.h"
#include "zelmodemslib_version.h"

namespace commands {

const QList<Entry>& table()
{
    static const QList<Entry> entries = {
        {QStringLiteral("find"), Tool::tr("search ports for modems (all serial ports, or the given ones)"), &find},
        {QStringLiteral("info"), Tool::tr("identify the modem on a port: make, IMEI, SIM, operator, signal, cell"),
         &info},
        {QStringLiteral("signal"), Tool::tr("signal level in dBm"), &signal},
        {QStringLiteral("status"),
         Tool::tr("why it is (not) online: SIM, registration, network, signal, stores, next steps"), &status},
        {QStringLiteral("sim status"), Tool::tr("what the SIM waits for, and the attempts left"), &simStatus},
        {QStringLiteral("sim unlock"), Tool::tr("enter the SIM's PIN (or its PUK and a new PIN)"), &simUnlock},
        {QStringLiteral("sim change-pin"), Tool::tr("change the SIM's PIN"), &simChangePin},
        {QStringLiteral("cells"), Tool::tr("serving cell (and neighbour cells where the modem lists them)"),
         &cells},
        {QStringLiteral("operator"), Tool::tr("the SIM's operator: MCC/MNC, network name, operator table entry"),
         &operatorInfo},
        {QStringLiteral("balance"), Tool::tr("ask the account balance by USSD"), &balance},
        {QStringLiteral("ussd"), Tool::tr("send a USSD code and print the network's reply"), &ussd},
        {QStringLiteral("own-number"), Tool::tr("ask the operator for the SIM's own number"), &ownNumber},
        {QStringLiteral("sms list"), Tool::tr("list the stored SMS (nothing is deleted)"), &smsList},
        {QStringLiteral("sms delete"), Tool::tr("delete stored SMS by index"), &smsDelete},
        {QStringLiteral("sms take"), Tool::tr("print the stored SMS that read whole, then delete those"), &smsTake},
        {QStringLiteral("sms send"), Tool::tr("send an SMS, confirmed by the modem"), &smsSend},
        {QStringLiteral("pdu encode"), Tool::tr("build SMS-SUBMIT PDUs for a text (no modem needed)"),
         &pduEncode},
        {QStringLiteral("pdu explain"),
         Tool::tr("explain an SMS PDU or a user-data header (no modem needed)"), &pduExplain},
        {QStringLiteral("wvdialconf"), Tool::tr("stop dialers and run wvdialconf to write the dialer's search file"),
         &wvdialconf},
        {QStringLiteral("watch"), Tool::tr("print the modems' events as they happen, until Ctrl-C"), &watch},
        {QStringLiteral("demo"), Tool::tr("all of it against simulated modems (no hardware needed)"), &demo},
    };
    return entries;
}

QString overview()
{
    QString text = QStringLiteral(
        "Usage: zelmodems <command> [options] [arguments]\n"
        "Finds modems on serial ports and queries them (ZelModemsLib " ZELMODEMSLIB_VERSION_STR ").\n\n"
        "Commands:\n");
    for (const Entry& entry : table())
        text += QStringLiteral("  %1%2\n").arg(entry.name.leftJustified(16), entry.summary);
    text += Tool::tr("\nEvery command takes --help, --json (machine-readable output) and --verbose\n"
        "(the library's AT dialogue on standard error). Commands that talk to a modem\n"
        "take the port (/dev/ttyUSB2 or ttyUSB2), --baud (default 115200), --attempts\n"
        "and --record FILE (the whole dialogue, for modemsim --replay FILE).\n\n"
        "Exit status: 0 success, 1 failure (no such port, no modem, the modem or the\n"
        "network refused), 2 bad arguments, 130/143 interrupted (ports released).\n"
        "Messages go to standard error. See also: man zelmodems.\n");
    return text;
}

QString nameOf(const QStringList& args)
{
    for (const Entry& entry : table()) {
        const QStringList words = entry.name.split(QLatin1Char(' '));
        if (args.mid(0, words.size()) == words)
            return entry.name;
    }
    return QString();
}

Report dispatch(const QStringList& args)
{
    Report report;
    const QString first = args.value(0);
    if (first.isEmpty()) {
        report.fail(Tool::tr("no command given (see zelmodems --help)"), Report::UsageError);
        return report;
    }
    const QString name = nameOf(args);
    for (const Entry& entry : table()) {
        if (entry.name == name)
            return entry.run(args.mid(name.count(QLatin1Char(' ')) + 1));
    }
    if (first == QLatin1String("sms") || first == QLatin1String("pdu") || first == QLatin1String("sim")) {
        QString second = args.value(1);
        if (second.startsWith(QLatin1Char('-')))
            second.clear();
        QString choices = Tool::tr("encode or explain");
        if (first == QLatin1String("sms"))
            choices = Tool::tr("list, delete, take or send");
        else if (first == QLatin1String("sim"))
            choices = Tool::tr("status, unlock or change-pin");
        report.fail(second.isEmpty() ? Tool::tr("%1 needs a subcommand: %2").arg(first, choices)
                                     : Tool::tr("unknown command \"%1 %2\" (see zelmodems --help)").arg(first, second),
                    Report::UsageError);
        return report;
    }
    report.fail(Tool::tr("unknown command \"%1\" (see zelmodems --help)").arg(first), Report::UsageError);
    return report;
}

} // namespace commands
