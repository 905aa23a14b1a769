// The service state from the bus: setClientState on any client state text
// (the owner either the modems service or another name), then the record's
// map form out and back.
#include "fuzzcommon.h"

#include "modemservicestate.h"

#include <zelbus/clientstate.h>

#include <cmath>

ZML_FUZZ_INIT

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const QString owner = (data[0] & 1) ? zelbus::BUSNAME_ZELMODEMS : QStringLiteral("zel.other");
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data) + 1, int(size - 1));

    ModemServiceState state;
    state.setBalanceText(QStringLiteral("before"));
    const ModemServiceState before = state;
    const bool taken = state.setClientState(zelbus::ClientState(owner, text));
    if (!taken) {
        ZML_FUZZ_CHECK(state == before);
        return 0;
    }
    ZML_FUZZ_CHECK(owner == zelbus::BUSNAME_ZELMODEMS);
    ZML_FUZZ_CHECK(!state.balanceText().contains(QChar(0)));
    (void)state.activeConnection();

    // The map form carries the whole record (a NaN balance cannot equal
    // itself, so such a record is left out of the comparison).
    ModemServiceState copy = ModemServiceState::fromMap(state.toMap());
    if (!std::isnan(state.balance()))
        ZML_FUZZ_CHECK(copy == state);
    return 0;
}
