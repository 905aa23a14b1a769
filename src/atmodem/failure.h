#pragma once
#include "zelmodemslib_export.h"

#include <QSharedDataPointer>
#include <QString>

namespace zelmodems {

class FailureData;

/// Why an operation of the project's own classes did not do what was asked:
/// a stable code a program can act on, the modem's error number where it
/// gave one, and a translated text for a person. Every class of the
/// zelmodems namespace that can fail reports it in this one shape
/// (MessageStore, SmsSender, UssdRequest, PortCatalogue, the simulator).
///
///     zelmodems::UssdRequest ussd(&modem);
///     if (!ussd.send("*100#")) {
///         const zelmodems::Failure why = ussd.failure();
///         if (why.code() == zelmodems::Failure::CmeError && why.number() == 11)
///             askForPin();                     ///< +CME ERROR: 11, SIM PIN required
///         qWarning() << why.text();
///     }
///
/// An implicitly shared value; a default-constructed Failure is no failure.
class ZELMODEMSLIB_EXPORT Failure
{
public:
    /// What went wrong. The values and their names are stable.
    enum Code {
        NoFailure = 0,  ///< "none": it worked
        BadInput,       ///< "bad-input": refused before anything was sent
        NotOpen,        ///< "not-open": no open port to talk through
        Busy,           ///< "busy": another program holds the port
        Gone,           ///< "gone": the port went away
        NoAnswer,       ///< "no-answer": nothing came in time
        Unconfirmed,    ///< "unconfirmed": handed over, not confirmed in time; it may still happen
        Refused,        ///< "refused": the modem said ERROR (or another final code) without a number
        CmeError,       ///< "cme-error": "+CME ERROR: n" (3GPP TS 27.007 9.2), n in number()
        CmsError,       ///< "cms-error": "+CMS ERROR: n" (3GPP TS 27.005 3.2.5), n in number()
        NotSupported,   ///< "not-supported": the modem or the network does not offer it
        Malformed,      ///< "malformed": an answer or a file that could not be read
        NotFound,       ///< "not-found": no such port, entry or file
        SystemError,    ///< "system-error": the operating system refused (files, pseudo-terminals)
    };

    Failure();
    Failure(Code code, const QString& text, int number = -1);
    Failure(const Failure& other);
    Failure(Failure&& other) noexcept;
    Failure& operator=(const Failure& other);
    Failure& operator=(Failure&& other) noexcept;
    ~Failure();

    bool operator==(const Failure& other) const;
    bool operator!=(const Failure& other) const { return !(*this == other); }

    /// Something failed (code() is not NoFailure).
    bool isFailure() const;
    Code code() const;
    /// The n of "+CME ERROR: n" or "+CMS ERROR: n"; -1 for other codes.
    int number() const;
    /// What happened, for a person, in the language of the installed
    /// translation; empty for no failure.
    QString text() const;

    /// The code's stable name: "none", "bad-input", "busy", "cme-error", ...
    static QString codeName(Code code);

private:
    QSharedDataPointer<FailureData> d;
};

} // namespace zelmodems
