// USSD replies: getCUSDMessage on whatever a modem of each dialect may put in
// the buffer while a USSD request waits (the "+CUSD:" reply among echoes,
// unsolicited lines and noise), then the balance parser on the decoded text.
//
// Input: first byte selects the dialect (SIMCOM modems take another path
// through the bytes); the rest is the buffer.
#include "fuzzcommon.h"

#include "atmodem.h"

#include <cmath>

ZML_FUZZ_INIT

namespace {

// An answer to "ATI" that puts a modem into each dialect, in dialect order.
const char* const IDENTIFICATION[] = {
    "",
    "Cinterion\r\nMC52i\r\nREVISION 02.000",
    "SIMCOM_Ltd\r\nSIMCOM_SIM800L\r\nRevision:1308B06SIM800L16",
    "Manufacturer: huawei\r\nModel: E3372\r\nRevision: 22.200.09.01.161",
    "ZTE CORPORATION\r\nMF823",
    "HSPA Data Card\r\nRevision 1.0",
};

AtModem* modemOfDialect(int dialect)
{
    static AtModem* modems[6] = {};
    if (!modems[dialect]) {
        modems[dialect] = new AtModem;
        modems[dialect]->setModemName(IDENTIFICATION[dialect]);
        ZML_FUZZ_CHECK(modems[dialect]->dialect() == dialect);
    }
    return modems[dialect];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    AtModem* modem = modemOfDialect(data[0] % 6);
    const QByteArray buffer(reinterpret_cast<const char*>(data) + 1, int(size - 1));

    QString message = QStringLiteral("untouched");
    if (!modem->getCUSDMessage(buffer, message)) {
        ZML_FUZZ_CHECK(message == QLatin1String("untouched"));
        return 0;
    }
    // A reply is there only when its marker is (SIMCOM buffers are read
    // with their zero bytes dropped).
    ZML_FUZZ_CHECK(QByteArray(buffer).replace('\0', QByteArray()).contains("+CUSD:"));
    const double amount = modem->parseModemBalance(message);
    ZML_FUZZ_CHECK(!std::isnan(amount));

    // The UCS2 path appends: decoding into an empty string gives the text.
    QString fresh;
    ZML_FUZZ_CHECK(modem->getCUSDMessage(buffer, fresh));
    return 0;
}
