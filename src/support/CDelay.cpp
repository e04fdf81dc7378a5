#include "support/CDelay.hpp"

#include "platform/Clock.hpp"
#include "platform/MessagePump.hpp"
#include "support/Conversions.hpp"

namespace vantor {

void CDelay::Delay(std::int16_t ms) {
    const std::int32_t end = CheckedAdd(mClock.Ticks(), ms);
    while (mClock.Ticks() < end) {
        bool cancel = false;
        if (Waiting) Waiting(cancel);
        if (cancel) return;
        // A busy-wait on purpose: a sleep would delay the receive event.
        mPump.PumpPending();
    }
}

}  // namespace vantor
