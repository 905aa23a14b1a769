#pragma once
#include "failure.h"
#include "simstatus.h"
#include "zelmodemslib_export.h"

#include <QCoreApplication>
#include <QString>

class AtModem;

namespace zelmodems {

/// Entering and changing the SIM's codes (AT+CPIN, AT+CPWD; 3GPP TS 27.007
/// 8.3, 7.5). Each call reads the SIM's state first and sends nothing when
/// the SIM does not wait for that code, when a code is not 4 to 8 digits
/// (a PUK 8), or when the modem reports one attempt left and the caller
/// did not allow the last one: a wrong code then would block the SIM (or,
/// for the PUK, destroy it). Nothing is retried.
///
///     zelmodems::SimLock lock(&modem);
///     if (!lock.unlock(pin)) {
///         if (lock.failure().code() == zelmodems::Failure::LastAttempt) ...
///     }
///
/// Blocks like every AtModem call. The codes never reach the debug log.
class ZELMODEMSLIB_EXPORT SimLock
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::SimLock)

public:
    explicit SimLock(AtModem* modem);

    /// Tries the last attempt too, when the modem reports only one left.
    void setLastAttemptAllowed(bool allowed) { m_lastAttempt = allowed; }
    bool isLastAttemptAllowed() const { return m_lastAttempt; }

    /// Enters the PIN the SIM waits for (AT+CPIN="pin").
    bool unlock(const QString& pin);
    /// Unblocks a SIM that asks for its PUK, setting a new PIN
    /// (AT+CPIN="puk","new PIN").
    bool unlockWithPuk(const QString& puk, const QString& newPin);
    /// Changes the PIN of a ready SIM (AT+CPWD="SC","old","new").
    bool changePin(const QString& oldPin, const QString& newPin);

    /// The SIM's state as the last call left it (read again after a code
    /// was entered, so that a wrong one shows the attempts left).
    SimStatus status() const { return m_status; }
    /// Why the last call did not succeed.
    Failure failure() const { return m_failure; }

    /// 4 to 8 digits (TS 31.101 9.3).
    static bool isValidPin(const QString& pin);
    /// 8 digits.
    static bool isValidPuk(const QString& puk);

private:
    bool ready(SimStatus::State wanted, const QString& what);
    bool send(const QByteArray& command, const QString& what);

    AtModem* m_modem;
    bool m_lastAttempt = false;
    SimStatus m_status;
    Failure m_failure;
};

} // namespace zelmodems
