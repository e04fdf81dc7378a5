#include "support/CMMTimer.hpp"

#include "support/Conversions.hpp"

namespace vantor {

void CMMTimer::StartTimer() {
    ResumeTimer();
    mAccumulatedMs = 0;
}

void CMMTimer::StopTimer() {
    mAccumulatedMs = CheckedAdd(mAccumulatedMs, CurrentRun());
    mStartTime = 0;
}

void CMMTimer::ResumeTimer() {
    mStartTime = mClock.Ticks();
}

double CMMTimer::ElapsedTime() const {
    return static_cast<double>(CheckedAdd(mAccumulatedMs, CurrentRun())) / ScaleFactor;
}

std::int32_t CMMTimer::CurrentRun() const {
    if (mStartTime == 0) return 0;
    return static_cast<std::int32_t>(mClock.Milliseconds() -
                                     static_cast<std::uint32_t>(mStartTime));
}

}  // namespace vantor
