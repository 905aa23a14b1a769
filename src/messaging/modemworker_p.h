#pragma once
// The side of a Modem that lives on its thread: the driver and its port,
// the live channel, the operations run in the order they were queued, and
// the unsolicited codes turned into events.
#include "modem.h"
#include "storedpdu.h"

#include <QCoreApplication>
#include <QFutureInterface>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class AtModem;
class QTimer;

namespace zelmodems {

class LiveChannel;

class ModemWorker : public QObject
{
    Q_OBJECT

public:
    explicit ModemWorker(QObject* parent = nullptr);
    ~ModemWorker() override;

    Failure open(const QString& portName, qint32 baudRate);
    void close();
    QString modemName() const;

    // Runs `body` with the port to itself, unless the modem is closed or
    // gone; unsolicited codes of the `claimed` prefixes are the body's.
    // `canceled` is asked while the body waits.
    Failure runExclusive(const std::function<Failure(AtModem*)>& body, const QList<QByteArray>& claimed,
                         const std::function<bool()>& canceled);
    void setPollInterval(int ms);

    // The parts of long messages held until the rest arrives.
    static constexpr int MaxHeldParts = 64;

signals:
    void messageReceived(const zelmodems::StoredMessage& message);
    void deliveryReported(const zelmodems::StoredMessage& report);
    void ussdReceived(const zelmodems::UssdReply& reply);
    void registrationChanged(const zelmodems::Registration& registration);
    void signalChanged(const zelmodems::SignalQuality& quality);
    void ringing(const QString& callType);
    void callerIdentified(const QString& number);
    void unsolicited(const QByteArray& line, const QByteArray& pdu);
    void gone();

private:
    void onUnsolicited(const QByteArray& line, const QByteArray& pdu);
    // Queues reading the store entry `index` (after what is queued already).
    void readStored(int index, bool report);
    void addPart(const StoredPdu& entry);
    void noteSignal(const SignalQuality& quality);
    void markGone();

    AtModem* m_modem = nullptr;
    QPointer<LiveChannel> m_live;
    QTimer* m_poll = nullptr;
    QList<StoredPdu> m_heldParts;
    SignalQuality m_signal;
    bool m_gone = false;
};

// The promise behind a queued operation. Whatever happens to the queue, the
// future finishes: when the operation is dropped unrun (the modem closed or
// destroyed first), it finishes with "gone".
template <typename T>
class Completion
{
public:
    Completion() { m_interface.reportStarted(); }
    ~Completion()
    {
        if (!m_done) {
            ModemResult<T> result;
            result.failure = Failure(Failure::Gone, ModemWorker::tr("The modem was closed before this was done"));
            finish(result);
        }
    }
    QFuture<ModemResult<T>> future() { return m_interface.future(); }
    bool isCanceled() const { return m_interface.isCanceled(); }
    void finish(const ModemResult<T>& result)
    {
        m_done = true;
        m_interface.reportResult(result);
        m_interface.reportFinished();
    }

private:
    QFutureInterface<ModemResult<T>> m_interface;
    bool m_done = false;
};

} // namespace zelmodems
