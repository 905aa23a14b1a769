#pragma once
// Shared by the modem driver's files: the includes, the fixed commands and
// time-outs of the dialogue, and the small text helpers of the answers.
#include "atmodem.h"
#include "atdialect_p.h"
#include "atinput.h"
#include "atmodemlog_p.h"
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

namespace atmodeminternal {

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
// No answer of a real modem comes near this (the largest, a full SMS store
// listed in PDU mode, stays under 1 MiB); past it the command ends, so that
// a device that floods the line cannot hold the caller or its memory.
constexpr int MAX_ANSWER_BYTES = 2 * 1024 * 1024;

inline QString serialErrorName(QSerialPort::SerialPortError error)
{
    const char* key = QMetaEnum::fromType<QSerialPort::SerialPortError>().valueToKey(error);
    return key ? QString::fromLatin1(key) : QString::number(int(error));
}

// Everything from the word "Revision" (in one of its three spellings) to the
// end of the text, with the white space before it. Firmware revisions do not
// belong in a modem's display name.
inline QString withoutRevision(QString name, bool repeatFirst = false)
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
inline QString hexToDecimal(const QString& hex)
{
    bool ok = false;
    const qlonglong value = hex.toLongLong(&ok, 16);
    return ok ? QString::number(value) : QStringLiteral("0");
}

// SIMs store the ICCID with the two digits of each byte reversed. An odd
// final digit is moved one place on and a null character takes its place.
inline QString swapIccidDigits(const QString& text)
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
inline QVariantList cellListToVariant(const QString& list)
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
inline QString nationalNumberIn(const QString& text)
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

} // namespace atmodeminternal

using namespace atmodeminternal;
