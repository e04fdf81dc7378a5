// The event loop on POSIX. Watches the open serial devices, so waiting uses no processor time.
#pragma once

#include <vector>

#include <poll.h>

#include "platform/portable/PolledPump.hpp"

namespace vantor {

class PosixMessagePump : public PolledPump {
public:
    using PolledPump::PolledPump;

    /// Blocks in ppoll until a watched device has input or is lost, at most 10 ms.
    void AwaitInput() override;

    /// Adds `descriptor` to the watched devices; it must stay open until `Unwatch`.
    void Watch(int descriptor);
    void Unwatch(int descriptor);

protected:
    void Rest() override { AwaitInput(); }

private:
    std::vector<pollfd> mWatched;
};

}  // namespace vantor
