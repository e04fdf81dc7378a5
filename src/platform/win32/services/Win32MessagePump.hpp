// The window message queue of the thread that creates it, and a hidden window through which timers
// and serial ports reach that thread even inside a modal loop.
#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "platform/MessagePump.hpp"
#include "platform/win32/services/Win32HiddenWindow.hpp"

namespace vantor {

class Win32MessagePump : public MessagePump {
public:
    using SourceId = std::uint32_t;

    Win32MessagePump();
    Win32MessagePump(const Win32MessagePump&) = delete;
    Win32MessagePump& operator=(const Win32MessagePump&) = delete;

    void PumpPending() override;
    /// Only yields: Windows reports input too late for a wait between two lines.
    void AwaitInput() override { SwitchToThread(); }
    void Run() override;
    void Quit() override;

    /// Windows raises intervals below 10 ms to 10 ms.
    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override;
    void StopTimer(TimerId id) override;

    /// Calls `poll` at every `PumpPending`, every 10 ms or so in all other loops of this thread
    /// (every 200 ms once nothing has happened for a second), before each tick of a timer, and
    /// soon after each `WakeUp`, until removed. A source may add and remove sources and timers,
    /// itself included, and may pump.
    SourceId AddSource(std::function<void()> poll);
    void RemoveSource(SourceId id);

    /// A source has received data or expects some: polls are frequent for a while.
    void Attend();
    /// For a poll that has found much data: the poll timer polls again at once, a limited number of
    /// times, because system timers are too slow for continuous input.
    void PollAgain() { mAgain = true; }

    /// Passes each message of the two loops above to `filter`; true means that it has handled
    /// the message (keyboard input of a window's controls).
    void Filter(std::function<bool(MSG&)> filter) { mFilter = std::move(filter); }

    /// Waits for one message and dispatches it, for the loop of a modal window:
    /// messages after the one that closes it belong to the outer loop. Returns false after `Quit`,
    /// which ends this loop and the outer one.
    bool WaitAndDispatch();

    /// Requests a poll of the source `id`. Thread-safe while the pump lives.
    /// A source that was removed meanwhile is not called.
    void WakeUp(SourceId id) const;

private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Dispatch(MSG& message);
    void SetSystemTimer(UINT_PTR id, std::uint32_t intervalMs) const;
    void Tick(UINT_PTR id);
    void PollSource(SourceId id);
    void PollSources();

    std::function<bool(MSG&)> mFilter;
    std::map<TimerId, std::function<void()>> mTimers;
    std::map<SourceId, std::function<void()>> mSources;
    std::uint32_t mLastId = 0;
    bool mAgain = false;
    int mIdlePolls = 0;  // of the poll timer, since the last Attend
    bool mQuit = false;
    OwnedWindow mWindow;  // destroyed first, with its timers and posted messages
};

}  // namespace vantor
