// The port catalogues' logging category.
#include "finderlog_p.h"

Q_LOGGING_CATEGORY(MODEMS_FINDER, "modems.finder")
