#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

class AtModem;

namespace zelmodems {

/// The SIM's subscriber identity as the modem states it (AT+CIMI, 3GPP TS
/// 27.007 5.6), with the modem's own words when it has none: a modem
/// without a SIM, or with one waiting for its PIN, answers "+CME ERROR: 10"
/// or "+CME ERROR: SIM PIN required" where AtModem::getImsi says only that
/// it failed.
///
///     const zelmodems::SimIdentity sim = zelmodems::SimIdentity::read(&modem);
///     if (sim.imsi().isEmpty())
///         qWarning() << "no IMSI:" << sim.answer();
///
/// A value; reading needs an open modem and blocks like every AtModem call.
class ZELMODEMSLIB_EXPORT SimIdentity
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::SimIdentity)

public:
    SimIdentity() = default;

    /// Asks the modem (AT+CIMI); only a whole-line result code ends the answer.
    static SimIdentity read(AtModem* modem);

    /// The IMSI (6 to 15 digits); empty when the modem gave none.
    QString imsi() const { return m_imsi; }
    /// What the modem answered, on one line ("+CME ERROR: 10"); empty when
    /// nothing came.
    QString answer() const { return m_answer; }
    /// Why there is no IMSI: the modem's refusal with its number, no
    /// answer, or an answer without one (malformed).
    Failure failure() const { return m_failure; }

private:
    QString m_imsi;
    QString m_answer;
    Failure m_failure;
};

} // namespace zelmodems
