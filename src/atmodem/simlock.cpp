#include "simlock.h"

#include "atmodem.h"
#include "linechannel_p.h"

namespace zelmodems {

namespace {
// The SIM checks a code in a second or two; a few modems take longer.
const int CODE_TIMEOUT_MS = 10000;

bool digits(const QString& text, int least, int most)
{
    if (text.size() < least || text.size() > most)
        return false;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return true;
}
} // namespace

SimLock::SimLock(AtModem* modem) : m_modem(modem) {}

bool SimLock::isValidPin(const QString& pin)
{
    return digits(pin, 4, 8);
}

bool SimLock::isValidPuk(const QString& puk)
{
    return digits(puk, 8, 8);
}

bool SimLock::ready(SimStatus::State wanted, const QString& what)
{
    if (!m_modem) {
        m_failure = Failure(Failure::NotOpen, tr("no modem given"));
        return false;
    }
    m_status = SimStatus::read(m_modem);
    if (m_status.state() == SimStatus::NotRead) {
        m_failure = m_status.failure();
        return false;
    }
    if (m_status.state() != wanted) {
        m_failure = Failure(Failure::WrongState, tr("%1 was not sent: the SIM's state is \"%2\", not \"%3\"")
                                                     .arg(what, SimStatus::stateText(m_status.state()),
                                                          SimStatus::stateText(wanted)));
        return false;
    }
    const int left = wanted == SimStatus::PukRequired ? m_status.pukAttempts() : m_status.pinAttempts();
    if (left == 1 && !m_lastAttempt) {
        m_failure = Failure(Failure::LastAttempt,
                            tr("%1 was not sent: the modem reports one attempt left, and a wrong code would block "
                               "the SIM; allow the last attempt to try it")
                                .arg(what));
        return false;
    }
    if (left == 0) {
        m_failure = Failure(Failure::WrongState, tr("%1 was not sent: the modem reports no attempt left").arg(what));
        return false;
    }
    return true;
}

bool SimLock::send(const QByteArray& command, const QString& what)
{
    LineChannel channel(m_modem);
    const LineChannel::Answer answer = channel.command(command, CODE_TIMEOUT_MS);
    // Read again in both cases: after a right code the SIM's state (ready,
    // or still starting), after a wrong one the attempts left.
    m_status = SimStatus::read(m_modem);
    if (answer.ok()) {
        m_failure = Failure();
        return true;
    }
    QString text = tr("%1 was refused: %2").arg(what, answer.reason());
    const int left = m_status.attemptsLeft();
    if (left >= 0)
        text += tr("; attempts left: %1").arg(left);
    m_failure = answer.failure(text);
    return false;
}

bool SimLock::unlock(const QString& pin)
{
    const QString what = tr("the PIN");
    if (!isValidPin(pin)) {
        m_failure = Failure(Failure::BadInput, tr("a PIN is 4 to 8 digits; nothing was sent"));
        return false;
    }
    if (!ready(SimStatus::PinRequired, what))
        return false;
    return send("+CPIN=\"" + pin.toLatin1() + '"', what);
}

bool SimLock::unlockWithPuk(const QString& puk, const QString& newPin)
{
    const QString what = tr("the PUK");
    if (!isValidPuk(puk)) {
        m_failure = Failure(Failure::BadInput, tr("a PUK is 8 digits; nothing was sent"));
        return false;
    }
    if (!isValidPin(newPin)) {
        m_failure = Failure(Failure::BadInput, tr("the new PIN must be 4 to 8 digits; nothing was sent"));
        return false;
    }
    if (!ready(SimStatus::PukRequired, what))
        return false;
    return send("+CPIN=\"" + puk.toLatin1() + "\",\"" + newPin.toLatin1() + '"', what);
}

bool SimLock::changePin(const QString& oldPin, const QString& newPin)
{
    const QString what = tr("the PIN change");
    if (!isValidPin(oldPin) || !isValidPin(newPin)) {
        m_failure = Failure(Failure::BadInput, tr("a PIN is 4 to 8 digits; nothing was sent"));
        return false;
    }
    if (!ready(SimStatus::Ready, what))
        return false;
    return send("+CPWD=\"SC\",\"" + oldPin.toLatin1() + "\",\"" + newPin.toLatin1() + '"', what);
}

} // namespace zelmodems
