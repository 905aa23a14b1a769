// The standards' AT dialogue for the project's own services.
#include "linechannel_p.h"

#include "atmodem.h"
#include "atmodemlog_p.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSerialPort>

namespace zelmodems {

namespace {

// Unsolicited result codes of TS 27.007/27.005 and the common vendor ones.
const char* const UNSOLICITED[] = {
    "RING", "+CRING:", "+CLIP:", "+CCWA:", "+CMTI:", "+CMT:", "+CDSI:", "+CDS:", "+CBM:", "+CBMI:",
    "+CUSD:", "+CREG:", "+CGREG:", "+CEREG:", "+C5GREG:", "+CIEV:", "+CGEV:", "+QIND:", "+QUSIM:",
    "^RSSI:", "^HCSQ:", "^MODE:", "^BOOT:", "^SYSSTART", "^SRVST:", "^SIMST:", "^DSFLOWRPT:", "^CEND:",
    "^ORIG:", "^CONF:", "^CONN:", "^STIN:", "^NDISSTAT:", "^SMMEMFULL", "+ZPASR:", "+ZUSIMR:", "+ZEND",
    "+CPIN: NOT READY", "+SIND:", "+PACSP", "*PSNWID:", "*PSUTTZ:", "+CTZV:", "+NITZ:",
};

// Unsolicited codes followed by a second line that belongs to them (the
// PDU of a message or report routed to the terminal).
bool hasPduLine(const QByteArray& line)
{
    return line.startsWith("+CMT:") || line.startsWith("+CDS:") || line.startsWith("+CBM:");
}

} // namespace

QByteArray LineChannel::Answer::text() const
{
    QByteArray text;
    for (const QByteArray& line : lines)
        text += line + "\r\n";
    if (!final.isEmpty())
        text += final + "\r\n";
    return text;
}

QString LineChannel::Answer::reason() const
{
    switch (end) {
    case End::Final:
        return QString::fromLatin1(final);
    case End::Prompt:
        return tr("the modem waits for message text");
    case End::TimedOut:
        return tr("no answer within %1 ms").arg(elapsedMs);
    case End::PortGone:
        return tr("the port closed (the modem was unplugged or reset)");
    case End::Overflow:
        return tr("the answer ran past %1 bytes without a result code: not a modem's answer").arg(MaxAnswerBytes);
    }
    return QString();
}

int LineChannel::Answer::errorCode() const
{
    // Only a final result code is ever kept in `final`.
    if (!final.startsWith("+CMS ERROR:") && !final.startsWith("+CME ERROR:"))
        return -1;
    bool ok = false;
    const int code = final.mid(11).trimmed().toInt(&ok);
    return ok ? code : -1;
}

Failure LineChannel::Answer::failure(const QString& text) const
{
    Failure::Code code = Failure::Refused;
    switch (end) {
    case End::Final:
        if (final.startsWith("+CME ERROR:"))
            code = Failure::CmeError;
        else if (final.startsWith("+CMS ERROR:"))
            code = Failure::CmsError;
        else if (final == "COMMAND NOT SUPPORT")
            code = Failure::NotSupported;
        break;
    case End::Prompt:
        break;
    case End::TimedOut:
        code = Failure::NoAnswer;
        break;
    case End::PortGone:
        code = Failure::Gone;
        break;
    case End::Overflow:
        code = Failure::Malformed;
        break;
    }
    return Failure(code, text, errorCode());
}

LineChannel::LineChannel(AtModem* modem) : m_modem(modem) {}

bool LineChannel::isFinal(const QByteArray& line)
{
    static const char* const WHOLE[] = {"OK", "ERROR", "NO CARRIER", "BUSY", "NO ANSWER", "NO DIALTONE",
                                        "COMMAND NOT SUPPORT", "TOO MANY PARAMETERS"};
    for (const char* code : WHOLE) {
        if (line == code)
            return true;
    }
    return line.startsWith("+CME ERROR:") || line.startsWith("+CMS ERROR:") || line == "CONNECT"
        || line.startsWith("CONNECT ");
}

bool LineChannel::isUnsolicited(const QByteArray& line, const QByteArray& ownPrefix)
{
    if (!ownPrefix.isEmpty() && line.startsWith(ownPrefix))
        return false;
    for (const char* code : UNSOLICITED) {
        if (line.startsWith(code))
            return true;
    }
    return false;
}

bool LineChannel::readMore(int ms)
{
    QSerialPort* port = m_modem->m_port;
    if (!m_modem->portOpen())
        return false;
    if (port->bytesAvailable() == 0)
        port->waitForReadyRead(qMax(0, ms));
    if (!m_modem->portOpen())
        return false;
    m_pending += port->readAll();
    return true;
}

bool LineChannel::takeLine(QByteArray& line)
{
    int from = 0;
    for (;;) {
        int end = -1;
        for (int i = from; i < m_pending.size(); ++i) {
            if (m_pending.at(i) == '\r' || m_pending.at(i) == '\n') {
                end = i;
                break;
            }
        }
        if (end < 0)
            return false;
        const QByteArray candidate = m_pending.left(end);
        // A quoted text may hold line breaks (a USSD reply of several
        // lines): the line ends where its quotes close.
        if (candidate.count('"') % 2 != 0 && candidate.trimmed().startsWith("+CUSD:")) {
            from = end + 1;
            if (from >= m_pending.size())
                return false;
            continue;
        }
        int next = end;
        while (next < m_pending.size() && (m_pending.at(next) == '\r' || m_pending.at(next) == '\n'))
            ++next;
        m_pending.remove(0, next);
        line = candidate.trimmed();
        return true;
    }
}

LineChannel::Answer LineChannel::collect(const QByteArray& echo, const QByteArray& ownPrefix, int timeoutMs,
                                         bool promptEnds)
{
    Answer answer;
    QElapsedTimer clock;
    clock.start();
    const auto ended = [&answer, &clock](End end) {
        answer.end = end;
        answer.elapsedMs = clock.elapsed();
        return answer;
    };
    qint64 kept = 0;   // bytes of the intermediate lines, as text() gives them
    bool pduFollows = false;
    for (;;) {
        QByteArray line;
        while (takeLine(line)) {
            if (line.isEmpty())
                continue;
            if (pduFollows) {
                answer.unsolicited << line;
                pduFollows = false;
            } else if (isFinal(line)) {
                answer.final = line;
                return ended(End::Final);
            } else if (!echo.isEmpty() && line == echo) {
                continue;
            } else if (isUnsolicited(line, ownPrefix)) {
                answer.unsolicited << line;
                pduFollows = hasPduLine(line);
            } else {
                answer.lines << line;
                kept += line.size() + 2;
            }
        }
        if (promptEnds && m_pending.trimmed().startsWith('>')) {
            m_pending.clear();
            return ended(End::Prompt);
        }
        if (kept + m_pending.size() > MaxAnswerBytes) {
            m_pending.clear();
            return ended(End::Overflow);
        }
        const qint64 left = timeoutMs - clock.elapsed();
        if (left <= 0)
            return ended(End::TimedOut);
        if (!readMore(int(qMin<qint64>(left, 100))))
            return ended(End::PortGone);
    }
}

void LineChannel::settle()
{
    if (m_settled)
        return;
    m_settled = true;
    if (!readMore(0))
        return;
    QByteArray kept;
    QByteArray line;
    while (takeLine(line)) {
        if (isUnsolicited(line))
            kept += line + "\r\n";
    }
    m_pending.prepend(kept);
}

LineChannel::Answer LineChannel::command(const QByteArray& command, int timeoutMs, bool promptEnds)
{
    const QByteArray full = "AT" + command;
    qCDebug(AT_MODEM()).noquote() << "Send at command " << full;
    if (!m_modem->portOpen()) {
        Answer gone;
        gone.end = End::PortGone;
        return gone;
    }
    settle();
    // Unsolicited codes that came before the command are kept: the
    // collection below sets them apart from the answer.
    m_modem->m_port->write(full + '\r');
    // The answer's own lines begin with the command's name: "+CMGL" for
    // "+CMGL=4", "+CREG" for "+CREG?".
    QByteArray own;
    if (command.startsWith('+') || command.startsWith('^')) {
        int end = 1;
        while (end < command.size() && command.at(end) != '=' && command.at(end) != '?')
            ++end;
        own = command.left(end) + ':';
    }
    const Answer answer = collect(full, own, timeoutMs, promptEnds);
    qCDebug(AT_MODEM()).noquote() << full << "answer" << answer.text() << "unsolicited" << answer.unsolicited;
    return answer;
}

LineChannel::Answer LineChannel::write(const QByteArray& bytes, int timeoutMs)
{
    if (!m_modem->portOpen()) {
        Answer gone;
        gone.end = End::PortGone;
        return gone;
    }
    m_modem->m_port->write(bytes);
    return collect(QByteArray(), QByteArray("+CMGS:"), timeoutMs, false);
}

bool LineChannel::waitFor(const QByteArray& prefix, int timeoutMs, QByteArray& line)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        QByteArray next;
        while (takeLine(next)) {
            if (next.startsWith(prefix)) {
                line = next;
                return true;
            }
        }
        const qint64 left = timeoutMs - clock.elapsed();
        if (left <= 0 || m_pending.size() > MaxAnswerBytes)
            return false;
        if (!readMore(int(qMin<qint64>(left, 100))))
            return false;
    }
}

} // namespace zelmodems
