// USSD with the reply's status: the same request and wait as the modem's own
// USSD call, with the +CUSD status read instead of dropped.
#include "ussdrequest.h"

#include "atmodem.h"
#include "atmodem_p.h"

namespace zelmodems {

class UssdRequestPrivate
{
public:
    AtModem* modem = nullptr;
    int status = -1;
    QString text;
    QString error;
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

UssdRequest::~UssdRequest() = default;

bool UssdRequest::send(const QString& code)
{
    using namespace atmodeminternal;
    d->status = -1;
    d->text.clear();
    d->error.clear();
    if (code.isEmpty()) {
        d->error = tr("No USSD code given");
        return false;
    }
    QByteArray buffer;
    if (!d->modem->requestUssd(AT::Commands::CUSD, code, buffer)) {
        d->error = d->modem->lastError().isEmpty() ? tr("The modem refused the request") : d->modem->lastError();
        return false;
    }
    for (int attempt = 1; attempt <= USSD_ATTEMPTS; ++attempt) {
        d->modem->waitForUssd(attempt, buffer);
        const int status = statusIn(buffer);
        if (status >= 0) {
            d->status = status;
            QString text;
            if (d->modem->getCUSDMessage(buffer, text))
                d->text = text;
            if (status <= 1)
                return true;
            d->error = tr("The network answered with status %1: %2").arg(status).arg(statusMeaning(status));
            return false;
        }
        if (buffer.contains("ERROR")) {
            d->error = tr("The modem answered ERROR to the request");
            return false;
        }
        if (!d->modem->isConnected()) {
            d->error = tr("The modem is gone");
            return false;
        }
    }
    d->error = tr("No reply from the network within %1 s").arg(USSD_ATTEMPTS * (USSD_PAUSE_MS + USSD_READS * USSD_READ_PAUSE_MS) / 1000);
    return false;
}

bool UssdRequest::cancel()
{
    QByteArray answer;
    return d->modem->sendCommand("+CUSD=2", answer, 2000);
}

int UssdRequest::status() const { return d->status; }
QString UssdRequest::text() const { return d->text; }
QString UssdRequest::lastError() const { return d->error; }

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
