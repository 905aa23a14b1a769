#pragma once
#include "zelmodemslib_export.h"

#include <QCoreApplication>
#include <QString>

namespace zelmodems {

/// Checks of what a caller puts on an AT command line. A number, a USSD code
/// or an SMS text goes to the modem inside a command (AT+CMGS=`<number>`,
/// AT+CUSD=1,"`<code>`",15) or after its prompt (the text, ended by Ctrl-Z). A
/// carriage return there ends the command and makes the rest a command of
/// its own, a double quote closes the quoted string early, Ctrl-Z ends the
/// text and ESC cancels it: such input would make the modem do something
/// nobody asked for, so it is refused before anything is sent.
///
/// Each check returns why the input cannot be sent, or an empty string when
/// it can.
class ZELMODEMSLIB_EXPORT AtInput
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::AtInput)

public:
    /// Any value inside a command line: no control characters (CR, LF,
    /// Ctrl-Z, ESC and the rest) and no double quote.
    static QString checkArgument(const QString& value);
    /// A telephone number: an optional leading "+", then digits, "*" and "#".
    static QString checkNumber(const QString& number);
    /// An SMS recipient for text mode: ASCII digits after an optional "+".
    static QString checkRecipient(const QString& number);
    /// A USSD code: printable characters, no double quote.
    static QString checkUssdCode(const QString& code);
    /// An SMS text: line breaks are text; Ctrl-Z, ESC and the other control
    /// characters are not.
    static QString checkSmsText(const QString& text);
};

} // namespace zelmodems
