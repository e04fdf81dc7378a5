// The stopwatch on the system's millisecond clock.
#pragma once

#include <cstdint>

#include "platform/Clock.hpp"

namespace vantor {

/// Measures the sum of its runs, in 32-bit signed milliseconds: a sum that does not fit raises
/// RuntimeError 6, and a run of more than 24.8 days reads as a negative time.
class CMMTimer {
public:
    explicit CMMTimer(const Clock& clock) : mClock(clock) {}

    /// Divisor from milliseconds to the unit of `ElapsedTime`: 1000, so seconds, at creation.
    std::int32_t ScaleFactor() const { return mScaleFactor; }
    void ScaleFactor(std::int32_t factor) { mScaleFactor = factor; }

    /// Starts from 0.
    void StartTimer();
    /// Ends the current run.
    void StopTimer();
    /// Goes on from where it stopped.
    void ResumeTimer();
    /// Sum of the runs, the current one included, in units of the scale factor; 0 before any.
    double ElapsedTime() const;

private:
    std::int32_t CurrentRun() const;

    const Clock& mClock;
    std::int32_t mScaleFactor = 1000;
    std::int32_t mAccumulatedMs = 0;
    std::int32_t mStartTime = 0;  // 0 when no run is going
    bool mStopped = false;
};

}  // namespace vantor
