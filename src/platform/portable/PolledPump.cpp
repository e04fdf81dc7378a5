#include "platform/portable/PolledPump.hpp"

#include <utility>
#include <vector>

namespace vantor {

void PolledPump::PumpPending() {
    // Reads the clock, polls the sources, then fires the timers: even if the process is stopped in
    // between, bytes that arrived before a timer was due are delivered before it fires.
    const std::uint32_t now = mClock.Milliseconds();
    if (!mSources.empty()) PollSources();
    if (!mTimers.empty()) FireDueTimers(now);
}

void PolledPump::Run() {
    while (!mQuit) {
        PumpPending();
        if (!mQuit) Rest();
    }
    mQuit = false;
}

void PolledPump::Quit() {
    mQuit = true;
}

void PolledPump::Rest() {
    mClock.Sleep(1);
}

TimerId PolledPump::StartTimer(std::uint32_t intervalMs, std::function<void()> tick) {
    mTimers.emplace(++mLastId, RunningTimer{intervalMs == 0 ? 1u : intervalMs,
                                            mClock.Milliseconds(), std::move(tick)});
    return mLastId;
}

void PolledPump::StopTimer(TimerId id) {
    mTimers.erase(id);
}

SourceId PolledPump::AddSource(std::function<void()> poll) {
    mSources.emplace(++mLastId, std::move(poll));
    return mLastId;
}

void PolledPump::RemoveSource(SourceId id) {
    mSources.erase(id);
}

// A nested pump may have started or restarted the timer after `now`.
bool PolledPump::RunningTimer::IsDue(std::uint32_t now) const {
    const auto age = static_cast<std::int32_t>(now - startedAt);
    return age >= 0 && static_cast<std::uint32_t>(age) >= intervalMs;
}

// Callbacks may change both tables, so each pass works from the identifiers it began with and
// looks every one of them up again.
void PolledPump::FireDueTimers(std::uint32_t now) {
    std::vector<TimerId> due;
    for (const auto& [id, timer] : mTimers)
        if (timer.IsDue(now)) due.push_back(id);
    for (const TimerId id : due) {
        const auto found = mTimers.find(id);
        if (found == mTimers.end() || !found->second.IsDue(now)) continue;
        found->second.startedAt = now;
        const std::function<void()> tick = found->second.tick;
        tick();
    }
}

void PolledPump::PollSources() {
    std::vector<SourceId> ids;
    ids.reserve(mSources.size());
    for (const auto& entry : mSources) ids.push_back(entry.first);
    for (const SourceId id : ids) {
        const auto found = mSources.find(id);
        if (found == mSources.end()) continue;
        const std::function<void()> poll = found->second;
        poll();
    }
}

}  // namespace vantor
