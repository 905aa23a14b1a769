#include "atdialect_p.h"
#include "atmodem.h"

namespace AT {

QString dialectText(qint32 dialect)
{
    switch (dialect) {
    case AtModem::SIEMENCE: return QStringLiteral("SIEMENCE");
    case AtModem::SIM_COM: return QStringLiteral("SIM_COM");
    case AtModem::HUAWEI: return QStringLiteral("HUAWEI");
    case AtModem::ZTE: return QStringLiteral("ZTE");
    case AtModem::HSPA: return QStringLiteral("HSPA");
    default: return QStringLiteral("DEFAULT_AT_GSM");
    }
}

} // namespace AT
