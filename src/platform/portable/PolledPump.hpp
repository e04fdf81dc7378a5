// A message pump for systems without a window queue: each pump polls the timers and sources.
#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "platform/Clock.hpp"
#include "platform/MessagePump.hpp"

namespace vantor {

using SourceId = std::uint32_t;

class PolledPump : public MessagePump {
public:
    /// `clock` must outlive the pump.
    explicit PolledPump(Clock& clock) : mClock(clock) {}

    void PumpPending() override;
    void Run() override;
    void Quit() override { mQuit = true; }
    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override;
    void StopTimer(TimerId id) override { mTimers.erase(id); }

    /// Calls `poll` once per pump until removed. A source may add and remove sources and timers,
    /// itself included, and may pump.
    SourceId AddSource(std::function<void()> poll);
    void RemoveSource(SourceId id) { mSources.erase(id); }

protected:
    /// Called by `Run` after each pass, to avoid a busy-wait.
    virtual void Rest() { mClock.Sleep(1); }

    Clock& mClock;

private:
    struct Callback {
        std::uint32_t intervalMs;  // 0: due at each pump
        std::uint32_t startedAt;
        std::function<void()> call;

        bool IsDue(std::uint32_t now) const;
    };
    using Callbacks = std::map<std::uint32_t, Callback>;  // by identifier

    static void CallDue(Callbacks& callbacks, std::uint32_t now);

    Callbacks mTimers;
    Callbacks mSources;
    std::uint32_t mLastId = 0;
    bool mQuit = false;
};

}  // namespace vantor
