// A timer that is switched on and off.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "platform/MessagePump.hpp"

namespace vantor {

/// Calls a function from the message pump every interval while enabled. Initially disabled.
class Timer {
public:
    /// `pump` outlives the timer.
    Timer(MessagePump& pump, std::uint32_t intervalMs, std::function<void()> tick)
        : mPump(pump), mIntervalMs(intervalMs), mTick(std::move(tick)) {}
    ~Timer() { Enabled(false); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    bool Enabled() const { return mTimer != 0; }
    /// Enabling it while it runs does not start the interval again. Raises what
    /// `MessagePump::StartTimer` raises.
    void Enabled(bool enabled) {
        if (enabled == Enabled()) return;
        if (enabled)
            mTimer = mPump.StartTimer(mIntervalMs, mTick);
        else
            mPump.StopTimer(std::exchange(mTimer, 0));
    }

private:
    MessagePump& mPump;
    std::uint32_t mIntervalMs;
    std::function<void()> mTick;
    TimerId mTimer = 0;
};

}  // namespace vantor
