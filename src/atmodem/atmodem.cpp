// The modem driver's channel: the port's line settings, closing and unlocking it, and sending AT commands.
#include "atmodem_p.h"
#include "portlock.h"
#include "resultcodescanner_p.h"

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

void AtModem::setLine(qint32 baudRate)
{
    m_port->setBaudRate(baudRate, QSerialPort::AllDirections);
    m_port->setFlowControl(QSerialPort::HardwareControl);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setStopBits(QSerialPort::OneStop);
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

bool AtModem::refuseHeldPort(const QString& portName)
{
    const zelmodems::PortLock lock = zelmodems::PortLock::of(portName);
    if (!lock.isHeld())
        return false;
    m_lastError = tr("Port opening error: %1 is in use by another program (%2)").arg(portName, lock.holder());
    qCCritical(AT_MODEM()).noquote() << m_lastError << logtab << lock.file();
    return true;
}

bool AtModem::test(const QString& portName, qint32 baudRate)
{
    m_lastError.clear();
    close();
    unlockPort(portName);
    if (refuseHeldPort(portName))
        return false;

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
    m_lastError = tr("Port opening error: %1").arg(m_port->errorString());
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

bool AtModem::endFlood(const QByteArray& command, QByteArray& answer)
{
    // A device that floods the line must not hold the caller or its memory.
    m_lastError = tr("The answer ran past %1 bytes without a result code: not a modem's answer").arg(MAX_ANSWER_BYTES);
    if (command.isNull())
        qCWarning(AT_MODEM()).noquote() << m_lastError;
    else
        qCWarning(AT_MODEM()).noquote() << QString::fromLatin1(command) << logtab << m_lastError;
    answer.truncate(MAX_ANSWER_BYTES);
    discardInput();
    return false;
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
    ResultCodeScanner scanner{"OK", "ERROR", "NO CARRIER"};
    bool tooLong = false;
    const Wait wait = readUntil(answer, timeoutMs, [&scanner, &tooLong](const QByteArray& a) {
        if (scanner.found(a))
            return true;
        tooLong = a.size() > MAX_ANSWER_BYTES;
        return tooLong;
    });
    if (wait == Wait::PortGone)
        return false;
    if (tooLong)
        return endFlood(fullCommand, answer);

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
    ResultCodeScanner scanner{"OK", "ERROR"};
    QElapsedTimer clock;
    clock.start();
    while (timeoutMs > clock.elapsed()) {
        if (!readCycle(answer, step, false))
            return false;
        if (answer.size() > MAX_ANSWER_BYTES)
            return endFlood(QByteArray(), answer);
        if (!scanner.found(answer))
            continue;
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

