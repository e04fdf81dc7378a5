// Waiting without freezing the windows.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/Clock.hpp"
#include "platform/MessagePump.hpp"
#include "support/Conversions.hpp"

namespace vantor {

class CDelay {
public:
    CDelay(const Clock& clock, MessagePump& pump) : mClock(clock), mPump(pump) {}

    /// Called once per pass of the wait loop, when set; setting `cancel` ends the wait.
    std::function<void(bool& cancel)> Waiting;

    /// Returns after `ms` milliseconds, at once for 0 and below, or as soon as `Waiting` cancels.
    /// Pumps messages meanwhile. Raises RuntimeError 6 when the end lies beyond the clock's
    /// 32-bit signed range.
    void Delay(std::int16_t ms) {
        const std::int32_t end = CheckedAdd(mClock.Ticks(), ms);
        while (mClock.Ticks() < end) {
            bool cancel = false;
            if (Waiting) Waiting(cancel);
            if (cancel) return;
            // A busy-wait on purpose: a sleep would delay the receive event.
            mPump.PumpPending();
        }
    }

private:
    const Clock& mClock;
    MessagePump& mPump;
};

}  // namespace vantor
