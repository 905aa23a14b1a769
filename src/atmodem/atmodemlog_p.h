#pragma once
#include <QLoggingCategory>

// The "atmodem" logging category shared by the modem driver and the modem
// discovery code (AT_MODEM(), safe to use from the probes' threads).
Q_DECLARE_LOGGING_CATEGORY(AT_MODEM)
