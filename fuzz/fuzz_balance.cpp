// The operator's reply text, as decoded from a USSD reply or an SMS (any
// text at all can come back from the network): the balance parser, and the
// scan for the SIM's own number.
#include "fuzzcommon.h"

#include "atmodem.h"
#include "atmodem_p.h"

#include <cmath>

ZML_FUZZ_INIT

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static AtModem* modem = new AtModem;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    const double amount = modem->parseModemBalance(text);
    ZML_FUZZ_CHECK(!std::isnan(amount));
    // An amount comes only from digits in the text.
    bool digits = false;
    for (const QChar c : text)
        digits = digits || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
    if (!digits)
        ZML_FUZZ_CHECK(amount == 0.0);
    // The own number is ten digits of the text, or nothing.
    const QString number = atmodeminternal::nationalNumberIn(text);
    ZML_FUZZ_CHECK(number.isEmpty() || (number.size() == 10 && text.contains(number)));
    return 0;
}
