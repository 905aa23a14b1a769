#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

class AtModem;

namespace zelmodems {

/// What the SIM waits for (AT+CPIN?, 3GPP TS 27.007 8.3), and the attempts
/// left where the make tells them: Huawei ^CPIN, SIMCOM +SPIC, ZTE
/// +ZPINPUK, Quectel +QPINC. A modem without a SIM answers "+CME ERROR:
/// 10", which is a state here, not a failure.
///
///     const zelmodems::SimStatus sim = zelmodems::SimStatus::read(&modem);
///     if (sim.state() == zelmodems::SimStatus::PinRequired)
///         qInfo() << "PIN required," << sim.pinAttempts() << "attempts left";
///
/// A value; reading needs an open modem and blocks like every AtModem call.
class ZELMODEMSLIB_EXPORT SimStatus
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::SimStatus)

public:
    enum State {
        NotRead = -1,        ///< the modem gave no readable state (failure() says why)
        Ready = 0,           ///< "READY": no code is asked for
        PinRequired,         ///< "SIM PIN"
        PukRequired,         ///< "SIM PUK": the PIN is blocked
        Pin2Required,        ///< "SIM PIN2"
        Puk2Required,        ///< "SIM PUK2"
        PhoneToSimPin,       ///< "PH-SIM PIN": the modem is locked to another SIM
        NetworkLocked,       ///< "PH-NET PIN" and the other personalisation codes
        NotInserted,         ///< +CME ERROR 10: no SIM
        SimFailure,          ///< +CME ERROR 13 or 15: the SIM is broken, wrong or blocked for good
        SimBusy,             ///< +CME ERROR 14: the SIM is still starting
    };

    SimStatus() = default;

    /// Asks the modem (AT+CPIN?, then the make's count of attempts).
    static SimStatus read(AtModem* modem);
    /// The state in an answer to AT+CPIN?: its "+CPIN:" line, or its final
    /// code ("+CME ERROR: 10", "+CME ERROR: SIM not inserted").
    static SimStatus fromAnswer(const QByteArray& answer);
    /// Reads the attempts left out of any of the makes' answers (^CPIN,
    /// +SPIC, +ZPINPUK, +QPINC) into this value; false when the answer
    /// holds none.
    bool takeAttempts(const QByteArray& answer);

    State state() const { return m_state; }
    bool isReady() const { return m_state == Ready; }
    /// A code must be entered (PIN, PUK, PIN2, PUK2, PH-SIM, network).
    bool needsCode() const;
    /// Attempts left for the PIN and for the PUK; -1 where the modem does
    /// not tell.
    int pinAttempts() const { return m_pinAttempts; }
    int pukAttempts() const { return m_pukAttempts; }
    /// The attempts left for the code asked for now (the PUK's when the
    /// state is PukRequired); -1 unknown.
    int attemptsLeft() const;
    /// What the modem answered to AT+CPIN?, on one line.
    QString answer() const { return m_answer; }
    /// Why there is no state (no answer, a bare ERROR, an unreadable answer).
    Failure failure() const { return m_failure; }

    /// "ready", "pin-required", "puk-required", "pin2-required",
    /// "puk2-required", "phone-to-sim-pin", "network-locked",
    /// "not-inserted", "failure", "busy"; "unknown" for NotRead.
    static QString stateName(State state);
    /// The same for people, in the installed translation.
    static QString stateText(State state);

private:
    State m_state = NotRead;
    int m_pinAttempts = -1;
    int m_pukAttempts = -1;
    QString m_answer;
    Failure m_failure;
};

} // namespace zelmodems
