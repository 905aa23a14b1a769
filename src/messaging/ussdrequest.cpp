// USSD with the reply's status: the same request as the modem's own USSD
// call, over the standards' line dialogue, with the +CUSD status read
// instead of dropped and no byte of the reply thrown away.
#include "ussdrequest.h"
#include "ussdtext_p.h"

#include "atmodem.h"
#include "modemaccess_p.h"
#include "atmodem_p.h"
#include "linechannel_p.h"

namespace zelmodems {

class UssdRequestPrivate
{
public:
    AtModem* modem = nullptr;
    Modem* live = nullptr;   // the live modem the calls run on, if any
    int status = -1;
    QString text;
    Failure failure;

    bool fail(Failure::Code code, const QString& text)
    {
        failure = Failure(code, text);
        return false;
    }
};

namespace {

// The status of the last +CUSD in `buffer`, -1 when there is none yet.
int statusIn(const QByteArray& buffer)
{
    const int at = buffer.lastIndexOf("+CUSD:");
    if (at < 0)
        return -1;
    int pos = at + 6;
    while (pos < buffer.size() && buffer.at(pos) == ' ')
        ++pos;
    if (pos >= buffer.size() || buffer.at(pos) < '0' || buffer.at(pos) > '9')
        return -1;
    return buffer.at(pos) - '0';
}

} // namespace

UssdRequest::UssdRequest(AtModem* modem) : d(new UssdRequestPrivate)
{
    d->modem = modem;
}

UssdRequest::UssdRequest(Modem* modem) : d(new UssdRequestPrivate)
{
    d->live = modem;
}

UssdRequest::~UssdRequest() = default;

bool UssdRequest::send(const QString& code)
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return send(code); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        }, {QByteArray("+CUSD:")});
    using namespace atmodeminternal;
    d->status = -1;
    d->text.clear();
    d->failure = Failure();
    if (code.isEmpty()) {
        return d->fail(Failure::BadInput, tr("No USSD code given"));
    }
    const QString unsafe = AtInput::checkArgument(code);
    if (!unsafe.isEmpty()) {
        return d->fail(Failure::BadInput, tr("Refused the USSD code, nothing sent: %1").arg(unsafe));
    }
    AtModem* modem = d->modem;
    if (!modem->portOpen()) {
        return d->fail(Failure::NotOpen, tr("The modem's port is not open"));
    }
    // The reply may come before the OK, right after it in the same read,
    // or seconds later: every line that arrives is looked at, and nothing
    // in between discards input or re-identifies the modem.
    LineChannel channel(modem);
    channel.command(AT::Commands::ATE + QByteArray("0"), SHORT_TIMEOUT_MS);
    if (modem->dialect() == AtModem::SIM_COM)
        channel.command(AT::Commands::SimCom::CSCS, SHORT_TIMEOUT_MS);
    int timeoutMs = SHORT_TIMEOUT_MS;
    const QByteArray command = modem->ussdCommand(AT::Commands::CUSD, code, timeoutMs);
    QElapsedTimer clock;
    clock.start();
    LineChannel::Answer answer = channel.command(command, timeoutMs);
    if (!answer.ok() && modem->dialect() == AtModem::ZTE && answer.final.contains("Unexpected Data Value")) {
        // ZTE firmware refuses a request while the network is still busy
        // with an earlier one; a second try a moment later goes through.
        QThread::msleep(ZTE_USSD_RETRY_PAUSE_MS);
        answer = channel.command(command, SHORT_TIMEOUT_MS);
    }
    QByteArray reply;
    for (const QByteArray& line : answer.lines + answer.unsolicited) {
        if (line.startsWith("+CUSD:"))
            reply = line;
    }
    if (!answer.ok() && reply.isEmpty()) {
        if (answer.end == LineChannel::End::PortGone)
            d->failure = answer.failure(tr("The modem is gone"));
        else if (answer.end == LineChannel::End::Final)
            d->failure = answer.failure(tr("The modem refused the request: %1").arg(answer.reason()));
        else
            d->failure = answer.failure(tr("The modem did not take the request: %1").arg(answer.reason()));
        return false;
    }
    const int waitMs = USSD_ATTEMPTS * (USSD_PAUSE_MS + USSD_READS * USSD_READ_PAUSE_MS);
    if (reply.isEmpty()
        && !channel.waitFor("+CUSD:", int(qMax<qint64>(0, waitMs - clock.elapsed())), reply)) {
        if (!modem->portOpen())
            return d->fail(Failure::Gone, tr("The modem is gone"));
        return d->fail(Failure::NoAnswer,
                       tr("No reply from the network within %1 s").arg((clock.elapsed() + 500) / 1000));
    }
    const int status = statusIn(reply);
    d->status = status;
    d->text = ussdText(modem, reply);
    if (status >= 0 && status <= 1)
        return true;
    // 4: the network does not offer the service; 5: it timed out; 2 and 3:
    // the session was ended or taken elsewhere; no readable status at all.
    const Failure::Code why = status == 4 ? Failure::NotSupported
                             : status == 5 ? Failure::NoAnswer
                             : status < 0 ? Failure::Malformed
                                          : Failure::Refused;
    return d->fail(why, tr("The network answered with status %1: %2").arg(status).arg(statusMeaning(status)));
}

bool UssdRequest::cancel()
{
    if (d->live)
        return ModemAccess::runCall(d.data(), [&] { return cancel(); }, [this](const Failure& why) {
            d->failure = why;
            return false;
        }, {QByteArray("+CUSD:")});
    d->failure = Failure();
    if (!d->modem->portOpen())
        return d->fail(Failure::NotOpen, tr("The modem's port is not open"));
    // The same line dialogue as the request: only a whole-line OK confirms.
    LineChannel channel(d->modem);
    const LineChannel::Answer answer = channel.command("+CUSD=2", SHORT_TIMEOUT_MS * 2);
    if (answer.ok())
        return true;
    d->failure = answer.failure(tr("The modem did not end the session: %1").arg(answer.reason()));
    return false;
}

int UssdRequest::status() const { return d->status; }
QString UssdRequest::text() const { return d->text; }
QString UssdRequest::lastError() const { return d->failure.text(); }
Failure UssdRequest::failure() const { return d->failure; }

QString UssdRequest::statusMeaning(int status)
{
    switch (status) {
    case 0: return tr("no further action required");
    case 1: return tr("further user action required");
    case 2: return tr("terminated by the network");
    case 3: return tr("answered by another local client");
    case 4: return tr("operation not supported");
    case 5: return tr("network time-out");
    default: return tr("unknown status");
    }
}

} // namespace zelmodems
