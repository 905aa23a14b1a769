#include "cellrecord.h"

#include <QStringList>

namespace zelmodems {

qlonglong CellRecord::parseNumber(const QString& text, int base)
{
    bool ok = false;
    const qlonglong value = text.trimmed().toLongLong(&ok, base);
    return ok && value >= 0 ? value : -1;
}

CellRecord CellRecord::fromRecord(const QString& record)
{
    const QStringList f = record.split(QLatin1Char(','));
    CellRecord cell;
    cell.m_mcc = parseNumber(f.value(0), 10);
    cell.m_mnc = cell.m_mcc > 0 ? parseNumber(f.value(1), 10) : -1;
    if (cell.m_mcc == 0)
        cell.m_mcc = -1;
    cell.m_cid = parseNumber(f.value(2), 10);
    cell.m_lac = parseNumber(f.value(3), 10);
    cell.m_rxlev = parseNumber(f.value(4), 10);
    for (int i = 5; i < f.size(); ++i) {
        bool ok = false;
        const qlonglong level = f.at(i).toLongLong(&ok);
        if (ok)
            cell.m_levels << level;
    }
    return cell;
}

QList<CellRecord> CellRecord::parseList(const QString& list)
{
    QList<CellRecord> cells;
    for (const QString& record : list.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        cells << fromRecord(record);
    return cells;
}

} // namespace zelmodems
