#pragma once
// For the blocking services (MessageStore, SmsSender, UssdRequest) built on
// a live Modem: their work runs on the modem's thread, in its turn in the
// queue, while the caller's thread waits.
#include "failure.h"

#include <QByteArray>
#include <QList>

#include <functional>

class AtModem;

namespace zelmodems {

class Modem;

class ModemAccess
{
public:
    // Runs `body` with the modem's driver on the modem's thread after what
    // is queued, and waits. The failure of the queue when the body could not
    // run (the modem closed or gone); no failure when it ran. Never call it
    // from the modem's own thread.
    static Failure run(Modem* modem, const std::function<void(AtModem*)>& body,
                       const QList<QByteArray>& claimed = QList<QByteArray>());

    // Runs one of a service's blocking calls on the modem: the service's
    // private part `d` is pointed at the modem's driver for the call.
    // `fail` records the queue's failure when the call could not run.
    template <typename Private, typename Call, typename Fail>
    static bool runCall(Private* d, const Call& call, const Fail& fail,
                        const QList<QByteArray>& claimed = QList<QByteArray>())
    {
        Modem* live = d->live;
        bool result = false;
        const Failure queue = run(live, [&](AtModem* driver) {
            d->live = nullptr;
            d->modem = driver;
            result = call();
            d->modem = nullptr;
            d->live = live;
        }, claimed);
        if (queue.isFailure())
            return fail(queue);
        return result;
    }
};

} // namespace zelmodems
