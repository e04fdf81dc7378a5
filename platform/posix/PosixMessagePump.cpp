#include "platform/posix/PosixMessagePump.hpp"

#include <ctime>

namespace vantor {

// A loop that only looked again and again would keep the system's own carrying of bytes off the
// processor: what it waits for would come the later, the busier it looks for it.
void PosixMessagePump::AwaitInput() {
    constexpr timespec kAtMost{.tv_sec = 0, .tv_nsec = 10'000'000};
    // A signal ends the wait early, as input does; the caller looks for itself what there is.
    static_cast<void>(ppoll(mWatched.data(), mWatched.size(), &kAtMost, nullptr));
}

void PosixMessagePump::Watch(int descriptor) {
    mWatched.push_back({.fd = descriptor, .events = POLLIN, .revents = 0});
}

void PosixMessagePump::Unwatch(int descriptor) {
    std::erase_if(mWatched, [=](const pollfd& device) { return device.fd == descriptor; });
}

}  // namespace vantor
