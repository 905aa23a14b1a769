#pragma once
#include <QString>

namespace AT {

// The text form of a modem dialect (AtModem::Dialect); any value that is
// not a known dialect other than the default reads as "DEFAULT_AT_GSM".
QString dialectText(qint32 dialect);

} // namespace AT
