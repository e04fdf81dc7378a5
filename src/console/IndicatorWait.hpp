// Waits for a port to appear and for an indicator to answer on it, or for it to go away.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "controls/BufferedPort.hpp"
#include "platform/Clock.hpp"
#include "platform/Console.hpp"
#include "platform/MessagePump.hpp"

namespace vantor {

/// True when a wait for an update must end: the interrupt key was pressed, or nobody would learn of
/// the update, as after the end of the process that started this one.
bool WaitMustEnd(Console& console);

/// Asks for the boot monitor as a session does, again and again. Closes the port after each time.
class IndicatorWait {
public:
    enum class Result : std::uint8_t { Ready, NoPort, NoAnswer, Interrupted };
    enum class Stage : std::uint8_t { Port, Indicator };

    /// All outlive the object. `portName` and `line` are as in `BufferedPort`.
    IndicatorWait(SerialPorts& ports, MessagePump& pump, Clock& clock, Console& console,
                  const std::string& portName, const std::string& line);

    /// Waits at most `limitMs` (nothing: without end) for an indicator in its boot monitor, and
    /// calls `show` whenever it begins to wait for something else. NoPort and NoAnswer say what was
    /// missing at the end of the time. Interrupted: see WaitMustEnd.
    Result UntilReady(std::optional<std::uint64_t> limitMs, const std::function<void(Stage)>& show);

    /// Waits until the port or the indicator has gone (Ready), or for the Enter key (Ready).
    Result UntilGone();

private:
    /// What a call of the indicator finds.
    enum class Found : std::uint8_t { NoPort, Silence, OtherReply, BootMonitor, Interrupted };

    Found Call();
    /// Pumps for `ms`; false when the wait must end.
    bool Pause(std::uint32_t ms);
    void Rest();

    MessagePump& mPump;
    Clock& mClock;
    Console& mConsole;
    BufferedPort mPort;
};

}  // namespace vantor
