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

#include <deque>
#include <future>
#include <mutex>
#include <tuple>
#include <type_traits>

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

    // Work for the modem's thread, in order. The caller's side hands each
    // task over under this mutex and wakes the thread; the thread takes one
    // task per wake-up. (The hand-off is the project's own, so that it is
    // plain to every reader, ThreadSanitizer included.)
    std::mutex tasksMutex;
    std::deque<std::function<void()>> tasks;

    void post(std::function<void()> task)
    {
        {
            std::lock_guard<std::mutex> lock(tasksMutex);
            tasks.push_back(std::move(task));
        }
        QMetaObject::invokeMethod(worker, [this] { runNext(); }, Qt::QueuedConnection);
    }

    void runNext()
    {
        std::function<void()> task;
        {
            std::lock_guard<std::mutex> lock(tasksMutex);
            if (tasks.empty())
                return;
            task = std::move(tasks.front());
            tasks.pop_front();
        }
        task();
    }

    // Runs `task` on the modem's thread in its turn and waits for it.
    void runAndWait(const std::function<void()>& task)
    {
        std::promise<void> done;
        post([&task, &done] {
            task();
            done.set_value();
        });
        done.get_future().wait();
    }

    // Events from the modem's thread, in order, for the Modem's thread: the
    // same kind of hand-off the other way.
    std::mutex eventsMutex;
    std::deque<std::function<void()>> events;

    void deliver(Modem* q, std::function<void()> event)
    {
        {
            std::lock_guard<std::mutex> lock(eventsMutex);
            events.push_back(std::move(event));
        }
        QMetaObject::invokeMethod(q, [this] { deliverNext(); }, Qt::QueuedConnection);
    }

    void deliverNext()
    {
        std::function<void()> event;
        {
            std::lock_guard<std::mutex> lock(eventsMutex);
            if (events.empty())
                return;
            event = std::move(events.front());
            events.pop_front();
        }
        event();
    }

    // Passes the worker's signal `from` on as the Modem's `to`, on the
    // Modem's thread; `note` (given the arguments) first records what the
    // Modem keeps of it, under the mutex.
    template <typename... Args, typename Note = std::nullptr_t>
    void forward(Modem* q, void (ModemWorker::*from)(Args...), void (Modem::*to)(Args...), Note note = nullptr)
    {
        QObject::connect(
            worker, from, worker,
            [this, q, to, note](Args... args) {
                deliver(q, [this, q, to, note, copies = std::make_tuple(std::decay_t<Args>(args)...)] {
                    if constexpr (!std::is_same_v<Note, std::nullptr_t>) {
                        QMutexLocker lock(&mutex);
                        std::apply(note, copies);
                    }
                    std::apply([q, to](const auto&... values) { (q->*to)(values...); }, copies);
                });
            },
            Qt::DirectConnection);
    }

    // Tasks never run (the Modem destroyed first) are dropped here, which
    // finishes their futures with "gone".
    void dropTasks()
    {
        std::deque<std::function<void()>> dropped;
        {
            std::lock_guard<std::mutex> lock(tasksMutex);
            dropped.swap(tasks);
        }
    }

    // Queues `body` behind what is queued; the future finishes when it ran
    // (or with "gone" when the queue ended first).
    template <typename T>
    QFuture<ModemResult<T>> queue(const std::function<Failure(AtModem*, T&)>& body,
                                  const QList<QByteArray>& claimed = QList<QByteArray>())
    {
        auto completion = std::make_shared<Completion<T>>();
        QFuture<ModemResult<T>> future = completion->future();
        ModemWorker* w = worker;
        post([w, completion, body, claimed] {
                ModemResult<T> result;
                if (completion->isCanceled()) {
                    result.failure = Failure(Failure::Canceled, ModemWorker::tr("Cancelled before it began"));
                } else {
                    result.failure = w->runExclusive(
                        [&result, &body](AtModem* modem) { return body(modem, result.value); }, claimed,
                        [completion] { return completion->isCanceled(); });
                }
                completion->finish(result);
            });
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
    // Each event crosses to the Modem's thread through the hand-off below:
    // the worker's signal, taken on the modem's thread, copies its arguments
    // into a call that the Modem's thread makes.
    d->forward(this, &ModemWorker::messageReceived, &Modem::messageReceived);
    d->forward(this, &ModemWorker::deliveryReported, &Modem::deliveryReported);
    d->forward(this, &ModemWorker::ussdReceived, &Modem::ussdReceived);
    d->forward(this, &ModemWorker::registrationChanged, &Modem::registrationChanged,
               [this](const Registration& registration) { d->registration = registration; });
    d->forward(this, &ModemWorker::signalChanged, &Modem::signalChanged);
    d->forward(this, &ModemWorker::ringing, &Modem::ringing);
    d->forward(this, &ModemWorker::callerIdentified, &Modem::callerIdentified);
    d->forward(this, &ModemWorker::unsolicited, &Modem::unsolicited);
    d->forward(this, &ModemWorker::gone, &Modem::gone, [this] { d->open = false; });
    d->thread.start();
}

Modem::~Modem()
{
    close();
    d->thread.quit();
    d->thread.wait();
    // Operations still queued are dropped; their futures finish with "gone".
    d->dropTasks();
    delete d->worker;
}

bool Modem::open(const QString& portName, qint32 baudRate)
{
    close();
    Failure failure;
    QString name;
    int pollMs = 0;
    {
        QMutexLocker lock(&d->mutex);
        pollMs = d->pollMs;
    }
    d->runAndWait([&] {
        failure = d->worker->open(portName, baudRate);
        name = d->worker->modemName();
        if (!failure.isFailure() && pollMs > 0)
            d->worker->setPollInterval(pollMs);
    });
    QMutexLocker lock(&d->mutex);
    d->portName = portName;
    d->name = name;
    d->failure = failure;
    d->open = !failure.isFailure();
    return d->open;
}

void Modem::close()
{
    d->runAndWait([this] { d->worker->close(); });
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
                               .arg(QString::fromLatin1(command), got.reason()));
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
    d->post([this, interval] { d->worker->setPollInterval(interval); });
}

int Modem::signalPollInterval() const
{
    QMutexLocker lock(&d->mutex);
    return d->pollMs;
}

} // namespace zelmodems
