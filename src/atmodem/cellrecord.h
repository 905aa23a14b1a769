#pragma once
#include "zelmodemslib_export.h"

#include <QList>
#include <QString>

namespace zelmodems {

/// One cell of a modem's cell list as AtModem::getSiemensCellList and
/// getSimCOMCellList give it: "MCC,MNC,cell,LAC,rxlev[,dBm...]" in decimal,
/// records joined by ";". A field the list leaves out is -1: SIMCOM names
/// no MCC, MNC or level, and writes 0 there (no MCC is 0).
///
///     QString list;
///     if (modem.getSimCOMCellList(list))
///         for (const zelmodems::CellRecord& cell : zelmodems::CellRecord::parseList(list))
///             qInfo() << cell.cellId() << cell.areaCode();
class ZELMODEMSLIB_EXPORT CellRecord
{
public:
    CellRecord() = default;

    /// One record.
    static CellRecord fromRecord(const QString& record);
    /// The records of a list, in order; empty records are skipped.
    static QList<CellRecord> parseList(const QString& list);
    /// A number in `base`; -1 when it is not one or negative.
    static qlonglong parseNumber(const QString& text, int base);

    /// An unused slot of the modem's list (area and cell zero, MCC and MNC
    /// zero or not given), as Siemens modems fill their seven places: no cell.
    bool isEmptySlot() const { return m_lac == 0 && m_cid == 0 && m_mcc <= 0 && m_mnc <= 0; }
    qlonglong mcc() const { return m_mcc; }
    qlonglong mnc() const { return m_mnc; }
    qlonglong cellId() const { return m_cid; }
    qlonglong areaCode() const { return m_lac; }
    qlonglong rxlev() const { return m_rxlev; }
    /// The levels in dBm that follow the record's five fields.
    QList<qlonglong> levels() const { return m_levels; }

private:
    qlonglong m_mcc = -1;
    qlonglong m_mnc = -1;
    qlonglong m_cid = -1;
    qlonglong m_lac = -1;
    qlonglong m_rxlev = -1;
    QList<qlonglong> m_levels;
};

} // namespace zelmodems
