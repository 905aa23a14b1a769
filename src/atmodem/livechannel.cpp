// A watched modem's line dialogue between and across commands.
#include "livechannel_p.h"

#include "atmodem.h"
#include "atmodemlog_p.h"

#include <QSerialPort>

#include <poll.h>

namespace zelmodems {

LiveChannel::LiveChannel(AtModem* modem) : QObject(modem->m_port), m_modem(modem)
{
    QSerialPort* port = modem->m_port;
    connect(port, &QSerialPort::readyRead, this, &LiveChannel::readIdle);
    connect(port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError error) {
        if (error != QSerialPort::NoError)
            readIdle();
    });
}

LiveChannel::~LiveChannel() = default;

LiveChannel* LiveChannel::of(AtModem* modem)
{
    if (!modem || !modem->m_port)
        return nullptr;
    return modem->m_port->findChild<LiveChannel*>(QString(), Qt::FindDirectChildrenOnly);
}

void LiveChannel::deliver(const QByteArray& line, const QByteArray& pdu)
{
    for (const QByteArray& prefix : qAsConst(m_claimed)) {
        if (line.startsWith(prefix))
            return;
    }
    qCDebug(AT_MODEM()).noquote() << "unsolicited" << line << pdu;
    if (m_listener)
        m_listener(line, pdu);
}

void LiveChannel::take(LineRouter::Kind kind, const QByteArray& line)
{
    switch (kind) {
    case LineRouter::Kind::Unsolicited:
        if (LineRouter::hasPduLine(line))
            m_waitingForPdu = line;
        else
            deliver(line, QByteArray());
        break;
    case LineRouter::Kind::UnsolicitedPdu:
        deliver(m_waitingForPdu, line);
        m_waitingForPdu.clear();
        break;
    case LineRouter::Kind::Stray:
        qCDebug(AT_MODEM()).noquote() << "late answer line dropped:" << line;
        break;
    default:
        break;
    }
}

void LiveChannel::forgiveSpuriousReadError(QSerialPort* port)
{
    if (!port || !port->isOpen()
        || (port->error() != QSerialPort::ReadError && port->error() != QSerialPort::ResourceError))
        return;
    pollfd device{int(port->handle()), POLLIN, 0};
    if (::poll(&device, 1, 0) >= 0 && !(device.revents & (POLLHUP | POLLERR | POLLNVAL)))
        port->clearError();
}

bool LiveChannel::readNow()
{
    forgiveSpuriousReadError(m_modem->m_port);
    if (!m_modem->portOpen())
        return false;
    m_splitter.feed(m_modem->m_port->readAll());
    QByteArray line;
    while (m_splitter.takeLine(line))
        take(m_router.route(line), line);
    return m_modem->portOpen();
}

void LiveChannel::readIdle()
{
    if (m_busy || m_gone)
        return;
    if (!readNow()) {
        m_gone = true;
        emit portGone();
    }
}

} // namespace zelmodems
