// Waiting without freezing the windows.
#pragma once

#include <cstdint>
#include <functional>

namespace vantor {

class Clock;
class MessagePump;

class CDelay {
public:
    CDelay(const Clock& clock, MessagePump& pump) : mClock(clock), mPump(pump) {}

    /// Returns after `ms` milliseconds, at once for 0 and below, or as soon as `Waiting` cancels.
    /// Pumps messages meanwhile. Raises RuntimeError 6 when the end lies beyond the clock's
    /// 32-bit signed range.
    void Delay(std::int16_t ms);

    /// Called once per pass of the wait loop, when set; setting `cancel` ends the wait.
    std::function<void(bool& cancel)> Waiting;

private:
    const Clock& mClock;
    MessagePump& mPump;
};

}  // namespace vantor
