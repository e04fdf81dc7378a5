// The window message queue of the thread that makes it, and a hidden window through which timers
// and serial ports reach that thread even while a modal loop runs it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "platform/MessagePump.hpp"
#include "platform/win32/Windows.hpp"

namespace vantor {

class Win32MessagePump : public MessagePump {
public:
    using SourceId = std::uint32_t;

    Win32MessagePump();
    ~Win32MessagePump() override;
    Win32MessagePump(const Win32MessagePump&) = delete;
    Win32MessagePump& operator=(const Win32MessagePump&) = delete;

    void PumpPending() override;
    /// Only lets others run: the system tells of input too late to wait for it between two lines.
    void AwaitInput() override { static_cast<void>(SwitchToThread()); }
    void Run() override;
    void Quit() override;

    /// The system takes intervals below 10 ms for 10 ms.
    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override;
    void StopTimer(TimerId id) override;

    /// Calls `poll` at every `PumpPending`, every 10 ms or so in all other loops of this thread
    /// (every 200 ms once nothing has happened for a second), before each tick of a timer, and
    /// soon after each `WakeUp`, until removed. A source may add and remove sources and timers,
    /// itself included, and may pump.
    SourceId AddSource(std::function<void()> poll);
    void RemoveSource(SourceId id);

    /// Something has come from a source, or is expected from it: polls are frequent for a while.
    void Attend();
    /// For a poll that has found plenty: the poll timer polls again at once, a limited number of
    /// times, for the system's own timers are too slow for a line that never pauses.
    void PollAgain() { mAgain = true; }

    /// Asks `filter` about each message of the two loops above; true means that it has dealt
    /// with it (the keys of a window's controls).
    void Filter(std::function<bool(MSG&)> filter) { mFilter = std::move(filter); }

    /// Waits for one message and dispatches it, for the loop of a modal window: what comes behind
    /// the message that closes it belongs to the loop around. False when `Quit` has been called:
    /// the loop then ends, and so does the one around it.
    bool WaitAndDispatch();

    /// Asks for a poll of the source `id`; may be called from any thread while the pump lives.
    /// A source that has been removed meanwhile is not called.
    void WakeUp(SourceId id) const;

private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second);
    void Dispatch(MSG& message);
    bool Handle(UINT message, WPARAM first);
    void SetSystemTimer(UINT_PTR id, std::uint32_t intervalMs) const;
    void Tick(UINT_PTR id);
    void PollSource(SourceId id);
    void PollSources();

    HWND mWindow = nullptr;
    std::function<bool(MSG&)> mFilter;
    std::map<TimerId, std::function<void()>> mTimers;
    std::map<SourceId, std::function<void()>> mSources;
    std::uint32_t mLastId = 0;
    bool mAgain = false;
    int mIdlePolls = 0;  // of the poll timer, since somebody last attended
    bool mQuit = false;
};

}  // namespace vantor
