#include "modeminfoloader.h"

#include "atmodem.h"
#include "modemsettings.h"
#include "operatordata.h"

#include <QCoreApplication>
#include <QFuture>
#include <QObject>
#include <QThread>
#include <QThreadPool>
#include <QTime>
#include <QtConcurrent>

namespace {

// How long the caller waits for the modem.
constexpr int LOAD_TIMEOUT_MS = 9999;

constexpr qint32 OPEN_ATTEMPTS = 3;

// The task: runs on a pool thread and owns its driver, port and settings.
ModemInfoAnswer load(const ModemInfo& info)
{
    ModemInfoAnswer answer;
    answer.modemInfo = info;
    if (info.portName().isEmpty() || info.baudrate() < 1) {
        answer.error = QObject::tr("Invalid port name or baudrate");
        return answer;
    }

    // On the failure paths below the port goes with the driver object.
    AtModem modem(nullptr);
    if (!modem.open(info.portName(), info.baudrate(), OPEN_ATTEMPTS)) {
        answer.error = modem.lastError();
        return answer;
    }
    int mcc = 0;
    int mnc = 0;
    if (!modem.getMnc(mcc, mnc)) {
        answer.error = modem.lastError();
        return answer;
    }

    const int key = mcc * 100 + mnc;
    const ModemSettings settings;
    const MncTable table = settings.mncTable();
    if (!table.contains(key)) {
        answer.error = QObject::tr("Mnc table does not contain an operator with mcc = %1 and mnc = %2")
                           .arg(mcc)
                           .arg(mnc);
        return answer;
    }
    const OperatorData entry = table.value(key);
    if (!entry.isValid()) {
        answer.error = QObject::tr("Mnc table contains wrong operator data for mcc = %1 and mnc = %2")
                           .arg(mcc)
                           .arg(mnc);
        return answer;
    }

    answer.modemInfo.addInitLine(entry.modemInitLine());
    answer.modemInfo.setUserName(entry.userName());
    answer.modemInfo.setPassword(entry.password());
    modem.close();
    answer.success = true;
    return answer;
}

} // namespace

ModemInfoAnswer::ModemInfoAnswer() : error(QObject::tr("Unknown error"))
{
}

ModemInfoLoader::ModemInfoLoader() = default;

ModemInfoLoader::~ModemInfoLoader() = default;

bool ModemInfoLoader::loadModemInfo(ModemInfo& info, QString& error)
{
    QFuture<ModemInfoAnswer> future = QtConcurrent::run(QThreadPool::globalInstance(), load, info);

    QTime clock;
    clock.start();
    while (clock.elapsed() <= LOAD_TIMEOUT_MS) {
        QCoreApplication::processEvents();
        if (future.isFinished())
            break;
        // Let the pool thread have the core between two looks.
        QThread::msleep(1);
    }

    if (!future.isFinished()) {
        // The task cannot be stopped; it ends on its own and its answer is lost.
        future.cancel();
        error = QObject::tr("Request timeout");
        return false;
    }

    const ModemInfoAnswer answer = future.result();
    info = answer.modemInfo;
    error = answer.error;
    return answer.success;
}
