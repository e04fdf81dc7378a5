#include "platform/posix/PosixMessagePump.hpp"

#include <ctime>

namespace vantor {

// Polling in a busy-wait would keep the kernel work that delivers the input off the processor and
// so delay the input that it waits for.
void PosixMessagePump::AwaitInput() {
    constexpr timespec kAtMost{.tv_sec = 0, .tv_nsec = 10'000'000};
    // A signal ends the wait early, as input does; the caller checks for input itself.
    static_cast<void>(ppoll(mWatched.data(), mWatched.size(), &kAtMost, nullptr));
}

void PosixMessagePump::Watch(int descriptor) {
    mWatched.push_back({.fd = descriptor, .events = POLLIN, .revents = 0});
}

void PosixMessagePump::Unwatch(int descriptor) {
    std::erase_if(mWatched, [=](const pollfd& device) { return device.fd == descriptor; });
}

}  // namespace vantor
