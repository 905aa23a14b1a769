// A simulated modem on a pseudo-terminal: its thread, its state and its answers.
#include "simmodem.h"
#include "ptyspeed_p.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace zelmodems::sim {

struct StoredSms
{
    int status = 1;
    QByteArray pdu;
};

struct FaultEntry
{
    Fault fault = Fault::None;
    int param = 1;
};

struct SimModem::Private
{
    zelmodems::Failure failure;   // why start() or createLink() failed
    Profile profile;

    mutable std::mutex mutex;            // guards everything below up to the thread state
    bool echo = true;
    QMap<QByteArray, Reply> replies;     // keyed by upper-case command
    QList<Handler> handlers;
    QMap<QByteArray, FaultEntry> faults; // keyed by upper-case command, "" = all
    int latencyMs = 0;
    int byteDelayMs = 0;
    QList<qint32> acceptedSpeeds;
    bool silent = false;
    int restartMs = 0;
    QList<CommandRecord> log;
    QList<QPair<QByteArray, QByteArray>> sent;
    QString linkPath;
    QString ptyPath;
    bool vanished = false;
    int textMode = 0;                    // AT+CMGF
    QByteArray charset = "IRA";          // AT+CSCS
    QMap<QByteArray, QByteArray> ussdReplies;
    QMap<QByteArray, QByteArray> ussdSmsReplies;
    int ussdDelayMs = 100;
    bool ussdBeforeOk = false;
    int ussdRefusals = 0;
    QList<QByteArray> ussdRequests;
    QMap<int, StoredSms> sms;
    int smsListLimit = -1;
    bool smsConfirm = true;              // the network confirms a sent message
    QByteArray smsRefusal;               // the result code that refuses it instead
    int promptDelayMs = 0;               // the "> " prompt comes this late
    int cregMode = 0;                    // AT+CREG=<n>
    bool clip = false;                   // AT+CLIP=1
    QByteArray registration = "1,\"1A2B\",\"00C3D4E5\",7";   // <stat>,<lac>,<ci>,<AcT>
    int cmee = 0;                        // AT+CMEE=<n>
    SimState sim = SimState::Ready;
    QByteArray pin = "1234";
    QByteArray puk = "12345678";
    int pinAttempts = 3;
    int pukAttempts = 10;
    int copsFormat = 0;                  // AT+COPS=3,<format>
    QByteArray networkName = "MegaFon";
    QByteArray networkNumeric;           // empty: the IMSI's first five digits
    int storePlaces = 30;

    // Owned by the modem's thread.
    int master = -1;
    int slave = -1;                      // held open: a pty master reads EIO while no slave is open
    int wake[2] = {-1, -1};
    std::thread thread;
    std::atomic<bool> stopping{false};
    QByteArray line;
    bool smsPrompt = false;
    QByteArray smsNumber;
    QByteArray smsText;
    qint64 deafUntil = 0;
    QElapsedTimer clock;
    std::multimap<qint64, std::function<void()>> timers;   // due time (clock) -> task

    std::mutex taskMutex;
    std::deque<std::function<void()>> tasks;

    void run();
    void feed(const QByteArray& data);
    void processLine(QByteArray line);
    void processRaw(const QByteArray& raw);
    std::optional<Reply> answer(const QByteArray& command, bool* vanish);
    Reply builtin(const QByteArray& command);
    Reply ussd(const QByteArray& command);
    Reply listSms(const QByteArray& key);
    Reply cmeError(int code) const;
    Reply cmsError(int code) const;
    std::optional<Reply> simGate(const QByteArray& key);
    Reply simCommand(const QByteArray& key, const QByteArray& command);
    int registrationState() const;
    int storeSms(const QByteArray& pdu, int status, int index);
    void schedule(int ms, std::function<void()> task);
    void whenQuiet(std::shared_ptr<std::atomic<bool>> quiet);
    void write(const QByteArray& bytes, int byteDelay);
    void send(const Reply& reply);
    void record(const QByteArray& command);
    void closeDevice();
    void post(std::function<void()> task);
    void runSync(std::function<void()> task);
    bool openDevice(QString* why);
    qint32 speed() const { return slave >= 0 ? readLineSpeed(slave) : 0; }
};

static QByteArray upper(const QByteArray& s)
{
    return s.toUpper();
}

SimModem::SimModem(const Profile& profile) : d(new Private)
{
    d->profile = profile;
    d->echo = profile.echo;
    if (profile.make == Make::Cinterion)
        d->registration = "1,\"1A2B\",\"00C3D4E5\",0";   // a GSM-only module
    for (auto it = profile.answers.cbegin(); it != profile.answers.cend(); ++it)
        d->replies.insert(upper(it.key()), Reply::ok(it.value()));
}

SimModem::SimModem(Make make) : SimModem(Profile::forMake(make))
{
}

SimModem::~SimModem()
{
    stop();
}

bool SimModem::Private::openDevice(QString* why)
{
    auto fail = [&](const char* what) {
        *why = QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(strerror(errno)));
        return false;
    };
    master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0)
        return fail("posix_openpt");
    if (::grantpt(master) != 0 || ::unlockpt(master) != 0)
        return fail("grantpt");
    char name[128];
    if (::ptsname_r(master, name, sizeof name) != 0)
        return fail("ptsname");
    slave = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave < 0)
        return fail("open slave");
    struct termios tio;
    if (::tcgetattr(slave, &tio) == 0) {
        ::cfmakeraw(&tio);
        ::tcsetattr(slave, TCSANOW, &tio);
    }
    ::fcntl(master, F_SETFL, ::fcntl(master, F_GETFL) | O_NONBLOCK);
    std::lock_guard<std::mutex> lock(mutex);
    ptyPath = QString::fromLocal8Bit(name);
    vanished = false;
    return true;
}

bool SimModem::start(QString* error)
{
    auto fail = [&](const QString& text) {
        d->failure = zelmodems::Failure(zelmodems::Failure::SystemError, text);
        if (error)
            *error = text;
        d->closeDevice();
        return false;
    };
    d->failure = zelmodems::Failure();
    if (d->thread.joinable())
        return true;
    QString why;
    if (!d->openDevice(&why))
        return fail(why);
    if (::pipe2(d->wake, O_CLOEXEC | O_NONBLOCK) != 0)
        return fail(QStringLiteral("pipe: %1").arg(QString::fromLocal8Bit(strerror(errno))));
    d->clock.start();
    d->stopping = false;
    d->thread = std::thread([this] { d->run(); });
    return true;
}

bool SimModem::reappear()
{
    if (!d->thread.joinable())
        return false;
    bool opened = false;
    QString why;
    d->runSync([&] {
        if (d->master >= 0) {
            opened = true;
            return;
        }
        d->line.clear();
        d->smsPrompt = false;
        opened = d->openDevice(&why);
    });
    std::lock_guard<std::mutex> lock(d->mutex);
    if (!opened) {
        d->failure = zelmodems::Failure(zelmodems::Failure::SystemError, why);
        return false;
    }
    if (!d->linkPath.isEmpty()) {
        QFile::remove(d->linkPath);
        if (::symlink(QFile::encodeName(d->ptyPath).constData(), QFile::encodeName(d->linkPath).constData()) != 0)
            return false;
    }
    return true;
}

int SimModem::receiveSms(const QByteArray& pduHex)
{
    const int index = storeSms(pduHex, 0);
    sendUnsolicited("\r\n+CMTI: \"SM\"," + QByteArray::number(index) + "\r\n");
    return index;
}

void SimModem::receiveReport(const QByteArray& pduHex)
{
    const QByteArray octets = QByteArray::fromHex(pduHex);
    const int smscLength = octets.isEmpty() ? 0 : uchar(octets.at(0)) + 1;
    sendUnsolicited("\r\n+CDS: " + QByteArray::number(qMax(0, octets.size() - smscLength)) + "\r\n" + pduHex
                    + "\r\n");
}

void SimModem::setRegistration(int state, const QByteArray& lac, const QByteArray& cell, int accessTechnology)
{
    QByteArray report;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        const QByteArray place = "\"" + lac + "\",\"" + cell + "\"," + QByteArray::number(accessTechnology);
        const bool located = state == 1 || state == 5;
        d->registration = QByteArray::number(state) + (located ? "," + place : QByteArray());
        d->replies.remove("+CREG?");   // the profile's fixed answers give way
        d->replies.remove("+CGREG?");
        if (d->cregMode == 1)
            report = "+CREG: " + QByteArray::number(state);
        else if (d->cregMode == 2)
            report = "+CREG: " + d->registration;
    }
    if (!report.isEmpty())
        sendUnsolicited("\r\n" + report + "\r\n");
}

void SimModem::setSim(SimState state, int pinAttempts, int pukAttempts)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->sim = state;
    d->pinAttempts = pinAttempts;
    d->pukAttempts = pukAttempts;
}

SimState SimModem::simState() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->sim;
}

void SimModem::setSimCodes(const QByteArray& pin, const QByteArray& puk)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->pin = pin;
    d->puk = puk;
}

QByteArray SimModem::simPin() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->pin;
}

void SimModem::setNetwork(const QByteArray& name, const QByteArray& numeric)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->networkName = name;
    d->networkNumeric = numeric;
}

void SimModem::setStoreSize(int places)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->storePlaces = places;
}

void SimModem::sendNetworkUssd(const QByteArray& cusdLine)
{
    sendUnsolicited("\r\n" + cusdLine + "\r\n");
}

void SimModem::setSignal(int rssi, int ber)
{
    setAnswer("+CSQ", "+CSQ: " + QByteArray::number(rssi) + "," + QByteArray::number(ber));
    if (d->profile.make == Make::Huawei)
        sendUnsolicited("\r\n^RSSI: " + QByteArray::number(rssi) + "\r\n");
}

void SimModem::ring(const QByteArray& number)
{
    bool clip;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        clip = d->clip;
    }
    sendUnsolicited("\r\nRING\r\n" + (clip ? "\r\n+CLIP: \"" + number + "\",145\r\n" : QByteArray()));
}

void SimModem::stop()
{
    if (d->thread.joinable()) {
        d->stopping = true;
        const char c = 'q';
        (void)!::write(d->wake[1], &c, 1);
        d->thread.join();
    }
    d->closeDevice();
    for (int& fd : d->wake) {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
}

void SimModem::Private::closeDevice()
{
    QString link;
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (master >= 0 || slave >= 0)
            vanished = true;
        link = linkPath;
    }
    if (master >= 0)
        ::close(master);
    if (slave >= 0)
        ::close(slave);
    master = slave = -1;
    if (!link.isEmpty())
        QFile::remove(link);
}

QString SimModem::devicePath() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->linkPath.isEmpty() ? d->ptyPath : d->linkPath;
}

QString SimModem::ptyPath() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->ptyPath;
}

bool SimModem::createLink(const QString& linkPath)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->failure = zelmodems::Failure();
    if (d->ptyPath.isEmpty()) {
        d->failure = zelmodems::Failure(zelmodems::Failure::NotOpen, QStringLiteral("the modem is not started"));
        return false;
    }
    QFile::remove(linkPath);
    if (::symlink(QFile::encodeName(d->ptyPath).constData(), QFile::encodeName(linkPath).constData()) != 0) {
        d->failure = zelmodems::Failure(zelmodems::Failure::SystemError,
                                        QStringLiteral("symlink %1: %2").arg(linkPath, QString::fromLocal8Bit(strerror(errno))));
        return false;
    }
    d->linkPath = linkPath;
    return true;
}

zelmodems::Failure SimModem::failure() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->failure;
}

void SimModem::vanish()
{
    if (!d->thread.joinable())
        return;
    d->runSync([this] { d->closeDevice(); });
}

bool SimModem::hasVanished() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->vanished;
}

const Profile& SimModem::profile() const
{
    return d->profile;
}

void SimModem::setImei(const QByteArray& imei)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->profile.imei = imei;
}

void SimModem::setImsi(const QByteArray& imsi)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->profile.imsi = imsi;
}

void SimModem::setEcho(bool on)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->echo = on;
}

bool SimModem::echo() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->echo;
}

void SimModem::setAnswer(const QByteArray& command, const QByteArray& body)
{
    setReply(command, Reply::ok(body));
}

void SimModem::setReply(const QByteArray& command, const Reply& reply)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->replies.insert(upper(command), reply);
}

void SimModem::removeAnswer(const QByteArray& command)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->replies.remove(upper(command));
}

void SimModem::addHandler(const Handler& handler)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->handlers.prepend(handler);
}

void SimModem::setFault(const QByteArray& command, Fault fault, int param)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    if (fault == Fault::None)
        d->faults.remove(upper(command));
    else
        d->faults.insert(upper(command), FaultEntry{fault, param});
}

void SimModem::clearFaults()
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->faults.clear();
}

void SimModem::setLatency(int ms)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->latencyMs = ms;
}

void SimModem::setByteDelay(int ms)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->byteDelayMs = ms;
}

void SimModem::setAcceptedLineSpeeds(const QList<qint32>& speeds)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->acceptedSpeeds = speeds;
}

void SimModem::setSilent(bool silent)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->silent = silent;
}

void SimModem::setRestartTime(int ms)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->restartMs = ms;
}

void SimModem::sendUnsolicited(const QByteArray& bytes, int delayMs)
{
    d->post([this, bytes, delayMs] { d->schedule(delayMs, [this, bytes] { d->write(bytes, 0); }); });
}

void SimModem::waitUntilQuiet()
{
    if (!d->thread.joinable() || std::this_thread::get_id() == d->thread.get_id())
        return;
    // Tasks run only between answers, so the first look comes after the
    // answer being written.
    auto quiet = std::make_shared<std::atomic<bool>>(false);
    d->post([this, quiet] { d->whenQuiet(quiet); });
    while (!*quiet && !d->stopping)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void SimModem::vanishAfter(int ms)
{
    d->post([this, ms] { d->schedule(ms, [this] { d->closeDevice(); }); });
}

void SimModem::setUssdReply(const QByteArray& code, const QByteArray& reply)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->ussdReplies.insert(code, reply);
}

void SimModem::setUssdSmsReply(const QByteArray& code, const QByteArray& pduHex)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->ussdSmsReplies.insert(code, pduHex);
}

void SimModem::setUssdDelay(int ms)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->ussdDelayMs = ms;
}

void SimModem::setUssdReplyBeforeOk(bool on)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->ussdBeforeOk = on;
}

void SimModem::setUssdRefusals(int count)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->ussdRefusals = count;
}

QList<QByteArray> SimModem::ussdRequests() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->ussdRequests;
}

QByteArray SimModem::characterSet() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->charset;
}

int SimModem::storeSms(const QByteArray& pduHex, int status, int index)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->storeSms(pduHex, status, index);
}

int SimModem::Private::storeSms(const QByteArray& pdu, int status, int index)
{
    if (index < 0) {
        index = 1;
        while (sms.contains(index))
            ++index;
    }
    sms.insert(index, StoredSms{status, pdu});
    return index;
}

QMap<int, QByteArray> SimModem::storedSms() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    QMap<int, QByteArray> result;
    for (auto it = d->sms.cbegin(); it != d->sms.cend(); ++it)
        result.insert(it.key(), it->pdu);
    return result;
}

void SimModem::setSmsListLimit(int count)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->smsListLimit = count;
}

QList<CommandRecord> SimModem::log() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->log;
}

QList<QByteArray> SimModem::commands() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    QList<QByteArray> list;
    list.reserve(d->log.size());
    for (const CommandRecord& r : d->log)
        list << r.command;
    return list;
}

void SimModem::clearLog()
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->log.clear();
}

qint32 SimModem::lineSpeed() const
{
    qint32 result = 0;
    if (!d->thread.joinable())
        return 0;
    d->runSync([&] { result = d->speed(); });
    return result;
}

void SimModem::setSmsConfirmation(bool on)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->smsConfirm = on;
}

void SimModem::setSmsRefusal(const QByteArray& resultCode)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->smsRefusal = resultCode;
}

void SimModem::setPromptDelay(int ms)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->promptDelayMs = ms;
}

QList<QPair<QByteArray, QByteArray>> SimModem::sentMessages() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->sent;
}

// ---------------------------------------------------------------- the modem's thread

void SimModem::Private::post(std::function<void()> task)
{
    {
        std::lock_guard<std::mutex> lock(taskMutex);
        tasks.push_back(std::move(task));
    }
    const char c = 't';
    (void)!::write(wake[1], &c, 1);
}

void SimModem::Private::runSync(std::function<void()> task)
{
    if (std::this_thread::get_id() == thread.get_id() || !thread.joinable()) {
        task();
        return;
    }
    std::mutex doneMutex;
    std::condition_variable cv;
    bool done = false;
    post([&] {
        task();
        std::lock_guard<std::mutex> lock(doneMutex);
        done = true;
        cv.notify_one();
    });
    std::unique_lock<std::mutex> lock(doneMutex);
    cv.wait(lock, [&] { return done || stopping.load(); });
}

void SimModem::Private::run()
{
    char buf[4096];
    while (!stopping) {
        pollfd fds[2];
        int n = 0;
        fds[n++] = {wake[0], POLLIN, 0};
        if (master >= 0)
            fds[n++] = {master, POLLIN, 0};
        int timeout = -1;
        if (deafUntil > clock.elapsed())
            timeout = int(deafUntil - clock.elapsed());
        if (!timers.empty()) {
            const int due = int(qMax<qint64>(0, timers.begin()->first - clock.elapsed()));
            timeout = timeout < 0 ? due : qMin(timeout, due);
        }
        const int rc = ::poll(fds, nfds_t(n), timeout);
        if (rc < 0 && errno != EINTR)
            break;
        if (fds[0].revents & POLLIN) {
            while (::read(wake[0], buf, sizeof buf) > 0) {
            }
            std::deque<std::function<void()>> pending;
            {
                std::lock_guard<std::mutex> lock(taskMutex);
                pending.swap(tasks);
            }
            for (auto& task : pending)
                task();
        }
        if (n > 1 && master >= 0 && (fds[1].revents & POLLIN)) {
            const ssize_t got = ::read(master, buf, sizeof buf);
            if (got > 0)
                feed(QByteArray(buf, int(got)));
        }
        while (!timers.empty() && timers.begin()->first <= clock.elapsed()) {
            auto task = std::move(timers.begin()->second);
            timers.erase(timers.begin());
            task();
        }
    }
    // Run what is still queued so that no caller waits for ever.
    std::deque<std::function<void()>> pending;
    {
        std::lock_guard<std::mutex> lock(taskMutex);
        pending.swap(tasks);
    }
    for (auto& task : pending)
        task();
}

void SimModem::Private::whenQuiet(std::shared_ptr<std::atomic<bool>> quiet)
{
    // While something is scheduled, look again after the last of it.
    if (timers.empty()) {
        *quiet = true;
        return;
    }
    timers.emplace(timers.rbegin()->first, [this, quiet] { whenQuiet(quiet); });
}

void SimModem::Private::schedule(int ms, std::function<void()> task)
{
    timers.emplace(clock.elapsed() + qMax(0, ms), std::move(task));
}

void SimModem::Private::record(const QByteArray& command)
{
    CommandRecord r;
    r.command = command;
    r.elapsedMs = clock.elapsed();
    r.epochMs = QDateTime::currentMSecsSinceEpoch();
    r.lineSpeed = speed();
    std::lock_guard<std::mutex> lock(mutex);
    log.append(r);
}

void SimModem::Private::write(const QByteArray& bytes, int byteDelay)
{
    if (master < 0 || bytes.isEmpty())
        return;
    auto writeAll = [this](const char* p, int len) {
        while (len > 0 && master >= 0) {
            const ssize_t w = ::write(master, p, size_t(len));
            if (w < 0) {
                if (errno == EAGAIN || errno == EINTR) {
                    ::usleep(1000);
                    continue;
                }
                return;
            }
            p += w;
            len -= int(w);
        }
    };
    if (byteDelay <= 0) {
        writeAll(bytes.constData(), bytes.size());
        return;
    }
    for (int i = 0; i < bytes.size() && !stopping; ++i) {
        writeAll(bytes.constData() + i, 1);
        ::usleep(useconds_t(byteDelay) * 1000);
    }
}

void SimModem::Private::send(const Reply& reply)
{
    int latency, byteDelay;
    {
        std::lock_guard<std::mutex> lock(mutex);
        latency = latencyMs;
        byteDelay = byteDelayMs;
    }
    const int wait = latency + reply.delayMs;
    if (wait > 0)
        ::usleep(useconds_t(wait) * 1000);
    write(reply.bytes, byteDelay);
    if (!reply.followUp.isEmpty()) {
        const QByteArray later = reply.followUp;
        schedule(reply.followUpDelayMs, [this, later] { write(later, 0); });
    }
}

void SimModem::Private::feed(const QByteArray& data)
{
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (silent)
            return;
        if (!acceptedSpeeds.isEmpty() && !acceptedSpeeds.contains(readLineSpeed(slave)))
            return;   // noise at a rate the modem cannot follow
    }
    if (deafUntil > clock.elapsed())
        return;

    for (char c : data) {
        if (master < 0)
            return;
        if (smsPrompt) {
            // Text of an SMS after the "> " prompt, ended by Ctrl-Z or cancelled by ESC.
            if (c == 0x1a || c == 0x1b) {
                smsPrompt = false;
                record(smsText + c);
                if (c == 0x1a) {
                    int reference;
                    bool confirm;
                    QByteArray refusal;
                    {
                        std::lock_guard<std::mutex> lock(mutex);
                        refusal = smsRefusal;
                        if (refusal.isEmpty())
                            sent.append(qMakePair(smsNumber, smsText));
                        reference = sent.size();
                        confirm = smsConfirm;
                    }
                    if (!refusal.isEmpty())
                        send(Reply::raw("\r\n" + refusal + "\r\n"));
                    else if (confirm)
                        send(Reply::ok("+CMGS: " + QByteArray::number(reference)));
                } else {
                    send(Reply::ok());
                }
                smsText.clear();
            } else {
                smsText.append(c);
            }
            continue;
        }
        bool echoOn;
        {
            std::lock_guard<std::mutex> lock(mutex);
            echoOn = echo;
        }
        if (echoOn)
            write(QByteArray(1, c), 0);
        if (c == '\n' && line.isEmpty())
            continue;
        line.append(c);
        if (c == '\r') {
            QByteArray complete = line;
            line.clear();
            complete.chop(1);
            processLine(complete);
        } else if (line == "+++") {
            line.clear();
            processRaw("+++");
        }
    }
}

void SimModem::Private::processRaw(const QByteArray& raw)
{
    record(raw);
    bool vanish = false;
    const std::optional<Reply> reply = answer(raw, &vanish);
    if (vanish) {
        closeDevice();
        return;
    }
    if (reply)
        send(*reply);
}

void SimModem::Private::processLine(QByteArray text)
{
    // Modems ignore whatever does not begin with the "AT" attention prefix.
    const int at = text.toUpper().indexOf("AT");
    if (at < 0)
        return;
    const QByteArray command = text.mid(at + 2);
    record(command);
    bool vanish = false;
    const std::optional<Reply> reply = answer(command, &vanish);
    if (vanish) {
        closeDevice();
        return;
    }
    if (reply)
        send(*reply);
}

std::optional<Reply> SimModem::Private::answer(const QByteArray& command, bool* vanish)
{
    const QByteArray key = upper(command);
    FaultEntry fault;
    QList<Handler> hs;
    std::optional<Reply> fixed;
    {
        std::lock_guard<std::mutex> lock(mutex);
        fault = faults.value(key, faults.value(QByteArray()));
        hs = handlers;
        if (replies.contains(key))
            fixed = replies.value(key);
    }
    switch (fault.fault) {
    case Fault::Silence: return std::nullopt;
    case Fault::Error: return Reply::error();
    case Fault::NoCarrier: return Reply::noCarrier();
    case Fault::Garbage: return Reply::raw(QByteArray::fromHex("ff00fe8a7e23c0d1"));
    case Fault::Vanish: *vanish = true; return std::nullopt;
    case Fault::None:
    case Fault::SplitBytes: break;
    }

    std::optional<Reply> reply;
    for (const Handler& h : qAsConst(hs)) {
        reply = h(command);
        if (reply)
            break;
    }
    if (!reply) {
        std::lock_guard<std::mutex> lock(mutex);
        reply = simGate(key);
    }
    if (!reply && fixed)
        reply = fixed;
    if (!reply)
        reply = builtin(command);

    if (fault.fault == Fault::SplitBytes && reply) {
        for (int i = 0; i < reply->bytes.size(); ++i) {
            write(reply->bytes.mid(i, 1), 0);
            ::usleep(useconds_t(fault.param) * 1000);
        }
        return std::nullopt;
    }
    return reply;
}

Reply SimModem::Private::builtin(const QByteArray& command)
{
    const QByteArray key = upper(command);
    std::lock_guard<std::mutex> lock(mutex);
    if (key.isEmpty() || key == "+CGREG=2" || key == "+CFUN=1" || key == "Z")
        return Reply::ok();
    if (key == "+COPS=3,0" || key == "+COPS=3,1" || key == "+COPS=3,2") {
        copsFormat = key.right(1).toInt();
        return Reply::ok();
    }
    if (key == "+COPS?") {
        const int state = registrationState();
        if (state != 1 && state != 5)
            return Reply::ok("+COPS: 0");
        const QByteArray numeric = networkNumeric.isEmpty() ? profile.imsi.left(5) : networkNumeric;
        const QList<QByteArray> fields = registration.split(',');
        return Reply::ok("+COPS: 0," + QByteArray::number(copsFormat) + ",\""
                         + (copsFormat == 2 ? numeric : networkName) + "\""
                         + (fields.size() > 3 ? "," + fields.at(3) : QByteArray()));
    }
    if (key.startsWith("+CPIN") || key.startsWith("+CPWD=") || key == "^CPIN?" || key == "+SPIC"
        || key == "+ZPINPUK=?")
        return simCommand(key, command);
    if (key == "+CREG=0" || key == "+CREG=1" || key == "+CREG=2") {
        cregMode = key.right(1).toInt();
        return Reply::ok();
    }
    if (key == "+CREG?")
        return Reply::ok("+CREG: " + QByteArray::number(cregMode) + "," + registration);
    if (key == "+CGREG?")   // the packet domain follows the circuit-switched one
        return Reply::ok("+CGREG: 2," + registration);
    if (key == "+CLIP=0" || key == "+CLIP=1") {
        clip = key == "+CLIP=1";
        return Reply::ok();
    }
    if (key == "+CMEE=0" || key == "+CMEE=1" || key == "+CMEE=2") {
        cmee = key.right(1).toInt();
        return Reply::ok();
    }
    if (key == "+CMEE?")
        return Reply::ok("+CMEE: " + QByteArray::number(cmee));
    if (key == "+++")
        return Reply::ok();
    if (key == "E0" || key == "E" || key == "E1") {
        echo = key == "E1";
        return Reply::ok();
    }
    if (key == "&F" || key == "&F0") {
        echo = profile.echo;   // factory defaults bring the echo back
        return Reply::ok();
    }
    if (key == "I")
        return Reply::ok(profile.ati);
    if (key == "&V")
        return Reply::ok("ACTIVE PROFILE:\r\nE1 Q0 V1 X4 &C1 &D2 &F0\r\nS00:000 S03:013 S04:010 S05:008");
    if (key == "+GMR" || key == "+CGMR")
        return Reply::ok(profile.revision);
    if (key == "+GSN" || key == "+CGSN")
        return profile.imei.isEmpty() ? Reply::error() : Reply::ok(profile.imei);
    if (key == "+GMI" || key == "+CGMI" || key == "+GMM" || key == "+CGMM") {
        // The identification a generic client asks for one piece at a time:
        // the "Manufacturer:" and "Model:" lines of ATI, or its first two
        // lines where the make writes no labels.
        const bool maker = key.endsWith("MI");
        const QList<QByteArray> lines = profile.ati.split('\n');
        for (QByteArray line : lines) {
            line = line.trimmed();
            const QByteArray label = maker ? "Manufacturer:" : "Model:";
            if (line.startsWith(label))
                return Reply::ok(line.mid(label.size()).trimmed());
        }
        const QByteArray plain = lines.value(maker ? 0 : 1).trimmed();
        return plain.isEmpty() || plain.contains(':') ? Reply::error() : Reply::ok(plain);
    }
    if (key == "+CIMI")
        return profile.imsi.isEmpty() ? Reply::error() : Reply::ok(profile.imsi);
    if (key == "+CFUN=1,1") {
        deafUntil = clock.elapsed() + restartMs;
        return Reply::ok();
    }
    // Huawei's periodic status reports off or on, and the port that gets
    // the unsolicited codes.
    if ((key == "^CURC=0" || key == "^CURC=1" || key == "^PORTSEL=0" || key == "^PORTSEL=1")
        && (profile.make == Make::Huawei || profile.make == Make::HspaDataCard))
        return Reply::ok();
    // ZTE's virtual CD drive (8 stops it from mounting itself) and its
    // operating mode (5: online).
    if ((key.startsWith("+ZCDRUN=") || key.startsWith("+ZOPRT=")) && profile.make == Make::Zte)
        return Reply::ok();
    if (key == "^U2DIAG=0")
        return profile.make == Make::Huawei ? Reply::ok() : Reply::error();
    if (key == "+CMGF=0" || key == "+CMGF=1") {
        textMode = key == "+CMGF=1" ? 1 : 0;
        return Reply::ok();
    }
    if (key == "+CSCS=?")
        return Reply::ok("+CSCS: (\"IRA\",\"GSM\",\"UCS2\")");
    if (key.startsWith("+CSCS=")) {
        charset = command.mid(6);
        charset.replace('"', "");
        return Reply::ok();
    }
    if (key == "+CSCS?")
        return Reply::ok("+CSCS: \"" + charset + "\"");
    if (key.startsWith("+CUSD="))
        return ussd(command.mid(6));
    if (key == "+CMGL" || key.startsWith("+CMGL="))
        return listSms(key);
    if (key.startsWith("+CMGD=")) {
        bool ok = false;
        const int index = key.mid(6).split(',').value(0).trimmed().toInt(&ok);
        if (ok && sms.remove(index) > 0)
            return Reply::ok();
        return Reply::raw("\r\n+CMS ERROR: 321\r\n");   // invalid memory index
    }
    if (key == "+CPMS=?")
        return Reply::ok("+CPMS: (\"SM\"),(\"SM\"),(\"SM\")");
    if (key.startsWith("+CPMS=")) {
        // Only the SIM's store: AT+CPMS="SM"[,"SM"[,"SM"]] chooses it.
        for (QByteArray store : key.mid(6).split(',')) {
            store.replace('"', "");
            if (store.trimmed() != "SM")
                return cmsError(302);   // operation not allowed
        }
        const QByteArray one = QByteArray::number(sms.size()) + "," + QByteArray::number(storePlaces);
        return Reply::ok("+CPMS: " + one + "," + one + "," + one);
    }
    if (key == "+CGATT?")
        return Reply::ok("+CGATT: " + QByteArray((registrationState() == 1 || registrationState() == 5) ? "1" : "0"));
    if (key == "+CGATT=0" || key == "+CGATT=1")
        return Reply::ok();
    if (key == "+CPMS?") {
        const QByteArray used = QByteArray::number(sms.size());
        const QByteArray places = QByteArray::number(storePlaces);
        const QByteArray one = "\"SM\"," + used + "," + places;
        return Reply::ok("+CPMS: " + one + "," + one + "," + one);
    }
    if (key.startsWith("+CMGR=")) {
        bool ok = false;
        const int index = key.mid(6).trimmed().toInt(&ok);
        auto it = sms.find(index);
        if (!ok || it == sms.end() || textMode == 1)
            return Reply::raw("\r\n+CMS ERROR: 321\r\n");
        const QByteArray octets = QByteArray::fromHex(it->pdu);
        const int smscLength = octets.isEmpty() ? 0 : uchar(octets.at(0)) + 1;
        const QByteArray line = "+CMGR: " + QByteArray::number(it->status) + ",,"
                              + QByteArray::number(qMax(0, octets.size() - smscLength)) + "\r\n" + it->pdu;
        if (it->status == 0)
            it->status = 1;
        return Reply::ok(line);
    }
    if (key.startsWith("+CMGS=") && textMode == 0) {
        // PDU mode takes the TPDU length; a number there is an error.
        bool isLength = false;
        command.mid(6).trimmed().toInt(&isLength);
        if (!isLength)
            return Reply::raw("\r\n+CMS ERROR: 304\r\n");   // invalid PDU mode parameter
    }
    if (key.startsWith("+CMGS=")) {
        // Text mode: the number follows; PDU mode: the TPDU length, and the
        // text is the PDU in hexadecimal (recorded with an empty number).
        smsPrompt = true;
        smsNumber = textMode == 1 ? command.mid(6) : QByteArray();
        smsText.clear();
        Reply prompt = Reply::raw("\r\n> ");
        prompt.delayMs = promptDelayMs;
        return prompt;
    }
    return Reply::error();
}

// The SIM's refusal: a bare ERROR until the client turns numbered errors
// on (AT+CMEE=1), then by number, or in words with AT+CMEE=2.
Reply SimModem::Private::cmeError(int code) const
{
    if (cmee == 0)
        return Reply::error();
    if (cmee == 1)
        return Reply::raw("\r\n+CME ERROR: " + QByteArray::number(code) + "\r\n");
    static const QMap<int, QByteArray> WORDS = {
        {3, "operation not allowed"}, {4, "operation not supported"}, {10, "SIM not inserted"},
        {11, "SIM PIN required"},     {12, "SIM PUK required"},       {13, "SIM failure"},
        {16, "incorrect password"}};
    return Reply::raw("\r\n+CME ERROR: " + WORDS.value(code, QByteArray::number(code)) + "\r\n");
}

// An SMS error: "+CMS ERROR: n" (the SMS commands' codes are numbers
// whatever AT+CMEE says, as most modems give them).
Reply SimModem::Private::cmsError(int code) const
{
    return Reply::raw("\r\n+CMS ERROR: " + QByteArray::number(code) + "\r\n");
}

// <stat> of the registration now: none while the SIM is not ready.
int SimModem::Private::registrationState() const
{
    if (sim != SimState::Ready)
        return 0;
    return registration.left(registration.indexOf(',')).toInt();
}

// Commands that need a ready SIM get its error while it is not; the
// registration and the network are then none. Called with the mutex held.
std::optional<Reply> SimModem::Private::simGate(const QByteArray& key)
{
    if (sim == SimState::Ready)
        return std::nullopt;
    if (key == "+CREG?")
        return Reply::ok("+CREG: " + QByteArray::number(cregMode) + ",0");
    if (key == "+CGREG?")
        return Reply::ok("+CGREG: 2,0");
    if (key == "+COPS?")
        return Reply::ok("+COPS: 0");
    static const char* const NEEDS_SIM[] = {"+CIMI", "+CUSD=", "+CMGL", "+CMGR=", "+CMGD=", "+CMGS=", "+CPMS",
                                            "^ICCID", "^SCID", "+CRSM", "+CNUM", "+CSCA"};
    for (const char* prefix : NEEDS_SIM) {
        if (!key.startsWith(prefix))
            continue;
        if (key.startsWith("+CUSD=") && !key.contains('"'))
            return std::nullopt;   // presentation on or off needs no SIM
        switch (sim) {
        case SimState::Pin: return cmeError(11);
        case SimState::Puk: return cmeError(12);
        case SimState::NotInserted: return cmeError(10);
        case SimState::Failure:
        case SimState::Ready: break;
        }
        return cmeError(13);
    }
    return std::nullopt;
}

// The quoted (or bare) values of "+CPIN=..." and "+CPWD=...".
static QList<QByteArray> codeFields(const QByteArray& args)
{
    QList<QByteArray> fields;
    for (QByteArray field : args.split(',')) {
        field = field.trimmed();
        field.replace('"', "");
        fields << field;
    }
    return fields;
}

// AT+CPIN?, AT+CPIN=..., AT+CPWD=... and the makes' counts of attempts;
// called with the mutex held.
Reply SimModem::Private::simCommand(const QByteArray& key, const QByteArray& command)
{
    const auto stateWord = [this]() -> QByteArray {
        switch (sim) {
        case SimState::Ready: return "READY";
        case SimState::Pin: return "SIM PIN";
        case SimState::Puk: return "SIM PUK";
        default: return QByteArray();
        }
    };
    if (key == "+CPIN?") {
        if (sim == SimState::NotInserted)
            return cmeError(10);
        if (sim == SimState::Failure)
            return cmeError(13);
        return Reply::ok("+CPIN: " + stateWord());
    }
    const QByteArray pins = QByteArray::number(pinAttempts);
    const QByteArray puks = QByteArray::number(pukAttempts);
    const bool present = sim == SimState::Ready || sim == SimState::Pin || sim == SimState::Puk;
    if (key == "^CPIN?" && (profile.make == Make::Huawei || profile.make == Make::HspaDataCard)) {
        if (!present)
            return cmeError(sim == SimState::NotInserted ? 10 : 13);
        // ^CPIN: <code>,[<times>],<puk_times>,<pin_times>,<puk2_times>,<pin2_times>
        const QByteArray times = sim == SimState::Pin ? pins : sim == SimState::Puk ? puks : QByteArray();
        return Reply::ok("^CPIN: " + stateWord() + "," + times + "," + puks + "," + pins + ",10,3");
    }
    if (key == "+SPIC" && profile.make == Make::SimCom)
        return present ? Reply::ok("+SPIC: " + pins + "," + puks + ",3,10") : cmeError(10);
    if (key == "+ZPINPUK=?" && profile.make == Make::Zte)
        return present ? Reply::ok("+ZPINPUK: " + pins + "," + puks) : cmeError(10);
    if (key.startsWith("+CPIN=")) {
        const QList<QByteArray> f = codeFields(command.mid(6));
        if (sim == SimState::Pin && f.size() == 1) {
            if (f.at(0) == pin) {
                sim = SimState::Ready;
                pinAttempts = 3;
                return Reply::ok();
            }
            if (--pinAttempts <= 0) {
                pinAttempts = 0;
                sim = SimState::Puk;
            }
            return cmeError(16);
        }
        if (sim == SimState::Puk && f.size() == 2) {
            if (f.at(0) == puk && !f.at(1).isEmpty()) {
                sim = SimState::Ready;
                pin = f.at(1);
                pinAttempts = 3;
                pukAttempts = 10;
                return Reply::ok();
            }
            if (--pukAttempts <= 0) {
                pukAttempts = 0;
                sim = SimState::Failure;
            }
            return cmeError(16);
        }
        if (sim == SimState::NotInserted)
            return cmeError(10);
        return cmeError(sim == SimState::Failure ? 13 : 3);
    }
    if (key.startsWith("+CPWD=")) {
        const QList<QByteArray> f = codeFields(command.mid(6));
        if (sim != SimState::Ready)
            return cmeError(sim == SimState::NotInserted ? 10 : sim == SimState::Pin ? 11 : 12);
        if (f.size() != 3 || f.at(0).toUpper() != "SC")
            return cmeError(4);
        if (f.at(1) != pin) {
            if (--pinAttempts <= 0) {
                pinAttempts = 0;
                sim = SimState::Puk;
            }
            return cmeError(16);
        }
        pin = f.at(2);
        pinAttempts = 3;
        return Reply::ok();
    }
    return Reply::error();
}

// AT+CUSD=<n>[,"<string>"[,<dcs>]]; called with the mutex held.
Reply SimModem::Private::ussd(const QByteArray& args)
{
    const int comma = args.indexOf(',');
    const QByteArray presentation = (comma < 0 ? args : args.left(comma)).trimmed();
    if (comma < 0)
        return Reply::ok();   // presentation on or off, or a cancel
    const QByteArray rest = args.mid(comma + 1);
    const int close = rest.indexOf('"', 1);
    if (!rest.startsWith('"') || close < 0)
        return Reply::error();

    if (ussdRefusals > 0) {
        --ussdRefusals;
        return Reply::raw("\r\n+CME ERROR: Unexpected Data Value\r\n");
    }
    QByteArray code = rest.mid(1, close - 1);
    if (profile.ussdPacked) {
        if (code.isEmpty() || code.size() % 2 != 0
            || QByteArray::fromHex(code).toHex() != code.toLower())
            return Reply::error();
        code = Ussd::unpack(QByteArray::fromHex(code));
    } else if (charset == "UCS2" && !code.isEmpty() && code.size() % 4 == 0
               && QByteArray::fromHex(code).toHex() == code.toLower()) {
        // In the UCS2 character set (AT+CSCS="UCS2") the string is UTF-16
        // written in hexadecimal, four digits a character.
        const QByteArray utf16 = QByteArray::fromHex(code);
        QString text;
        for (int i = 0; i + 1 < utf16.size(); i += 2)
            text += QChar(ushort((uchar(utf16.at(i)) << 8) | uchar(utf16.at(i + 1))));
        code = text.toUtf8();
    }
    ussdRequests.append(code);
    if (ussdSmsReplies.contains(code))
        storeSms(ussdSmsReplies.value(code), 0, -1);

    Reply reply = Reply::ok();
    if (presentation != "1")
        return reply;
    QByteArray line = ussdReplies.contains(code) ? ussdReplies.value(code) : Ussd::statusOnly(4);
    if (line.isEmpty())
        return reply;   // the network never answers
    const int textStart = line.indexOf('"');
    const int textEnd = line.lastIndexOf('"');
    if (charset == "UCS2" && !profile.ussdPacked && textStart >= 0 && textEnd > textStart && !line.endsWith(",72")) {
        // A 7-bit reply is presented in the client's character set.
        const QString text = QString::fromLatin1(line.mid(textStart + 1, textEnd - textStart - 1));
        QByteArray hex;
        for (const QChar c : text)
            hex += QByteArray::number(c.unicode(), 16).rightJustified(4, '0').toUpper();
        line = line.left(textStart + 1) + hex + line.mid(textEnd);
    }
    if (ussdBeforeOk) {
        reply.bytes = "\r\n" + line + "\r\n" + reply.bytes;
    } else {
        reply.followUp = "\r\n" + line + "\r\n";
        reply.followUpDelayMs = ussdDelayMs;
    }
    return reply;
}

// AT+CMGL[=<stat>] in PDU mode; called with the mutex held.
Reply SimModem::Private::listSms(const QByteArray& key)
{
    if (textMode == 1)
        return Reply::raw("\r\n+CMS ERROR: 302\r\n");   // PDU-mode status codes in text mode
    bool ok = true;
    const int wanted = key == "+CMGL" ? 0 : key.mid(6).trimmed().toInt(&ok);
    if (!ok || wanted < 0 || wanted > 4)
        return Reply::error();

    QList<QByteArray> entries;
    for (auto it = sms.begin(); it != sms.end(); ++it) {
        if (wanted != 4 && it->status != wanted)
            continue;
        const QByteArray octets = QByteArray::fromHex(it->pdu);
        const int smscLength = octets.isEmpty() ? 0 : uchar(octets.at(0)) + 1;
        entries << "+CMGL: " + QByteArray::number(it.key()) + "," + QByteArray::number(it->status) + ",,"
                       + QByteArray::number(qMax(0, octets.size() - smscLength)) + "\r\n" + it->pdu;
        if (it->status == 0)
            it->status = 1;   // listed messages count as read
    }
    if (smsListLimit >= 0 && entries.size() > smsListLimit) {
        // A modem that hangs half-way through the listing: no final OK.
        entries = entries.mid(0, smsListLimit);
        return Reply::raw(entries.isEmpty() ? QByteArray() : "\r\n" + entries.join("\r\n") + "\r\n");
    }
    return entries.isEmpty() ? Reply::ok() : Reply::ok(entries.join("\r\n"));
}

} // namespace zelmodems::sim
