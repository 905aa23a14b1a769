#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

class AtModem;

namespace zelmodems {

/// The network the modem is on (AT+COPS?, 3GPP TS 27.007 7.3): its name and
/// its numeric code (MCC and MNC), read in both formats, and whether that
/// network is the SIM's own.
///
///     const zelmodems::NetworkOperator network = zelmodems::NetworkOperator::read(&modem);
///     if (network.isKnown())
///         qInfo() << network.name() << network.numeric() << network.isForeignTo(imsi);
///
/// A value; reading needs an open modem and blocks like every AtModem call.
/// Reading leaves the modem's operator format at long names (AT+COPS=3,0),
/// the format the appliance's own calls set.
class ZELMODEMSLIB_EXPORT NetworkOperator
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::NetworkOperator)

public:
    NetworkOperator() = default;

    /// Asks the modem: AT+COPS=3,2 and AT+COPS? for the code, AT+COPS=3,0
    /// and AT+COPS? for the name.
    static NetworkOperator read(AtModem* modem);
    /// Reads "+COPS: `<mode>`[,`<format>`,"`<oper>`"[,`<AcT>`]]" lines: each
    /// fills the name or the code, as its format says.
    void take(const QByteArray& answer);

    /// The modem named a network (in either format).
    bool isKnown() const { return !m_name.isEmpty() || !m_numeric.isEmpty(); }
    /// `<mode>`: 0 automatic, 1 manual, 2 deregistered, 4 manual then
    /// automatic; -1 not read.
    int mode() const { return m_mode; }
    /// The long name ("MegaFon"); empty when not given.
    QString name() const { return m_name; }
    /// "25002": MCC and MNC as digits; empty when not given.
    QString numeric() const { return m_numeric; }
    int mcc() const;
    int mnc() const;
    /// `<AcT>` of the answer; -1 when none.
    int accessTechnology() const { return m_act; }
    /// The network is not the one of a SIM with this IMSI (roaming): false
    /// when either code is unknown.
    bool isForeignTo(const QString& imsi) const;
    Failure failure() const { return m_failure; }

private:
    int m_mode = -1;
    QString m_name;
    QString m_numeric;
    int m_act = -1;
    Failure m_failure;
};

} // namespace zelmodems
