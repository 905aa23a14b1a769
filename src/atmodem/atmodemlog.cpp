#include "atmodemlog.h"

const QLoggingCategory& AT_MODEM()
{
    static const QLoggingCategory category("atmodem");
    return category;
}
