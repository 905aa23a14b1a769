#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

class AtModem;

namespace zelmodems {

/// The radio measurements of the serving cell beyond AT+CSQ: the extended
/// signal quality of 3GPP TS 27.007 8.69 (AT+CESQ: GSM level, UMTS RSCP and
/// Ec/No, LTE RSRP and RSRQ) or Huawei's ^HCSQ (with the LTE SINR), in
/// dBm and dB. What the modem says it cannot measure (255, 99) is unknown,
/// never a number.
///
///     const zelmodems::SignalMeasures m = zelmodems::SignalMeasures::read(&modem);
///     if (m.has(zelmodems::SignalMeasures::Rsrp))
///         qInfo() << "RSRP" << m.value(zelmodems::SignalMeasures::Rsrp) << "dBm";
///
/// A value; reading needs an open modem and blocks like every AtModem call.
class ZELMODEMSLIB_EXPORT SignalMeasures
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::SignalMeasures)

public:
    enum Measure {
        Rssi,   ///< received level, dBm (GSM RXLEV, Huawei RSSI)
        Ber,    ///< GSM bit error rate class, 0..7
        Rscp,   ///< UMTS received signal code power, dBm
        EcNo,   ///< UMTS Ec/No, dB
        Rsrp,   ///< LTE reference signal received power, dBm
        Rsrq,   ///< LTE reference signal received quality, dB
        Sinr,   ///< LTE signal to interference and noise, dB (^HCSQ only)
    };
    static const int MeasureCount = Sinr + 1;

    SignalMeasures();

    /// Asks AT+CESQ; a Huawei that refuses it, or gives no value, is asked
    /// AT^HCSQ?.
    static SignalMeasures read(AtModem* modem);
    /// "+CESQ: `<rxlev>`,`<ber>`,`<rscp>`,`<ecno>`,`<rsrq>`,`<rsrp>`".
    static SignalMeasures fromCesq(const QByteArray& answer);
    /// "^HCSQ: "`<sysmode>`",..." (GSM, WCDMA, LTE; "NOSERVICE").
    static SignalMeasures fromHcsq(const QByteArray& answer);

    /// An answer was read (even one that knows nothing).
    bool isAnswered() const { return m_answered; }
    /// The measure is known.
    bool has(Measure measure) const;
    /// Its value in its unit; 0 when unknown (ask has() first).
    double value(Measure measure) const;
    /// The technology the measures are of ("GSM", "UMTS", "LTE"), empty
    /// when the answer does not say.
    QString technology() const { return m_technology; }
    Failure failure() const { return m_failure; }

    /// "rssi", "ber", "rscp", "ecno", "rsrp", "rsrq", "sinr": stable names.
    static QString measureName(Measure measure);
    /// "dBm", "dB", or empty (ber).
    static QString unit(Measure measure);

private:
    void set(Measure measure, double value);

    double m_values[MeasureCount];
    unsigned m_known = 0;
    bool m_answered = false;
    QString m_technology;
    Failure m_failure;
};

} // namespace zelmodems
