// The event loop of the single thread: window messages, timers and platform notifications for
// controls. Long operations pump it between their steps to keep windows responsive.
#pragma once

#include <cstdint>
#include <functional>

namespace vantor {

using TimerId = std::uint32_t;

/// The event queue of the thread that created it. Callbacks run on that thread, inside the calls
/// below (on Windows also inside the modal loops of boxes and menus). They must not throw.
class MessagePump {
public:
    virtual ~MessagePump() = default;

    /// Dispatches everything that is pending and returns; never waits
    /// (Windows: PeekMessage until the queue is empty). Input that arrived before a timer was due
    /// is delivered before the timer fires.
    virtual void PumpPending() = 0;

    /// For loops that pump while they wait and have read all input: yields the processor until a
    /// serial line has more, at most 10 ms. Returns at once if the system cannot wait for that.
    /// A return does not imply input; query the port.
    virtual void AwaitInput() {}

    /// Dispatches until `Quit` is called, sleeping while there is nothing to do. One call of `Quit`
    /// ends one `Run`.
    virtual void Run() = 0;

    /// Makes the innermost `Run` return once its current callback has returned. If none is
    /// running, the next `Run` returns at once.
    virtual void Quit() = 0;

    /// Calls `tick` every `intervalMs` milliseconds (at least 1) until stopped.
    /// Missed ticks are not caught up. Returns the identifier for `StopTimer`, never 0.
    virtual TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) = 0;

    /// Stops a timer; no tick follows, even one that was already due. Unknown ids are ignored.
    virtual void StopTimer(TimerId id) = 0;
};

}  // namespace vantor
