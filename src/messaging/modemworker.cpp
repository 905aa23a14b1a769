// The live modem's own thread: the port, the queue and the events.
#include "modemworker_p.h"
#include "ussdtext_p.h"

#include "atmodem.h"
#include "atmodemlog_p.h"
#include "linechannel_p.h"
#include "livechannel_p.h"
#include "messagestore.h"
#include "portlock.h"

#include <QFileInfo>

#include <QTimer>

namespace zelmodems {

namespace {

const int SETUP_TIMEOUT_MS = 2000;

// What a watched modem is asked to report. A modem that refuses one of
// these (no LTE, no caller identification) is still watched for the rest.
const char* const REPORTS[] = {
    "+CMEE=1",          // errors with their number
    "+CMGF=0",          // PDU mode
    "+CNMI=2,1,0,1,0",  // +CMTI for a stored message, +CDS for a delivery report
    "+CREG=2",          // registration with area and cell
    "+CGREG=2",
    "+CEREG=2",
    "+CLIP=1",          // the caller's number after RING
};

// The number of the last field: the index of +CMTI: "SM",5, the length of
// +CDS: 25.
int trailingIndex(const QByteArray& line)
{
    bool ok = false;
    const int index = line.mid(qMax(line.lastIndexOf(','), line.indexOf(':')) + 1).trimmed().toInt(&ok);
    return ok ? index : -1;
}

// The first quoted field: the number of +CLIP: "+79161234567",145.
QString firstQuoted(const QByteArray& line)
{
    const int open = line.indexOf('"');
    const int close = open < 0 ? -1 : line.indexOf('"', open + 1);
    return close < 0 ? QString() : QString::fromLatin1(line.mid(open + 1, close - open - 1));
}

// The fields after "<prefix>: ".
QList<QByteArray> fieldsOf(const QByteArray& line)
{
    QList<QByteArray> fields = line.mid(line.indexOf(':') + 1).split(',');
    for (QByteArray& field : fields)
        field = field.trimmed();
    return fields;
}

} // namespace

ModemWorker::ModemWorker(QObject* parent) : QObject(parent) {}

ModemWorker::~ModemWorker()
{
    close();
}

Failure ModemWorker::open(const QString& portName, qint32 baudRate)
{
    close();
    m_gone = false;
    if (!QFileInfo::exists(portName))
        return Failure(Failure::NotFound, tr("There is no %1: check the name, or plug the modem in").arg(portName));
    m_modem = new AtModem(this);
    if (!m_modem->open(portName, baudRate, 1)) {
        const QString why = m_modem->lastError().isEmpty() ? tr("no answer to AT") : m_modem->lastError();
        delete m_modem;
        m_modem = nullptr;
        // A port someone else holds (another program, or another part of
        // this one) was not touched: say who holds it.
        const PortLock lock = PortLock::of(portName);
        if (lock.isHeld())
            return Failure(Failure::Busy, tr("%1 is in use by %2; stop that program first").arg(portName, lock.holder()));
        return Failure(Failure::NoAnswer, tr("No modem answers on %1: %2").arg(portName, why));
    }
    m_live = new LiveChannel(m_modem);
    m_live->setListener([this](const QByteArray& line, const QByteArray& pdu) { onUnsolicited(line, pdu); });
    connect(m_live, &LiveChannel::portGone, this, &ModemWorker::markGone);
    m_live->setBusy(true);
    LineChannel channel(m_modem);
    for (const char* report : REPORTS) {
        const LineChannel::Answer answer = channel.command(report, SETUP_TIMEOUT_MS);
        if (!answer.ok())
            qCInfo(AT_MODEM()).noquote() << portName << "does not take AT" << report << answer.reason();
    }
    // Where the modem stands now, so that the first change has something to
    // differ from.
    for (const char* query : {"+CREG?", "+CEREG?"}) {
        const LineChannel::Answer answer = channel.command(query, SETUP_TIMEOUT_MS);
        for (const QByteArray& line : answer.lines) {
            const Registration registration = Registration::fromAnswer(line);
            if (answer.ok() && registration.isValid())
                emit registrationChanged(registration);
        }
    }
    m_live->setBusy(false);
    if (!m_live->readNow())
        markGone();
    return Failure();
}

void ModemWorker::close()
{
    if (m_poll)
        m_poll->stop();
    delete m_live;
    if (m_modem) {
        m_modem->close();
        delete m_modem;
        m_modem = nullptr;
    }
    m_heldParts.clear();
}

QString ModemWorker::modemName() const
{
    return m_modem ? m_modem->name() : QString();
}

Failure ModemWorker::runExclusive(const std::function<Failure(AtModem*)>& body, const QList<QByteArray>& claimed,
                                  const std::function<bool()>& canceled)
{
    if (!m_modem)
        return Failure(Failure::NotOpen, tr("The modem is not open"));
    if (m_gone || !m_live)
        return Failure(Failure::Gone, tr("The modem is gone (unplugged or reset); open it again when it returns"));
    m_live->setBusy(true);
    m_live->setClaimed(claimed);
    m_live->setCancelCheck(canceled);
    const Failure failure = body(m_modem);
    if (!m_live)
        return failure;
    m_live->setCancelCheck(std::function<bool()>());
    m_live->setClaimed(QList<QByteArray>());
    m_live->setBusy(false);
    // What came after the answer, in the same read or while the operation
    // ran, is routed now.
    if (!m_live->readNow())
        markGone();
    return failure;
}

void ModemWorker::markGone()
{
    if (m_gone)
        return;
    m_gone = true;
    if (m_poll)
        m_poll->stop();
    qCWarning(AT_MODEM()).noquote() << "the modem's port is gone";
    emit gone();
}

void ModemWorker::setPollInterval(int ms)
{
    if (!m_poll) {
        m_poll = new QTimer(this);
        connect(m_poll, &QTimer::timeout, this, [this] {
            // Queued like any operation: it waits for the one running.
            QMetaObject::invokeMethod(
                this,
                [this] {
                    SignalQuality quality;
                    runExclusive([&quality](AtModem* modem) {
                        quality = SignalQuality::read(modem);
                        return quality.failure();
                    }, {}, {});
                    if (quality.isAnswered())
                        noteSignal(quality);
                },
                Qt::QueuedConnection);
        });
    }
    if (ms > 0 && !m_gone)
        m_poll->start(ms);
    else
        m_poll->stop();
}

void ModemWorker::noteSignal(const SignalQuality& quality)
{
    if (quality.rssi() == m_signal.rssi() && quality.ber() == m_signal.ber())
        return;
    m_signal = quality;
    emit signalChanged(quality);
}

void ModemWorker::readStored(int index, bool report)
{
    QMetaObject::invokeMethod(
        this,
        [this, index, report] {
            StoredPdu entry;
            const Failure failure = runExclusive([&entry, index](AtModem* modem) {
                MessageStore store(modem);
                store.read(index, entry);
                return store.failure();
            }, {}, {});
            if (failure.isFailure()) {
                qCWarning(AT_MODEM()).noquote() << "cannot read the new entry" << index << failure.text();
                return;
            }
            if (report)
                emit deliveryReported(StoredMessage::group({entry}).value(0));
            else
                addPart(entry);
        },
        Qt::QueuedConnection);
}

void ModemWorker::addPart(const StoredPdu& entry)
{
    m_heldParts << entry;
    // The held entries are grouped under their place in the list, which
    // tells afterwards which entries each message is made of.
    QList<StoredPdu> tagged = m_heldParts;
    for (int i = 0; i < tagged.size(); ++i)
        tagged[i].setIndex(i);
    // A long message is passed on when its last part has come; parts whose
    // rest never comes are passed on as they are once too many are held.
    bool crowded = m_heldParts.size() > MaxHeldParts;
    QList<StoredPdu> kept;
    for (const StoredMessage& message : StoredMessage::group(tagged)) {
        QList<StoredPdu> own;
        for (const int place : message.indexes())
            own << m_heldParts.value(place);
        if (message.isComplete() || !message.isDecoded() || message.isAmbiguous() || crowded) {
            emit messageReceived(StoredMessage::group(own).value(0));
            crowded = false;
        } else {
            kept << own;
        }
    }
    m_heldParts = kept;
}

void ModemWorker::onUnsolicited(const QByteArray& line, const QByteArray& pdu)
{
    emit unsolicited(line, pdu);
    if (line.startsWith("+CMTI:")) {
        const int index = trailingIndex(line);
        if (index >= 0)
            readStored(index, false);
    } else if (line.startsWith("+CDSI:")) {
        const int index = trailingIndex(line);
        if (index >= 0)
            readStored(index, true);
    } else if (line.startsWith("+CMT:") || line.startsWith("+CDS:")) {
        StoredPdu entry;
        entry.setStatus(StoredPdu::Unread);
        entry.setPdu(QString::fromLatin1(pdu));
        entry.setTpduLength(trailingIndex(line));
        if (line.startsWith("+CMT:"))
            addPart(entry);
        else
            emit deliveryReported(StoredMessage::group({entry}).value(0));
    } else if (line.startsWith("+CUSD:")) {
        UssdReply reply;
        const QList<QByteArray> fields = fieldsOf(line);
        bool ok = false;
        reply.status = fields.value(0).toInt(&ok);
        if (!ok)
            reply.status = -1;
        reply.text = ussdText(m_modem, line);
        emit ussdReceived(reply);
    } else if (line.startsWith("+CREG:") || line.startsWith("+CGREG:") || line.startsWith("+CEREG:")) {
        const Registration registration = Registration::fromUnsolicited(line);
        if (registration.isValid())
            emit registrationChanged(registration);
    } else if (line.startsWith("^RSSI:")) {
        // Huawei's level, on the +CSQ scale.
        noteSignal(SignalQuality::fromAnswer("+CSQ: " + fieldsOf(line).value(0) + ",99"));
    } else if (line.startsWith("^HCSQ:")) {
        // Huawei's ^HCSQ: "<mode>",<rssi>,...: rssi 0..96 is -120 + n dBm
        // (255 not known), taken to the +CSQ scale.
        bool ok = false;
        const int value = fieldsOf(line).value(1).toInt(&ok);
        if (ok && value >= 0 && value <= 96) {
            const int dbm = value - 120;
            const int rssi = qBound(0, (dbm + 113 + 1) / 2, 31);
            noteSignal(SignalQuality::fromAnswer("+CSQ: " + QByteArray::number(rssi) + ",99"));
        }
    } else if (line == "RING") {
        emit ringing(QString());
    } else if (line.startsWith("+CRING:")) {
        emit ringing(QString::fromLatin1(line.mid(7).trimmed()));
    } else if (line.startsWith("+CLIP:")) {
        emit callerIdentified(firstQuoted(line));
    }
}

} // namespace zelmodems
