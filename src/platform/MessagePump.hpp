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
    /// (Windows: PeekMessage until the queue is empty). No timer fires before the input that had
    /// arrived when it was due is delivered.
    virtual void PumpPending() = 0;

    /// For loops that wait by pumping and have read what there was: gives the processor up until
    /// a serial line has more, at most 10 ms. Returns at once where that cannot be waited for. Its
    /// return says nothing; only the port tells whether there is input.
    virtual void AwaitInput() {}

    /// Dispatches until `Quit` is called, sleeping while there is nothing to do. One call of `Quit`
    /// ends one `Run`.
    virtual void Run() = 0;

    /// Makes the innermost `Run` return once its current callback has returned. While none runs
    /// it is remembered: the next `Run` returns at once.
    virtual void Quit() = 0;

    /// Calls `tick` every `intervalMs` milliseconds (at least 1) until stopped.
    /// Missed ticks are not caught up. Returns the identifier for `StopTimer`, never 0.
    virtual TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) = 0;

    /// Stops a timer; no tick follows, even one that was already due. Unknown ids are ignored.
    virtual void StopTimer(TimerId id) = 0;
};

}  // namespace vantor
