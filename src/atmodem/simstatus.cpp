#include "simstatus.h"

#include "atmodem.h"
#include "linechannel_p.h"

#include <QList>

namespace zelmodems {

namespace {
const int CPIN_TIMEOUT_MS = 2000;
const int ATTEMPTS_TIMEOUT_MS = 1000;

// The comma-separated fields after "<prefix>: ", quotes taken off.
QList<QByteArray> fieldsAfter(const QByteArray& line, int prefixLength)
{
    QList<QByteArray> fields;
    for (QByteArray field : line.mid(prefixLength).split(',')) {
        field = field.trimmed();
        if (field.startsWith('"') && field.endsWith('"') && field.size() >= 2)
            field = field.mid(1, field.size() - 2);
        fields << field;
    }
    return fields;
}

// A count of attempts (0..99); -1 when the field is empty or no number.
int count(const QByteArray& field)
{
    bool ok = false;
    const int n = field.toInt(&ok);
    return ok && n >= 0 && n < 100 ? n : -1;
}

// The state a +CPIN: value names (TS 27.007 8.3 <code>).
SimStatus::State stateOfCode(QByteArray code)
{
    code = code.trimmed().toUpper();
    if (code.startsWith('"') && code.endsWith('"') && code.size() >= 2)
        code = code.mid(1, code.size() - 2);
    if (code == "READY")
        return SimStatus::Ready;
    if (code == "SIM PIN")
        return SimStatus::PinRequired;
    if (code == "SIM PUK")
        return SimStatus::PukRequired;
    if (code == "SIM PIN2")
        return SimStatus::Pin2Required;
    if (code == "SIM PUK2")
        return SimStatus::Puk2Required;
    if (code == "PH-SIM PIN" || code == "PH-FSIM PIN" || code == "PH-FSIM PUK")
        return SimStatus::PhoneToSimPin;
    if (code.startsWith("PH-"))
        return SimStatus::NetworkLocked;
    // Outside the standard, but common: a line instead of +CME ERROR: 10.
    if (code == "NOT INSERTED" || code == "SIM REMOVED" || code == "NO SIM")
        return SimStatus::NotInserted;
    if (code == "NOT READY")
        return SimStatus::SimBusy;
    return SimStatus::NotRead;
}

// The state a refusal of AT+CPIN? names, by number or in words (+CMEE=2).
SimStatus::State stateOfError(const QByteArray& finalCode)
{
    if (!finalCode.startsWith("+CME ERROR:"))
        return SimStatus::NotRead;
    const QByteArray what = finalCode.mid(11).trimmed();
    bool numeric = false;
    const int n = what.toInt(&numeric);
    if (numeric) {
        switch (n) {
        case 5: return SimStatus::PhoneToSimPin;
        case 10: return SimStatus::NotInserted;
        case 11: return SimStatus::PinRequired;
        case 12: return SimStatus::PukRequired;
        case 13: return SimStatus::SimFailure;
        case 14: return SimStatus::SimBusy;
        case 15: return SimStatus::SimFailure;
        case 17: return SimStatus::Pin2Required;
        case 18: return SimStatus::Puk2Required;
        default: break;
        }
        return n >= 40 && n <= 47 ? SimStatus::NetworkLocked : SimStatus::NotRead;
    }
    const QByteArray words = what.toLower();
    if (words == "sim not inserted")
        return SimStatus::NotInserted;
    if (words == "sim pin required")
        return SimStatus::PinRequired;
    if (words == "sim puk required")
        return SimStatus::PukRequired;
    if (words == "sim pin2 required")
        return SimStatus::Pin2Required;
    if (words == "sim puk2 required")
        return SimStatus::Puk2Required;
    if (words == "sim failure" || words == "sim wrong")
        return SimStatus::SimFailure;
    if (words == "sim busy")
        return SimStatus::SimBusy;
    if (words == "ph-sim pin required")
        return SimStatus::PhoneToSimPin;
    return SimStatus::NotRead;
}
} // namespace

SimStatus SimStatus::fromAnswer(const QByteArray& answer)
{
    SimStatus sim;
    for (const QByteArray& raw : answer.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.startsWith("+CPIN:")) {
            sim.m_state = stateOfCode(line.mid(6));
            return sim;
        }
        if (line.startsWith("+CME ERROR:")) {
            sim.m_state = stateOfError(line);
            return sim;
        }
    }
    return sim;
}

bool SimStatus::takeAttempts(const QByteArray& answer)
{
    for (const QByteArray& raw : answer.split('\n')) {
        const QByteArray line = raw.trimmed();
        int pin = -1;
        int puk = -1;
        if (line.startsWith("^CPIN:")) {
            // ^CPIN: <code>,[<times>],<puk_times>,<pin_times>,<puk2_times>,<pin2_times>
            const QList<QByteArray> f = fieldsAfter(line, 6);
            if (f.size() < 4)
                continue;
            puk = count(f.at(2));
            pin = count(f.at(3));
        } else if (line.startsWith("+SPIC:")) {
            // +SPIC: <pin1>,<puk1>,<pin2>,<puk2>
            const QList<QByteArray> f = fieldsAfter(line, 6);
            pin = count(f.value(0));
            puk = count(f.value(1));
        } else if (line.startsWith("+ZPINPUK:")) {
            // +ZPINPUK: <pin>,<puk>
            const QList<QByteArray> f = fieldsAfter(line, 9);
            pin = count(f.value(0));
            puk = count(f.value(1));
        } else if (line.startsWith("+QPINC:")) {
            // +QPINC: "SC",<pin>,<puk> (and "P2" for PIN2, passed over)
            const QList<QByteArray> f = fieldsAfter(line, 7);
            if (f.value(0).toUpper() != "SC")
                continue;
            pin = count(f.value(1));
            puk = count(f.value(2));
        } else {
            continue;
        }
        if (pin < 0 && puk < 0)
            continue;
        m_pinAttempts = pin;
        m_pukAttempts = puk;
        return true;
    }
    return false;
}

SimStatus SimStatus::read(AtModem* modem)
{
    SimStatus sim;
    if (!modem) {
        sim.m_failure = Failure(Failure::NotOpen, tr("no modem given"));
        return sim;
    }
    LineChannel channel(modem);
    const LineChannel::Answer answer = channel.command("+CPIN?", CPIN_TIMEOUT_MS);
    QList<QByteArray> said = answer.lines;
    if (!answer.final.isEmpty())
        said << answer.final;
    const QString told = QString::fromLatin1(said.join(' ').simplified());
    if (answer.end != LineChannel::End::Final) {
        sim.m_failure = answer.failure(tr("the modem did not say what its SIM waits for: %1").arg(answer.reason()));
        sim.m_answer = told;
        return sim;
    }
    sim = fromAnswer(answer.text());
    sim.m_answer = told;
    if (sim.m_state == NotRead) {
        if (answer.final == "ERROR")
            sim.m_failure = Failure(Failure::Refused,
                                    tr("the modem refused AT+CPIN? without saying why (numbered errors are off: "
                                       "AT+CMEE=1 turns them on)"));
        else
            sim.m_failure = answer.ok() ? Failure(Failure::Malformed,
                                                  tr("the modem's answer to AT+CPIN? names no SIM state: %1").arg(told))
                                        : answer.failure(tr("the modem did not say what its SIM waits for: %1")
                                                             .arg(answer.reason()));
        return sim;
    }
    if (sim.m_state == NotInserted || sim.m_state == SimFailure)
        return sim;

    // The count of attempts left is each make's own command.
    QByteArray query;
    switch (modem->dialect()) {
    case AtModem::HUAWEI:
    case AtModem::HSPA: query = "^CPIN?"; break;
    case AtModem::SIM_COM: query = "+SPIC"; break;
    case AtModem::ZTE: query = "+ZPINPUK=?"; break;
    case AtModem::DEFAULT_AT_GSM: query = "+QPINC?"; break;   // Quectel
    case AtModem::SIEMENCE: break;
    }
    if (!query.isEmpty()) {
        const LineChannel::Answer attempts = channel.command(query, ATTEMPTS_TIMEOUT_MS);
        if (attempts.ok())
            sim.takeAttempts(attempts.text());
    }
    return sim;
}

bool SimStatus::needsCode() const
{
    switch (m_state) {
    case PinRequired:
    case PukRequired:
    case Pin2Required:
    case Puk2Required:
    case PhoneToSimPin:
    case NetworkLocked:
        return true;
    default:
        return false;
    }
}

int SimStatus::attemptsLeft() const
{
    if (m_state == PukRequired)
        return m_pukAttempts;
    if (m_state == PinRequired || m_state == Ready)
        return m_pinAttempts;
    return -1;
}

QString SimStatus::stateName(State state)
{
    switch (state) {
    case Ready: return QStringLiteral("ready");
    case PinRequired: return QStringLiteral("pin-required");
    case PukRequired: return QStringLiteral("puk-required");
    case Pin2Required: return QStringLiteral("pin2-required");
    case Puk2Required: return QStringLiteral("puk2-required");
    case PhoneToSimPin: return QStringLiteral("phone-to-sim-pin");
    case NetworkLocked: return QStringLiteral("network-locked");
    case NotInserted: return QStringLiteral("not-inserted");
    case SimFailure: return QStringLiteral("failure");
    case SimBusy: return QStringLiteral("busy");
    case NotRead: break;
    }
    return QStringLiteral("unknown");
}

QString SimStatus::stateText(State state)
{
    switch (state) {
    case Ready: return tr("ready");
    case PinRequired: return tr("SIM PIN required");
    case PukRequired: return tr("SIM PUK required (the PIN is blocked)");
    case Pin2Required: return tr("SIM PIN2 required");
    case Puk2Required: return tr("SIM PUK2 required");
    case PhoneToSimPin: return tr("the modem is locked to another SIM (PH-SIM PIN)");
    case NetworkLocked: return tr("the modem is locked to another network");
    case NotInserted: return tr("no SIM inserted");
    case SimFailure: return tr("the SIM does not work (SIM failure)");
    case SimBusy: return tr("the SIM is still starting");
    case NotRead: break;
    }
    return tr("unknown");
}

} // namespace zelmodems
