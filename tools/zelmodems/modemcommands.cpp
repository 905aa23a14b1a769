// Commands that open one modem and ask it something: info, signal, cells,
// operator, balance, ussd, own-number.
#include "commandline.h"
#include "tooltext.h"
#include "commands.h"
#include "modemcommand.h"
#include "ussdrequest.h"
#include "console.h"

#include <QJsonArray>

#include <iostream>
#include <string>

#include <unistd.h>
#include "modemsession.h"
#include "modemstate.h"
#include "simidentity.h"
#include "ownnumber.h"
#include "signalquality.h"
#include "cellrecord.h"
#include "messagestore.h"
#include "modemsettings.h"
#include "operatordata.h"
#include "storedmessage.h"

#include <QRegularExpression>

#include <QJsonArray>
#include <QJsonObject>
#include <QVariantList>

namespace {

const QString CODE = QStringLiteral("code");

// The operator table's entry for the SIM's codes, if it has a valid one.
bool tableEntry(int mcc, int mnc, OperatorData& entry)
{
    const MncTable table = ModemSettings().mncTable();
    const auto it = table.constFind(mcc * 100 + mnc);
    if (it == table.constEnd() || !it.value().isValid())
        return false;
    entry = it.value();
    return true;
}

QString codesText(int mcc, int mnc)
{
    return QStringLiteral("%1/%2").arg(mcc, 3, 10, QLatin1Char('0')).arg(mnc, 2, 10, QLatin1Char('0'));
}

// A national number of ten digits in international form, for the
// countries whose numbers the operators' replies give that way (Russia and
// the networks that share its +7); empty where the country is not known.
QString internationalForm(int mcc, const QString& national)
{
    if (national.size() == 10 && (mcc == 250 || mcc == 289 || mcc == 401))
        return QStringLiteral("+7") + national;
    return QString();
}

// The operator table's entry, as fields and in the JSON.
void reportEntry(const OperatorData& entry, Report& report)
{
    report.field(Tool::tr("Table entry"), entry.name());
    report.field(Tool::tr("Balance code"), entry.balancePhone());
    report.field(Tool::tr("Own number"),
                 QStringLiteral("%1 (%2)").arg(entry.selfNumberPhone(),
                                               entry.selfNumberFromSms() ? Tool::tr("the reply comes by SMS")
                                                                         : Tool::tr("USSD reply")));
    report.field(Tool::tr("PPP user"), QStringLiteral("%1 / %2").arg(entry.userName(), entry.password()));
    report.field(Tool::tr("Init line"), entry.modemInitLine());
    report.json().insert(QStringLiteral("operatorTable"), QJsonObject::fromVariantMap(entry.toMap()));
}

// A text that may hold a NUL (an odd-length SIM number keeps one where a
// digit is missing), made printable.
QString printable(QString text)
{
    return text.replace(QChar(0), QLatin1Char('?'));
}

// The signal's fields and JSON (AT+CSQ as the modem states it, and the
// measures of +CESQ or ^HCSQ); false, with why in `failure`, when the
// modem gave no +CSQ at all.
bool reportSignal(AtModem& modem, Report& report, zelmodems::Failure* failure = nullptr)
{
    const ModemState state = ModemState::read(modem, ModemState::ReadSignal);
    if (!state.signal().isAnswered()) {
        if (failure)
            *failure = state.signal().failure();
        return false;
    }
    state.reportSignal(report);
    return true;
}

// Ends a menu the network keeps open, and says so.
void closeMenu(AtModem& modem, Report& report)
{
    zelmodems::UssdRequest session(&modem);
    if (session.cancel())
        report.line(Tool::tr("The network's menu waited for an answer; it was closed (AT+CUSD=2)."));
    else
        report.line(Tool::tr("The network's menu waited for an answer; closing it failed: %1").arg(session.lastError()));
    report.json().insert(QStringLiteral("menuClosed"), true);
}

// Sends a USSD code (or the answer to a menu); false (and `report` failed)
// unless the network gave a reply of status 0 or 1. With `menuOpen` the
// caller learns that the network waits for an answer; without it such a
// menu is closed again, and the report says so.
bool sendUssd(AtModem& modem, const QString& code, QString& reply, Report& report, bool* menuOpen = nullptr)
{
    zelmodems::UssdRequest ussd(&modem);
    const bool ok = ussd.send(code);
    QJsonObject& json = report.json();
    json.insert(QStringLiteral("code"), code);
    json.insert(QStringLiteral("status"), ussd.status() < 0 ? QJsonValue() : QJsonValue(ussd.status()));
    json.insert(QStringLiteral("statusText"),
                ussd.status() < 0 ? QJsonValue() : QJsonValue(zelmodems::UssdRequest::statusMeaning(ussd.status())));
    reply = ussd.text();
    if (menuOpen)
        *menuOpen = ok && ussd.status() == 1;
    else if (ok && ussd.status() == 1)
        closeMenu(modem, report);
    if (ok)
        return true;
    if (!reply.isEmpty())
        report.field(Tool::tr("Reply"), reply);
    report.fail(ussd.failure(), QStringLiteral("%1: %2").arg(code, ussd.lastError()));
    return false;
}

QJsonObject cellJson(const zelmodems::CellRecord& cell)
{
    const auto orNull = [](qlonglong v) { return v < 0 ? QJsonValue() : QJsonValue(v); };
    QJsonObject o;
    o.insert(QStringLiteral("mcc"), orNull(cell.mcc()));
    o.insert(QStringLiteral("mnc"), orNull(cell.mnc()));
    ModemState::insertCode(o, QStringLiteral("cid"), cell.cellId());
    ModemState::insertCode(o, QStringLiteral("lac"), cell.areaCode());
    o.insert(QStringLiteral("rxlev"), orNull(cell.rxlev()));
    QJsonArray levels;
    for (const qlonglong level : cell.levels())
        levels.append(level);
    o.insert(QStringLiteral("dbm"), levels);
    return o;
}

QString cellRow(const zelmodems::CellRecord& cell)
{
    const auto text = [](qlonglong v) { return v < 0 ? QStringLiteral("-") : QString::number(v); };
    QStringList levels;
    for (const qlonglong level : cell.levels())
        levels << QString::number(level);
    return QStringLiteral("  %1 %2 %3 %4 %5 %6")
        .arg(text(cell.mcc()).leftJustified(4), text(cell.mnc()).leftJustified(4),
             (cell.cellId() < 0 ? QStringLiteral("-") : ModemState::codeText(cell.cellId())).leftJustified(16),
             (cell.areaCode() < 0 ? QStringLiteral("-") : ModemState::codeText(cell.areaCode())).leftJustified(14),
             text(cell.rxlev()).leftJustified(6), levels.join(QLatin1Char(' ')));
}

// A cell-list string (records joined by ";") as JSON objects and table rows;
// the modem's unused slots are no cells and are left out.
QJsonArray cellList(const QString& list, QStringList* rows)
{
    QJsonArray cells;
    for (const zelmodems::CellRecord& cell : zelmodems::CellRecord::parseList(list)) {
        if (cell.isEmptySlot())
            continue;
        cells.append(cellJson(cell));
        *rows << cellRow(cell);
    }
    return cells;
}

QString cellHeader()
{
    return QStringLiteral("  MCC  MNC  CELL (DECIMAL)   LAC (DECIMAL)  RXLEV  DBM");
}

// Neighbour cells of the makes that list them.
bool neighbourCells(AtModem& modem, QString& list)
{
    if (modem.dialect() == AtModem::SIEMENCE)
        return modem.getSiemensCellList(list);
    if (modem.dialect() == AtModem::SIM_COM)
        return modem.getSimCOMCellList(list);
    return false;
}

} // namespace

namespace commands {

Report info(const QStringList& args)
{
    ModemCommand command(QStringLiteral("info"),
                         Tool::tr("Opens the port, identifies the modem (name and dialect) and reads its\n"
                                        "IMEI, the SIM's state and IMSI, MCC/MNC and operator (with the operator\n"
                                        "table's entry), the registration and the serving cell, the signal, the\n"
                                        "SIM id and the firmware revision. What the modem cannot tell is shown as\n"
                                        "unknown, with the reason and the next step where there is one."));
    return command.run(args, [](ModemSession& session, const CommandLine& cl, Report& report) {
        AtModem& modem = session.modem();
        QJsonObject& json = report.json();

        report.field(Tool::tr("Port"), Tool::tr("%1 at %2 baud").arg(session.portName()).arg(cl.baud()));
        report.field(Tool::tr("Modem"), Tool::tr("%1 (dialect %2)").arg(modem.name(), modem.gsmDialect()));

        QVariantMap summary;
        modem.getInfo(summary);
        const QString unknown = Tool::tr("unknown");
        const QString imei = summary.value(QStringLiteral("imei")).toString();
        report.field(Tool::tr("IMEI"), imei.isEmpty() ? unknown : imei);
        json.insert(QStringLiteral("imei"), imei.isEmpty() ? QJsonValue() : QJsonValue(imei));

        const ModemState state = ModemState::read(modem);
        state.reportSim(report);
        const QString imsi = state.imsi();
        // Without an IMSI, the SIM's state is the reason when it has one.
        const bool reason = !state.sim().isReady() && state.sim().state() != zelmodems::SimStatus::NotRead;
        report.field(Tool::tr("IMSI"), !imsi.isEmpty() ? imsi
                                       : reason ? Tool::tr("unknown (%1)").arg(
                                                      zelmodems::SimStatus::stateText(state.sim().state()))
                                                : unknown);

        int mcc = 0;
        int mnc = 0;
        const bool codes = state.sim().isReady() && modem.getMnc(mcc, mnc);
        report.field(Tool::tr("MCC/MNC"), codes ? codesText(mcc, mnc) : unknown);
        json.insert(QStringLiteral("mcc"), codes ? QJsonValue(mcc) : QJsonValue());
        json.insert(QStringLiteral("mnc"), codes ? QJsonValue(mnc) : QJsonValue());

        state.reportRegistration(report);
        OperatorData entry;
        if (codes && tableEntry(mcc, mnc, entry))
            reportEntry(entry, report);
        else if (codes)
            report.field(Tool::tr("Table entry"), Tool::tr("none for %1").arg(codesText(mcc, mnc)));
        state.reportSignal(report);

        // The Siemens family names it "simId", the others "sim_id": one
        // name here whatever the make.
        QJsonValue simId;
        for (const QString& key : {QStringLiteral("simId"), QStringLiteral("sim_id")}) {
            if (summary.contains(key)) {
                const QString id = summary.value(key).toString();
                report.field(Tool::tr("SIM id"), printable(id));
                simId = id;
            }
        }
        json.insert(QStringLiteral("simId"), simId);
        const QString revision = summary.value(QStringLiteral("revision")).toString();
        if (!revision.isEmpty())
            report.field(Tool::tr("Revision"), revision);
        json.insert(QStringLiteral("revision"), revision.isEmpty() ? QJsonValue() : QJsonValue(revision));
        // The neighbour cells as the modem listed them (the summary's copy
        // turns fields the list leaves out into zeros); none while the
        // modem is not registered.
        QString list;
        if (state.isRegistered() && summary.contains(QStringLiteral("gsmCells")) && neighbourCells(modem, list)) {
            QStringList rows;
            json.insert(QStringLiteral("cells"), cellList(list, &rows));
            report.line(Tool::tr("Cells:"));
            report.line(cellHeader());
            report.lines(rows);
        }
        state.reportProblems(report, session.portName());
        // "unknown" above must mean the modem could not tell, not that it
        // stopped answering half-way (pulled out, crashed, hung).
        if (!modem.pollAt(1000)) {
            report.fail(Tool::tr("the modem on %1 stopped answering during the queries; the fields shown as "
                                       "unknown were not read")
                            .arg(session.portName()), zelmodems::Failure::NoAnswer);
        }
    });
}

Report signal(const QStringList& args)
{
    ModemCommand command(QStringLiteral("signal"),
                         Tool::tr("Prints the signal level in dBm (AT+CSQ), or \"unknown\" when the modem\n"
                                        "cannot measure it (index 99), and the measures of AT+CESQ (or Huawei's\n"
                                        "^HCSQ): RSRP and RSRQ on LTE, RSCP and Ec/No on UMTS."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        zelmodems::Failure why;
        if (!reportSignal(session.modem(), report, &why))
            report.fail(why);
    });
}

Report cells(const QStringList& args)
{
    ModemCommand command(QStringLiteral("cells"),
                         Tool::tr("Prints the registration and, while registered, the serving cell's area\n"
                                        "code and cell identity (AT+CREG, +CGREG, +CEREG: hexadecimal as the modem\n"
                                        "gives them, decimal in brackets), and the neighbour cells of modems that\n"
                                        "list them (Siemens/Cinterion: ^SMONC with levels from ^MONI/^MONP;\n"
                                        "SIMCOM: the packet-domain cell of AT+CGREG)."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        AtModem& modem = session.modem();
        const ModemState state = ModemState::read(modem, ModemState::ReadSim | ModemState::ReadRegistration);
        if (!state.sim().isReady()) {
            state.reportSim(report);
            state.reportRegistration(report);
            state.reportProblems(report, session.portName());
            report.fail(Tool::tr("the modem is not registered (%1), so it has no cell")
                            .arg(zelmodems::SimStatus::stateText(state.sim().state())),
                        zelmodems::Failure::NotFound);
            return;
        }
        state.reportRegistration(report);
        if (!state.registration().isValid()) {
            report.fail(Tool::tr("the modem did not report its registration, so its cell is unknown: %1")
                            .arg(state.registration().failure().text()),
                        state.registration().failure().code());
            return;
        }
        if (!state.isRegistered()) {
            state.reportProblems(report, session.portName());
            report.fail(Tool::tr("the modem is not registered (%1), so it has no cell")
                            .arg(zelmodems::Registration::stateText(state.registration().state())),
                        zelmodems::Failure::NotFound);
            return;
        }
        QString list;
        if (neighbourCells(modem, list)) {
            QStringList rows;
            report.json().insert(QStringLiteral("cells"), cellList(list, &rows));
            report.line(Tool::tr("Cells (cell identity and LAC in hexadecimal, decimal in brackets):"));
            report.line(cellHeader());
            report.lines(rows);
        }
    });
}

Report operatorInfo(const QStringList& args)
{
    ModemCommand command(QStringLiteral("operator"),
                         Tool::tr("Prints the SIM's MCC and MNC (from the IMSI), the network's name\n"
                                        "(AT+COPS?) and the operator table's entry for the codes: balance and\n"
                                        "own-number USSD codes, PPP user and password, the init line."));
    return command.run(args, [](ModemSession& session, const CommandLine&, Report& report) {
        int mcc = 0;
        int mnc = 0;
        if (!session.operatorCodes(mcc, mnc, report))
            return;
        QJsonObject& json = report.json();
        json.insert(QStringLiteral("mcc"), mcc);
        json.insert(QStringLiteral("mnc"), mnc);
        report.field(Tool::tr("MCC/MNC"), codesText(mcc, mnc));

        // The network the modem is on, as every command names it.
        ModemState::read(session.modem(), ModemState::ReadRegistration).reportRegistration(report);
        OperatorData entry;
        if (tableEntry(mcc, mnc, entry)) {
            reportEntry(entry, report);
        } else {
            report.field(Tool::tr("Table entry"), Tool::tr("none (the operator is not in the table)"));
            json.insert(QStringLiteral("operatorTable"), QJsonValue());
        }
    });
}

Report balance(const QStringList& args)
{
    ModemCommand command(QStringLiteral("balance"),
                         Tool::tr("Asks the account balance by USSD and prints the amount found in the\n"
                                        "operator's reply, and the reply itself. The code is the operator table's\n"
                                        "balance code for the SIM's operator unless --code gives one. The network's\n"
                                        "reply is awaited up to about 20 s."));
    command.commandLine().addOption(QCommandLineOption(
        CODE, Tool::tr("USSD code to send (default: the operator's)."), QStringLiteral("code")));
    return command.run(args, [](ModemSession& session, const CommandLine& cl, Report& report) {
        AtModem& modem = session.modem();

        QString code = cl.value(CODE);
        if (code.isEmpty()) {
            int mcc = 0;
            int mnc = 0;
            if (!session.operatorCodes(mcc, mnc, report))
                return;
            OperatorData entry;
            if (!tableEntry(mcc, mnc, entry) || entry.balancePhone().isEmpty()) {
                report.fail(Tool::tr("the operator table has no balance code for %1; give one with --code")
                                .arg(codesText(mcc, mnc)), zelmodems::Failure::NotFound);
                return;
            }
            code = entry.balancePhone();
        }
        QString reply;
        if (!sendUssd(modem, code, reply, report))
            return;
        // A reply of only a status carries no balance at all.
        if (reply.trimmed().isEmpty()) {
            report.fail(Tool::tr("the network answered %1 without a reply text").arg(code), zelmodems::Failure::Malformed);
            return;
        }
        // A balance only where the operator's text holds a number.
        const bool hasAmount = reply.contains(QRegularExpression(QStringLiteral("\\d")));
        const double amount = modem.parseModemBalance(reply);
        report.field(Tool::tr("Balance"),
                     hasAmount ? QString::number(amount, 'f', 2) : Tool::tr("not in the reply"));
        report.field(Tool::tr("Reply"), reply);
        report.json().insert(QStringLiteral("amount"), hasAmount ? QJsonValue(amount) : QJsonValue());
        report.json().insert(QStringLiteral("reply"), reply);
    });
}

Report ussd(const QStringList& args)
{
    ModemCommand command(QStringLiteral("ussd"),
                         Tool::tr("Sends a USSD code and prints the network's reply (awaited up to about\n"
                                        "20 s). Codes are written as on a phone: *100#. When the reply is a menu\n"
                                        "that waits for an answer, the answer is asked for on a terminal, or taken\n"
                                        "from --reply; a menu left without an answer is closed, and that is said."));
    const QString REPLY = QStringLiteral("reply");
    command.commandLine().addPositional(QStringLiteral("CODE"), Tool::tr("The USSD code, for example *100#."));
    command.commandLine().addOption(QCommandLineOption(
        REPLY, Tool::tr("An answer to the network's menu, in order (repeat it: --reply 1 --reply 3)."),
        QStringLiteral("answer")));
    return command.run(args, [&](ModemSession& session, const CommandLine& cl, Report& report) {
        QStringList answers = cl.values(REPLY);
        const bool interactive = answers.isEmpty() && !cl.json() && ::isatty(STDIN_FILENO) == 1
                              && Console::outputIsTerminal();
        QJsonArray exchange;
        QString sent = cl.positional(1);
        QString reply;
        for (;;) {
            bool menu = false;
            if (!sendUssd(session.modem(), sent, reply, report, &menu))
                return;
            exchange.append(QJsonObject{{QStringLiteral("sent"), sent}, {QStringLiteral("reply"), reply},
                                        {QStringLiteral("menu"), menu}});
            const QString shown = reply.isEmpty() ? Tool::tr("(no text)") : reply;
            report.field(Tool::tr("Reply"), shown);
            if (!menu)
                break;
            QString answer;
            if (!answers.isEmpty()) {
                answer = answers.takeFirst();
            } else if (interactive) {
                // The menu is shown now, so that the person can choose.
                Console::out() << Tool::tr("Reply:") << ' ' << Report::escaped(shown) << '\n'
                               << Tool::tr("Answer (an empty line closes the menu): ");
                Console::out().flush();
                std::string line;
                std::getline(std::cin, line);
                answer = QString::fromLocal8Bit(line.c_str()).trimmed();
            }
            if (answer.isEmpty()) {
                closeMenu(session.modem(), report);
                break;
            }
            report.field(Tool::tr("Answer"), answer);
            sent = answer;
        }
        if (!answers.isEmpty())
            report.line(Tool::tr("The session ended before these answers were used: %1")
                            .arg(answers.join(QLatin1String(", "))));
        report.json().insert(QStringLiteral("code"), cl.positional(1));
        report.json().insert(QStringLiteral("reply"), reply);
        report.json().insert(QStringLiteral("exchange"), exchange);
    });
}

Report ownNumber(const QStringList& args)
{
    ModemCommand command(QStringLiteral("own-number"),
                         Tool::tr("Asks the operator for the SIM's own telephone number, with the operator\n"
                                        "table's code and way unless --code and --sms/--ussd-reply say otherwise.\n"
                                        "By USSD reply the number is read from the reply (up to about 20 s). By\n"
                                        "SMS the operator sends the number in a message: the tool waits up to 30 s\n"
                                        "for it and deletes that message only; the other stored messages stay."));
    const QString SMS = QStringLiteral("sms");
    const QString REPLY = QStringLiteral("ussd-reply");
    CommandLine& commandLine = command.commandLine();
    commandLine.addOption(QCommandLineOption(CODE, Tool::tr("USSD code to send (default: the operator's)."),
                                             QStringLiteral("code")));
    commandLine.addOption(QCommandLineOption(SMS, Tool::tr("The number comes back as an SMS.")));
    commandLine.addOption(QCommandLineOption(REPLY, Tool::tr("The number comes back as the USSD reply.")));
    command.setCheck([&](const CommandLine& cl, Report& report) {
        if (cl.isSet(SMS) && cl.isSet(REPLY)) {
            report.fail(Tool::tr("--sms and --ussd-reply exclude each other"), Report::UsageError);
            return false;
        }
        return true;
    });
    return command.run(args, [&](ModemSession& session, const CommandLine& cl, Report& report) {
        QString code = cl.value(CODE);
        bool fromSms = cl.isSet(SMS);
        if (code.isEmpty() || (!cl.isSet(SMS) && !cl.isSet(REPLY))) {
            int mcc = 0;
            int mnc = 0;
            OperatorData entry;
            const bool known = session.modem().getMnc(mcc, mnc) && tableEntry(mcc, mnc, entry);
            if (code.isEmpty()) {
                if (!known || entry.selfNumberPhone().isEmpty()) {
                    report.fail(
                        Tool::tr("the operator table has no own-number code for %1; give one with --code")
                            .arg(mcc > 0 ? codesText(mcc, mnc) : QStringLiteral("this SIM")), zelmodems::Failure::NotFound);
                    return;
                }
                code = entry.selfNumberPhone();
            }
            if (!cl.isSet(SMS) && !cl.isSet(REPLY))
                fromSms = known && entry.selfNumberFromSms();
        }

        zelmodems::OwnNumber own(&session.modem());
        const bool found = fromSms ? own.bySms(code) : own.byUssd(code);
        for (const QString& note : own.notes())
            report.line(QStringLiteral("(%1)").arg(note));
        if (!found) {
            report.fail(own.failure());
            return;
        }
        const QString national = own.number();
        int mcc = 0;
        int mnc = 0;
        const QString international = session.modem().getMnc(mcc, mnc) ? internationalForm(mcc, national) : QString();
        report.field(Tool::tr("Own number"), international.isEmpty()
                                                 ? Tool::tr("%1 (national; the country code is not known)").arg(national)
                                                 : Tool::tr("%1 (national %2)").arg(international, national));
        report.json().insert(QStringLiteral("code"), code);
        report.json().insert(QStringLiteral("fromSms"), fromSms);
        report.json().insert(QStringLiteral("number"), international.isEmpty() ? QJsonValue() : QJsonValue(international));
        report.json().insert(QStringLiteral("nationalNumber"), national);
    });
}

} // namespace commands
