// The driver's logging category.
#include "atmodemlog_p.h"

Q_LOGGING_CATEGORY(AT_MODEM, "atmodem")
