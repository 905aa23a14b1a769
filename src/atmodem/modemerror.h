#pragma once
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

namespace zelmodems {

/// The meaning of the modem's numbered errors: "+CME ERROR: n" (3GPP TS
/// 27.007 9.2) and "+CMS ERROR: n" (3GPP TS 27.005 3.2.5), in words for
/// people, in the installed translation.
///
///     ModemError::meaning("+CME ERROR: 11")   // "SIM PIN required"
class ZELMODEMSLIB_EXPORT ModemError
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::ModemError)

public:
    /// The meaning of a +CME ERROR number; "unknown error" for numbers the
    /// standard leaves open, "manufacturer specific" from 256 on.
    static QString cmeMeaning(int code);
    /// The meaning of a +CMS ERROR number (SmsSender::errorMeaning).
    static QString cmsMeaning(int code);
    /// The meaning of a final result code with a number; empty for others
    /// (and for the text form "+CME ERROR: SIM PIN required", which says it).
    static QString meaning(const QByteArray& finalCode);
    /// `reason` followed by the meaning in brackets, when it has one.
    static QString describe(const QString& reason, const QByteArray& finalCode);
};

} // namespace zelmodems
