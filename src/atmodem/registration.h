#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QSharedDataPointer>
#include <QString>

class AtModem;

namespace zelmodems {

class RegistrationData;

/// Where the modem stands with the network in one domain, as +CREG (circuit
/// switched), +CGREG (GPRS) or +CEREG (EPS) report it (3GPP TS 27.007 7.2,
/// 10.1.20, 10.1.22): the state, the location or tracking area and the cell
/// in hexadecimal as the modem gave them, and the access technology.
///
///     connect(&modem, &zelmodems::Modem::registrationChanged, [](const zelmodems::Registration& r) {
///         qInfo() << zelmodems::Registration::stateName(r.state()) << r.area() << r.cell();
///     });
///
/// An implicitly shared value.
class ZELMODEMSLIB_EXPORT Registration
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::Registration)

public:
    enum Domain { CircuitSwitched, PacketSwitched, Eps };
    /// `<stat>` of TS 27.007.
    enum State {
        NotRead = -1,          ///< no readable report
        NotRegistered = 0,     ///< not registered, not searching
        Home = 1,              ///< registered, home network
        Searching = 2,         ///< not registered, searching
        Denied = 3,            ///< registration denied
        UnknownState = 4,      ///< unknown (out of coverage, say)
        Roaming = 5,           ///< registered, roaming
        SmsOnlyHome = 6,       ///< registered for SMS only, home network
        SmsOnlyRoaming = 7,    ///< registered for SMS only, roaming
        EmergencyOnly = 8,     ///< attached for emergency bearer services only
    };

    Registration();
    Registration(const Registration& other);
    Registration& operator=(const Registration& other);
    ~Registration();
    bool operator==(const Registration& other) const;
    bool operator!=(const Registration& other) const { return !(*this == other); }

    /// An unsolicited report: "+CREG: `<stat>`[,`<lac>`,`<ci>`[,`<AcT>`]]".
    static Registration fromUnsolicited(const QByteArray& line);
    /// The answer to AT+CREG? (and +CGREG?, +CEREG?), whose first field is
    /// the report setting `<n>`.
    static Registration fromAnswer(const QByteArray& line);

    /// Asks the modem: turns on the report with location (AT+CREG=2, as
    /// AtModem::getGsmCells does; +CGREG=2 and +CEREG=2 for the other
    /// domains) and reads it (AT+CREG?). Blocks like every AtModem call.
    static Registration read(AtModem* modem, Domain domain = CircuitSwitched);

    bool isValid() const;
    /// Why read() got no report (no answer, refused, unreadable).
    Failure failure() const;
    Domain domain() const;
    State state() const;
    /// Registered (home or roaming, SMS only included).
    bool isRegistered() const;
    bool isRoaming() const;
    /// Location area (tracking area for EPS) in upper-case hexadecimal;
    /// empty when the report has none.
    QString area() const;
    /// Cell identity in upper-case hexadecimal; empty when the report has none.
    QString cell() const;
    /// `<AcT>`; -1 when the report has none.
    int accessTechnology() const;

    /// "not-registered", "home", "searching", "denied", "unknown", "roaming",
    /// "sms-only-home", "sms-only-roaming", "emergency-only"; "none" for NotRead.
    static QString stateName(State state);
    /// The same for people, in the installed translation.
    static QString stateText(State state);
    /// "GSM", "UTRAN", "E-UTRAN", ... (TS 27.007 `<AcT>`); empty for -1.
    static QString technologyName(int accessTechnology);
    /// "CREG", "CGREG" or "CEREG".
    static QString domainName(Domain domain);

private:
    static Registration parse(const QByteArray& line, bool answer);
    QSharedDataPointer<RegistrationData> d;
};

} // namespace zelmodems

Q_DECLARE_METATYPE(zelmodems::Registration)
