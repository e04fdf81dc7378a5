#include "support/CDelay.hpp"

#include "platform/Clock.hpp"
#include "platform/MessagePump.hpp"
#include "support/Conversions.hpp"

namespace vantor {

void CDelay::Delay(std::int16_t ms) {
    const std::int32_t end = CheckedAdd(mClock.Ticks(), ms);
    int passes = 0;
    while (mClock.Ticks() < end) {
        ++passes;
        bool cancel = false;
        if (Waiting) Waiting(cancel);
        if (cancel) return;
        if (passes % 10 == 0) {
            // Never reached, since each pump resets the count: the wait is a busy-wait that pumps
            // on every pass. Kept on purpose: a sleep would delay the receive event.
            mClock.Sleep(1);
        } else {
            mPump.PumpPending();
            passes = 0;
        }
    }
}

}  // namespace vantor
