#pragma once
#include "zelmodemslib_export.h"
#include "atcommands.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <functional>

class QSerialPort;

namespace zelmodems {
class UssdRequest;
class LineChannel;
class LiveChannel;
}

/// One modem on one serial port, spoken to in AT commands.
///
/// Every call is synchronous: it blocks until the modem has answered, failed
/// or timed out, and keeps the calling thread's event queue turning while it
/// waits. Failures come back as `false` plus a text in lastError(); nothing
/// throws. One object serves one port and is used from one thread at a time.
///
/// Typical use: open() (which checks the modem and learns its make), any
/// number of commands, close().
class ZELMODEMSLIB_EXPORT AtModem : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(AtModem)

public:
    /// Command dialects: makes that need different commands for the same job.
    enum Dialect : qint32 {
        DEFAULT_AT_GSM = 0,
        SIEMENCE = 1,   ///< Cinterion, Siemens, SprutNet, MC52 family
        SIM_COM = 2,
        HUAWEI = 3,     ///< including the E171 and E3372
        ZTE = 4,        ///< ZTE, MF series
        HSPA = 5,       ///< modems that call themselves "HSPA Data Card"
    };

    /// One received SMS, its parts joined.
    struct SSms
    {
        QString sender;
        QDateTime dateTime;   ///< the service centre's time stamp, local time
        QString text;

        bool operator==(const SSms& other) const
        {
            return sender == other.sender && dateTime == other.dateTime && text == other.text;
        }
        bool operator!=(const SSms& other) const { return !(*this == other); }
    };

    explicit AtModem(QObject* parent = nullptr);
    ~AtModem() override;

    /// Opens `portName` (a device path; a bare name is a device below /dev)
    /// at `baudRate` (8N1, RTS/CTS) and checks with isConnected() that a
    /// modem answers; up to `attempts` tries. A port that a running program
    /// holds by its lock file (pppd's "%10d\n", a binary pid, QSerialPort's
    /// three lines), whatever the lock's age, is not opened: false at once,
    /// with the holder in lastError(). Only a dead process's lock goes.
    bool open(const QString& portName, qint32 baudRate, qint32 attempts);
    /// Probes the open port, switches echo off, identifies the modem (name
    /// and dialect) and logs its configuration.
    bool isConnected();
    /// Up to six bare "AT" probes, each waiting `timeoutMs`.
    bool pollAt(int timeoutMs);
    /// Sends "AT" + `command` + CR and waits for the final result code.
    /// On success `answer` holds what came before "OK"; on failure the whole
    /// answer received.
    /// The answer ends at the first "OK" or "ERROR" anywhere in it, and
    /// input before each command is discarded: for the project's own
    /// services the standards' dialogue (whole-line result codes,
    /// unsolicited codes set apart) is used instead.
    bool sendCommand(const QByteArray& command, QByteArray& answer, int timeoutMs);
    /// Writes `data` as it is (no "AT", no CR) and waits for "OK" or "ERROR".
    /// An answer past 2 MiB without either ends the call, as in sendCommand.
    bool sendRawCommand(const QByteArray& data, QByteArray& answer, int timeoutMs);
    /// "AT" + `command` in Latin-1 + CR.
    QByteArray makeCommand(const QString& command);
    bool enableLocalEcho(bool on);
    /// Sends a user's init string (with or without its leading "AT").
    bool setInitString(const QString& init);
    /// Brings the modem back to command state and factory defaults before a dial.
    bool beforeDial();
    /// Closes the port and releases its lock.
    void close();
    bool unlockPort(const QString& portName);

    /// The line speed of the open port; 0 when no port is open.
    qint32 baudrate() const;
    QString name() const;
    QString lastError() const;

    /// Finds "<field>: value" in an answer (case-insensitive; `field` is a
    /// regular-expression fragment). Leaves `value` alone when not found.
    bool parseFieldInternal(const QByteArray& answer, const QString& field, QString& value);

    /// Classifies the modem from its answer to "ATI": sets name and dialect.
    void setModemName(const QByteArray& answer);
    qint32 dialect() const;
    QString gsmDialect() const;

    /// Restarts the modem the way its dialect needs (`full`) and brings the
    /// channel back to factory defaults. Nothing is sent when another running
    /// program holds the port's lock meanwhile (false, the holder in lastError()).
    bool reset(bool full);
    /// Opens `portName` once and checks that something answers "AT"; name and
    /// dialect are left as they are. A port held by a running program is
    /// refused as open() refuses it.
    bool test(const QString& portName, qint32 baudRate);
    /// Switches a Huawei modem to modem-only mode (no CD-ROM, no card reader).
    bool toModemOnly();

    /// ------------------------------------------------ identity and network

    /// Sends `command` and takes the first match of `pattern` (a case-sensitive
    /// regular expression) from its answer. True when the command succeeded,
    /// even if nothing matched (`value` is then empty), and also when a failed
    /// command's partial answer matched: callers test `value`.
    bool getNumberInternal(const QByteArray& command, QString& value, QString pattern);
    bool getImei(QString& imei);
    /// zelmodems::SimIdentity keeps the modem's own answer when there is no
    /// IMSI (no SIM, a PIN awaited).
    bool getImsi(QString& imsi);
    /// The operator codes from the IMSI: three digits of MCC, two of MNC.
    bool getMnc(int& mcc, int& mnc);
    /// The operator's long alphanumeric name.
    bool getOperator(QString& name);
    /// Signal level in dBm. When the modem cannot tell, a plausible weak level
    /// (-109..-90 dBm) is reported instead.
    /// zelmodems::SignalQuality reads the level without inventing one.
    bool getSignalLevel(int& level);
    /// The serving cell's location area code and cell identity, as the modem
    /// prints them (hexadecimal).
    bool getGsmCells(QString& lac, QString& cid);
    /// Neighbour cells of a Siemens/Cinterion modem: records separated by ";",
    /// each "MCC,MNC,cell,LAC,rxlev[,dBm...]" (cell and LAC in decimal).
    /// zelmodems::CellRecord::parseList reads the records.
    bool getSiemensCellList(QString& list);
    /// The serving cell of a SIMCOM modem in the same record form:
    /// ",,cell,LAC,,".
    bool getSimCOMCellList(QString& list);
    /// Everything known about the modem and its SIM: "imei", "imsi",
    /// "revision", "simId" (Siemens) or "sim_id" (Huawei, ZTE, HSPA), and
    /// "gsmCells" (Siemens, SIMCOM). False when the map stays empty.
    bool getInfo(QVariantMap& info);
    /// The same as "key: value" lines.
    bool getInfo(QString& text);

    /// ------------------------------------------------ USSD and balance

    /// Sends a USSD string (a balance request code, say) and waits up to
    /// about 20 s for the network's "+CUSD" reply; true only when one came
    /// and was decoded into `message`.
    /// zelmodems::UssdRequest gives the reply's status too (a refusal, "not
    /// supported", a time-out) and loses no reply that comes with the OK.
    bool sendUSSD(const QString& code, QString& message);
    /// Sends a USSD string whose answer comes some other way (as an SMS):
    /// only lets the exchange settle for a few seconds. True when the modem
    /// took the request; `message` is never written.
    bool sendUSSD2(const QString& code, QString& message);
    /// Decodes the "+CUSD" reply found in `answer` (plain text, or UCS2 in
    /// hexadecimal for DCS 72). On the UCS2 path the text is appended.
    bool getCUSDMessage(const QByteArray& answer, QString& message);
    /// The signed amount in an operator's balance text; 0.0 when none.
    double parseModemBalance(const QString& text);

    /// ------------------------------------------------ own number and SMS

    /// Asks the operator for the SIM's own number with the USSD `code`: in
    /// the USSD reply, or (`fromSms`) in an SMS the operator sends back, read
    /// about 15 s later. The result says whether the request went through;
    /// `number` (ten national digits) stays empty when none was found.
    /// By SMS this reads the store with takeMessages, which deletes every
    /// message it lists: use zelmodems::OwnNumber, which deletes only the
    /// operator's answer.
    bool requestSelfNumber(bool fromSms, const QString& code, QString& number);
    /// Reads every SMS the modem holds (PDU mode), joins the parts of long
    /// messages and deletes all listed messages from the modem, readable or
    /// not. The readable ones are added to `messages`, oldest first. True
    /// when `messages` is not empty.
    /// takeMessages deletes every listed entry, unread or not, readable or
    /// not: use zelmodems::MessageStore to read without deleting
    /// (listMessages, then remove what was handled).
    bool takeMessages(QList<AtModem::SSms>& messages);
    /// Sends `text` to `number` in text mode. True when the modem confirmed
    /// the message within 3 s. The number is ASCII digits after an optional
    /// "+"; anything else (";+CMGD=1,4" after it, say) is refused and nothing
    /// is sent.
    /// Text mode, one part, and "sent" means only that no error came within
    /// 3 s: zelmodems::SmsSender sends any text in PDU mode and counts a part
    /// as sent only when the network confirmed it.
    bool sendMessage(const QString& number, const QString& text);

private:
    /// Sends the same USSD request and reads the same reply, keeping its status.
    friend class zelmodems::UssdRequest;
    friend class zelmodems::LineChannel;
    friend class zelmodems::LiveChannel;

    /// Why a wait for the modem ended.
    enum class Wait { Matched, TimedOut, PortGone };

    /// True when there is a port object and its device is open. A port that
    /// reports the device gone (read or resource error) is closed here, so
    /// that every later check sees it closed at once.
    bool portOpen();
    /// Empties the port (read and discarded, errors cleared) before a command.
    void discardInput();
    /// One cycle of the waiting loops: events, a wait of up to `stepMs` for
    /// data, (events again), and whatever arrived appended to `answer`.
    /// False when the port is gone or closed.
    bool readCycle(QByteArray& answer, int stepMs, bool eventsAfterWait);
    /// Reads in 1 ms cycles until `matched(answer)` holds or `timeoutMs` has
    /// passed (at least one cycle is made).
    Wait readUntil(QByteArray& answer, int timeoutMs,
                   const std::function<bool(const QByteArray&)>& matched);
    /// Sets the last error to the time-out text unless another error is set,
    /// and logs the failed command.
    void failCommand(const QByteArray& command, const QByteArray& answer);
    /// Ends a command whose answer ran past MAX_ANSWER_BYTES: the error set
    /// and logged (with `command` unless it is null), the answer cut to the
    /// bound, the rest of the input discarded. Returns false.
    bool endFlood(const QByteArray& command, QByteArray& answer);
    /// Input that would end or escape the command line: nothing is sent.
    bool refuseInput(const QString& what, const QString& why);
    /// True, with the last error naming the holder, when a running program
    /// holds `portName` by its lock file.
    bool refuseHeldPort(const QString& portName);
    void setLine(qint32 baudRate);
    /// Composes and sends AT+CUSD with the payload and time-out the dialect
    /// needs (with ZTE's one retry); `answer` gets the modem's answer.
    bool requestUssd(const char* prefix, const QString& code, QByteArray& answer);
    /// The USSD request line for this modem's dialect, and its time-out.
    QByteArray ussdCommand(const char* prefix, const QString& code, int& timeoutMs) const;
    /// One pass of the USSD reply wait: a second's pause, then whatever the
    /// port holds (up to ten reads of 1024 bytes, 100 ms apart) appended.
    void waitForUssd(int attempt, QByteArray& buffer);

    /// These data members, their types and their order are the class's
    /// layout, part of libzelmodemslib.so.5's binary interface: programs
    /// built against any 5.x allocate AtModem with this size. Never add,
    /// remove or reorder them within version 5.
    QPointer<QSerialPort> m_port;
    qint32 m_pollTimeout = 1000;
    QString m_name;
    qint32 m_configTimeout = 1500;
    qint32 m_dialect = DEFAULT_AT_GSM;
    QString m_lastError;
};
