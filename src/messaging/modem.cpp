// A live modem: the caller's side. Everything that touches the port runs
// on the modem's own thread, in the order it was asked for.
#include "modem.h"

#include "atmodem.h"
#include "linechannel_p.h"
#include "livechannel_p.h"
#include "messagestore.h"
#include "modemaccess_p.h"
#include "modemerror.h"
#include "modemworker_p.h"
#include "smssender.h"
#include "ussdrequest.h"

#include <QMutex>
#include <QThread>

namespace zelmodems {

class ModemPrivate
{
public:
    QThread thread;
    ModemWorker* worker = nullptr;
    mutable QMutex mutex;   // guards the values below, written from the worker's signals
    QString portName;
    QString name;
    Failure failure;
    Registration registration;
    bool open = false;
    int pollMs = 0;

    // Queues `body` behind what is queued; the future finishes when it ran
    // (or with "gone" when the queue ended first).
    template <typename T>
    QFuture<ModemResult<T>> queue(const std::function<Failure(AtModem*, T&)>& body,
                                  const QList<QByteArray>& claimed = QList<QByteArray>())
    {
        auto completion = std::make_shared<Completion<T>>();
        QFuture<ModemResult<T>> future = completion->future();
        ModemWorker* w = worker;
        QMetaObject::invokeMethod(
            worker,
            [w, completion, body, claimed] {
                ModemResult<T> result;
                if (completion->isCanceled()) {
                    result.failure = Failure(Failure::Canceled, ModemWorker::tr("Cancelled before it began"));
                } else {
                    result.failure = w->runExclusive(
                        [&result, &body](AtModem* modem) { return body(modem, result.value); }, claimed,
                        [completion] { return completion->isCanceled(); });
                }
                completion->finish(result);
            },
            Qt::QueuedConnection);
        return future;
    }
};

Modem::Modem(QObject* parent) : QObject(parent), d(new ModemPrivate)
{
    qRegisterMetaType<zelmodems::StoredMessage>("zelmodems::StoredMessage");
    qRegisterMetaType<zelmodems::Registration>("zelmodems::Registration");
    qRegisterMetaType<zelmodems::SignalQuality>("zelmodems::SignalQuality");
    qRegisterMetaType<zelmodems::UssdReply>("zelmodems::UssdReply");
    d->worker = new ModemWorker;
    d->worker->moveToThread(&d->thread);
    d->thread.setObjectName(QStringLiteral("zelmodems::Modem"));
    ModemWorker* w = d->worker;
    connect(w, &ModemWorker::messageReceived, this, &Modem::messageReceived);
    connect(w, &ModemWorker::deliveryReported, this, &Modem::deliveryReported);
    connect(w, &ModemWorker::ussdReceived, this, &Modem::ussdReceived);
    connect(w, &ModemWorker::registrationChanged, this, [this](const Registration& registration) {
        {
            QMutexLocker lock(&d->mutex);
            d->registration = registration;
        }
        emit registrationChanged(registration);
    });
    connect(w, &ModemWorker::signalChanged, this, &Modem::signalChanged);
    connect(w, &ModemWorker::ringing, this, &Modem::ringing);
    connect(w, &ModemWorker::callerIdentified, this, &Modem::callerIdentified);
    connect(w, &ModemWorker::unsolicited, this, &Modem::unsolicited);
    connect(w, &ModemWorker::gone, this, [this] {
        {
            QMutexLocker lock(&d->mutex);
            d->open = false;
        }
        emit gone();
    });
    d->thread.start();
}

Modem::~Modem()
{
    close();
    d->thread.quit();
    d->thread.wait();
    // Operations still queued are dropped with the worker; their futures
    // finish with "gone".
    delete d->worker;
}

bool Modem::open(const QString& portName, qint32 baudRate)
{
    close();
    Failure failure;
    QString name;
    QMetaObject::invokeMethod(
        d->worker,
        [&] {
            failure = d->worker->open(portName, baudRate);
            name = d->worker->modemName();
            if (!failure.isFailure() && d->pollMs > 0)
                d->worker->setPollInterval(d->pollMs);
        },
        Qt::BlockingQueuedConnection);
    QMutexLocker lock(&d->mutex);
    d->portName = portName;
    d->name = name;
    d->failure = failure;
    d->open = !failure.isFailure();
    return d->open;
}

void Modem::close()
{
    QMetaObject::invokeMethod(d->worker, [this] { d->worker->close(); }, Qt::BlockingQueuedConnection);
    QMutexLocker lock(&d->mutex);
    d->open = false;
}

bool Modem::isOpen() const
{
    QMutexLocker lock(&d->mutex);
    return d->open;
}

QString Modem::portName() const
{
    QMutexLocker lock(&d->mutex);
    return d->portName;
}

QString Modem::name() const
{
    QMutexLocker lock(&d->mutex);
    return d->name;
}

Failure Modem::failure() const
{
    QMutexLocker lock(&d->mutex);
    return d->failure;
}

Registration Modem::registration() const
{
    QMutexLocker lock(&d->mutex);
    return d->registration;
}

QFuture<ModemResult<ModemAnswer>> Modem::command(const QByteArray& command, int timeoutMs)
{
    const QString unsafe = command.contains('\r') || command.contains('\n') || command.contains('\x1A')
                               || command.contains('\x1B')
                           ? ModemWorker::tr("a command may not hold a line end, Ctrl-Z or ESC")
                           : QString();
    return d->queue<ModemAnswer>([command, timeoutMs, unsafe](AtModem* modem, ModemAnswer& answer) {
        if (!unsafe.isEmpty())
            return Failure(Failure::BadInput, ModemWorker::tr("Refused, nothing sent: %1").arg(unsafe));
        LineChannel channel(modem);
        const LineChannel::Answer got = channel.command(command, timeoutMs);
        answer.lines = got.lines;
        answer.finalCode = got.final;
        if (got.ok())
            return Failure();
        return got.failure(ModemWorker::tr("AT%1: %2")
                               .arg(QString::fromLatin1(command), ModemError::describe(got.reason(), got.final)));
    });
}

QFuture<ModemResult<SignalQuality>> Modem::readSignal()
{
    return d->queue<SignalQuality>([](AtModem* modem, SignalQuality& quality) {
        quality = SignalQuality::read(modem);
        return quality.failure();
    });
}

QFuture<ModemResult<QList<StoredMessage>>> Modem::listMessages()
{
    return d->queue<QList<StoredMessage>>([](AtModem* modem, QList<StoredMessage>& messages) {
        MessageStore store(modem);
        store.listMessages(messages);
        return store.failure();
    });
}

QFuture<ModemResult<bool>> Modem::removeMessages(const QList<int>& indexes)
{
    return d->queue<bool>([indexes](AtModem* modem, bool& removed) {
        MessageStore store(modem);
        removed = store.remove(indexes);
        return store.failure();
    });
}

QFuture<ModemResult<QList<int>>> Modem::sendMessage(const QString& number, const QString& text)
{
    return d->queue<QList<int>>([number, text](AtModem* modem, QList<int>& references) {
        SmsSender sender(modem);
        sender.send(number, text);
        references = sender.references();
        return sender.failure();
    });
}

namespace {

// A USSD request or answer, and the session ended when the caller cancels
// while the network is still to answer.
Failure ussd(AtModem* modem, const QString& code, UssdReply& reply)
{
    UssdRequest request(modem);
    request.send(code);
    reply.status = request.status();
    reply.text = request.text();
    LiveChannel* live = LiveChannel::of(modem);
    if (request.failure().isFailure() && live && live->canceled()) {
        // The network may still be working on it: the session is ended, so
        // that its reply does not come later as a message of its own.
        live->setCancelCheck(std::function<bool()>());
        UssdRequest(modem).cancel();
        return Failure(Failure::Canceled, ModemWorker::tr("Cancelled; the USSD session was ended"));
    }
    return request.failure();
}

} // namespace

QFuture<ModemResult<UssdReply>> Modem::requestUssd(const QString& code)
{
    return d->queue<UssdReply>([code](AtModem* modem, UssdReply& reply) { return ussd(modem, code, reply); },
                               {QByteArray("+CUSD:")});
}

QFuture<ModemResult<UssdReply>> Modem::respondUssd(const QString& answer)
{
    return d->queue<UssdReply>([answer](AtModem* modem, UssdReply& reply) { return ussd(modem, answer, reply); },
                               {QByteArray("+CUSD:")});
}

QFuture<ModemResult<bool>> Modem::cancelUssd()
{
    return d->queue<bool>([](AtModem* modem, bool& ended) {
        UssdRequest request(modem);
        ended = request.cancel();
        return request.failure();
    });
}

Failure ModemAccess::run(Modem* modem, const std::function<void(AtModem*)>& body, const QList<QByteArray>& claimed)
{
    // The caller waits, so the body may use what it captured by reference.
    const QFuture<ModemResult<bool>> done = modem->d->queue<bool>(
        [&body](AtModem* driver, bool&) {
            body(driver);
            return Failure();
        },
        claimed);
    return done.result().failure;
}

void Modem::setSignalPollInterval(int ms)
{
    {
        QMutexLocker lock(&d->mutex);
        d->pollMs = qMax(0, ms);
    }
    const int interval = qMax(0, ms);
    QMetaObject::invokeMethod(d->worker, [this, interval] { d->worker->setPollInterval(interval); },
                              Qt::QueuedConnection);
}

int Modem::signalPollInterval() const
{
    QMutexLocker lock(&d->mutex);
    return d->pollMs;
}

} // namespace zelmodems
