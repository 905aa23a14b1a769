#pragma once
#include "failure.h"
#include "registration.h"
#include "signalquality.h"
#include "storedmessage.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QFuture>
#include <QList>
#include <QObject>
#include <QScopedPointer>
#include <QString>

namespace zelmodems {

class ModemPrivate;

/// What an operation of a Modem gives: its value, or why there is none.
template <typename T>
struct ModemResult
{
    T value{};
    Failure failure;
    bool ok() const { return !failure.isFailure(); }
};

/// A command's answer as the modem wrote it: the lines before the final
/// result code, and that code ("OK", "+CME ERROR: 11").
struct ModemAnswer
{
    QList<QByteArray> lines;
    QByteArray finalCode;
};

/// A USSD message from the network (+CUSD): its status (0 done, 1 the
/// network waits for an answer, 2 ended by the network, 4 not supported,
/// 5 timed out) and its text.
struct UssdReply
{
    int status = -1;
    QString text;
    /// The network waits for an answer (a menu): respondUssd() or cancelUssd().
    bool waitsForAnswer() const { return status == 1; }
};

/// One modem, live: commands in a queue run one at a time, every operation
/// asynchronous, and the modem's events as signals the moment they come.
///
///     zelmodems::Modem modem;
///     connect(&modem, &zelmodems::Modem::messageReceived, [](const zelmodems::StoredMessage& m) {
///         qInfo() << m.address() << m.text();
///     });
///     if (!modem.open("/dev/ttyUSB2"))
///         qFatal("%s", qPrintable(modem.failure().text()));
///     auto balance = modem.requestUssd("*100#");       // returns at once
///     auto signal = modem.readSignal();                // runs after the USSD request
///     QFutureWatcher<zelmodems::ModemResult<zelmodems::UssdReply>> watcher;
///     connect(&watcher, &QFutureWatcherBase::finished, [&] { qInfo() << balance.result().value.text; });
///     watcher.setFuture(balance);
///
/// The modem is spoken to in the standards' dialogue (V.250, 3GPP TS 27.007,
/// 27.005): an answer ends at a final result code on a line of its own,
/// unsolicited result codes are set apart and routed to the signals even
/// when they come in the middle of another command's answer, and errors
/// carry their number (the modem is set to +CMEE=1).
///
/// Threads: the port, the modem's driver and the queue live on a thread of
/// the Modem's own. The functions may be called from any thread; each
/// returns a QFuture that finishes on that thread. `result()` of a future
/// blocks until it is done (a blocking call where one is wanted), `cancel()`
/// takes a queued operation out of the queue and ends a waiting one (a
/// cancelled future has no result: check isCanceled() first). The signals
/// are emitted on the thread the Modem lives on. An operation never runs
/// while another does: a timer that asks for the signal during a USSD wait
/// waits its turn.
///
/// When the port goes away (a USB modem pulled out or reset), gone() is
/// emitted and every queued and later operation ends at once with the
/// failure "gone"; open() again (or let ModemWatcher do it) when it returns.
class ZELMODEMSLIB_EXPORT Modem : public QObject
{
    Q_OBJECT

public:
    explicit Modem(QObject* parent = nullptr);
    ~Modem() override;

    /// Opens `portName`, identifies the modem and turns on its reports:
    /// numeric errors (+CMEE=1), PDU mode, new messages and delivery reports
    /// to the port (+CNMI), registration (+CREG=2, +CGREG=2, +CEREG=2) and
    /// caller identification (+CLIP=1); the modem keeps these settings until
    /// it is reset, so a program that shares the modem later finds delivery
    /// reports routed to the port rather than stored. A port another program
    /// holds is refused (busy, with the holder). Blocks until done; false
    /// with failure().
    bool open(const QString& portName, qint32 baudRate = 115200);
    /// Ends the queue (operations still queued end with "gone") and closes the port.
    void close();
    bool isOpen() const;
    /// The port given to open().
    QString portName() const;
    /// The modem's name as identified ("huawei_E3372").
    QString name() const;
    /// Why open() failed; no failure after an open that worked.
    Failure failure() const;
    /// The last registration reported (circuit-switched domain unless only
    /// another domain reported).
    Registration registration() const;

    /// Any command (without "AT"); an answer other than OK is a failure,
    /// with the +CME/+CMS number and its meaning.
    QFuture<ModemResult<ModemAnswer>> command(const QByteArray& command, int timeoutMs = 5000);
    /// The signal (AT+CSQ).
    QFuture<ModemResult<SignalQuality>> readSignal();
    /// Every message of the SMS store, joined (MessageStore::listMessages).
    QFuture<ModemResult<QList<StoredMessage>>> listMessages();
    /// Deletes the store entries `indexes` (true when each was confirmed).
    QFuture<ModemResult<bool>> removeMessages(const QList<int>& indexes);
    /// Sends a message in PDU mode (SmsSender::send); the message references.
    QFuture<ModemResult<QList<int>>> sendMessage(const QString& number, const QString& text);
    /// Sends a USSD code and waits for the network's reply (UssdRequest).
    QFuture<ModemResult<UssdReply>> requestUssd(const QString& code);
    /// Answers a USSD menu (a reply or network message that waits for an answer).
    QFuture<ModemResult<UssdReply>> respondUssd(const QString& answer);
    /// Ends the USSD session (AT+CUSD=2).
    QFuture<ModemResult<bool>> cancelUssd();

    /// Reads the signal every `ms` milliseconds (0: never, the default) and
    /// emits signalChanged() when it changed. Modems that report their level
    /// on their own (Huawei ^RSSI, ^HCSQ) need no polling.
    void setSignalPollInterval(int ms);
    int signalPollInterval() const;

signals:
    /// A new message, decoded and joined: read from the store on +CMTI (its
    /// indexes() tell where; nothing is deleted), or taken from +CMT. The
    /// parts of a long message are held until the last one arrives.
    void messageReceived(const zelmodems::StoredMessage& message);
    /// A delivery report (+CDS, or read from the store on +CDSI).
    void deliveryReported(const zelmodems::StoredMessage& report);
    /// A USSD message the network sent on its own, or one that came after
    /// the request that waited for it had ended. With waitsForAnswer() the
    /// network waits: respondUssd() or cancelUssd().
    void ussdReceived(const zelmodems::UssdReply& reply);
    /// A registration report (+CREG, +CGREG, +CEREG).
    void registrationChanged(const zelmodems::Registration& registration);
    /// The level changed (^RSSI, ^HCSQ, or the polled AT+CSQ).
    void signalChanged(const zelmodems::SignalQuality& quality);
    /// RING, or +CRING with the call type ("VOICE").
    void ringing(const QString& callType);
    /// The caller's number (+CLIP).
    void callerIdentified(const QString& number);
    /// Every unsolicited result code as it came (with the PDU line that
    /// follows +CMT, +CDS, +CBM), known or not.
    void unsolicited(const QByteArray& line, const QByteArray& pdu);
    /// The port went away.
    void gone();

private:
    friend class ModemAccess;
    QScopedPointer<ModemPrivate> d;
};

} // namespace zelmodems

Q_DECLARE_METATYPE(zelmodems::UssdReply)
Q_DECLARE_METATYPE(zelmodems::StoredMessage)
Q_DECLARE_METATYPE(zelmodems::SignalQuality)
