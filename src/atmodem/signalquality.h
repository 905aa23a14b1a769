#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QCoreApplication>
#include <QString>

class AtModem;

namespace zelmodems {

/// The signal as the modem states it (AT+CSQ, 3GPP TS 27.007 8.5): the
/// received level and the bit error rate, with "not known" kept as such.
/// (AtModem::getSignalLevel puts an invented weak level where the modem has
/// none, which suits the appliance's display but not a person diagnosing.)
///
///     const zelmodems::SignalQuality signal = zelmodems::SignalQuality::read(&modem);
///     if (signal.isKnown())
///         qInfo() << signal.dbm() << "dBm," << zelmodems::SignalQuality::ratingName(signal.rating());
///
/// A value; reading needs an open modem and blocks like every AtModem call.
class ZELMODEMSLIB_EXPORT SignalQuality
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::SignalQuality)

public:
    /// The level in words. Unknown when the modem reports 99 (not known or
    /// not detectable) or nothing.
    enum Rating { Unknown, Poor, Fair, Good, Excellent };

    SignalQuality() = default;

    /// Asks the modem (AT+CSQ); only a whole-line OK ends the answer.
    static SignalQuality read(AtModem* modem);
    /// Reads a "+CSQ: `<rssi>`,`<ber>`" line out of an answer.
    static SignalQuality fromAnswer(const QByteArray& answer);

    /// The modem gave a +CSQ line.
    bool isAnswered() const { return m_rssi >= 0; }
    /// The modem gave a level (rssi 0..31).
    bool isKnown() const { return m_rssi >= 0 && m_rssi <= 31; }
    /// `<rssi>`: 0 (-113 dBm or less) to 31 (-51 dBm or more), 99 not known; -1 no answer.
    int rssi() const { return m_rssi; }
    /// `<ber>`: 0..7, 99 not known; -1 no answer.
    int ber() const { return m_ber; }
    /// The level in dBm; 0 when not known.
    int dbm() const { return isKnown() ? 2 * m_rssi - 113 : 0; }
    Rating rating() const;
    /// Why there is no reading (no answer, refused, nothing readable).
    Failure failure() const { return m_failure; }

    /// "excellent", "good", "fair", "poor", "unknown": stable words for programs.
    static QString ratingName(Rating rating);
    /// The same in the installed translation, for people.
    static QString ratingText(Rating rating);

private:
    int m_rssi = -1;
    int m_ber = -1;
    Failure m_failure;
};

} // namespace zelmodems
