#pragma once
#include "zelmodemslib_export.h"

#include <qt5ext/appversion.h>

// Registers the library with the appliance's version registry when the
// library is loaded: its version under the key "zelmodemslib" (once per
// process) and its translations (every time an instance is constructed).
class ZELMODEMSLIB_EXPORT ZelModemsLib
{
public:
    ZelModemsLib();
    ~ZelModemsLib();

    /// The registered version; invalid until the library's load-time
    /// registration has run.
    static qt5ext::AppVersion version();

    /// The build date-time text handed to the registry, from the compiler's
    /// date ("MMM d yyyy", day padded with a blank below 10) and time
    /// ("hh:mm:ss"), in ISO 8601 form.
    static QString buildDateTimeIso(const QString& compilerDate, const QString& compilerTime);

private:
    static qt5ext::AppVersion _version;
};
