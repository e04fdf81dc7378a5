#include "platform/portable/PolledPump.hpp"

#include <algorithm>
#include <utility>
#include <vector>

namespace vantor {

void PolledPump::PumpPending() {
    // Reads the clock, polls the sources, then fires the timers: even if the process is stopped in
    // between, bytes that arrived before a timer was due are delivered before it fires.
    const std::uint32_t now = mClock.Milliseconds();
    CallDue(mSources, now);
    CallDue(mTimers, now);
}

void PolledPump::Run() {
    while (!mQuit) {
        PumpPending();
        if (!mQuit) Rest();
    }
    mQuit = false;
}

TimerId PolledPump::StartTimer(std::uint32_t intervalMs, std::function<void()> tick) {
    const std::uint32_t now = mClock.Milliseconds();
    mTimers.emplace(++mLastId, Callback{std::max(intervalMs, 1u), now, std::move(tick)});
    return mLastId;
}

SourceId PolledPump::AddSource(std::function<void()> poll) {
    mSources.emplace(++mLastId, Callback{0, 0, std::move(poll)});
    return mLastId;
}

// A nested pump may have started or restarted a timer after `now`.
bool PolledPump::Callback::IsDue(std::uint32_t now) const {
    const auto age = static_cast<std::int32_t>(now - startedAt);
    return intervalMs == 0 || (age >= 0 && static_cast<std::uint32_t>(age) >= intervalMs);
}

// Callbacks may change the table, so a pass works from the identifiers it began with and looks
// every one of them up again.
void PolledPump::CallDue(Callbacks& callbacks, std::uint32_t now) {
    std::vector<std::uint32_t> due;
    for (const auto& [id, callback] : callbacks)
        if (callback.IsDue(now)) due.push_back(id);
    for (const std::uint32_t id : due) {
        const auto found = callbacks.find(id);
        if (found == callbacks.end() || !found->second.IsDue(now)) continue;
        found->second.startedAt = now;
        const std::function<void()> call = found->second.call;
        call();
    }
}

}  // namespace vantor
