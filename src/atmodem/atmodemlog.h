#pragma once
#include <QLoggingCategory>

// The "atmodem" logging category shared by the modem driver and the modem
// discovery code. Created on first use (a function-local static, so its
// creation is thread-safe for probes running on several threads).
const QLoggingCategory& AT_MODEM();
