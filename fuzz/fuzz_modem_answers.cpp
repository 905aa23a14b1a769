// The modem's answers as hostile input: the driver's queries run against a
// simulated modem that answers every command with the fuzz input, followed
// by the final result code (so that no query waits for its time-out):
// getNumberInternal through getImei/getImsi, getSignalLevel, getMnc,
// getOperator, getGsmCells, both cell lists, getInfo (ICCID handling
// included), the message store's listing and reading, and takeMessages'
// listing parser with its index-to-PDU pairing.
//
// Input: first byte selects the query (and whether the answer ends in OK or
// ERROR); the rest is the answer. The modem is opened once, through a real
// pseudo-terminal, as the library opens any port.
#include "fuzzcommon.h"

#include "atmodem.h"
#include "messagestore.h"
#include "simmodem.h"
#include "simrig.h"

#include <QVariantMap>

#include <memory>
#include <mutex>

ZML_FUZZ_INIT


namespace {

zmlfuzz::SimRig& rig()
{
    // Lives for the whole run; the channel's own AT and echo switching get
    // the modem's answers, every other command the input.
    static auto* instance = new zmlfuzz::SimRig(zelmodems::sim::Make::SimCom, [](const QByteArray& command) {
        return !command.isEmpty() && !command.startsWith("E");
    });
    return *instance;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > 256 * 1024)
        return 0;
    zmlfuzz::SimRig& r = rig();
    // A rig that cannot open its modem would test nothing.
    ZML_FUZZ_CHECK(r.ready);
    const uint8_t selector = data[0];
    r.setAnswer(QByteArray(reinterpret_cast<const char*>(data + 1), int(size - 1))
                + ((selector & 0x80) ? "\r\nERROR\r\n" : "\r\nOK\r\n"));
    AtModem& m = r.modem;
    QString text;
    QString other;
    int a = 0;
    int b = 0;
    switch (selector & 0x0F) {
    case 0: m.getImei(text); break;
    case 1: m.getImsi(text); break;
    case 2: m.getSignalLevel(a); break;
    case 3:
        if (m.getMnc(a, b))
            ZML_FUZZ_CHECK(a >= 0 && b >= 0);
        break;
    case 4: m.getOperator(text); break;
    case 5: m.getGsmCells(text, other); break;
    case 6: m.getSiemensCellList(text); break;
    case 7: m.getSimCOMCellList(text); break;
    case 8: {
        QVariantMap info;
        m.getInfo(info);
        break;
    }
    case 9: {
        zelmodems::MessageStore store(&m);
        QList<zelmodems::StoredPdu> entries;
        // An entry that can be acted on has an index in the store's range.
        if (store.list(entries)) {
            for (const zelmodems::StoredPdu& e : entries)
                ZML_FUZZ_CHECK(!e.isComplete() || (e.index() >= 0 && e.index() <= zelmodems::MessageStore::MaxIndex));
        }
        break;
    }
    case 10: {
        zelmodems::MessageStore store(&m);
        zelmodems::StoredPdu entry;
        store.read(1, entry);
        break;
    }
    case 11: {
        // The fixed reading of the store: it deletes what it listed.
        QList<AtModem::SSms> messages;
        m.takeMessages(messages);
        break;
    }
    default: m.getInfo(text); break;
    }
    return 0;
}
