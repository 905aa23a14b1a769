#pragma once
#include "simprofile.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace modemsim {

// Faults a simulated modem can be told to show for a command.
enum class Fault {
    None,
    Silence,     // no answer at all
    Error,       // "ERROR" as the result code
    NoCarrier,   // "NO CARRIER" as the result code
    SplitBytes,  // the normal answer, one byte at a time, `param` ms apart
    Garbage,     // a few bytes of line noise and nothing else
    Vanish,      // the device disappears while the command waits
};

// What the modem writes back for one command.
struct Reply
{
    QByteArray bytes;      // written exactly as given
    int delayMs = 0;       // extra wait before the first byte

    // "\r\n<body>\r\n\r\nOK\r\n" (or "\r\nOK\r\n" without a body).
    static Reply ok(const QByteArray& body = QByteArray());
    static Reply error();
    static Reply noCarrier();
    static Reply raw(const QByteArray& bytes);
    static Reply none() { return Reply(); }
};

// One command as the modem received it.
struct CommandRecord
{
    QByteArray command;     // the text after "AT" ("+CSQ", "I", "" for a bare AT),
                            // or the raw bytes for "+++" and SMS text ("\x1a" ends it)
    qint64 elapsedMs = 0;   // since the modem started
    qint64 epochMs = 0;     // wall clock
    qint32 lineSpeed = 0;   // the line speed the client had set
};

// Answers a command (the text after "AT", as received) or declines with
// std::nullopt. Runs on the modem's own thread.
using Handler = std::function<std::optional<Reply>(const QByteArray& command)>;

// A simulated modem on a pseudo-terminal. The client side is a real serial
// device node (/dev/pts/N, or a symbolic link to it) that QSerialPort opens
// like any serial port. The modem runs on a thread of its own, so a client
// that blocks its own thread still gets answers. Every member is thread-safe.
class SimModem
{
public:
    explicit SimModem(const Profile& profile);
    explicit SimModem(Make make = Make::Huawei);
    ~SimModem();

    SimModem(const SimModem&) = delete;
    SimModem& operator=(const SimModem&) = delete;

    // Creates the pseudo-terminal and starts answering.
    bool start(QString* error = nullptr);
    // Stops answering and removes the device (as vanish()).
    void stop();

    // The path a client opens: the link when one was made, else the pty.
    QString devicePath() const;
    QString ptyPath() const;
    // Makes `linkPath` a symbolic link to the pty (replacing what is there),
    // like udev's /dev/gsmmodem or /dev/ttyUSB names.
    bool createLink(const QString& linkPath);

    // The device disappears: the pty is closed under the client and its
    // link removed, as when a USB modem is pulled out.
    void vanish();
    bool hasVanished() const;

    const Profile& profile() const;
    void setImei(const QByteArray& imei);
    void setImsi(const QByteArray& imsi);
    void setEcho(bool on);
    bool echo() const;

    // Fixed answers, keyed by the command without "AT" (matched without
    // regard to case): setAnswer gives body + OK, setReply anything.
    void setAnswer(const QByteArray& command, const QByteArray& body);
    void setReply(const QByteArray& command, const Reply& reply);
    void removeAnswer(const QByteArray& command);
    // Handlers are asked before the fixed answers, the latest added first.
    void addHandler(const Handler& handler);

    // A fault for one command (matched without regard to case); an empty
    // command means every command. `param` is the byte pause of SplitBytes.
    void setFault(const QByteArray& command, Fault fault, int param = 1);
    void clearFaults();

    // A pause before every answer.
    void setLatency(int ms);
    // Every answer written one byte at a time with this pause (0: at once).
    void setByteDelay(int ms);
    // Answers only while the client's line speed is one of these (empty: any),
    // as a real modem hears only noise at a rate it cannot follow.
    void setAcceptedLineSpeeds(const QList<qint32>& speeds);
    // A silent modem hears nothing and answers nothing.
    void setSilent(bool silent);
    // After "+CFUN=1,1" the modem restarts and is deaf for this long.
    void setRestartTime(int ms);

    // Writes bytes the modem sends on its own (RING, +CMTI: ...).
    void sendUnsolicited(const QByteArray& bytes);

    QList<CommandRecord> log() const;
    QList<QByteArray> commands() const;
    void clearLog();
    // The line speed the client set last (0 before any client).
    qint32 lineSpeed() const;
    // Messages sent with AT+CMGS in text mode: (number, text).
    QList<QPair<QByteArray, QByteArray>> sentMessages() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace modemsim
