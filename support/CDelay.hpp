// Waiting without freezing the windows.
#pragma once

#include <cstdint>
#include <functional>

namespace vantor {

class Clock;
class MessagePump;

class CDelay {
public:
    CDelay(Clock& clock, MessagePump& pump) : mClock(clock), mPump(pump) {}

    /// Returns after `ms` milliseconds, or as soon as `Waiting` asks for it; 0 and below return
    /// at once. Pumps messages all the while. Raises RuntimeError 6 when the end would lie
    /// beyond the clock's 32-bit signed range.
    void Delay(std::int16_t ms);

    /// Asked once per pass of the waiting loop, when set; setting `cancel` ends the wait.
    std::function<void(bool& cancel)> Waiting;

private:
    Clock& mClock;
    MessagePump& mPump;
};

}  // namespace vantor
