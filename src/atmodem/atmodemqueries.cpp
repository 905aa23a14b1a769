// The modem driver: identity, operator, signal, cells and the summary of a modem.
#include "atmodem_p.h"
#include "modemanswers_p.h"

// ---------------------------------------------------------------- identity and network

bool AtModem::getNumberInternal(const QByteArray& command, QString& value, QString pattern)
{
    QByteArray answer;
    bool ok = sendCommand(command, answer, SHORT_TIMEOUT_MS);
    // A failed command whose partial answer already holds the number still
    // serves: modems append noise or errors after good data.
    if (modemanswers::findNumber(answer, pattern, value))
        ok = true;
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
    if (!modemanswers::operatorName(answer, name))
        return false;
    qCDebug(AT_MODEM()).noquote() << tr("Operator") << logtab << name;
    return true;
}

bool AtModem::getSignalLevel(int& level)
{
    // A modem that cannot report a usable level still gets a plausible weak
    // one, so that the service never shows 0 dBm or nothing.
    qsrand(uint(QDateTime::currentSecsSinceEpoch()));
    const int substitute = -90 - (qrand() % 20);

    QString pair;
    if (!getNumberInternal(AT::Commands::CSQ, pair, QStringLiteral("\\d+\\s*\\,\\s*\\d+"))) {
        level = substitute;
        return false;
    }
    level = modemanswers::signalLevel(pair);
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

    return modemanswers::registeredCell(answer, lac, cid);
}

bool AtModem::getSiemensCellList(QString& list)
{
    QByteArray answer;
    if (!sendCommand(AT::Commands::Siemens::GET_CELL_LIST, answer, 1000))
        return false;

    QMap<QString, QStringList> cells;
    if (!modemanswers::siemensCells(answer, cells))
        return false;

    // The serving cell (^MONI) and the neighbours (^MONP) in dBm.
    for (const char* command : {AT::Commands::Siemens::ACTIVE_CELL_INFO, AT::Commands::Siemens::INACTIVE_CELL_INFO}) {
        answer.clear();
        if (sendCommand(command, answer, SHORT_TIMEOUT_MS))
            modemanswers::addSiemensLevels(answer, cells);
    }
    list = modemanswers::joinCells(cells);
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

    // Only the serving cell is known: no MCC, MNC or levels.
    return modemanswers::simcomCell(answer, list);
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

