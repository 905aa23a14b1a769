// The modem driver above its channel: opening a port and identifying the
// modem on it, recognising the modem's make (its dialect), and resetting it.
// The channel (atmodem.cpp) knows nothing of makes.
#include "atmodem_p.h"
#include "portlock.h"

// ---------------------------------------------------------------- opening

bool AtModem::open(const QString& portName, qint32 baudRate, qint32 attempts)
{
    for (qint32 attempt = 0; attempt < attempts; ++attempt) {
        m_lastError.clear();
        close();
        unlockPort(portName);

        // A port that a running program holds (pppd on the data port, a
        // terminal program) is not ours: opening it would take its lock.
        if (refuseHeldPort(portName))
            return false;

        if (!m_port)
            m_port = new QSerialPort(this);
        m_port->setPortName(portName);
        m_port->clearError();

        qCDebug(AT_MODEM()).noquote()
            << QStringLiteral("Open port %1 on %2. attempt %3").arg(portName).arg(baudRate).arg(attempt);

        if (!m_port->isOpen() && !m_port->open(QIODevice::ReadWrite)) {
            m_lastError = tr("Port opening error: %1").arg(m_port->errorString());
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
    // A restart would cut off another program that has taken the port
    // meanwhile (our own lock is the open port's, and names this process).
    if (m_port) {
        const zelmodems::PortLock lock = zelmodems::PortLock::of(m_port->portName());
        if (lock.isHeld() && lock.pid() != QCoreApplication::applicationPid()) {
            m_lastError = tr("%1 is in use by another program (%2)").arg(m_port->portName(), lock.holder());
            qCCritical(AT_MODEM()).noquote() << m_lastError;
            return false;
        }
    }
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

