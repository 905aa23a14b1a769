#pragma once
// A driver opened once on a simulated modem, for the targets that feed the
// modem's answers: a real pseudo-terminal, as the library opens any port.
// The target decides which commands get the fuzz input (`answerFor`) and
// sets the answer under the mutex; other commands get the modem's own.
#include "atmodem.h"
#include "simmodem.h"

#include <functional>
#include <mutex>

namespace zmlfuzz {

struct SimRig {
    std::mutex mutex;
    QByteArray answer;
    zelmodems::sim::SimModem sim;
    AtModem modem;
    bool ready = false;

    SimRig(zelmodems::sim::Make make, std::function<bool(const QByteArray&)> answerFor) : sim(make)
    {
        if (!sim.start())
            return;
        ready = modem.open(sim.devicePath(), 115200, 1);
        sim.addHandler([this, answerFor](const QByteArray& command) -> std::optional<zelmodems::sim::Reply> {
            std::lock_guard<std::mutex> lock(mutex);
            if (!answerFor(command))
                return std::nullopt;
            return zelmodems::sim::Reply::raw(answer);
        });
    }

    void setAnswer(const QByteArray& bytes)
    {
        std::lock_guard<std::mutex> lock(mutex);
        answer = bytes;
    }
};

} // namespace zmlfuzz
