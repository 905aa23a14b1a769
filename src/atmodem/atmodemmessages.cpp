// The modem driver: USSD and balance, the own number, and the SMS exchange.
#include "atmodem_p.h"
#include "modemanswers_p.h"

// ---------------------------------------------------------------- USSD and balance

QByteArray AtModem::ussdCommand(const char* prefix, const QString& code, int& timeoutMs) const
{
    QByteArray command = QByteArray(prefix) + ",\"";
    timeoutMs = SHORT_TIMEOUT_MS;
    switch (m_dialect) {
    case HUAWEI:
        // Huawei sticks take the string packed in GSM 7-bit septets and
        // written in hexadecimal.
        command += SmsPduEncoder::encode(code.toLatin1(), ' ').toHex();
        break;
    case ZTE:
    case SIM_COM:
        // Both wait for the network before their OK.
        command += code.toUtf8();
        timeoutMs = USSD_SLOW_TIMEOUT_MS;
        break;
    default:
        command += code.toUtf8();
        break;
    }
    return command + "\",15";   // GSM 7-bit default alphabet
}

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

    if (m_dialect == SIM_COM) {
        // SIMCOM presents replies in the modem's character set: make it GSM.
        QByteArray ignored;
        sendCommand(AT::Commands::SimCom::CSCS, ignored, SHORT_TIMEOUT_MS);
    }
    int timeoutMs = SHORT_TIMEOUT_MS;
    const QByteArray command = ussdCommand(prefix, code, timeoutMs);

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

    QList<int> indexes;
    QList<SmsPart> parts;
    modemanswers::listedMessages(answer, indexes, parts);

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
    // first Ctrl-Z: either could carry a command of its own to the modem
    // (";+CMGD=1,4" after the number is one). A recipient is digits with
    // an optional leading "+", and nothing else reaches the modem.
    QString unsafe = zelmodems::AtInput::checkRecipient(number);
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

