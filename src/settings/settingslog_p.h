#pragma once
// Log helpers of the settings code. Warnings and critical messages go to the
// default category and always carry the source location and the function
// name, also in release builds where qWarning() drops them.
#include <QDebug>
#include <QMessageLogger>

#define ZML_SETTINGS_WARNING() QMessageLogger(__FILE__, __LINE__, Q_FUNC_INFO).warning().noquote()
#define ZML_SETTINGS_CRITICAL() QMessageLogger(__FILE__, __LINE__, Q_FUNC_INFO).critical().noquote()
