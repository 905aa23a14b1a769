#pragma once
// The line dialogue of a modem that is watched for events: the bytes not
// yet read into a line and the router's state live here, beside the port,
// for as long as the port is open, so that what one command leaves behind
// (an unsolicited code right after its OK) reaches the listener instead of
// dying with the command. While no command runs, the port is read as data
// arrives and every unsolicited code goes straight to the listener; when
// the port goes away, the listener hears it at once.
#include "linerouter_p.h"
#include "linesplitter_p.h"

#include <QByteArray>
#include <QList>
#include <QObject>

#include <functional>

class AtModem;
class QSerialPort;

namespace zelmodems {

class LiveChannel : public QObject
{
    Q_OBJECT

public:
    // Attaches to the modem's open port (and dies with it).
    explicit LiveChannel(AtModem* modem);
    ~LiveChannel() override;

    // The live channel of `modem`'s port, or null when it is not watched.
    static LiveChannel* of(AtModem* modem);

    LineSplitter& splitter() { return m_splitter; }
    LineRouter& router() { return m_router; }

    // Gets every unsolicited code with its PDU line (empty when it has none),
    // except those of a prefix the running operation has claimed.
    void setListener(const std::function<void(const QByteArray&, const QByteArray&)>& listener)
    {
        m_listener = listener;
    }
    // The running operation takes the unsolicited codes of these prefixes
    // itself ("+CUSD:" while a USSD request waits for its reply).
    void setClaimed(const QList<QByteArray>& prefixes) { m_claimed = prefixes; }
    // Asked while a command waits; true ends the wait.
    void setCancelCheck(const std::function<bool()>& check) { m_cancelCheck = check; }
    bool canceled() const { return m_cancelCheck && m_cancelCheck(); }
    // While an operation runs it reads the port itself.
    void setBusy(bool busy) { m_busy = busy; }

    // QSerialPort reports an error when its read notification comes for
    // bytes that a blocking wait has already taken: a read of 0 bytes is a
    // read error, EAGAIN a resource error (and its notification is switched
    // off until the next readAll()). The device is still there. The error is
    // cleared unless the device has really hung up, so that only a device
    // that went away ends the dialogue.
    static void forgiveSpuriousReadError(QSerialPort* port);

    // One routed line: unsolicited codes (and the PDU line that follows
    // some) go to the listener; answers are the reader's business.
    void take(LineRouter::Kind kind, const QByteArray& line);
    // Reads what the port holds and routes it; false when the port is gone.
    bool readNow();

signals:
    void portGone();

private:
    void deliver(const QByteArray& line, const QByteArray& pdu);
    void readIdle();

    AtModem* m_modem;
    LineSplitter m_splitter;
    LineRouter m_router;
    std::function<void(const QByteArray&, const QByteArray&)> m_listener;
    std::function<bool()> m_cancelCheck;
    QList<QByteArray> m_claimed;
    QByteArray m_waitingForPdu;
    bool m_busy = false;
    bool m_gone = false;
};

} // namespace zelmodems
