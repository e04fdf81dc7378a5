#include "platform/PolledPump.hpp"

#include <utility>
#include <vector>

namespace vantor {

void PolledPump::PumpPending() {
    if (!mTimers.empty()) FireDueTimers();
    if (!mSources.empty()) PollSources();
}

void PolledPump::Run() {
    mQuit = false;
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

// Callbacks may change both tables, so each pass iterates over a snapshot of the identifiers and
// looks up each one again.
void PolledPump::FireDueTimers() {
    const std::uint32_t now = mClock.Milliseconds();
    std::vector<TimerId> due;
    for (const auto& [id, timer] : mTimers)
        if (now - timer.startedAt >= timer.intervalMs) due.push_back(id);
    for (const TimerId id : due) {
        const auto found = mTimers.find(id);
        if (found == mTimers.end()) continue;
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
