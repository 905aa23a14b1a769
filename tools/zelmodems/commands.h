#pragma once
#include "report.h"

#include <QList>
#include <QString>
#include <QStringList>

// The subcommands of zelmodems. Each takes the words after its name and
// returns its report; none prints anything itself except find's live
// progress and the demo's narration.
namespace commands {

Report find(const QStringList& args);
Report info(const QStringList& args);
Report signal(const QStringList& args);
Report status(const QStringList& args);
Report simStatus(const QStringList& args);
Report simUnlock(const QStringList& args);
Report simChangePin(const QStringList& args);
Report cells(const QStringList& args);
Report operatorInfo(const QStringList& args);
Report balance(const QStringList& args);
Report ussd(const QStringList& args);
Report ownNumber(const QStringList& args);
Report smsList(const QStringList& args);
Report smsDelete(const QStringList& args);
Report smsTake(const QStringList& args);
Report smsSend(const QStringList& args);
Report pduEncode(const QStringList& args);
Report pduExplain(const QStringList& args);
Report wvdialconf(const QStringList& args);
Report demo(const QStringList& args);
Report watch(const QStringList& args);

// One entry of the command table: the words that name it ("sms list"), a
// line for the overview, and the function that runs it.
struct Entry
{
    QString name;
    QString summary;
    Report (*run)(const QStringList& args);
};

const QList<Entry>& table();

// Runs the command named by the first word(s) of `args`.
Report dispatch(const QStringList& args);
// The command's name as the first word(s) of `args` give it ("sms list"),
// or an empty text.
QString nameOf(const QStringList& args);
// The overview printed by "zelmodems --help".
QString overview();

} // namespace commands
