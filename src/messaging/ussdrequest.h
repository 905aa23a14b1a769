#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QCoreApplication>
#include <QScopedPointer>
#include <QString>

class AtModem;

namespace zelmodems {

class Modem;

class UssdRequestPrivate;

/// One USSD request and the network's reply with its status (3GPP TS 27.007
/// +CUSD), for callers that must tell "no balance" from "no reply": the
/// network may end the request (status 2), refuse it as not supported (4) or
/// time out (5), and a reply may carry a status and no text at all. The
/// modem's own dialect (Huawei's packed codes, ZTE's retry, SIMCOM's
/// character set) is handled as for AtModem::sendUSSD.
///
///     zelmodems::UssdRequest ussd(&modem);
///     if (ussd.send("*100#"))
///         qInfo() << ussd.text();
///     else
///         qWarning() << ussd.lastError();   // e.g. status 4: operation not supported
///
/// A code that holds a CR, a quote or another control character is refused
/// and nothing is sent.
class ZELMODEMSLIB_EXPORT UssdRequest
{
    Q_DECLARE_TR_FUNCTIONS(UssdRequest)

public:
    explicit UssdRequest(AtModem* modem);
    /// The same service on a live modem: each call runs on the modem's
    /// thread in its turn in the queue (after the operations queued before
    /// it), while the calling thread waits. Never call it from a slot of the
    /// modem's thread. (Handlers set here are called on the modem's thread.)
    explicit UssdRequest(Modem* modem);
    ~UssdRequest();
    UssdRequest(const UssdRequest&) = delete;
    UssdRequest& operator=(const UssdRequest&) = delete;

    /// Sends `code` and waits (about 20 s at most) for the reply. True for a
    /// reply of status 0 (done) or 1 (the network waits for an answer: a
    /// menu, ended with cancel()); false otherwise, with lastError().
    bool send(const QString& code);
    /// Ends a session the network keeps open (AT+CUSD=2); true when the
    /// modem confirmed it with OK.
    bool cancel();

    /// The reply's status, -1 when none came.
    int status() const;
    /// The reply's text, empty when it had none.
    QString text() const;
    /// Why the last call failed: bad input, not open, a refusal with its
    /// +CME number, no reply, a network status that is not a reply (4:
    /// not-supported, 5: no-answer, 2 and 3: refused); no failure after a
    /// call that worked.
    Failure failure() const;
    /// failure().text().
    QString lastError() const;

    /// The status in words: "no further action required", "further user
    /// action required", "terminated by the network", "answered by another
    /// local client", "operation not supported", "network time-out".
    static QString statusMeaning(int status);

private:
    QScopedPointer<UssdRequestPrivate> d;
};

} // namespace zelmodems
