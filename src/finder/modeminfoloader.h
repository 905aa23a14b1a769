#pragma once
#include "zelmodemslib_export.h"
#include "modeminfo.h"

#include <QString>

// The result of one on-demand load (see ModemInfoLoader).
class ZELMODEMSLIB_EXPORT ModemInfoAnswer
{
public:
    ModemInfoAnswer();

    bool success = false;
    /// Why the load failed; "Unknown error" until something more is known,
    /// and still so after a success.
    QString error;
    ModemInfo modemInfo;
};

/// Completes a known connection record on demand: opens the modem on the
/// record's port and rate, asks the SIM's operator, and adds the operator's
/// init line and PPP credentials from the operator table.
///
/// The work runs on the global thread pool while the caller waits, its own
/// events still processed, for at most 10 seconds.
class ZELMODEMSLIB_EXPORT ModemInfoLoader
{
public:
    ModemInfoLoader();
    ~ModemInfoLoader();

    /// True when the record was completed. On return `info` is the loaded
    /// record (after a time-out it is left as it was) and `error` the reason
    /// of a failure; after a success `error` reads "Unknown error", so look
    /// at the result, not at the text.
    static bool loadModemInfo(ModemInfo& info, QString& error);
};
