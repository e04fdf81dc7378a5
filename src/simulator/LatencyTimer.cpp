#include "simulator/LatencyTimer.hpp"

#include <utility>

namespace vantor {

std::string LatencyTimer::Pass(std::string_view bytes, Micros now) {
    std::string passed;
    if (!mHeld.empty() && now >= mDue) passed = std::exchange(mHeld, {});
    for (const char byte : bytes) {
        if (mHeld.empty()) mDue = now + mHold;
        mHeld += byte;
        if (mHeld.size() == kPacket || mHold == 0) passed += std::exchange(mHeld, {});
    }
    return passed;
}

std::optional<Micros> LatencyTimer::NextDue() const {
    return mHeld.empty() ? std::nullopt : std::optional(mDue);
}

}  // namespace vantor
