// The event loop off Windows: it knows the open serial devices, so that waiting costs nothing.
#pragma once

#include <vector>

#include <poll.h>

#include "platform/PolledPump.hpp"

namespace vantor {

class PosixMessagePump : public PolledPump {
public:
    using PolledPump::PolledPump;

    /// Sleeps in ppoll until one of the watched devices has input or has gone, at most 10 ms.
    void AwaitInput() override;

    /// Counts the open file `descriptor` among the devices; it must stay open until `Unwatch`.
    void Watch(int descriptor);
    void Unwatch(int descriptor);

protected:
    void Rest() override { AwaitInput(); }

private:
    std::vector<pollfd> mWatched;
};

}  // namespace vantor
