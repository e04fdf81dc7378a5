// A stopwatch on the system's millisecond clock.
#pragma once

#include <cstdint>

#include "platform/Clock.hpp"
#include "support/Conversions.hpp"

namespace vantor {

/// Adds up its runs in 32-bit signed milliseconds. A sum that does not fit raises RuntimeError 6;
/// a run of more than 24.8 days reads as a negative time.
class CMMTimer {
public:
    explicit CMMTimer(const Clock& clock) : mClock(clock) {}

    /// Divisor from milliseconds to the unit of `ElapsedTime`. Initially seconds.
    std::int32_t ScaleFactor = 1000;

    /// Resets the sum and starts a run.
    void StartTimer() {
        ResumeTimer();
        mAccumulatedMs = 0;
    }
    /// Ends the current run.
    void StopTimer() {
        mAccumulatedMs = TotalMs();
        mStartTime = 0;
    }
    /// Starts another run and keeps the sum.
    void ResumeTimer() { mStartTime = mClock.Ticks(); }
    /// Sum of all runs, including the current one, in units of the scale factor; 0 before any.
    double ElapsedTime() const { return static_cast<double>(TotalMs()) / ScaleFactor; }

private:
    std::int32_t TotalMs() const {
        if (mStartTime == 0) return mAccumulatedMs;
        const std::uint32_t run = mClock.Milliseconds() - static_cast<std::uint32_t>(mStartTime);
        return CheckedAdd(mAccumulatedMs, static_cast<std::int32_t>(run));
    }

    const Clock& mClock;
    std::int32_t mAccumulatedMs = 0;
    std::int32_t mStartTime = 0;  // 0 when not running
};

}  // namespace vantor
