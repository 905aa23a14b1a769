#pragma once
#include <QLoggingCategory>

// The "modems.finder" logging category of the search's own additions (the
// port catalogues): which catalogue is in use, what was declared, and why a
// port cannot be opened. The search itself (ModemsFinder, the probes) logs
// to "atmodem" with the driver. ModemsFinder turns this category's debug
// output on.
Q_DECLARE_LOGGING_CATEGORY(MODEMS_FINDER)
