// The standards' AT dialogue for the project's own services.
#include "linechannel_p.h"
#include "modemerror.h"

#include "atmodem.h"
#include "atmodemlog_p.h"
#include "livechannel_p.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSerialPort>

namespace zelmodems {

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
        // "+CME ERROR: 16 (incorrect password)": the number with its meaning.
        return ModemError::describe(QString::fromLatin1(final), final);
    case End::Prompt:
        return tr("the modem waits for message text");
    case End::TimedOut:
        return tr("no answer within %1 ms").arg(elapsedMs);
    case End::PortGone:
        return tr("the port closed (the modem was unplugged or reset)");
    case End::Overflow:
        return tr("the answer ran past %1 bytes without a result code: not a modem's answer").arg(MaxAnswerBytes);
    case End::Canceled:
        return tr("cancelled");
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
    case End::Canceled:
        code = Failure::Canceled;
        break;
    }
    return Failure(code, text, errorCode());
}

LineChannel::LineChannel(AtModem* modem)
    : m_modem(modem),
      m_live(LiveChannel::of(modem)),
      m_splitter(m_live ? m_live->splitter() : m_ownSplitter),
      m_router(m_live ? m_live->router() : m_ownRouter),
      m_settled(m_live != nullptr)
{
}

bool LineChannel::readMore(int ms)
{
    QSerialPort* port = m_modem->m_port;
    LiveChannel::forgiveSpuriousReadError(port);
    if (!m_modem->portOpen())
        return false;
    if (port->bytesAvailable() == 0)
        port->waitForReadyRead(qMax(0, ms));
    LiveChannel::forgiveSpuriousReadError(port);
    if (!m_modem->portOpen())
        return false;
    m_splitter.feed(port->readAll());
    return true;
}

void LineChannel::pass(LineRouter::Kind kind, const QByteArray& line)
{
    if (m_live)
        m_live->take(kind, line);
}

LineChannel::Answer LineChannel::collect(const QByteArray& echo, const QByteArray& ownPrefix, int timeoutMs,
                                         bool promptEnds)
{
    Answer answer;
    QElapsedTimer clock;
    clock.start();
    const auto ended = [this, &answer, &clock](End end) {
        if (end != End::Final)
            m_router.abandon();
        answer.end = end;
        answer.elapsedMs = clock.elapsed();
        return answer;
    };
    m_router.begin(echo, ownPrefix);
    qint64 kept = 0;   // bytes of the intermediate lines, as text() gives them
    for (;;) {
        QByteArray line;
        while (m_splitter.takeLine(line)) {
            const LineRouter::Kind kind = m_router.route(line);
            switch (kind) {
            case LineRouter::Kind::Final:
                answer.final = line;
                return ended(End::Final);
            case LineRouter::Kind::Echo:
            case LineRouter::Kind::Stray:
                break;
            case LineRouter::Kind::Unsolicited:
            case LineRouter::Kind::UnsolicitedPdu:
                answer.unsolicited << line;
                pass(kind, line);
                break;
            case LineRouter::Kind::Intermediate:
                answer.lines << line;
                kept += line.size() + 2;
                break;
            }
        }
        if (promptEnds && m_splitter.atPrompt()) {
            m_splitter.clear();
            return ended(End::Prompt);
        }
        if (kept + m_splitter.pendingSize() > MaxAnswerBytes) {
            m_splitter.clear();
            return ended(End::Overflow);
        }
        if (m_live && m_live->canceled())
            return ended(End::Canceled);
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
    // Whatever came before the first command: unsolicited codes are kept
    // for the collection, the rest is stale.
    QByteArray kept;
    QByteArray line;
    while (m_splitter.takeLine(line)) {
        if (LineRouter::isUnsolicited(line))
            kept += line + "\r\n";
    }
    m_splitter.clear();
    m_splitter.feed(kept);
}

namespace {
// A command as the debug log shows it: the codes of the SIM's PIN commands
// (AT+CPIN="1234", AT+CPWD="SC","1234","4321", AT+CLCK) are masked, so that
// a log handed to someone else never holds them.
QByteArray loggable(const QByteArray& full)
{
    const QByteArray upper = full.toUpper();
    // The quoted fields that stay: the facility ("SC") of +CPWD and +CLCK.
    int kept = 0;
    if (upper.startsWith("AT+CPWD=") || upper.startsWith("AT+CLCK="))
        kept = 1;
    else if (!upper.startsWith("AT+CPIN="))
        return full;
    QByteArray shown;
    bool quoted = false;
    int opened = 0;
    for (const char c : full) {
        if (c == '"') {
            quoted = !quoted;
            opened += quoted ? 1 : 0;
            shown += c;
        } else {
            shown += quoted && opened > kept ? '*' : c;
        }
    }
    return shown;
}
} // namespace

LineChannel::Answer LineChannel::command(const QByteArray& command, int timeoutMs, bool promptEnds)
{
    const QByteArray full = "AT" + command;
    qCDebug(AT_MODEM()).noquote() << "Send at command " << loggable(full);
    if (!m_modem->portOpen()) {
        Answer gone;
        gone.end = End::PortGone;
        return gone;
    }
    settle();
    // Unsolicited codes that came before the command are kept: the
    // collection below sets them apart from the answer.
    m_modem->m_port->write(full + '\r');
    const Answer answer = collect(full, LineRouter::ownPrefixOf(command), timeoutMs, promptEnds);
    qCDebug(AT_MODEM()).noquote() << loggable(full) << "answer" << answer.text() << "unsolicited"
                                  << answer.unsolicited;
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
        while (m_splitter.takeLine(next)) {
            const LineRouter::Kind kind = m_router.route(next);
            if (kind != LineRouter::Kind::UnsolicitedPdu && next.startsWith(prefix)) {
                line = next;
                return true;
            }
            // Other codes that come meanwhile are still events.
            pass(kind, next);
        }
        const qint64 left = timeoutMs - clock.elapsed();
        if (left <= 0 || m_splitter.pendingSize() > MaxAnswerBytes || (m_live && m_live->canceled()))
            return false;
        if (!readMore(int(qMin<qint64>(left, 100))))
            return false;
    }
}

} // namespace zelmodems
