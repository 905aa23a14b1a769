#pragma once
#include <QSharedData>
#include <QSharedDataPointer>
#include <QString>

namespace zelmodems {

/// The shared part of a Failure.
class FailureData : public QSharedData
{
public:
    int code = 0;
    int number = -1;
    QString text;
};

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
/// Defined wholly in this header, so that the simulator library and any
/// program can carry one without linking the library.
class Failure
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
        Canceled,       ///< "canceled": the caller cancelled it before it was done
        LastAttempt,    ///< "last-attempt": not tried, as one attempt is left (a wrong code would block the SIM)
        WrongState,     ///< "wrong-state": the modem is not in a state where this can be done (a PIN for a ready SIM)
    };

    Failure() : d(new FailureData) {}
    Failure(Code code, const QString& text, int number = -1) : d(new FailureData)
    {
        d->code = code;
        d->text = text;
        // Only the modem's numbered errors carry a number.
        d->number = (code == CmeError || code == CmsError) ? number : -1;
    }

    bool operator==(const Failure& other) const
    {
        return d->code == other.d->code && d->number == other.d->number && d->text == other.d->text;
    }
    bool operator!=(const Failure& other) const { return !(*this == other); }

    /// Something failed (code() is not NoFailure).
    bool isFailure() const { return d->code != NoFailure; }
    Code code() const { return Code(d->code); }
    /// The n of "+CME ERROR: n" or "+CMS ERROR: n"; -1 for other codes.
    int number() const { return d->number; }
    /// What happened, for a person, in the language of the installed
    /// translation; empty for no failure.
    QString text() const { return d->text; }

    /// The code's stable name: "none", "bad-input", "busy", "cme-error", ...
    static QString codeName(Code code)
    {
        switch (code) {
        case NoFailure: return QStringLiteral("none");
        case BadInput: return QStringLiteral("bad-input");
        case NotOpen: return QStringLiteral("not-open");
        case Busy: return QStringLiteral("busy");
        case Gone: return QStringLiteral("gone");
        case NoAnswer: return QStringLiteral("no-answer");
        case Unconfirmed: return QStringLiteral("unconfirmed");
        case Refused: return QStringLiteral("refused");
        case CmeError: return QStringLiteral("cme-error");
        case CmsError: return QStringLiteral("cms-error");
        case NotSupported: return QStringLiteral("not-supported");
        case Malformed: return QStringLiteral("malformed");
        case NotFound: return QStringLiteral("not-found");
        case SystemError: return QStringLiteral("system-error");
        case Canceled: return QStringLiteral("canceled");
        case LastAttempt: return QStringLiteral("last-attempt");
        case WrongState: return QStringLiteral("wrong-state");
        }
        return QStringLiteral("unknown");
    }

private:
    QSharedDataPointer<FailureData> d;
};

} // namespace zelmodems
