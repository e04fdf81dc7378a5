#include "terminal/session/LineBreak.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kBreakMs = 250;
constexpr std::uint32_t kLongestWaitMs = 500;

}  // namespace

void LineBreak::Start() {
    if (!Active()) mSince = mClock.Milliseconds();
}

void LineBreak::Advance() {
    if (!Active()) return;
    const std::uint32_t now = mClock.Milliseconds();
    const std::uint32_t passedMs = now - *mSince;
    if (mOn) {
        if (passedMs >= kBreakMs) Stop();
        return;
    }
    const bool sent = mPort.OutBufferCount() == 0;
    // The port may just have been found lost.
    if (!Active() || (!sent && passedMs < kLongestWaitMs)) return;
    mOn = true;
    mSince = now;
    mPort.Break(true);
}

void LineBreak::Stop() {
    mSince.reset();
    if (mOn) mPort.Break(false);
    mOn = false;
}

}  // namespace vantor
