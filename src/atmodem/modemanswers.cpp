// What the driver's queries read out of a modem's answers.
#include "modemanswers_p.h"

#include "atmodem_p.h"

namespace modemanswers {

bool findNumber(const QByteArray& answer, const QString& pattern, QString& value)
{
    value.clear();
    QRegExp rx(pattern, Qt::CaseSensitive, QRegExp::RegExp);
    if (rx.indexIn(QString::fromUtf8(answer), 0) < 0)
        return false;
    value = rx.cap(0);
    return true;
}

bool operatorName(const QByteArray& answer, QString& name)
{
    QRegExp rx(QStringLiteral("\".+\""), Qt::CaseSensitive, QRegExp::RegExp);
    if (rx.indexIn(QString::fromUtf8(answer), 0) < 0)
        return false;
    name = rx.cap(0).remove(QLatin1Char('"'));
    return true;
}

int signalLevel(const QString& pair)
{
    const QStringList parts = pair.split(QLatin1Char(','));
    if (parts.size() < 2)
        return 0;
    bool ok = false;
    const int rssi = parts.at(0).toInt(&ok, 10);
    // Index 0 is -113 dBm or less, 31 is -51 dBm or more.
    return ok && rssi <= 56 ? 2 * rssi - 113 : 0;
}

bool registeredCell(const QByteArray& answer, QString& lac, QString& cid)
{
    // Drop n and stat.
    QString text = QString::fromLatin1(answer).trimmed();
    text.remove(0, text.indexOf(QLatin1Char(',')) + 1);
    text.remove(0, text.indexOf(QLatin1Char(',')) + 1);
    const int comma = text.indexOf(QLatin1Char(','));
    lac = text.left(comma).remove(QLatin1Char('"')).trimmed();
    cid = text.mid(comma + 1).remove(QLatin1Char('"')).trimmed();
    return !lac.isEmpty() && !cid.isEmpty();
}

bool siemensCells(const QByteArray& answer, QMap<QString, QStringList>& cells)
{
    const QStringList halves = QString::fromLatin1(answer).split(QLatin1Char(':'));
    if (halves.size() < 2)
        return false;
    const QStringList fields = halves.at(1).trimmed().split(QLatin1Char(','));
    if (fields.size() < 7)
        return false;

    // MCC, MNC, LAC, cell, BSIC, channel, RxLev, C1, C2. A cell is known by
    // its channel; a truncated last cell still counts when its RxLev is
    // there.
    for (int g = 0; g < fields.size() && fields.size() > g + 6; g += 9) {
        const QStringList record{fields.at(g).trimmed(), fields.at(g + 1).trimmed(),
                                 hexToDecimal(fields.at(g + 3)), hexToDecimal(fields.at(g + 2)),
                                 fields.at(g + 6).trimmed()};
        cells.insert(fields.at(g + 5), record);
    }
    return true;
}

void addSiemensLevels(const QByteArray& answer, QMap<QString, QStringList>& cells)
{
    // One line a cell beginning with its channel; the level in dBm is the
    // third column.
    const QRegExp blanks(QStringLiteral("\\s+"));
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

QString joinCells(const QMap<QString, QStringList>& cells)
{
    QStringList records;
    for (auto it = cells.cbegin(); it != cells.cend(); ++it)
        records << it->join(QLatin1Char(','));
    return records.join(QLatin1Char(';'));
}

bool simcomCell(const QByteArray& answer, QString& list)
{
    QRegExp rx(QStringLiteral("(\\d+),(\\d+),\"([\\d\\w]+)\",\"([\\d\\w]+)\""), Qt::CaseSensitive, QRegExp::RegExp);
    if (rx.indexIn(QString::fromUtf8(answer), 0) < 0)
        return false;
    list = QStringList{QString(), QString(), hexToDecimal(rx.cap(4)), hexToDecimal(rx.cap(3)), QString(), QString()}
               .join(QLatin1Char(','));
    return true;
}

namespace {

// Where the last line of hexadecimal digits between line ends (a PDU line)
// begins, counting its line end in front; -1 when the text has none.
int lastHexLine(const QString& text)
{
    const auto isHex = [](QChar c) {
        const ushort u = c.unicode();
        return (u >= '0' && u <= '9') || (u >= 'a' && u <= 'f') || (u >= 'A' && u <= 'F');
    };
    const auto isEnd = [](QChar c) { return c == QLatin1Char('\r') || c == QLatin1Char('\n'); };
    for (int end = text.size() - 1; end > 0; --end) {
        if (!isEnd(text.at(end)) || !isHex(text.at(end - 1)))
            continue;
        int start = end - 1;
        while (start > 0 && isHex(text.at(start - 1)))
            --start;
        if (start > 0 && isEnd(text.at(start - 1)))
            return start - 1;
        end = start;
    }
    return -1;
}

} // namespace

void listedMessages(const QByteArray& answer, QList<int>& indexes, QList<SmsPart>& parts)
{
    // "+CMGL: <index>,<stat>,[<alpha>],<length>" and the PDU on the next line.
    QRegExp rx(QStringLiteral("\\+CMGL:\\s+(\\d+),.*[\\r\\n]+([0-9A-Fa-f]+)[\\r\\n]+"), Qt::CaseSensitive,
               QRegExp::RegExp);
    rx.setMinimal(true);
    const QString text = QString::fromUtf8(answer);
    // A search that cannot match costs the expression time in proportion to
    // the square of the listing (it tries every header against the whole
    // rest); it is not started when no well-formed header comes before the
    // listing's last PDU line, which is exactly when it would fail.
    const int lastPduLine = lastHexLine(text);
    QRegExp header(QStringLiteral("\\+CMGL:\\s+\\d+,"), Qt::CaseSensitive, QRegExp::RegExp);
    int pos = 0;
    while (true) {
        const int next = header.indexIn(text, pos);
        if (next < 0 || next >= lastPduLine)
            break;
        if ((pos = rx.indexIn(text, pos)) < 0)
            break;
        bool indexOk = false;
        const int index = rx.cap(1).toInt(&indexOk);
        if (!indexOk) {
            qCWarning(AT_MODEM()).noquote() << QStringLiteral("SMS index %1 refused").arg(rx.cap(1).left(20));
            pos += rx.matchedLength() > 0 ? rx.matchedLength() : 1;
            continue;
        }
        const SmsPart part = Sms::decode(rx.cap(2));
        qCDebug(AT_MODEM()).noquote() << QStringLiteral("SMS %1: %2").arg(index).arg(part.getText());
        indexes << index;
        parts << part;
        pos += rx.matchedLength() > 0 ? rx.matchedLength() : 1;
    }
}

} // namespace modemanswers
