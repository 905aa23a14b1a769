#include "modemstate.h"

#include "atmodem.h"
#include "cellrecord.h"
#include "report.h"
#include "simidentity.h"
#include "tooltext.h"

#include <QJsonArray>

using zelmodems::Registration;
using zelmodems::SignalMeasures;
using zelmodems::SignalQuality;
using zelmodems::SimStatus;
using zelmodems::StoreUse;

namespace {

QJsonValue orNull(int value)
{
    return value < 0 ? QJsonValue() : QJsonValue(value);
}

QJsonValue orNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

// A hexadecimal code of a registration report; -1 when there is none.
qlonglong hexCode(const QString& hex)
{
    return zelmodems::CellRecord::parseNumber(hex, 16);
}

QString attemptsText(int attempts)
{
    return attempts < 0 ? QString() : Tool::tr("attempts left: %1").arg(attempts);
}

} // namespace

QString ModemState::codeText(qlonglong value)
{
    return value < 0 ? Tool::tr("unknown")
                     : QStringLiteral("%1 (%2)").arg(QString::number(value, 16).toUpper()).arg(value);
}

void ModemState::insertCode(QJsonObject& json, const QString& name, qlonglong value)
{
    json.insert(name + QStringLiteral("Hex"), value < 0 ? QJsonValue() : QJsonValue(QString::number(value, 16).toUpper()));
    json.insert(name + QStringLiteral("Decimal"), value < 0 ? QJsonValue() : QJsonValue(value));
}

void ModemState::askForReasons(AtModem& modem)
{
    QByteArray answer;
    modem.sendCommand("+CMEE=1", answer, 1000);
}

ModemState ModemState::read(AtModem& modem, int parts)
{
    ModemState state;
    state.m_parts = parts;
    // The SIM decides what else can be read: a modem without one is not
    // registered, however its registration report reads.
    if (parts & (ReadSim | ReadRegistration | ReadStores))
        state.m_sim = SimStatus::read(&modem);
    if (state.m_sim.isReady() && (parts & (ReadSim | ReadRegistration)))
        state.m_imsi = zelmodems::SimIdentity::read(&modem).imsi();
    if (parts & ReadRegistration) {
        state.m_circuit = Registration::read(&modem, Registration::CircuitSwitched);
        state.m_packet = Registration::read(&modem, Registration::PacketSwitched);
        state.m_eps = Registration::read(&modem, Registration::Eps);
        if (state.m_sim.isReady())
            state.m_network = zelmodems::NetworkOperator::read(&modem);
    }
    if (parts & ReadSignal) {
        state.m_signal = SignalQuality::read(&modem);
        state.m_measures = SignalMeasures::read(&modem);
    }
    if ((parts & ReadStores) && state.m_sim.isReady())
        state.m_stores = StoreUse::read(&modem);
    return state;
}

Registration ModemState::registration() const
{
    for (const Registration* r : {&m_eps, &m_packet, &m_circuit}) {
        if (r->isRegistered())
            return *r;
    }
    return m_circuit.isValid() ? m_circuit : m_packet.isValid() ? m_packet : m_eps;
}

bool ModemState::isRoaming() const
{
    const Registration r = registration();
    if (!r.isRegistered())
        return false;
    // The registration says so; a network not the SIM's own says it too
    // (a modem that reports "home" on a partner's network).
    return r.isRoaming() || m_network.isForeignTo(m_imsi);
}

int ModemState::accessTechnology() const
{
    const int act = registration().accessTechnology();
    return act >= 0 ? act : m_network.accessTechnology();
}

QString ModemState::generation(int act)
{
    switch (act) {
    case 0:
    case 1:
    case 3:
    case 8: return Tool::tr("2G (GSM)");
    case 2:
    case 4:
    case 5:
    case 6: return Tool::tr("3G (UMTS)");
    case 7:
    case 9:
    case 10: return Tool::tr("4G (LTE)");
    case 11:
    case 12:
    case 13: return Tool::tr("5G (NR)");
    default: break;
    }
    return act < 0 ? QString() : Registration::technologyName(act);
}

QString ModemState::signalText(const SignalQuality& signal)
{
    if (!signal.isAnswered())
        return Tool::tr("unknown");
    if (!signal.isKnown())
        return Tool::tr("unknown (the modem reports no signal)");
    return Tool::tr("%1 dBm (%2)").arg(signal.dbm()).arg(SignalQuality::ratingText(signal.rating()));
}

QList<ModemState::Problem> ModemState::problems(const QString& port) const
{
    QList<Problem> found;
    const QString again = QStringLiteral("zelmodems status %1").arg(port);
    const bool simRead = m_parts & (ReadSim | ReadRegistration | ReadStores);
    switch (simRead ? m_sim.state() : SimStatus::Ready) {
    case SimStatus::Ready:
        break;
    case SimStatus::NotInserted:
        found << Problem{QStringLiteral("no-sim"), Tool::tr("no SIM card in the modem"),
                         Tool::tr("insert a SIM (with the modem unplugged), then: %1").arg(again)};
        break;
    case SimStatus::PinRequired: {
        const QString left = attemptsText(m_sim.pinAttempts());
        found << Problem{QStringLiteral("pin-required"),
                         left.isEmpty() ? Tool::tr("SIM PIN required") : Tool::tr("SIM PIN required (%1)").arg(left),
                         QStringLiteral("zelmodems sim unlock %1").arg(port)};
        break;
    }
    case SimStatus::PukRequired: {
        const QString left = attemptsText(m_sim.pukAttempts());
        found << Problem{QStringLiteral("puk-required"),
                         left.isEmpty() ? Tool::tr("the PIN is blocked; the SIM asks for its PUK")
                                        : Tool::tr("the PIN is blocked; the SIM asks for its PUK (%1)").arg(left),
                         Tool::tr("find the PUK on the SIM's card or ask the operator, then: %1")
                             .arg(QStringLiteral("zelmodems sim unlock --puk %1").arg(port))};
        break;
    }
    case SimStatus::Pin2Required:
    case SimStatus::Puk2Required:
        found << Problem{QStringLiteral("pin2-required"), SimStatus::stateText(m_sim.state()),
                         Tool::tr("enter it with a phone; the modem's own services need only the PIN")};
        break;
    case SimStatus::PhoneToSimPin:
    case SimStatus::NetworkLocked:
        found << Problem{QStringLiteral("locked"), SimStatus::stateText(m_sim.state()),
                         Tool::tr("ask the modem's seller for its unlock code, or use the SIM it was sold with")};
        break;
    case SimStatus::SimFailure:
        found << Problem{QStringLiteral("sim-failure"), SimStatus::stateText(m_sim.state()),
                         Tool::tr("try the SIM in another modem or phone; if it fails there too, ask the operator "
                                  "for a new one")};
        break;
    case SimStatus::SimBusy:
        found << Problem{QStringLiteral("sim-busy"), SimStatus::stateText(m_sim.state()),
                         Tool::tr("wait a few seconds, then: %1").arg(again)};
        break;
    case SimStatus::NotRead:
        found << Problem{QStringLiteral("sim-unknown"),
                         Tool::tr("the SIM's state is unknown: %1").arg(m_sim.failure().text()), QString()};
        break;
    }
    if ((m_parts & ReadRegistration) && m_sim.isReady()) {
        const zelmodems::Registration r = registration();
        switch (r.state()) {
        case Registration::Denied:
            found << Problem{QStringLiteral("registration-denied"), Registration::stateText(r.state()),
                             Tool::tr("ask the operator whether the SIM's contract is active and allows this network")};
            break;
        case Registration::Searching:
            found << Problem{QStringLiteral("searching"), Registration::stateText(r.state()),
                             Tool::tr("wait a minute; if it stays so, check the antenna and the coverage, then: %1")
                                 .arg(again)};
            break;
        case Registration::NotRegistered:
            found << Problem{QStringLiteral("not-registered"), Tool::tr("not registered, and not searching"),
                             Tool::tr("the radio may be off or the network chosen by hand: AT+CFUN=1 turns the "
                                      "radio on, AT+COPS=0 chooses automatically")};
            break;
        case Registration::UnknownState:
        case Registration::NotRead:
            found << Problem{QStringLiteral("registration-unknown"), Tool::tr("the registration is unknown"),
                             Tool::tr("check the antenna and the coverage, then: %1").arg(again)};
            break;
        case Registration::EmergencyOnly:
            found << Problem{QStringLiteral("emergency-only"), Registration::stateText(r.state()),
                             Tool::tr("the network does not accept this SIM: ask the operator")};
            break;
        default:
            break;
        }
    }
    if (m_parts & ReadSignal) {
        if (m_signal.isAnswered() && !m_signal.isKnown())
            found << Problem{QStringLiteral("no-signal"), Tool::tr("the modem measures no signal"),
                             Tool::tr("check that the antenna is connected")};
        else if (m_signal.rating() == SignalQuality::Poor)
            found << Problem{QStringLiteral("weak-signal"), Tool::tr("weak signal (%1 dBm)").arg(m_signal.dbm()),
                             Tool::tr("move the modem or its antenna (a window, higher up, a USB extension cable)")};
    }
    if ((m_parts & ReadStores) && m_stores.isReceivingFull())
        found << Problem{QStringLiteral("store-full"),
                         Tool::tr("the SMS store is full: new messages are refused until one is deleted"),
                         Tool::tr("read and delete them: %1").arg(QStringLiteral("zelmodems sms take %1").arg(port))};
    return found;
}

QJsonObject ModemState::simJson(const SimStatus& sim, const QString& imsi)
{
    QJsonObject json;
    json.insert(QStringLiteral("state"), SimStatus::stateName(sim.state()));
    json.insert(QStringLiteral("stateText"), SimStatus::stateText(sim.state()));
    json.insert(QStringLiteral("pinAttempts"), orNull(sim.pinAttempts()));
    json.insert(QStringLiteral("pukAttempts"), orNull(sim.pukAttempts()));
    json.insert(QStringLiteral("imsi"), orNull(imsi));
    return json;
}

void ModemState::reportSim(Report& report) const
{
    QString text = SimStatus::stateText(m_sim.state());
    const QString left = attemptsText(m_sim.attemptsLeft());
    if (m_sim.needsCode() && !left.isEmpty())
        text += QStringLiteral(" (%1)").arg(left);
    if (m_sim.state() == SimStatus::NotRead)
        text += QStringLiteral(": %1").arg(m_sim.failure().text());
    report.field(Tool::tr("SIM"), text);
    report.json().insert(QStringLiteral("sim"), simJson());
}

QJsonObject ModemState::registrationJson() const
{
    const zelmodems::Registration r = registration();
    const bool located = r.isRegistered();
    QJsonObject json;
    json.insert(QStringLiteral("state"), Registration::stateName(r.state()));
    json.insert(QStringLiteral("stateText"), Registration::stateText(r.state()));
    json.insert(QStringLiteral("domain"), r.isValid() ? QJsonValue(Registration::domainName(r.domain())) : QJsonValue());
    json.insert(QStringLiteral("roaming"), isRoaming());
    // Area and cell only mean something while registered: a denied or
    // searching modem's report holds none (or stale ones).
    insertCode(json, QStringLiteral("lac"), located ? hexCode(r.area()) : -1);
    insertCode(json, QStringLiteral("cid"), located ? hexCode(r.cell()) : -1);
    json.insert(QStringLiteral("technology"),
                located ? orNull(Registration::technologyName(accessTechnology())) : QJsonValue());
    QJsonObject network;
    network.insert(QStringLiteral("name"), orNull(m_network.name()));
    network.insert(QStringLiteral("numeric"), orNull(m_network.numeric()));
    network.insert(QStringLiteral("mcc"), orNull(m_network.mcc()));
    network.insert(QStringLiteral("mnc"), orNull(m_network.mnc()));
    json.insert(QStringLiteral("network"), network);
    return json;
}

void ModemState::reportRegistration(Report& report) const
{
    const zelmodems::Registration r = registration();
    QString text = Registration::stateText(r.state());
    if (r.isRegistered() && isRoaming() && !r.isRoaming())
        text += Tool::tr(" (roaming: the network is not the SIM's own)");
    report.field(Tool::tr("Registration"), text);
    if (r.isRegistered()) {
        QString network = m_network.name();
        if (!m_network.numeric().isEmpty())
            network += network.isEmpty() ? m_network.numeric() : QStringLiteral(" (%1)").arg(m_network.numeric());
        report.field(Tool::tr("Network"), network.isEmpty() ? Tool::tr("unknown") : network);
        const QString technology = generation(accessTechnology());
        report.field(Tool::tr("Technology"), technology.isEmpty() ? Tool::tr("unknown") : technology);
        report.field(Tool::tr("Serving cell"),
                     Tool::tr("LAC %1, CID %2").arg(codeText(hexCode(r.area())), codeText(hexCode(r.cell()))));
    }
    report.json().insert(QStringLiteral("registration"), registrationJson());
}

QJsonObject ModemState::signalJson() const
{
    QJsonObject json;
    json.insert(QStringLiteral("dbm"), m_signal.isKnown() ? QJsonValue(m_signal.dbm()) : QJsonValue());
    json.insert(QStringLiteral("csqRssi"), m_signal.isKnown() ? QJsonValue(m_signal.rssi()) : QJsonValue());
    json.insert(QStringLiteral("csqBer"),
                m_signal.ber() >= 0 && m_signal.ber() <= 7 ? QJsonValue(m_signal.ber()) : QJsonValue());
    json.insert(QStringLiteral("rating"), SignalQuality::ratingName(m_signal.rating()));
    json.insert(QStringLiteral("technology"), orNull(m_measures.technology()));
    for (int i = 0; i < SignalMeasures::MeasureCount; ++i) {
        const auto measure = SignalMeasures::Measure(i);
        json.insert(SignalMeasures::measureName(measure),
                    m_measures.has(measure) ? QJsonValue(m_measures.value(measure)) : QJsonValue());
    }
    return json;
}

void ModemState::reportSignal(Report& report) const
{
    report.field(Tool::tr("Signal"), signalText(m_signal));
    QStringList measures;
    for (const SignalMeasures::Measure measure : {SignalMeasures::Rsrp, SignalMeasures::Rsrq, SignalMeasures::Sinr,
                                                  SignalMeasures::Rscp, SignalMeasures::EcNo}) {
        if (m_measures.has(measure))
            measures << QStringLiteral("%1 %2 %3")
                            .arg(measure == SignalMeasures::EcNo ? QStringLiteral("Ec/No")
                                                                 : SignalMeasures::measureName(measure).toUpper())
                            .arg(m_measures.value(measure))
                            .arg(SignalMeasures::unit(measure) == QLatin1String("dBm") ? Tool::tr("dBm")
                                                                                        : Tool::tr("dB"));
    }
    if (!measures.isEmpty())
        report.field(Tool::tr("Measures"), measures.join(QLatin1String(", ")));
    report.json().insert(QStringLiteral("signal"), signalJson());
}

void ModemState::reportStores(Report& report) const
{
    QJsonArray stores;
    QStringList shown;
    for (const StoreUse::Store& store : m_stores.stores()) {
        QJsonArray roles;
        if (store.roles & StoreUse::Reading)
            roles.append(QStringLiteral("read"));
        if (store.roles & StoreUse::Writing)
            roles.append(QStringLiteral("write"));
        if (store.roles & StoreUse::Receiving)
            roles.append(QStringLiteral("receive"));
        stores.append(QJsonObject{{QStringLiteral("name"), store.name}, {QStringLiteral("used"), store.used},
                                  {QStringLiteral("total"), store.total}, {QStringLiteral("full"), store.isFull()},
                                  {QStringLiteral("roles"), roles}});
        QString text = Tool::tr("%1: %2 of %3").arg(store.name).arg(store.used).arg(store.total);
        if (store.isFull())
            text += Tool::tr(" (full)");
        shown << text;
    }
    report.field(Tool::tr("SMS stores"), shown.isEmpty() ? Tool::tr("unknown") : shown.join(QLatin1String(", ")));
    report.json().insert(QStringLiteral("stores"), m_stores.isRead() ? QJsonValue(stores) : QJsonValue());
}

QJsonArray ModemState::problemsJson(const QString& port) const
{
    QJsonArray problems;
    for (const Problem& problem : this->problems(port))
        problems.append(QJsonObject{{QStringLiteral("code"), problem.code},
                                    {QStringLiteral("text"), problem.text},
                                    {QStringLiteral("next"), orNull(problem.next)}});
    return problems;
}

void ModemState::reportProblems(Report& report, const QString& port) const
{
    const QList<Problem> found = this->problems(port);
    if (!found.isEmpty()) {
        report.line();
        report.line(Tool::tr("What keeps it from working, and what to do:"));
    }
    for (const Problem& problem : found) {
        report.line(QStringLiteral("  - %1").arg(problem.text));
        if (!problem.next.isEmpty())
            report.line(QStringLiteral("    %1 %2").arg(Tool::tr("next:"), problem.next));
    }
    report.json().insert(QStringLiteral("problems"), problemsJson(port));
}
