// Network registration reports (+CREG, +CGREG, +CEREG).
#include "registration.h"

#include "atmodem.h"
#include "linechannel_p.h"

#include <QList>

namespace zelmodems {

class RegistrationData : public QSharedData
{
public:
    Registration::Domain domain = Registration::CircuitSwitched;
    Registration::State state = Registration::NotRead;
    QString area;
    QString cell;
    int act = -1;
    Failure failure;
};

Registration::Registration() : d(new RegistrationData) {}
Registration::Registration(const Registration& other) = default;
Registration& Registration::operator=(const Registration& other) = default;
Registration::~Registration() = default;

bool Registration::operator==(const Registration& other) const
{
    return d->domain == other.d->domain && d->state == other.d->state && d->area == other.d->area
        && d->cell == other.d->cell && d->act == other.d->act;
}

Registration Registration::fromUnsolicited(const QByteArray& line)
{
    return parse(line, false);
}

Registration Registration::fromAnswer(const QByteArray& line)
{
    return parse(line, true);
}

Registration Registration::parse(const QByteArray& line, bool answer)
{
    Registration result;
    Domain domain;
    int prefix;
    if (line.startsWith("+CREG:"))
        domain = CircuitSwitched, prefix = 6;
    else if (line.startsWith("+CGREG:"))
        domain = PacketSwitched, prefix = 7;
    else if (line.startsWith("+CEREG:"))
        domain = Eps, prefix = 7;
    else
        return result;
    QList<QByteArray> fields = line.mid(prefix).split(',');
    for (QByteArray& field : fields) {
        field = field.trimmed();
        if (field.size() >= 2 && field.startsWith('"') && field.endsWith('"'))
            field = field.mid(1, field.size() - 2);
    }
    if (answer)
        fields.removeFirst();
    bool ok = false;
    const int state = fields.value(0).toInt(&ok);
    if (!ok || state < NotRegistered || state > EmergencyOnly)
        return result;
    const auto hex = [](const QByteArray& field) {
        bool valid = false;
        field.toULongLong(&valid, 16);
        return valid ? QString::fromLatin1(field).toUpper() : QString();
    };
    result.d->domain = domain;
    result.d->state = State(state);
    result.d->area = hex(fields.value(1));
    result.d->cell = hex(fields.value(2));
    const int act = fields.value(3).toInt(&ok);
    result.d->act = ok ? act : -1;
    return result;
}

Registration Registration::read(AtModem* modem, Domain domain)
{
    Registration result;
    if (!modem) {
        result.d->failure = Failure(Failure::NotOpen, tr("no modem given"));
        return result;
    }
    const QByteArray name = domainName(domain).toLatin1();
    LineChannel channel(modem);
    // A modem that knows no location report keeps the plain one.
    channel.command("+" + name + "=2", 1000);
    const LineChannel::Answer answer = channel.command("+" + name + "?", 1000);
    if (answer.ok()) {
        for (const QByteArray& line : answer.lines) {
            result = fromAnswer(line.trimmed());
            if (result.isValid())
                return result;
        }
        result.d->failure = Failure(Failure::Malformed, tr("the modem's answer to AT+%1? holds no registration state")
                                                            .arg(QString::fromLatin1(name)));
        return result;
    }
    result.d->failure = answer.failure(tr("the modem did not report its registration (AT+%1?): %2")
                                           .arg(QString::fromLatin1(name), answer.reason()));
    return result;
}

Failure Registration::failure() const { return d->failure; }
bool Registration::isValid() const { return d->state != NotRead; }
Registration::Domain Registration::domain() const { return d->domain; }
Registration::State Registration::state() const { return d->state; }
bool Registration::isRegistered() const
{
    return d->state == Home || d->state == Roaming || d->state == SmsOnlyHome || d->state == SmsOnlyRoaming;
}
bool Registration::isRoaming() const { return d->state == Roaming || d->state == SmsOnlyRoaming; }
QString Registration::area() const { return d->area; }
QString Registration::cell() const { return d->cell; }
int Registration::accessTechnology() const { return d->act; }

QString Registration::stateName(State state)
{
    switch (state) {
    case NotRead: return QStringLiteral("none");
    case NotRegistered: return QStringLiteral("not-registered");
    case Home: return QStringLiteral("home");
    case Searching: return QStringLiteral("searching");
    case Denied: return QStringLiteral("denied");
    case UnknownState: return QStringLiteral("unknown");
    case Roaming: return QStringLiteral("roaming");
    case SmsOnlyHome: return QStringLiteral("sms-only-home");
    case SmsOnlyRoaming: return QStringLiteral("sms-only-roaming");
    case EmergencyOnly: return QStringLiteral("emergency-only");
    }
    return QStringLiteral("none");
}

QString Registration::stateText(State state)
{
    switch (state) {
    case NotRead: return tr("no report");
    case NotRegistered: return tr("not registered");
    case Home: return tr("registered, home network");
    case Searching: return tr("searching for a network");
    case Denied: return tr("registration denied");
    case UnknownState: return tr("unknown");
    case Roaming: return tr("registered, roaming");
    case SmsOnlyHome: return tr("registered for SMS only, home network");
    case SmsOnlyRoaming: return tr("registered for SMS only, roaming");
    case EmergencyOnly: return tr("emergency calls only");
    }
    return tr("no report");
}

QString Registration::technologyName(int accessTechnology)
{
    static const char* const NAMES[] = {"GSM", "GSM Compact", "UTRAN", "GSM/EGPRS", "UTRAN/HSDPA",
                                        "UTRAN/HSUPA", "UTRAN/HSPA", "E-UTRAN", "EC-GSM-IoT", "E-UTRAN NB-IoT",
                                        "E-UTRA/5GCN", "NR/5GCN", "NG-RAN", "E-UTRA-NR"};
    if (accessTechnology < 0)
        return QString();
    if (accessTechnology >= int(sizeof NAMES / sizeof *NAMES))
        return QStringLiteral("AcT %1").arg(accessTechnology);
    return QString::fromLatin1(NAMES[accessTechnology]);
}

QString Registration::domainName(Domain domain)
{
    switch (domain) {
    case CircuitSwitched: return QStringLiteral("CREG");
    case PacketSwitched: return QStringLiteral("CGREG");
    case Eps: return QStringLiteral("CEREG");
    }
    return QString();
}

} // namespace zelmodems
