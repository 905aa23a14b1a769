#pragma once
#include "failure.h"
#include "simprofile.h"
#include "zelmodemssim_export.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QPair>
#include <QScopedPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace zelmodems::sim {

/// Faults a simulated modem can be told to show for a command.
enum class Fault {
    None,
    Silence,     ///< no answer at all
    Error,       ///< "ERROR" as the result code
    NoCarrier,   ///< "NO CARRIER" as the result code
    SplitBytes,  ///< the normal answer, one byte at a time, `param` ms apart
    Garbage,     ///< a few bytes of line noise and nothing else
    Vanish,      ///< the device disappears while the command waits
};

/// What the SIM waits for, as AT+CPIN? tells it.
enum class SimState {
    Ready,        ///< "+CPIN: READY"
    Pin,          ///< "+CPIN: SIM PIN": the SIM's services are refused until AT+CPIN="<pin>"
    Puk,          ///< "+CPIN: SIM PUK": the PIN is blocked; AT+CPIN="<puk>","<new pin>"
    NotInserted,  ///< +CME ERROR 10 for AT+CPIN? and everything that needs the SIM
    Failure,      ///< +CME ERROR 13: a broken SIM, or one whose PUK is used up
};

/// What the modem writes back for one command.
struct ZELMODEMSSIM_EXPORT Reply
{
    QByteArray bytes;      ///< written exactly as given
    int delayMs = 0;       ///< extra wait before the first byte
    /// Written later on the modem's own, `followUpDelayMs` after the reply:
    /// an unsolicited result such as the network's USSD reply.
    QByteArray followUp;
    int followUpDelayMs = 0;

    /// "\r\n<body>\r\n\r\nOK\r\n" (or "\r\nOK\r\n" without a body).
    static Reply ok(const QByteArray& body = QByteArray());
    static Reply error();
    static Reply noCarrier();
    static Reply raw(const QByteArray& bytes);
    static Reply none() { return Reply(); }
};

/// The "+CUSD: ..." lines in which a modem presents the network's USSD reply,
/// and the GSM 7-bit packing that USSD strings travel in.
struct ZELMODEMSSIM_EXPORT Ussd
{
    /// +CUSD: `<status>`,"`<text>`",`<dcs>` with the text as it is.
    static QByteArray plain(const QByteArray& text, int dcs = 15, int status = 0);
    /// UCS2 (DCS 72): the text in UTF-16BE, written in upper-case hexadecimal.
    static QByteArray ucs2(const QString& text, int status = 0);
    /// The text packed in GSM 7-bit septets and written in hexadecimal (DCS 15).
    static QByteArray packed(const QByteArray& text, int status = 0);
    /// +CUSD: `<status>` without text (2: ended by the network, 4: not supported).
    static QByteArray statusOnly(int status);

    /// 3GPP TS 23.038 packing, least significant bit first; no padding.
    static QByteArray pack(const QByteArray& septets);
    /// The inverse; a trailing zero septet (the unused bits of the last
    /// octet) is dropped.
    static QByteArray unpack(const QByteArray& octets);
};

/// SMS-DELIVER PDUs in hexadecimal, service-centre address included, as a
/// modem lists them in PDU mode; for filling the SMS store. The sender is
/// international when it begins with "+", alphanumeric when it holds a
/// letter, else of unknown type. The time stamp is written as it is, with a
/// zero time zone.
struct ZELMODEMSSIM_EXPORT DeliverPdu
{
    /// GSM 7-bit text (ASCII characters taken as septets).
    static QByteArray gsm7(const QByteArray& sender, const QDateTime& time, const QByteArray& text);
    /// UCS2 text; with `total` > 1 a concatenation header (8-bit reference
    /// `reference`, part `part` of `total`, counted from 1) goes in front.
    static QByteArray ucs2(const QByteArray& sender, const QDateTime& time, const QString& text,
                           int reference = 0, int part = 1, int total = 1);
};

/// SMS-STATUS-REPORT PDUs in hexadecimal, service-centre address included,
/// as a modem presents them after +CDS.
struct ZELMODEMSSIM_EXPORT StatusReportPdu
{
    /// The report on message `reference` sent to `recipient` (international
    /// with "+"), `status` TP-ST (0: delivered), stamped `time` twice.
    static QByteArray build(int reference, const QByteArray& recipient, const QDateTime& time, int status = 0);
};

/// One command as the modem received it.
struct CommandRecord
{
    QByteArray command;     ///< the text after "AT" ("+CSQ", "I", "" for a bare AT),
                            ///< or the raw bytes for "+++" and SMS text ("\x1a" ends it)
    qint64 elapsedMs = 0;   ///< since the modem started
    qint64 epochMs = 0;     ///< wall clock
    qint32 lineSpeed = 0;   ///< the line speed the client had set
};

/// Answers a command (the text after "AT", as received) or declines with
/// std::nullopt. Runs on the modem's own thread.
using Handler = std::function<std::optional<Reply>(const QByteArray& command)>;

/// A simulated modem on a pseudo-terminal. The client side is a real serial
/// device node (/dev/pts/N, or a symbolic link to it) that QSerialPort opens
/// like any serial port. The modem runs on a thread of its own, so a client
/// that blocks its own thread still gets answers. Every member is thread-safe.
class ZELMODEMSSIM_EXPORT SimModem
{
public:
    explicit SimModem(const Profile& profile);
    explicit SimModem(Make make = Make::Huawei);
    ~SimModem();

    SimModem(const SimModem&) = delete;
    SimModem& operator=(const SimModem&) = delete;

    /// Creates the pseudo-terminal and starts answering.
    bool start(QString* error = nullptr);
    /// Stops answering and removes the device (as vanish()).
    void stop();

    /// The path a client opens: the link when one was made, else the pty.
    QString devicePath() const;
    QString ptyPath() const;
    /// Makes `linkPath` a symbolic link to the pty (replacing what is there),
    /// like udev's /dev/gsmmodem or /dev/ttyUSB names.
    bool createLink(const QString& linkPath);
    /// Why start() or createLink() failed (system-error with the system's
    /// reason, not-open for a link to a modem not started); no failure
    /// after a call that worked.
    zelmodems::Failure failure() const;

    /// The device disappears: the pty is closed under the client and its
    /// link removed, as when a USB modem is pulled out.
    void vanish();
    bool hasVanished() const;

    const Profile& profile() const;
    void setImei(const QByteArray& imei);
    void setImsi(const QByteArray& imsi);
    void setEcho(bool on);
    bool echo() const;

    /// Fixed answers, keyed by the command without "AT" (matched without
    /// regard to case): setAnswer gives body + OK, setReply anything.
    void setAnswer(const QByteArray& command, const QByteArray& body);
    void setReply(const QByteArray& command, const Reply& reply);
    void removeAnswer(const QByteArray& command);
    /// Handlers are asked before the fixed answers, the latest added first.
    void addHandler(const Handler& handler);

    /// A fault for one command (matched without regard to case); an empty
    /// command means every command. `param` is the byte pause of SplitBytes.
    void setFault(const QByteArray& command, Fault fault, int param = 1);
    void clearFaults();

    /// A pause before every answer.
    void setLatency(int ms);
    /// Every answer written one byte at a time with this pause (0: at once).
    void setByteDelay(int ms);
    /// Answers only while the client's line speed is one of these (empty: any),
    /// as a real modem hears only noise at a rate it cannot follow.
    void setAcceptedLineSpeeds(const QList<qint32>& speeds);
    /// A silent modem hears nothing and answers nothing.
    void setSilent(bool silent);
    /// After "+CFUN=1,1" the modem restarts and is deaf for this long.
    void setRestartTime(int ms);

    /// Writes bytes the modem sends on its own (RING, +CMTI: ...), after
    /// `delayMs`.
    void sendUnsolicited(const QByteArray& bytes, int delayMs = 0);
    /// Returns once the modem has written all it has begun or scheduled: the
    /// rest of a slow answer, unsolicited results and follow-ups however
    /// late (a scheduled disappearance included). A test that needs a quiet
    /// line waits for this rather than for a time that a busy machine
    /// may overrun.
    void waitUntilQuiet();
    /// The device disappears `ms` from now (a modem dying in mid-exchange).
    void vanishAfter(int ms);
    /// The device comes back after vanish(): a new pseudo-terminal, and the
    /// link made again where there was one (a USB modem re-enumerated).
    /// The modem keeps its store and settings.
    bool reappear();

    /// Events, written the moment they are asked for, as the modem writes
    /// them on its own:
    /// A message arrives: stored unread, announced "+CMTI: "SM",`<index>`".
    /// Returns the index.
    int receiveSms(const QByteArray& pduHex);
    /// A delivery report: "+CDS: `<length>`" and the PDU (StatusReportPdu).
    void receiveReport(const QByteArray& pduHex);
    /// The registration changes (TS 27.007 `<stat>`: 1 home, 5 roaming, 3
    /// denied, 2 searching, 0 none) in area `lac` and cell `cell`: "+CREG:"
    /// as the client asked with AT+CREG=`<n>` (nothing for 0), and the answer
    /// to AT+CREG? and AT+CGREG? from now on.
    void setRegistration(int state, const QByteArray& lac = "1A2B", const QByteArray& cell = "01C3D4E5",
                         int accessTechnology = 7);
    /// The SIM: its state and the attempts left for the PIN and the PUK.
    /// While it is not ready, commands that need it (AT+CIMI, AT+COPS?,
    /// USSD, the SMS store) answer its error: "ERROR", or "+CME ERROR: 11"
    /// (by number or in words) once the client asked for AT+CMEE=1 or 2;
    /// the modem is not registered. A wrong PIN costs an attempt, and the
    /// last one turns the state to Puk; a wrong PUK likewise, and the
    /// last one to Failure. The makes tell the attempts left their own way:
    /// Huawei AT^CPIN?, SIMCOM AT+SPIC, ZTE AT+ZPINPUK=?.
    void setSim(SimState state, int pinAttempts = 3, int pukAttempts = 10);
    SimState simState() const;
    /// The SIM's codes ("1234" and "12345678" at start).
    void setSimCodes(const QByteArray& pin, const QByteArray& puk);
    /// The PIN now (after an AT+CPWD or a PUK entry changed it).
    QByteArray simPin() const;
    /// The network the modem is registered on, as AT+COPS? names it in
    /// the format AT+COPS=3,`<format>` chose ("MegaFon" and the IMSI's first
    /// five digits at start).
    void setNetwork(const QByteArray& name, const QByteArray& numeric);
    /// The SMS store's places (30 at start), as AT+CPMS? counts them.
    void setStoreSize(int places);

    /// The network sends USSD: a "+CUSD:" line made with Ussd (status 1 is
    /// a menu that waits for an answer).
    void sendNetworkUssd(const QByteArray& cusdLine);
    /// The level changes: AT+CSQ answers it from now on, and a Huawei says
    /// "^RSSI: `<rssi>`" at once.
    void setSignal(int rssi, int ber = 99);
    /// A voice call: RING, and "+CLIP: "`<number>`",145" when the client
    /// asked for caller identification (AT+CLIP=1).
    void ring(const QByteArray& number);

    /// USSD (AT+CUSD=`<n>`,"<string>",`<dcs>`). With n = 1 the modem answers OK
    /// and presents the network's reply to `code` as the unsolicited line
    /// `reply` (see Ussd) after the USSD delay; an empty `reply` means the
    /// network never answers; codes without a reply get "+CUSD: 4". With
    /// n = 0 nothing is presented. A profile with ussdPacked takes the string
    /// packed and in hexadecimal, and says ERROR to anything else.
    void setUssdReply(const QByteArray& code, const QByteArray& reply);
    /// The operator answers `code` with an SMS: the PDU goes into the SMS
    /// store when the code is requested.
    void setUssdSmsReply(const QByteArray& code, const QByteArray& pduHex);
    /// Time between the OK and the reply (100 ms at start).
    void setUssdDelay(int ms);
    /// Presents the reply before the OK rather than after it.
    void setUssdReplyBeforeOk(bool on);
    /// The next `count` requests are refused with "+CME ERROR: Unexpected
    /// Data Value", as ZTE firmware does while the network is still busy.
    void setUssdRefusals(int count);
    /// The codes requested, as the modem understood them (unpacked).
    QList<QByteArray> ussdRequests() const;
    /// The character set chosen with AT+CSCS ("IRA" at start).
    QByteArray characterSet() const;

    /// The SMS store, listed in PDU mode by AT+CMGL=`<stat>` (4: all) as
    /// "+CMGL: `<index>`,`<stat>`,,`<length>`" lines each followed by the PDU, read
    /// one by one with AT+CMGR=`<index>`, counted by AT+CPMS? (storage "SM",
    /// 30 places), and emptied by AT+CMGD=`<index>`. `status` 0 is unread (listing marks it
    /// read), 1 read. Returns the index: `index`, or the lowest free one
    /// from 1. `pduHex` is an SMS-DELIVER PDU with its service-centre part.
    int storeSms(const QByteArray& pduHex, int status = 1, int index = -1);
    /// Index -> PDU of the stored messages.
    QMap<int, QByteArray> storedSms() const;
    /// The listing stops after `count` entries and the modem falls silent
    /// (no OK), as a modem that hangs half-way; -1 lists everything.
    void setSmsListLimit(int count);

    QList<CommandRecord> log() const;
    QList<QByteArray> commands() const;
    void clearLog();
    /// The line speed the client set last (0 before any client).
    qint32 lineSpeed() const;
    /// Messages sent with AT+CMGS: (number, text) in text mode; in PDU mode
    /// (empty, the PDU in hexadecimal as written).
    QList<QPair<QByteArray, QByteArray>> sentMessages() const;
    /// Whether the network confirms a sent message ("+CMGS: <reference>"
    /// and OK, at start); off, the modem takes the text and stays silent.
    void setSmsConfirmation(bool on);
    /// The network refuses every sent message with this result code
    /// ("+CMS ERROR: 38", "ERROR") instead of confirming it; empty: off.
    void setSmsRefusal(const QByteArray& resultCode);
    /// The "> " prompt of AT+CMGS comes this late (the modem already takes
    /// text, and ESC cancels it).
    void setPromptDelay(int ms);

private:
    struct Private;
    QScopedPointer<Private> d;
};

} // namespace zelmodems::sim
