// The state readings' parsers on whatever a modem might answer: the first
// byte chooses the reading (SIM state, attempts, network, +CESQ, ^HCSQ,
// stores, registration), the rest is the answer. Each value must stay
// inside the range its caller relies on.
#include "fuzzcommon.h"

#include "networkoperator.h"
#include "registration.h"
#include "signalmeasures.h"
#include "simstatus.h"
#include "storeuse.h"

#include <QSet>

ZML_FUZZ_INIT

namespace {

using zelmodems::SignalMeasures;

void measures(const SignalMeasures& m)
{
    // The lowest and highest value each scale can give.
    static const double LOW[] = {-121, 0, -121, -32.5, -141, -20, -20};
    static const double HIGH[] = {-25, 7, -25, 0, -44, -3, 30.2 + 1e-9};
    for (int i = 0; i < SignalMeasures::MeasureCount; ++i) {
        const auto measure = SignalMeasures::Measure(i);
        if (m.has(measure))
            ZML_FUZZ_CHECK(m.value(measure) >= LOW[i] && m.value(measure) <= HIGH[i]);
        else
            ZML_FUZZ_CHECK(m.value(measure) == 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > 256 * 1024)
        return 0;
    const QByteArray answer(reinterpret_cast<const char*>(data + 1), int(size - 1));
    switch (data[0] % 7) {
    case 0: {
        const zelmodems::SimStatus sim = zelmodems::SimStatus::fromAnswer(answer);
        ZML_FUZZ_CHECK(sim.state() >= zelmodems::SimStatus::NotRead && sim.state() <= zelmodems::SimStatus::SimBusy);
        ZML_FUZZ_CHECK(!zelmodems::SimStatus::stateName(sim.state()).isEmpty());
        break;
    }
    case 1: {
        zelmodems::SimStatus sim;
        const bool found = sim.takeAttempts(answer);
        ZML_FUZZ_CHECK(sim.pinAttempts() >= -1 && sim.pinAttempts() < 100);
        ZML_FUZZ_CHECK(sim.pukAttempts() >= -1 && sim.pukAttempts() < 100);
        ZML_FUZZ_CHECK(found == (sim.pinAttempts() >= 0 || sim.pukAttempts() >= 0));
        break;
    }
    case 2: {
        zelmodems::NetworkOperator network;
        network.take(answer);
        const QString numeric = network.numeric();
        ZML_FUZZ_CHECK(numeric.isEmpty() || numeric.size() == 5 || numeric.size() == 6);
        ZML_FUZZ_CHECK(network.mcc() >= -1 && network.mcc() <= 999 && network.mnc() >= -1 && network.mnc() <= 999);
        ZML_FUZZ_CHECK(!network.name().contains(QLatin1Char('"')));
        break;
    }
    case 3:
        measures(SignalMeasures::fromCesq(answer));
        break;
    case 4:
        measures(SignalMeasures::fromHcsq(answer));
        break;
    case 5: {
        const zelmodems::StoreUse use = zelmodems::StoreUse::fromAnswer(answer);
        QSet<QString> names;
        for (const zelmodems::StoreUse::Store& store : use.stores()) {
            ZML_FUZZ_CHECK(!names.contains(store.name));
            names << store.name;
            ZML_FUZZ_CHECK(store.used >= 0 && store.total >= 0 && store.roles >= 1 && store.roles <= 7);
        }
        break;
    }
    default: {
        for (const zelmodems::Registration& r : {zelmodems::Registration::fromAnswer(answer),
                                                  zelmodems::Registration::fromUnsolicited(answer)}) {
            if (!r.isValid())
                continue;
            ZML_FUZZ_CHECK(r.state() >= zelmodems::Registration::NotRegistered
                           && r.state() <= zelmodems::Registration::EmergencyOnly);
            ZML_FUZZ_CHECK(r.area() == r.area().toUpper() && r.cell() == r.cell().toUpper());
        }
        break;
    }
    }
    return 0;
}
