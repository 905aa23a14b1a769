#include "atmodem.h"
#include "atdialect.h"
#include "atinput.h"
#include "atmodemlog.h"
#include "sms.h"
#include "smspduencoder.h"

#include <qt5ext/logformat.h>
#include <qt5ext/sysutils.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QMap>
#include <QMetaEnum>
#include <QRegExp>
#include <QSerialPort>
#include <QStringList>
#include <QThread>
#include <QTimer>
#include <QVariantList>

#include <algorithm>

namespace {

// Huawei: switch the USB composition to the modem interfaces only.
const char HUAWEI_MODEM_ONLY[] = "^U2DIAG=0";

// What a modem that has switched to data mode or was interrupted by the
// escape sequence answers before it accepts commands again.
const char ESCAPE_SEQUENCE[] = "+++";

// Fixed time-outs of the short housekeeping commands (echo, init string,
// dial preparation, reset steps).
constexpr int SHORT_TIMEOUT_MS = 500;
// The identification request: some modems take their time to collect it.
constexpr int IDENTIFY_TIMEOUT_MS = 5000;
// The configuration time-out of SIMCOM modems, which print a long profile.
constexpr int SIMCOM_CONFIG_TIMEOUT_MS = 5000;
// USSD: ZTE and SIMCOM modems wait for the network before their OK.
constexpr int USSD_SLOW_TIMEOUT_MS = 5000;
constexpr int ZTE_USSD_RETRY_PAUSE_MS = 100;
// The reply wait: passes of a second's pause followed by up to ten reads
// of 1024 bytes, 100 ms apart; ten passes for a reply, four to let an
// exchange answered by SMS settle.
constexpr int USSD_ATTEMPTS = 10;
constexpr int USSD2_ATTEMPTS = 4;
constexpr int USSD_PAUSE_MS = 1000;
constexpr int USSD_READS = 10;
constexpr int USSD_CHUNK = 1024;
constexpr int USSD_READ_PAUSE_MS = 100;
// Data coding scheme of UCS2 replies.
constexpr int USSD_DCS_UCS2 = 72;

// SMS: listing may take long on a full store; a sent message is confirmed
// by the network within a few seconds.
constexpr int LIST_SMS_TIMEOUT_MS = 5000;
constexpr int SEND_SMS_WAIT_MS = 3000;
constexpr char CTRL_Z = 26;
// The own number by SMS: the operator's message needs time to arrive, and
// only a recent one can be the answer.
constexpr int SELF_NUMBER_SMS_PAUSE_S = 10;
constexpr qint64 SELF_NUMBER_SMS_MAX_AGE_S = 4 * 60 * 60;

// Time given to the rest of an answer after "ERROR" or "NO CARRIER"
// (extended error text, unsolicited lines).
constexpr int TAIL_WAIT_MS = 100;

QString serialErrorName(QSerialPort::SerialPortError error)
{
    const char* key = QMetaEnum::fromType<QSerialPort::SerialPortError>().valueToKey(error);
    return key ? QString::fromLatin1(key) : QString::number(int(error));
}

// Everything from the word "Revision" (in one of its three spellings) to the
// end of the text, with the white space before it. Firmware revisions do not
// belong in a modem's display name.
QString withoutRevision(QString name, bool repeatFirst = false)
{
    name.remove(QRegExp(QStringLiteral("(\\s*Revision.*)")));
    if (repeatFirst)
        name.remove(QRegExp(QStringLiteral("(\\s*Revision.*)")));
    name.remove(QRegExp(QStringLiteral("(\\s*REVISION.*)")));
    name.remove(QRegExp(QStringLiteral("(\\s*revision.*)")));
    return name;
}

// A hexadecimal field of a modem's answer (LAC, cell identity) written in
// decimal; "0" when it is not hexadecimal.
QString hexToDecimal(const QString& hex)
{
    bool ok = false;
    const qlonglong value = hex.toLongLong(&ok, 16);
    return ok ? QString::number(value) : QStringLiteral("0");
}

// SIMs store the ICCID with the two digits of each byte reversed. An odd
// final digit is moved one place on and a null character takes its place.
QString swapIccidDigits(const QString& text)
{
    QString swapped;
    swapped.reserve(text.size() + 1);
    int i = 0;
    for (; i + 1 < text.size(); i += 2)
        swapped.append(text.at(i + 1)).append(text.at(i));
    if (i < text.size())
        swapped.append(QChar(0)).append(text.at(i));
    return swapped;
}

// A cell-list string ("mcc,mnc,cid,lac,...;...") as a list of maps for the
// summary; records of fewer than four fields are left out.
QVariantList cellListToVariant(const QString& list)
{
    QVariantList cells;
    const QStringList records = list.split(QLatin1Char(';'));
    for (const QString& record : records) {
        const QStringList fields = record.split(QLatin1Char(','));
        if (fields.size() <= 3)
            continue;
        QVariantMap cell;
        cell.insert(QStringLiteral("mcc"), fields.at(0).toInt());
        cell.insert(QStringLiteral("mnc"), fields.at(1).toInt());
        cell.insert(QStringLiteral("cid"), fields.at(2).trimmed());
        cell.insert(QStringLiteral("lac"), fields.at(3).trimmed());
        cells.append(cell);
    }
    return cells;
}

// The national number (ten digits) in an operator's text: the ten digits
// after the country or trunk digit of an eleven-digit run, else a run of
// ten. A run at the very start of the text does not count: operators'
// answers begin with words, and leading digits are a code or a date.
QString nationalNumberIn(const QString& text)
{
    QRegExp eleven(QStringLiteral("(\\d{11})"), Qt::CaseSensitive, QRegExp::RegExp);
    int pos = eleven.indexIn(text, 0);
    if (pos > 0)
        return text.mid(pos + 1, 10);
    QRegExp ten(QStringLiteral("(\\d{10})"), Qt::CaseSensitive, QRegExp::RegExp);
    pos = ten.indexIn(text, 0);
    if (pos > 0)
        return text.mid(pos, 10);
    return QString();
}

} // namespace

AtModem::AtModem(QObject* parent) : QObject(parent)
{
    // The driver's debug output is wanted in the appliance's logs; this
    // replaces whatever rules were set through the same call before.
    QLoggingCategory::setFilterRules(QStringLiteral("atmodem.debug=true"));
}

// The port, a child object, goes with the modem object; the device is closed
// by the port's own destructor, and the lock is left to the next open.
AtModem::~AtModem() = default;

// ---------------------------------------------------------------- opening and closing

bool AtModem::open(const QString& portName, qint32 baudRate, qint32 attempts)
{
    for (qint32 attempt = 0; attempt < attempts; ++attempt) {
        m_lastError.clear();
        close();
        unlockPort(portName);

        if (!m_port)
            m_port = new QSerialPort(this);
        m_port->setPortName(portName);
        m_port->clearError();

        qCDebug(AT_MODEM()).noquote()
            << QStringLiteral("Open port %1 on %2. attempt %3").arg(portName).arg(baudRate).arg(attempt);

        if (!m_port->isOpen() && !m_port->open(QIODevice::ReadWrite)) {
            m_lastError = tr("Port opening error: ") + m_port->errorString();
            qCCritical(AT_MODEM()).noquote()
                << serialErrorName(m_port->error()) << logtab << m_port->errorString();
            continue;
        }
        setLine(baudRate);
        if (isConnected())
            return true;
    }
    return false;
}

void AtModem::setLine(qint32 baudRate)
{
    m_port->setBaudRate(baudRate, QSerialPort::AllDirections);
    m_port->setFlowControl(QSerialPort::HardwareControl);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setStopBits(QSerialPort::OneStop);
}

bool AtModem::isConnected()
{
    if (!portOpen())
        return false;
    if (!pollAt(m_pollTimeout)) {
        close();
        return false;
    }
    enableLocalEcho(false);

    QByteArray answer;
    if (!sendCommand(AT::Commands::ATI, answer, IDENTIFY_TIMEOUT_MS)) {
        close();
        return false;
    }
    setModemName(answer);

    // The configuration is for the log only: many modems reject "&V".
    if (sendCommand(AT::Commands::AT_AND_V, answer, m_configTimeout))
        qCDebug(AT_MODEM()).noquote() << QStringLiteral("Modem configuration: %1").arg(QString::fromLatin1(answer));
    return true;
}

void AtModem::close()
{
    if (!m_port)
        return;
    if (m_port->isOpen())
        m_port->clear(QSerialPort::AllDirections);
    m_port->clearError();
    m_port->close();
    m_port->clearError();
    unlockPort(m_port->portName());
    delete m_port.data();
    m_port = nullptr;
}

bool AtModem::unlockPort(const QString& portName)
{
    return qt5ext::SysUtils::unlockPort(portName, false);
}

bool AtModem::test(const QString& portName, qint32 baudRate)
{
    m_lastError.clear();
    close();
    unlockPort(portName);

    if (!m_port)
        m_port = new QSerialPort(this);
    m_port->setPortName(portName);
    m_port->clearError();
    m_port->close();

    qCDebug(AT_MODEM()).noquote() << QStringLiteral("Open port %1 on %2").arg(portName).arg(baudRate);

    if (m_port->open(QIODevice::ReadWrite)) {
        setLine(baudRate);
        return pollAt(2000);
    }
    m_lastError = tr("Port opening error: ") + m_port->errorString();
    qCritical().noquote() << m_port->errorString();
    qCCritical(AT_MODEM()).noquote() << m_port->errorString();
    return false;
}

// ---------------------------------------------------------------- the channel

bool AtModem::portOpen()
{
    if (!m_port || !m_port->isOpen())
        return false;
    const QSerialPort::SerialPortError error = m_port->error();
    if (error == QSerialPort::ReadError || error == QSerialPort::ResourceError) {
        // A pulled USB modem reports a resource error; a device node whose
        // other side has gone (a pty, some USB serial drivers) fails every
        // read with EIO. Either way nothing will ever answer on it.
        qCWarning(AT_MODEM()).noquote()
            << m_port->portName() << logtab << serialErrorName(error) << logtab << m_port->errorString();
        m_port->close();
        return false;
    }
    return true;
}

void AtModem::discardInput()
{
    m_port->readAll();
    m_port->clearError();
    m_port->clear(QSerialPort::AllDirections);
    m_port->readAll();
}

bool AtModem::readCycle(QByteArray& answer, int stepMs, bool eventsAfterWait)
{
    QCoreApplication::processEvents();
    if (!portOpen())
        return false;
    m_port->waitForReadyRead(stepMs);
    if (eventsAfterWait)
        QCoreApplication::processEvents();
    if (!portOpen())
        return false;
    answer.append(m_port->readAll());
    return true;
}

AtModem::Wait AtModem::readUntil(QByteArray& answer, int timeoutMs,
                                 const std::function<bool(const QByteArray&)>& matched)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        if (!readCycle(answer, 1, true))
            return Wait::PortGone;
        if (matched(answer))
            return Wait::Matched;
        if (clock.elapsed() >= timeoutMs)
            return Wait::TimedOut;
    }
}

void AtModem::failCommand(const QByteArray& command, const QByteArray& answer)
{
    if (m_lastError.isEmpty()) {
        m_lastError = tr("Modem is offline pn port %1").arg(m_port ? m_port->portName() : QString());
        if (command.isNull())
            qCWarning(AT_MODEM()).noquote() << m_lastError;
        else
            qCWarning(AT_MODEM()).noquote() << QString::fromLatin1(command) << logtab << m_lastError;
    }
    if (command.isNull())
        qCWarning(AT_MODEM()).noquote()
            << "Modem wrong answer is " << logtab << logbinary(answer) << logtab << m_lastError;
    else
        qCWarning(AT_MODEM()).noquote() << QString::fromLatin1(command) << logtab << "Modem wrong answer is "
                                        << logtab << logbinary(answer) << logtab << m_lastError;
}

bool AtModem::sendCommand(const QByteArray& command, QByteArray& answer, int timeoutMs)
{
    const QByteArray fullCommand = QByteArray("AT") + command;
    qCDebug(AT_MODEM()).noquote() << "Send at command " + logbinary(fullCommand);
    if (!portOpen())
        return false;

    m_lastError.clear();
    answer.clear();
    discardInput();
    m_port->write(makeCommand(QString::fromUtf8(command)));

    // "OK" is looked for first and anywhere: an answer that holds the
    // letters anywhere counts as a success and is cut there.
    const Wait wait = readUntil(answer, timeoutMs, [](const QByteArray& a) {
        return a.contains("OK") || a.lastIndexOf("ERROR") >= 0 || a.lastIndexOf("NO CARRIER") >= 0;
    });
    if (wait == Wait::PortGone)
        return false;

    if (wait == Wait::Matched) {
        const int ok = answer.indexOf("OK");
        if (ok >= 0) {
            answer.truncate(ok);
            qCDebug(AT_MODEM()).noquote()
                << logbinary(fullCommand) << logtab << "Modem answer is " << logtab << logbinary(answer);
            return true;
        }
        // A failure code: give the rest of the answer (an extended error
        // text, say) a moment to arrive, and keep all of it.
        QElapsedTimer tail;
        tail.start();
        while (tail.elapsed() < TAIL_WAIT_MS) {
            if (!portOpen())
                return false;
            m_port->waitForReadyRead(int(TAIL_WAIT_MS - tail.elapsed()));
        }
        QCoreApplication::processEvents();
        if (!portOpen())
            return false;
        answer.append(m_port->readAll());
        m_lastError = answer.lastIndexOf("ERROR") >= 0 ? tr("Modem said \"ERROR\"") : tr("Modem said \"NO CARRIER\"");
        qCWarning(AT_MODEM()).noquote() << m_lastError;
    }
    failCommand(fullCommand, answer);
    return false;
}

bool AtModem::sendRawCommand(const QByteArray& data, QByteArray& answer, int timeoutMs)
{
    qCDebug(AT_MODEM()).noquote() << "Send at command " + logbinary(data);
    if (!portOpen())
        return false;

    m_lastError.clear();
    answer.clear();
    discardInput();
    m_port->write(data);

    // Raw data is sent while the modem may be in data mode, so only the two
    // plain result codes are looked for, and the step never exceeds 1 ms.
    const int step = timeoutMs / 5 > 0 ? 1 : 0;
    QElapsedTimer clock;
    clock.start();
    while (timeoutMs > clock.elapsed()) {
        if (!readCycle(answer, step, false))
            return false;
        const int ok = answer.indexOf("OK");
        if (ok >= 0) {
            answer.truncate(ok);
            qCDebug(AT_MODEM()).noquote() << "Modem answer is " << logtab << logbinary(answer);
            return true;
        }
        const int error = answer.indexOf("ERROR");
        if (error >= 0) {
            answer.truncate(error);
            m_lastError = tr("Modem said \"ERROR\"");
            qCWarning(AT_MODEM()).noquote() << m_lastError;
            break;
        }
    }
    failCommand(QByteArray(), answer);
    return false;
}

bool AtModem::refuseInput(const QString& what, const QString& why)
{
    m_lastError = tr("Refused %1, nothing sent: %2").arg(what, why);
    qCWarning(AT_MODEM()).noquote() << m_lastError;
    return false;
}

QByteArray AtModem::makeCommand(const QString& command)
{
    return QByteArray("AT") + command.toLatin1() + char(13);
}

bool AtModem::pollAt(int timeoutMs)
{
    if (!portOpen())
        return false;
    m_port->clear(QSerialPort::AllDirections);
    for (int attempt = 0; attempt < 6; ++attempt) {
        QByteArray answer;
        if (sendCommand(AT::Commands::AT, answer, timeoutMs))
            return true;
    }
    return false;
}

bool AtModem::enableLocalEcho(bool on)
{
    QByteArray answer;
    return sendCommand(QByteArray(AT::Commands::ATE) + (on ? "1" : "0"), answer, SHORT_TIMEOUT_MS);
}

bool AtModem::setInitString(const QString& init)
{
    // Only the upper-case prefix is taken for the attention code; anything
    // else is sent as the user wrote it, behind our own "AT".
    QString command = init;
    command.remove(QRegExp(QStringLiteral("^AT")));
    enableLocalEcho(false);
    QByteArray answer;
    return sendCommand(command.toLatin1(), answer, SHORT_TIMEOUT_MS);
}

bool AtModem::beforeDial()
{
    QByteArray answer;
    // Leave data mode if the modem is still in it.
    sendRawCommand(ESCAPE_SEQUENCE, answer, SHORT_TIMEOUT_MS);
    bool result = false;
    if (sendCommand(AT::Commands::AT, answer, SHORT_TIMEOUT_MS))
        result = sendCommand(AT::Commands::AT_AND_F0, answer, SHORT_TIMEOUT_MS);
    // Factory defaults take a moment before the dialer may talk to the modem.
    QThread::sleep(2);
    return result;
}

bool AtModem::toModemOnly()
{
    if (!portOpen())
        return false;
    QByteArray answer;
    if (!sendCommand(AT::Commands::AT, answer, SHORT_TIMEOUT_MS))
        return false;
    return sendCommand(HUAWEI_MODEM_ONLY, answer, SHORT_TIMEOUT_MS);
}

qint32 AtModem::baudrate() const
{
    if (!m_port || !m_port->isOpen())
        return 0;
    return m_port->baudRate(QSerialPort::AllDirections);
}

QString AtModem::name() const
{
    return m_name;
}

QString AtModem::lastError() const
{
    return m_lastError;
}

bool AtModem::parseFieldInternal(const QByteArray& answer, const QString& field, QString& value)
{
    QRegExp rx(field + QStringLiteral("[:\\s]+([^\\n\\r]+)"), Qt::CaseInsensitive);
    if (rx.indexIn(QString::fromLatin1(answer).trimmed(), 0) < 0)
        return false;
    value = rx.cap(1).trimmed();
    return true;
}

// ---------------------------------------------------------------- dialects

void AtModem::setModemName(const QByteArray& answer)
{
    qCInfo(AT_MODEM()).noquote() << "ATI" << logtab << logbinary(answer);

    const QString text = QString::fromUtf8(answer).simplified();
    m_name = text;

    auto has = [&text](const char* word) { return text.contains(QLatin1String(word), Qt::CaseInsensitive); };
    // Many modems print "Manufacturer: ..." and "Model: ..." lines; they make
    // a better name than the whole identification text.
    auto manufacturerAndModel = [this, &answer]() {
        QString value;
        if (parseFieldInternal(answer, QStringLiteral("Manufacturer"), value))
            m_name = value;
        QString model;
        if (parseFieldInternal(answer, QStringLiteral("Model"), model))
            m_name += QLatin1Char(' ') + model;
    };
    QRegExp mfNumber(QStringLiteral("MF\\d{3}"), Qt::CaseInsensitive);

    if (has("Cinterion") || has("Siemens") || has("SprutNet")) {
        m_dialect = SIEMENCE;
        m_name = withoutRevision(m_name);
    } else if (has("HSPA Data Card")) {
        m_dialect = HSPA;
        m_name = withoutRevision(m_name);
        manufacturerAndModel();
    } else if (has("SIMCOM")) {
        m_dialect = SIM_COM;
        m_name = withoutRevision(m_name, true);
        manufacturerAndModel();
        m_configTimeout = SIMCOM_CONFIG_TIMEOUT_MS;
    } else if (has("huawei")) {
        m_dialect = HUAWEI;
        manufacturerAndModel();
    } else if (mfNumber.indexIn(text) >= 0 || has("ZTE")) {
        m_dialect = ZTE;
        QString manufacturer;
        if (parseFieldInternal(answer, QStringLiteral("Manufacturer"), manufacturer)) {
            m_name = manufacturer;
            QString model;
            if (parseFieldInternal(answer, QStringLiteral("Model"), model))
                m_name += QLatin1Char(' ') + model;
        } else {
            // The model number is all the name there is. Without one the
            // extract starts before the text (position -1) and takes the
            // first four characters.
            m_name = QStringLiteral("ZTE ") + text.mid(mfNumber.indexIn(text), 5);
        }
    } else if (has("E171") || has("E3372")) {
        m_dialect = HUAWEI;
        m_name = QStringLiteral("HUAWEI");
        QString model;
        if (parseFieldInternal(answer, QStringLiteral("Model"), model))
            m_name += QLatin1Char(' ') + model;
    } else if (has("MC52") || has("MC 52") || has("MC-52")) {
        m_dialect = SIEMENCE;
        m_name = withoutRevision(m_name);
    }

    // The name goes into connection names and file names: no white space.
    const QRegExp space(QStringLiteral("\\s+"));
    while (m_name.contains(space))
        m_name.replace(space, QStringLiteral("_"));

    qCInfo(AT_MODEM()).noquote() << m_name << logtab << m_dialect << logtab << gsmDialect();
}

qint32 AtModem::dialect() const
{
    return m_dialect;
}

QString AtModem::gsmDialect() const
{
    return AT::dialectText(m_dialect);
}

bool AtModem::reset(bool full)
{
    if (full)
        qWarning("RESET MODEM");
    enableLocalEcho(false);

    QByteArray answer;
    switch (m_dialect) {
    case SIEMENCE:
        if (full) {
            sendCommand(AT::Commands::Siemens::RESTART, answer, SHORT_TIMEOUT_MS);
            QThread::sleep(5);
        }
        break;
    case SIM_COM:
        if (full) {
            sendCommand(AT::Commands::SimCom::RESTART, answer, SHORT_TIMEOUT_MS);
            QThread::sleep(5);
            pollAt(30000);
        }
        break;
    case HUAWEI:
        if (full) {
            sendCommand(AT::Commands::Huawei::RESTART, answer, SHORT_TIMEOUT_MS);
            pollAt(30000);
        }
        break;
    case ZTE:
        sendCommand(AT::Commands::ZTE::POWER_ON, answer, SHORT_TIMEOUT_MS);
        break;
    case HSPA:
        qCDebug(AT_MODEM()).noquote() << "Reset" << logtab << m_dialect << logtab << (full ? "true" : "false");
        if (full) {
            sendCommand(AT::Commands::HSPA::RESTART, answer, SHORT_TIMEOUT_MS);
            QThread::sleep(10);
            pollAt(30000);
        }
        break;
    default:
        break;
    }

    // After a restart the modem is back only when it answers again.
    if (!pollAt(5000)) {
        close();
        return false;
    }
    return sendCommand(AT::Commands::AT_AND_F0, answer, SHORT_TIMEOUT_MS);
}

// ---------------------------------------------------------------- identity and network

bool AtModem::getNumberInternal(const QByteArray& command, QString& value, QString pattern)
{
    value.clear();
    QByteArray answer;
    bool ok = sendCommand(command, answer, SHORT_TIMEOUT_MS);
    QRegExp rx(pattern, Qt::CaseSensitive, QRegExp::RegExp);
    if (rx.indexIn(QString::fromUtf8(answer), 0) >= 0) {
        value = rx.cap(0);
        // A failed command whose partial answer already holds the number
        // still serves: modems append noise or errors after good data.
        ok = true;
    }
    qCDebug(AT_MODEM()).noquote() << QString::fromLatin1(command) << logtab << value << logtab << pattern
                                  << logtab << logbinary(answer);
    return ok;
}

bool AtModem::getImei(QString& imei)
{
    enableLocalEcho(false);
    return getNumberInternal(AT::Commands::IMEI, imei, QStringLiteral("\\d+"));
}

bool AtModem::getImsi(QString& imsi)
{
    return getNumberInternal(AT::Commands::IMSI, imsi, QStringLiteral("\\d+"));
}

bool AtModem::getMnc(int& mcc, int& mnc)
{
    mcc = 0;
    mnc = 0;
    QString imsi;
    if (!getImsi(imsi))
        return false;
    if (imsi.size() < 5)
        return false;

    // The operator table is keyed to two-digit MNCs, so two digits are taken
    // even where the network uses three.
    bool ok = false;
    const QString mccText = imsi.left(3);
    mcc = mccText.toInt(&ok, 10);
    if (!ok) {
        m_lastError = tr("Wrong mcc ") + mccText;
        return false;
    }
    const QString mncText = imsi.mid(3, 2);
    mnc = mncText.toInt(&ok, 10);
    if (!ok) {
        m_lastError = tr("Wrong mnc") + mncText;
        return false;
    }
    return true;
}

bool AtModem::getOperator(QString& name)
{
    enableLocalEcho(false);
    QByteArray answer;
    // Long alphanumeric names; older modems reject the format and keep theirs.
    sendCommand(AT::Commands::COPS_MODE, answer, SHORT_TIMEOUT_MS);
    answer.clear();
    if (!sendCommand(AT::Commands::COPS, answer, SHORT_TIMEOUT_MS))
        return false;

    QRegExp rx(QStringLiteral("\".+\""), Qt::CaseSensitive, QRegExp::RegExp);
    if (rx.indexIn(QString::fromUtf8(answer), 0) < 0)
        return false;
    name = rx.cap(0).remove(QLatin1Char('"'));
    qCDebug(AT_MODEM()).noquote() << tr("Operator") << logtab << name;
    return true;
}

bool AtModem::getSignalLevel(int& level)
{
    // A modem that cannot report a usable level still gets a plausible weak
    // one, so that the service never shows 0 dBm or nothing.
    qsrand(uint(QDateTime::currentSecsSinceEpoch()));
    const int substitute = -90 - (qrand() % 20);

    level = 0;
    QString pair;
    if (!getNumberInternal(AT::Commands::CSQ, pair, QStringLiteral("\\d+\\s*\\,\\s*\\d+"))) {
        level = substitute;
        return false;
    }
    const QStringList parts = pair.split(QLatin1Char(','));
    if (parts.size() >= 2) {
        bool ok = false;
        const int rssi = parts.at(0).toInt(&ok, 10);
        // 3GPP TS 27.007: index 0 is -113 dBm or less, 31 is -51 dBm or more.
        level = ok ? 2 * rssi - 113 : 0;
    }
    // Index 99 ("not known") and anything out of range come out >= 0.
    if (level >= 0)
        level = substitute;
    return true;
}

bool AtModem::getGsmCells(QString& lac, QString& cid)
{
    QByteArray answer;
    if (!sendCommand(AT::Commands::CREG2, answer, 1000))
        return false;
    answer.clear();
    if (!sendCommand(AT::Commands::CREG, answer, 1000))
        return false;

    // "+CREG: <n>,<stat>,<lac>,<ci>[,...]": drop n and stat.
    QString text = QString::fromLatin1(answer).trimmed();
    text.remove(0, text.indexOf(QLatin1Char(',')) + 1);
    text.remove(0, text.indexOf(QLatin1Char(',')) + 1);
    const int comma = text.indexOf(QLatin1Char(','));
    lac = text.left(comma).remove(QLatin1Char('"')).trimmed();
    cid = text.mid(comma + 1).remove(QLatin1Char('"')).trimmed();
    return !lac.isEmpty() && !cid.isEmpty();
}

bool AtModem::getSiemensCellList(QString& list)
{
    QByteArray answer;
    if (!sendCommand(AT::Commands::Siemens::GET_CELL_LIST, answer, 1000))
        return false;

    const QStringList halves = QString::fromLatin1(answer).split(QLatin1Char(':'));
    if (halves.size() < 2)
        return false;
    const QStringList fields = halves.at(1).trimmed().split(QLatin1Char(','));
    if (fields.size() < 7)
        return false;

    // Nine fields a cell: MCC, MNC, LAC, cell, BSIC, channel, RxLev, C1, C2.
    // A cell is known by its channel; a truncated last cell still counts
    // when its RxLev is there.
    QMap<QString, QStringList> cells;
    for (int g = 0; g < fields.size() && fields.size() > g + 6; g += 9) {
        const QStringList record{fields.at(g).trimmed(), fields.at(g + 1).trimmed(),
                                 hexToDecimal(fields.at(g + 3)), hexToDecimal(fields.at(g + 2)),
                                 fields.at(g + 6).trimmed()};
        cells.insert(fields.at(g + 5), record);
    }

    // The serving cell (^MONI) and the neighbours (^MONP) in dBm, one line a
    // cell beginning with its channel; the level is the third column.
    const QRegExp blanks(QStringLiteral("\\s+"));
    for (const char* command : {AT::Commands::Siemens::ACTIVE_CELL_INFO, AT::Commands::Siemens::INACTIVE_CELL_INFO}) {
        answer.clear();
        if (!sendCommand(command, answer, SHORT_TIMEOUT_MS))
            continue;
        const QStringList lines = QString::fromLatin1(answer).trimmed().split(QLatin1Char('\n'));
        for (const QString& line : lines) {
            const QStringList tokens = line.split(blanks, Qt::SkipEmptyParts);
            if (tokens.size() <= 2)
                continue;
            const QString channel = tokens.at(0).trimmed();
            bool ok = false;
            const int number = channel.toInt(&ok, 10);
            if (!ok || number < 1)
                continue;
            auto cell = cells.find(channel);
            if (cell != cells.end())
                cell->append(tokens.at(2));
        }
    }

    QStringList records;
    for (auto it = cells.cbegin(); it != cells.cend(); ++it)
        records << it->join(QLatin1Char(','));
    list = records.join(QLatin1Char(';'));
    return true;
}

bool AtModem::getSimCOMCellList(QString& list)
{
    QByteArray answer;
    if (!sendCommand(QByteArray(AT::Commands::SimCom::CGREG) + "=2", answer, SHORT_TIMEOUT_MS))
        return false;
    answer.clear();
    if (!sendCommand(QByteArray(AT::Commands::SimCom::CGREG) + "?", answer, SHORT_TIMEOUT_MS))
        return false;

    QRegExp rx(QStringLiteral("(\\d+),(\\d+),\"([\\d\\w]+)\",\"([\\d\\w]+)\""), Qt::CaseSensitive, QRegExp::RegExp);
    if (rx.indexIn(QString::fromUtf8(answer), 0) < 0)
        return false;
    // Only the serving cell is known: no MCC, MNC or levels.
    list = QStringList{QString(), QString(), hexToDecimal(rx.cap(4)), hexToDecimal(rx.cap(3)), QString(), QString()}
               .join(QLatin1Char(','));
    return true;
}

bool AtModem::getInfo(QVariantMap& info)
{
    QVariantMap map;
    const QString digits = QStringLiteral("\\d+");
    QString value;
    enableLocalEcho(false);

    if (getNumberInternal(AT::Commands::IMEI, value, digits))
        map.insert(QStringLiteral("imei"), value);
    if (getNumberInternal(AT::Commands::IMSI, value, digits))
        map.insert(QStringLiteral("imsi"), value);

    QByteArray answer;
    if (sendCommand(AT::Commands::REVISION, answer, SHORT_TIMEOUT_MS)) {
        QString revision;
        if (parseFieldInternal(answer, QStringLiteral("Revision"), revision))
            map.insert(QStringLiteral("revision"), revision);
        else
            map.insert(QStringLiteral("revision"), answer.simplified());
    }

    QString cells;
    switch (m_dialect) {
    case SIEMENCE:
        // Siemens reports the ICCID in reading order: no swap, and its own key.
        if (getNumberInternal(AT::Commands::Siemens::SIMID, value, digits))
            map.insert(QStringLiteral("simId"), value);
        if (getSiemensCellList(cells)) {
            const QVariantList list = cellListToVariant(cells);
            if (!list.isEmpty())
                map.insert(QStringLiteral("gsmCells"), list);
        }
        break;
    case SIM_COM:
        if (getSimCOMCellList(cells)) {
            const QVariantList list = cellListToVariant(cells);
            if (!list.isEmpty())
                map.insert(QStringLiteral("gsmCells"), list);
        }
        break;
    case HUAWEI:
        if (getNumberInternal(AT::Commands::Huawei::SIMID, value, digits))
            map.insert(QStringLiteral("sim_id"), swapIccidDigits(value));
        break;
    case ZTE:
        // The ICCID file (2FE2) read raw from the SIM.
        if (getNumberInternal(AT::Commands::ZTE::SIMID, value, QStringLiteral("\\w{6,24}")))
            map.insert(QStringLiteral("sim_id"), swapIccidDigits(value));
        break;
    case HSPA:
        if (getNumberInternal(AT::Commands::HSPA::SIMID, value, digits))
            map.insert(QStringLiteral("sim_id"), swapIccidDigits(value));
        break;
    default:
        break;
    }

    info = map;
    return !map.isEmpty();
}

bool AtModem::getInfo(QString& text)
{
    QVariantMap info;
    if (!getInfo(info))
        return false;
    QStringList lines;
    for (auto it = info.cbegin(); it != info.cend(); ++it)
        lines << QStringLiteral("%1: %2").arg(it.key(), it.value().toString());
    text = lines.join(QLatin1Char('\n'));
    return true;
}

// ---------------------------------------------------------------- USSD and balance

bool AtModem::requestUssd(const char* prefix, const QString& code, QByteArray& answer)
{
    // A CR or a quote in the code would end the command early and run the
    // rest as a command of its own.
    const QString unsafe = zelmodems::AtInput::checkArgument(code);
    if (!unsafe.isEmpty())
        return refuseInput(tr("USSD code"), unsafe);
    if (!portOpen())
        return false;
    enableLocalEcho(false);

    QByteArray command = QByteArray(prefix) + ",\"";
    int timeoutMs = SHORT_TIMEOUT_MS;
    switch (m_dialect) {
    case HUAWEI:
        // Huawei sticks take the string packed in GSM 7-bit septets and
        // written in hexadecimal.
        command += SmsPduEncoder::encode(code.toLatin1(), ' ').toHex();
        break;
    case ZTE:
        command += code.toUtf8();
        timeoutMs = USSD_SLOW_TIMEOUT_MS;
        break;
    case SIM_COM: {
        // SIMCOM presents replies in the modem's character set: make it GSM.
        QByteArray ignored;
        sendCommand(AT::Commands::SimCom::CSCS, ignored, SHORT_TIMEOUT_MS);
        command += code.toUtf8();
        timeoutMs = USSD_SLOW_TIMEOUT_MS;
        break;
    }
    default:
        command += code.toUtf8();
        break;
    }
    command += "\",15";   // GSM 7-bit default alphabet

    if (sendCommand(command, answer, timeoutMs))
        return true;
    if (m_dialect != ZTE || !answer.contains("Unexpected Data Value"))
        return false;
    // ZTE firmware refuses a request while the network is still busy with
    // an earlier one; a second try a moment later goes through.
    QThread::msleep(ZTE_USSD_RETRY_PAUSE_MS);
    answer.clear();
    qCDebug(AT_MODEM()).noquote() << tr("Retry send USSD for ZTE modems");
    return sendCommand(command, answer, SHORT_TIMEOUT_MS);
}

void AtModem::waitForUssd(int attempt, QByteArray& buffer)
{
    qCDebug(AT_MODEM()).noquote() << tr("Waiting for USSD reply, attempt %1.").arg(attempt);
    QCoreApplication::processEvents();
    QThread::msleep(USSD_PAUSE_MS);

    for (int read = 0; read < USSD_READS && portOpen(); ++read) {
        // Pick up what the device holds now (the port buffers only what an
        // event or a wait has pulled in), without waiting for more.
        if (m_port->bytesAvailable() == 0)
            m_port->waitForReadyRead(0);
        const QByteArray chunk = m_port->read(USSD_CHUNK);
        if (chunk.isEmpty())
            break;
        buffer += chunk;
        QCoreApplication::processEvents();
        QThread::msleep(USSD_READ_PAUSE_MS);
        QCoreApplication::processEvents();
    }
}

bool AtModem::sendUSSD(const QString& code, QString& message)
{
    if (code.isEmpty())
        return false;
    // The reply arrives on its own after the OK; the buffer keeps all that
    // came, the command's answer included (some modems present the reply
    // before the OK).
    QByteArray buffer;
    if (!requestUssd(AT::Commands::CUSD, code, buffer))
        return false;

    for (int attempt = 1; attempt <= USSD_ATTEMPTS; ++attempt) {
        waitForUssd(attempt, buffer);
        qCInfo(AT_MODEM()).noquote() << logbinary(buffer, "UTF-8");
        if (getCUSDMessage(buffer, message)) {
            qCInfo(AT_MODEM()).noquote() << message;
            return true;
        }
        if (buffer.contains("ERROR")) {
            QCoreApplication::processEvents();
            return false;
        }
    }
    QCoreApplication::processEvents();
    return false;
}

bool AtModem::sendUSSD2(const QString& code, QString& message)
{
    Q_UNUSED(message)
    // Result presentation off: the operator answers with an SMS. The port
    // is only drained meanwhile, so that the exchange does not disturb the
    // next command.
    QByteArray buffer;
    if (!requestUssd(AT::Commands::CUSD2, code, buffer))
        return false;
    for (int attempt = 1; attempt <= USSD2_ATTEMPTS; ++attempt)
        waitForUssd(attempt, buffer);
    QCoreApplication::processEvents();
    return true;
}

bool AtModem::getCUSDMessage(const QByteArray& answer, QString& message)
{
    QString text;
    if (m_dialect == SIM_COM) {
        // In the GSM character set SIMCOM writes the reply's characters as
        // raw bytes: "@" is a zero byte (dropped), and bytes from 80
        // hexadecimal on are widened as signed values.
        text.reserve(answer.size());
        for (char byte : answer) {
            if (byte != 0)
                text.append(QChar(ushort(qint16(qint8(byte)))));
        }
    } else {
        text = QString::fromLatin1(answer).simplified();
    }

    QRegExp rx(QStringLiteral(".*\\+CUSD: ?(\\d)(\\,\\\"(.*)\\\"\\,(\\d+))?.*"), Qt::CaseSensitive, QRegExp::RegExp);
    if (!rx.exactMatch(text))
        return false;
    const QString body = rx.cap(3);
    const int dcs = rx.cap(4).toInt();

    // 7-bit default alphabet (DCS 15 or 0): modems present it as text.
    if (dcs != USSD_DCS_UCS2) {
        message = body;
        return true;
    }

    // UCS2: four hexadecimal digits a character.
    QRegExp hex(QStringLiteral("((\\d|[A-F]|[a-f])+)"), Qt::CaseSensitive, QRegExp::RegExp);
    if (hex.exactMatch(body)) {
        for (int i = 0; i + 4 <= body.size(); i += 4)
            message.append(QChar(body.midRef(i, 4).toUShort(nullptr, 16)));
        return true;
    }
    // UCS2 announced but not written in hexadecimal: a byte-order mark is
    // put in front (as two replacement characters, FE and FF being invalid
    // UTF-8) and half the characters are kept.
    const QString marked = QString::fromUtf8("\xFE\xFF", 2) + body;
    message = marked.left(marked.size() / 2);
    return true;
}

double AtModem::parseModemBalance(const QString& text)
{
    QRegExp rx(QStringLiteral("\\d+[\\.,\\,]{,1}\\d*"), Qt::CaseSensitive, QRegExp::RegExp);
    const int pos = rx.indexIn(text, 0);
    if (pos < 0)
        return 0.0;

    QString number;
    for (int i = pos; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (!((c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('.') || c == QLatin1Char(',')))
            break;
        number.append(c);
    }

    // A "-" right before the amount, or one character before it ("-
    // 15"). Only the first "-" of the text counts: one in a date or a dash
    // earlier hides a later one.
    bool negative = false;
    const int minusSign = text.indexOf(QLatin1Char('-'));
    const int nearest = pos - 3 < 0 ? -1 : pos - 3;
    if (minusSign < pos && minusSign > nearest) {
        negative = true;
    } else {
        // Operators that spell the sign out, in English or in the
        // translation's language, anywhere before the amount.
        const QString lower = text.toLower();
        const int word = lower.indexOf(QLatin1String("minus"));
        if (word >= 0 && word < pos) {
            negative = true;
        } else {
            const int translated = lower.indexOf(tr("minus"));
            negative = translated >= 0 && translated < pos;
        }
    }

    if (negative)
        number.prepend(QLatin1Char('-'));
    number.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double amount = number.toDouble(&ok);
    return ok ? amount : 0.0;
}

// ---------------------------------------------------------------- own number and SMS

bool AtModem::takeMessages(QList<AtModem::SSms>& messages)
{
    enableLocalEcho(false);
    QByteArray answer;
    sendCommand(AT::Commands::SET_PDU_MODE, answer, SHORT_TIMEOUT_MS);
    // Whatever came is used, even from a listing cut short: an empty or
    // broken answer simply holds fewer messages.
    sendCommand(AT::Commands::LIST_SMS, answer, LIST_SMS_TIMEOUT_MS);

    // "+CMGL: <index>,<stat>,[<alpha>],<length>" and the PDU on the next line.
    QRegExp rx(QStringLiteral("\\+CMGL:\\s+(\\d+),.*[\\r\\n]+([0-9A-Fa-f]+)[\\r\\n]+"), Qt::CaseSensitive,
               QRegExp::RegExp);
    rx.setMinimal(true);
    const QString text = QString::fromUtf8(answer);
    QList<int> indexes;
    QList<SmsPart> parts;
    int pos = 0;
    while ((pos = rx.indexIn(text, pos)) >= 0) {
        const int index = rx.cap(1).toInt();
        const SmsPart part = Sms::decode(rx.cap(2));
        qCDebug(AT_MODEM()).noquote() << QStringLiteral("SMS %1: %2").arg(index).arg(part.getText());
        indexes << index;
        parts << part;
        pos += rx.matchedLength() > 0 ? rx.matchedLength() : 1;
    }

    const QList<Sms> joined = Sms::join(parts);
    for (const Sms& sms : joined) {
        if (sms.isValid())
            messages.append(SSms{sms.getSenderAddress(), sms.getDateTime().toLocalTime(), sms.getText()});
        else
            qCWarning(AT_MODEM()).noquote() << sms.getErrorString();
    }
    std::stable_sort(messages.begin(), messages.end(),
                     [](const SSms& a, const SSms& b) { return a.dateTime < b.dateTime; });

    // Messages are consumed: what could not be read is deleted too, or it
    // would fill the store and come back on every reading.
    for (int index : qAsConst(indexes))
        sendCommand(QByteArray(AT::Commands::DELETE_SMS) + QByteArray::number(index), answer, SHORT_TIMEOUT_MS);
    return !messages.isEmpty();
}

bool AtModem::sendMessage(const QString& number, const QString& text)
{
    // The number goes unquoted on the command line and the text ends at the
    // first Ctrl-Z: either could carry a command of its own to the modem.
    QString unsafe = zelmodems::AtInput::checkArgument(number);
    if (!unsafe.isEmpty())
        return refuseInput(tr("number"), unsafe);
    unsafe = zelmodems::AtInput::checkSmsText(text);
    if (!unsafe.isEmpty())
        return refuseInput(tr("text"), unsafe);
    if (!portOpen())
        return false;
    enableLocalEcho(false);

    QByteArray answer;
    sendCommand(AT::Commands::SET_TEXT_MODE, answer, SHORT_TIMEOUT_MS);
    answer.clear();
    // The modem answers with its "> " prompt, not with a result code, so
    // the command itself runs into its time-out; the prompt is what counts.
    sendCommand(QByteArray(AT::Commands::SEND_SMS) + number.toUtf8(), answer, SHORT_TIMEOUT_MS);
    if (!answer.contains('>'))
        return false;

    if (m_port->write(text.toUtf8() + CTRL_Z) <= 0)
        return false;

    // The network's confirmation takes a few seconds. Events go on being
    // processed meanwhile; the timer only wakes the wait when nothing else
    // does (it is restarted should it fire before the time is up).
    QElapsedTimer clock;
    clock.start();
    // A thread without an event dispatcher (not started by QThread) has no
    // timers and no events to wait for: it only spins.
    const bool dispatcher = QAbstractEventDispatcher::instance() != nullptr;
    QTimer wake;
    wake.setSingleShot(true);
    wake.setTimerType(Qt::PreciseTimer);
    for (qint64 remaining = SEND_SMS_WAIT_MS; remaining > 0; remaining = SEND_SMS_WAIT_MS - clock.elapsed()) {
        if (!portOpen())
            return false;
        if (!dispatcher) {
            // Nothing drives the port's output there but its own waits.
            if (m_port->bytesToWrite() > 0)
                m_port->waitForBytesWritten(0);
            QCoreApplication::processEvents();
            continue;
        }
        if (!wake.isActive())
            wake.start(int(remaining));
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    if (!portOpen())
        return false;
    if (m_port->bytesAvailable() == 0)
        m_port->waitForReadyRead(0);
    const QByteArray reply = m_port->readAll();
    qCDebug(AT_MODEM()).noquote() << "SMS" << logtab << number << logtab << logbinary(reply);
    return !reply.isEmpty() && reply.contains("OK");
}

bool AtModem::requestSelfNumber(bool fromSms, const QString& code, QString& number)
{
    number.clear();
    if (code.isEmpty())
        return false;

    if (fromSms) {
        QString ignored;
        if (!sendUSSD2(code, ignored))
            return false;
        QThread::sleep(SELF_NUMBER_SMS_PAUSE_S);
        pollAt(5);
        QList<SSms> messages;
        if (!takeMessages(messages) || messages.isEmpty())
            return true;

        const QDateTime now = QDateTime::currentDateTime();
        for (const SSms& sms : qAsConst(messages)) {
            const qint64 age = sms.dateTime.secsTo(now);
            qCInfo(AT_MODEM()).noquote() << sms.dateTime.toString(Qt::ISODate) << logtab << age;
            // Older messages cannot be the answer to this request.
            if (age > SELF_NUMBER_SMS_MAX_AGE_S)
                continue;
            number = nationalNumberIn(sms.text);
            if (!number.isEmpty())
                break;
        }
        return true;
    }

    QString reply;
    const bool ok = sendUSSD(code, reply);
    qCDebug(AT_MODEM()).noquote() << reply;
    if (!ok)
        return false;
    // "+7 (912) 345-67-89" and the like: the digits in one run.
    reply.remove(QLatin1Char('(')).remove(QLatin1Char(')')).remove(QLatin1Char(' ')).remove(QLatin1Char('-'));
    number = nationalNumberIn(reply);
    return true;
}
