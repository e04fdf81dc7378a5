// The system clocks on POSIX.
#include <time.h>

#include <cerrno>

#include "platform/posix/PosixServices.hpp"

namespace vantor {
namespace {

class PosixClock : public Clock {
public:
    std::uint32_t Milliseconds() const override {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);  // this clock always exists
        const std::int64_t ms =
            static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
        return static_cast<std::uint32_t>(ms);
    }

    void Sleep(std::uint32_t ms) override {
        timespec left{};
        left.tv_sec = static_cast<time_t>(ms / 1000);
        left.tv_nsec = static_cast<long>(ms % 1000) * 1000000;
        // A signal ends the sleep early; callers rely on the minimum.
        while (nanosleep(&left, &left) != 0 && errno == EINTR) continue;
    }

    DateTime Now() const override {
        const time_t now = time(nullptr);
        tm local{};
        if (localtime_r(&now, &local) == nullptr) return {};
        return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                local.tm_hour,        local.tm_min,     local.tm_sec};
    }

    std::int64_t LocalMilliseconds() const override {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        tm local{};
        const bool known = localtime_r(&now.tv_sec, &local) != nullptr;
        return (std::int64_t{now.tv_sec} + (known ? local.tm_gmtoff : 0)) * 1000 +
               now.tv_nsec / 1000000;
    }
};

}  // namespace

std::unique_ptr<Clock> MakePosixClock() {
    return std::make_unique<PosixClock>();
}

}  // namespace vantor
