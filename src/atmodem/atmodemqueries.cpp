// The modem driver: identity, operator, signal, cells and the summary of a modem.
#include "atmodem_p.h"

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
        m_lastError = tr("Wrong mcc %1").arg(mccText);
        return false;
    }
    const QString mncText = imsi.mid(3, 2);
    mnc = mncText.toInt(&ok, 10);
    if (!ok) {
        m_lastError = tr("Wrong mnc%1").arg(mncText);
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
        // Indexes from 57 on give a level >= 0 (a substitute, below); they are
        // not multiplied, so that a huge one cannot overflow.
        level = ok && rssi <= 56 ? 2 * rssi - 113 : 0;
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

