// sms list and sms send: the modem's SMS store and text-mode sending.
#include "commandline.h"
#include "commands.h"
#include "modemcommand.h"
#include "modemsession.h"

#include <QJsonArray>
#include <QJsonObject>

namespace commands {

Report smsList(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sms list"),
                         QStringLiteral("Reads every message stored in the modem (PDU mode, read and unread),\n"
                                        "joins the parts of long messages and prints them oldest first.\n"
                                        "Reading CONSUMES the messages: every message read is deleted from the\n"
                                        "modem, also one that cannot be decoded, as the modems service does."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        QList<AtModem::SSms> messages;
        // False also means "no messages": the store is simply empty then.
        session.modem().takeMessages(messages);
        QJsonArray list;
        if (messages.isEmpty())
            report.line(QStringLiteral("No messages."));
        else
            report.line(QStringLiteral("%1 message(s), deleted from the modem:").arg(messages.size()));
        for (const AtModem::SSms& sms : qAsConst(messages)) {
            report.line();
            report.line(QStringLiteral("%1  from %2")
                            .arg(sms.dateTime.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), sms.sender));
            for (const QString& textLine : sms.text.split(QLatin1Char('\n')))
                report.line(QStringLiteral("  ") + textLine);
            QJsonObject item;
            item.insert(QStringLiteral("sender"), sms.sender);
            item.insert(QStringLiteral("dateTime"), sms.dateTime.toString(Qt::ISODate));
            item.insert(QStringLiteral("text"), sms.text);
            list.append(item);
        }
        report.json().insert(QStringLiteral("messages"), list);
    });
}

Report smsSend(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sms send"),
                         QStringLiteral("Sends a text SMS in the modem's text mode (AT+CMGF=1, AT+CMGS) and\n"
                                        "waits 3 s for the modem's confirmation. For long or non-Latin texts in\n"
                                        "PDU mode, see \"pdu encode\"."));
    command.commandLine().addPositional(QStringLiteral("NUMBER"),
                                        QStringLiteral("The recipient, as the modem takes it (+79161234567)."));
    command.commandLine().addPositional(QStringLiteral("TEXT"), QStringLiteral("The message text."));
    return command.run(args, [](ModemSession& session, const CommandLine& cl, Report& report) {
        const QString number = cl.positional(1);
        const QString text = cl.positional(2);
        if (!session.modem().sendMessage(number, text)) {
            const QString why = session.modem().lastError();
            report.fail(QStringLiteral("the modem did not send the message to %1%2")
                            .arg(number, why.isEmpty() ? QString() : QStringLiteral(": ") + why));
            return;
        }
        report.line(QStringLiteral("Sent to %1.").arg(number));
        report.json().insert(QStringLiteral("number"), number);
        report.json().insert(QStringLiteral("text"), text);
        report.json().insert(QStringLiteral("sent"), true);
    });
}

} // namespace commands
