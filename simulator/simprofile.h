#pragma once
#include "zelmodemssim_export.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

namespace zelmodems::sim {

/// The makes the simulator can play. Each answers "ATI" the way such modems do.
enum class Make { Huawei, SimCom, Zte, Cinterion, HspaDataCard, Unknown };

/// Everything that distinguishes one simulated modem from another: its
/// identification, its SIM and its fixed answers. Answers are keyed by the
/// command without "AT", in upper case (for example "+CSQ", "^SMONC"); the
/// value is the body printed before the final result code.
struct ZELMODEMSSIM_EXPORT Profile
{
    Make make = Make::Huawei;
    QByteArray ati;              ///< body of the answer to "ATI"
    QByteArray revision;         ///< body of the answer to "AT+GMR"
    QByteArray imei = "866123456789012";
    QByteArray imsi = "250026123456789";
    bool echo = true;            ///< modems start with echo on
    /// Huawei sticks want the USSD string of AT+CUSD packed in GSM 7-bit
    /// septets and written in hexadecimal; the others take it as text.
    bool ussdPacked = false;
    QMap<QByteArray, QByteArray> answers;

    static Profile forMake(Make make);
    static QString makeName(Make make);
    /// Parses a make's name as modemsim's command line takes it
    /// (huawei, simcom, zte, cinterion, hspa, unknown); false when unknown.
    static bool parseMake(const QString& name, Make* make);
    static QStringList makeNames();
};

} // namespace zelmodems::sim
