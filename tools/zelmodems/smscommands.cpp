// sms list, read, delete, take and send: the modem's SMS store and sending.
#include "commandline.h"
#include "tooltext.h"
#include "storeuse.h"
#include "commands.h"
#include "interruption.h"
#include "messagestore.h"
#include "modemerror.h"
#include "pdu.h"
#include "modemcommand.h"
#include "modemsession.h"
#include "smssender.h"
#include "storedmessage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using zelmodems::MessageStore;
using zelmodems::StoredPdu;

namespace commands {

namespace {

// The store status in words for a person; JSON keeps the English keyword.
QString statusText(StoredPdu::Status status)
{
    switch (status) {
    case StoredPdu::Unread: return Tool::tr("unread");
    case StoredPdu::Read: return Tool::tr("read");
    case StoredPdu::Unsent: return Tool::tr("unsent");
    case StoredPdu::Sent: return Tool::tr("sent");
    case StoredPdu::UnknownStatus: break;
    }
    return Tool::tr("unknown");
}

QString partsText(const zelmodems::StoredMessage& message)
{
    if (message.partCount() <= 1)
        return QString();
    QStringList present;
    for (const int p : message.partsPresent())
        present << QString::number(p);
    if (message.isAmbiguous())
        return Tool::tr("  (part %1 of %2, not joined: another part %1 from the same sender and reference "
                        "is stored)")
            .arg(present.join(QLatin1Char(',')))
            .arg(message.partCount());
    return message.isComplete() ? QStringLiteral("  (%1 parts)").arg(message.partCount())
                              : QStringLiteral("  (incomplete: part %1 of %2)")
                                    .arg(present.join(QLatin1Char(',')))
                                    .arg(message.partCount());
}

QString indexesText(const zelmodems::StoredMessage& message)
{
    QStringList indexes;
    for (const int i : message.indexes())
        indexes << QString::number(i);
    return indexes.isEmpty() ? QStringLiteral("?") : indexes.join(QLatin1Char(','));
}

QString portsText(const zelmodems::StoredMessage& message)
{
    if (message.destinationPort() < 0)
        return QString();
    return message.originatorPort() < 0 ? Tool::tr(", port %1").arg(message.destinationPort())
                                      : Tool::tr(", port %1 (from port %2)")
                                            .arg(message.destinationPort())
                                            .arg(message.originatorPort());
}

QString reportStatusText(int status)
{
    return QStringLiteral("%1 (0x%2)").arg(zelmodems::PDU::statusMeaning(status))
        .arg(status, 2, 16, QLatin1Char('0'));
}

// A message for a person: a header line, then the text (indented), the
// data in hexadecimal, or what the status report says.
void describe(const zelmodems::StoredMessage& message, Report& report)
{
    report.line();
    const QString status = statusText(message.status());
    if (!message.isDecoded()) {
        report.line(Tool::tr("[%1] %2  cannot be read: %3")
                        .arg(indexesText(message), status,
                             message.problem().isEmpty() ? QStringLiteral("undecodable PDU") : message.problem()));
        return;
    }
    const QString when = message.time().isValid() ? zelmodems::PDU::isoTime(message.time()) + QStringLiteral("  ") : QString();
    // On one line: a line break in an alphanumeric sender must not start a
    // line of its own.
    const QString address = Report::escaped(message.address());
    if (message.type() == zelmodems::ShortMessage::StatusReport) {
        report.line(Tool::tr("[%1] %2%3  status report for message %4 to %5")
                        .arg(indexesText(message), when, status)
                        .arg(message.reportReference())
                        .arg(address));
        report.line(Tool::tr("  status: %1").arg(reportStatusText(message.reportStatus())));
        if (message.dischargeTime().isValid())
            report.line(Tool::tr("  at: %1").arg(zelmodems::PDU::isoTime(message.dischargeTime())));
        return;
    }
    const QString who = message.isOutgoing() ? Tool::tr("to %1").arg(address) : Tool::tr("from %1").arg(address);
    report.line(QStringLiteral("[%1] %2%3  %4%5").arg(indexesText(message), when, status, who, partsText(message)));
    if (message.isData()) {
        report.line(Tool::tr("  data, %1 octet(s)%2:").arg(message.userData().size()).arg(portsText(message)));
        report.line(QStringLiteral("  ") + QString::fromLatin1(message.userData().toHex().toUpper()));
        return;
    }
    for (const QString& textLine : message.text().split(QLatin1Char('\n')))
        report.line(QStringLiteral("  ") + textLine);
}

QString kindName(zelmodems::ShortMessage::Type type)
{
    switch (type) {
    case zelmodems::ShortMessage::Deliver: return QStringLiteral("deliver");
    case zelmodems::ShortMessage::Submit: return QStringLiteral("submit");
    case zelmodems::ShortMessage::StatusReport: return QStringLiteral("status-report");
    case zelmodems::ShortMessage::InvalidType: break;
    }
    return QStringLiteral("unknown");
}

QJsonObject toJson(const zelmodems::StoredMessage& message)
{
    QJsonObject item;
    QJsonArray indexes;
    for (const int i : message.indexes())
        indexes.append(i);
    QJsonArray parts;
    for (const int p : message.partsPresent())
        parts.append(p);
    const bool report = message.type() == zelmodems::ShortMessage::StatusReport;
    item.insert(QStringLiteral("indexes"), indexes);
    item.insert(QStringLiteral("storage"), message.storage().isEmpty() ? QJsonValue() : QJsonValue(message.storage()));
    item.insert(QStringLiteral("status"), StoredPdu::statusName(message.status()));
    item.insert(QStringLiteral("kind"), message.isDecoded() ? kindName(message.type()) : QStringLiteral("unknown"));
    item.insert(QStringLiteral("outgoing"), message.isOutgoing());
    item.insert(message.isOutgoing() || report ? QStringLiteral("recipient") : QStringLiteral("sender"),
                message.isDecoded() ? QJsonValue(message.address()) : QJsonValue());
    item.insert(QStringLiteral("dateTime"), message.time().isValid() ? QJsonValue(zelmodems::PDU::isoTime(message.time())) : QJsonValue());
    item.insert(QStringLiteral("text"), message.isDecoded() && !message.isData() && !report ? QJsonValue(message.text())
                                                                                    : QJsonValue());
    if (message.isData()) {
        item.insert(QStringLiteral("data"), QString::fromLatin1(message.userData().toHex().toUpper()));
        item.insert(QStringLiteral("destinationPort"),
                    message.destinationPort() < 0 ? QJsonValue() : QJsonValue(message.destinationPort()));
        item.insert(QStringLiteral("originatorPort"),
                    message.originatorPort() < 0 ? QJsonValue() : QJsonValue(message.originatorPort()));
    }
    if (report && message.isDecoded()) {
        item.insert(QStringLiteral("reference"), message.reportReference());
        item.insert(QStringLiteral("dischargeTime"),
                    message.dischargeTime().isValid() ? QJsonValue(zelmodems::PDU::isoTime(message.dischargeTime())) : QJsonValue());
        item.insert(QStringLiteral("reportStatus"), message.reportStatus());
        item.insert(QStringLiteral("reportStatusText"), zelmodems::PDU::statusMeaning(message.reportStatus()));
    }
    item.insert(QStringLiteral("partCount"), message.partCount());
    item.insert(QStringLiteral("partsPresent"), parts);
    item.insert(QStringLiteral("complete"), message.isComplete());
    item.insert(QStringLiteral("ambiguous"), message.isAmbiguous());
    item.insert(QStringLiteral("problem"), message.problem().isEmpty() ? QJsonValue() : QJsonValue(message.problem()));
    return item;
}

// Reads the store into `messages`; false with the report failed.
bool readStore(ModemSession& session, QList<zelmodems::StoredMessage>& messages, Report& report)
{
    MessageStore store(&session.modem());
    if (!store.listMessages(messages)) {
        report.fail(store.failure(),
                    Tool::tr("cannot list the messages on %1: %2").arg(session.portName(), store.lastError()));
        return false;
    }
    return true;
}

// Oldest first; messages without a time stamp (outgoing, unreadable) last,
// each group in the store's order.
void show(QList<zelmodems::StoredMessage> messages, const QString& heading, Report& report)
{
    std::stable_sort(messages.begin(), messages.end(), [](const zelmodems::StoredMessage& a, const zelmodems::StoredMessage& b) {
        if (a.time().isValid() != b.time().isValid())
            return a.time().isValid();
        return a.time().isValid() && a.time() < b.time();
    });
    QJsonArray list;
    report.line(messages.isEmpty() ? Tool::tr("No messages.") : heading.arg(messages.size()));
    for (const zelmodems::StoredMessage& message : messages) {
        describe(message, report);
        list.append(toJson(message));
    }
    report.json().insert(QStringLiteral("messages"), list);
}

// Store indexes from the command line; false with a usage error.
bool parseIndexes(const QStringList& words, QList<int>& indexes, Report& report)
{
    for (const QString& word : words) {
        bool ok = false;
        const int index = word.toInt(&ok);
        if (!ok || index < 0 || index > MessageStore::MaxIndex) {
            report.fail(Tool::tr("\"%1\" is not a message index (0 to %2)").arg(word).arg(MessageStore::MaxIndex),
                        Report::UsageError);
            return false;
        }
        if (!indexes.contains(index))
            indexes << index;
    }
    return true;
}

// Deletes `indexes`, one line each; false when any deletion failed.
bool deleteIndexes(ModemSession& session, const QList<int>& indexes, Report& report)
{
    MessageStore store(&session.modem());
    QStringList failures;
    QJsonArray deleted;
    zelmodems::Failure last;
    for (const int index : indexes) {
        if (store.remove(index)) {
            report.line(Tool::tr("Deleted message %1.").arg(index));
            deleted.append(index);
            continue;
        }
        last = store.failure();
        // +CMS ERROR 321: the modem has nothing at that index.
        if (last.code() == zelmodems::Failure::CmsError && last.number() == 321)
            failures << Tool::tr("no message at index %1 (+CMS ERROR: 321, %2; zelmodems sms list shows the indexes)")
                            .arg(index)
                            .arg(zelmodems::ModemError::cmsMeaning(321));
        else
            failures << Tool::tr("message %1 was not deleted: %2").arg(index).arg(store.lastError());
    }
    report.json().insert(QStringLiteral("deleted"), deleted);
    if (!failures.isEmpty()) {
        report.fail(last.isFailure() ? last : zelmodems::Failure(zelmodems::Failure::Refused, QString()),
                    failures.join(QStringLiteral("; ")));
        return false;
    }
    return true;
}

// Each part's outcome for a program: its state ("interrupted" for the
// part under way, 1-based; 0 for none), the reference of a sent one (the
// sent parts are the first ones, `sentRefs` in order), and the code of a
// refusal with its meaning.
QJsonArray partResults(const QList<zelmodems::SmsSender::PartState>& states, const QList<int>& sentRefs,
                       int underWay, int errorCode)
{
    QJsonArray parts;
    for (int i = 0; i < states.size(); ++i) {
        const zelmodems::SmsSender::PartState state = states.at(i);
        QJsonObject part{{QStringLiteral("part"), i + 1}};
        part.insert(QStringLiteral("state"), i + 1 == underWay && state == zelmodems::SmsSender::NotSent
                                                 ? QStringLiteral("interrupted")
                                                 : zelmodems::SmsSender::stateName(state));
        if (state == zelmodems::SmsSender::Sent && i < sentRefs.size())
            part.insert(QStringLiteral("reference"), sentRefs.at(i));
        if (state == zelmodems::SmsSender::Refused && errorCode >= 0) {
            part.insert(QStringLiteral("errorCode"), errorCode);
            part.insert(QStringLiteral("errorMeaning"), zelmodems::SmsSender::errorMeaning(errorCode));
        }
        parts.append(part);
    }
    return parts;
}

} // namespace

Report smsList(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sms list"),
                         Tool::tr("Lists every message stored in the modem (PDU mode): index, time with its\n"
                                        "zone offset, status (unread, read, unsent, sent), sender or recipient,\n"
                                        "text (data in hexadecimal with its ports; a status report's message,\n"
                                        "recipient, time and outcome), and for long messages whether every part\n"
                                        "is there. Nothing is deleted (\"sms delete\", \"sms take\"); the modem\n"
                                        "marks listed messages read."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        QList<zelmodems::StoredMessage> messages;
        if (!readStore(session, messages, report))
            return;
        show(messages, Tool::tr("%1 message(s) in the modem:"), report);
        // Listing is reading: the modem marks what it lists read, so that a
        // later look no longer tells which ones were new. Said, not hidden.
        int unread = 0;
        for (const zelmodems::StoredMessage& message : qAsConst(messages))
            unread += message.status() == zelmodems::StoredPdu::Unread ? 1 : 0;
        if (unread > 0)
            report.line(Tool::tr("Unread messages listed: %1; the modem now marks them read.").arg(unread));
        report.json().insert(QStringLiteral("markedRead"), unread);
        const zelmodems::StoreUse use = zelmodems::StoreUse::read(&session.modem());
        if (use.isReceivingFull())
            report.line(Tool::tr("The store is full: new messages are refused until some are deleted "
                                 "(zelmodems sms take %1, or sms delete).")
                            .arg(session.portName()));
        report.json().insert(QStringLiteral("storeFull"), use.isRead() ? QJsonValue(use.isReceivingFull()) : QJsonValue());
    });
}

Report smsDelete(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sms delete"),
                         Tool::tr("Deletes the stored messages with the given indexes (as \"sms list\" shows\n"
                                        "them) and says for each whether the modem deleted it."));
    command.commandLine().addPositional(QStringLiteral("INDEX"), Tool::tr("Store indexes to delete."), true, true);
    return command.run(args, [](ModemSession& session, const CommandLine& cl, Report& report) {
        QList<int> indexes;
        if (parseIndexes(cl.positional().mid(1), indexes, report))
            deleteIndexes(session, indexes, report);
    });
}

Report smsTake(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sms take"),
                         Tool::tr("Prints the received messages and status reports that could be read whole\n"
                                        "(text, data in hexadecimal with its ports, a report's outcome), and then\n"
                                        "deletes those - and only those - from the modem. Messages that cannot be\n"
                                        "read, lone or doubtful parts of long messages and stored outgoing messages\n"
                                        "stay. Nothing is deleted when the output could not be written."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        QList<zelmodems::StoredMessage> all;
        if (!readStore(session, all, report))
            return;
        QList<zelmodems::StoredMessage> taken;
        QList<int> indexes;
        for (const zelmodems::StoredMessage& message : qAsConst(all)) {
            // Only what is printed in full is taken.
            if (message.mayBeTaken()) {
                taken << message;
                indexes << message.indexes();
            }
        }
        Report shown;
        shown.setJsonOutput(report.jsonOutput());
        show(taken, Tool::tr("%1 message(s), taken from the modem:"), shown);
        shown.json().insert(QStringLiteral("left"), all.size() - taken.size());
        if (shown.print(QStringLiteral("zelmodems sms take")) != Report::Success) {
            report.setPrinted();
            report.fail(Tool::tr("the messages could not be written out; none was deleted"), zelmodems::Failure::SystemError);
            return;
        }
        report.setPrinted();
        Report deletions;
        if (!deleteIndexes(session, indexes, deletions))
            report.fail(Tool::tr("not every message taken was deleted: %1").arg(deletions.error()), deletions.errorCode());
    });
}

Report smsSend(const QStringList& args)
{
    ModemCommand command(QStringLiteral("sms send"),
                         Tool::tr("Sends an SMS in PDU mode: any text, in UCS2 when the GSM alphabet cannot\n"
                                        "carry it and in several parts when it is long. It counts as sent only when\n"
                                        "the modem confirmed every part (+CMGS: <reference>). A number or text with\n"
                                        "control characters (Ctrl-Z, ESC, line breaks in the number) is refused\n"
                                        "and nothing is sent."));
    const QString WAIT = QStringLiteral("wait");
    command.commandLine().addPositional(QStringLiteral("NUMBER"),
                                        Tool::tr("The recipient (+79161234567, or digits, * and #)."));
    command.commandLine().addPositional(QStringLiteral("TEXT"), Tool::tr("The message text."));
    command.commandLine().addOption(QCommandLineOption(
        WAIT, Tool::tr("Seconds to wait for the network's confirmation of each part (default 30)."),
        QStringLiteral("seconds"), QStringLiteral("30")));
    return command.run(args, [&](ModemSession& session, const CommandLine& cl, Report& report) {
        const QString number = cl.positional(1);
        const QString text = cl.positional(2);
        bool ok = false;
        const int seconds = cl.value(WAIT).toInt(&ok);
        if (!ok || seconds < 1 || seconds > 600) {
            report.fail(Tool::tr("--wait takes 1 to 600 seconds"), Report::UsageError);
            return;
        }
        zelmodems::SmsSender sender(&session.modem());
        sender.setConfirmTimeout(seconds * 1000);
        // Cut short (Ctrl-C), the send still says how far it got: which
        // parts went out, and that the one under way may still arrive.
        const bool json = cl.json();
        auto progress = [&](const QList<zelmodems::SmsSender::PartState>& states, const QList<int>& sentRefs,
                            int underWay) {
            QStringList sent;
            for (int i = 0; i < sentRefs.size(); ++i)
                sent << QStringLiteral("%1 (reference %2)").arg(i + 1).arg(sentRefs.at(i));
            const QJsonObject object{{QStringLiteral("number"), number}, {QStringLiteral("partCount"), states.size()},
                                     {QStringLiteral("partResults"), partResults(states, sentRefs, underWay, -1)},
                                     {QStringLiteral("interrupted"), true}, {QStringLiteral("sent"), false}};
            const QString text =
                Tool::tr("message to %1: %2 of %3 part(s) sent%4; part %5 was being handed to the modem and "
                         "may still arrive; check before sending again\n")
                    .arg(number).arg(sent.size()).arg(states.size())
                    .arg(sent.isEmpty() ? QString() : QStringLiteral(": ") + sent.join(QStringLiteral(", ")))
                    .arg(underWay);
            Interruption::setProgress(json ? QJsonDocument(object).toJson(QJsonDocument::Indented) : QByteArray(),
                                      text.toUtf8());
        };
        // Before the first part ends the sender has said nothing yet: every
        // part is still to go, the first one under way.
        QList<zelmodems::SmsSender::PartState> toGo;
        for (int i = zelmodems::encodeSmsSubmit(number, text).size(); i > 0; --i)
            toGo << zelmodems::SmsSender::NotSent;
        if (!toGo.isEmpty())
            progress(toGo, {}, 1);
        sender.setPartHandler([&](int part, zelmodems::SmsSender::PartState, int) {
            progress(sender.partStates(), sender.references(), part + 1);
        });
        const bool sent = sender.send(number, text);
        Interruption::setProgress(QByteArray(), QByteArray());
        QJsonArray references;
        for (const int r : sender.references())
            references.append(r);
        report.json().insert(QStringLiteral("number"), number);
        report.json().insert(QStringLiteral("partCount"), sender.partCount());
        report.json().insert(QStringLiteral("references"), references);
        report.json().insert(QStringLiteral("partResults"),
                             partResults(sender.partStates(), sender.references(), 0, sender.errorCode()));
        report.json().insert(QStringLiteral("sent"), sent);
        if (!sent) {
            report.fail(sender.failure(), Tool::tr("message to %1: %2").arg(number, sender.lastError()));
            return;
        }
        QStringList refs;
        for (const int r : sender.references())
            refs << QString::number(r);
        report.line(Tool::tr("Sent to %1 in %2 part(s), confirmed (reference %3).")
                        .arg(number)
                        .arg(sender.partCount())
                        .arg(refs.join(QStringLiteral(", "))));
    });
}

} // namespace commands
