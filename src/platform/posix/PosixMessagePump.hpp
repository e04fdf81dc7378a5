// The event loop on POSIX. Watches the open serial devices, so waiting uses no processor time.
#pragma once

#include <vector>

#include <poll.h>

#include "platform/portable/PolledPump.hpp"

namespace vantor {

class PosixMessagePump : public PolledPump {
public:
    using PolledPump::PolledPump;

    /// Blocks in ppoll until a watched device has input or is lost, at most 10 ms. Polling in a
    /// busy-wait would keep the kernel work that delivers the input off the processor and so delay
    /// the input that it waits for.
    void AwaitInput() override {
        constexpr timespec kAtMost{.tv_sec = 0, .tv_nsec = 10'000'000};
        // A signal ends the wait early, as input does; the caller checks for input itself.
        ppoll(mWatched.data(), mWatched.size(), &kAtMost, nullptr);
    }

    /// Adds `descriptor` to the watched devices; it must stay open until `Unwatch`.
    void Watch(int descriptor) {
        mWatched.push_back({.fd = descriptor, .events = POLLIN, .revents = 0});
    }
    void Unwatch(int descriptor) {
        std::erase_if(mWatched, [=](const pollfd& device) { return device.fd == descriptor; });
    }

protected:
    void Rest() override { AwaitInput(); }

private:
    std::vector<pollfd> mWatched;
};

}  // namespace vantor
