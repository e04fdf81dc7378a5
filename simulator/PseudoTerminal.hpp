// The near end of a pseudo-terminal whose far end a host program opens like a serial port. Moves
// bytes and tells whether somebody has the far end open; says nothing on what they mean.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/SerialPort.hpp"

namespace vantor {

/// Used from one thread. Blocks SIGTERM and SIGINT except within `Wait`, so that a handler for
/// them runs only there and a signal cannot slip in between a check and the wait after it.
/// Failures of the system throw std::system_error.
class PseudoTerminal {
public:
    /// Opens the terminal, raw from the start: nothing is echoed or translated even before the
    /// first host has set it up.
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// What a host opens.
    const std::string& Path() const { return mPath; }

    /// What has befallen the far end since the last look.
    struct State {
        bool reopened;            ///< it was closed and opened again
        std::string bytesBefore;  ///< `reopened`: what a host wrote before the close
        std::string bytes;        ///< what a host wrote (after it); it may have closed since
        bool hostOpen;            ///< somebody has it open, or had until a moment ago: see `Wait`
    };
    /// Never waits. A close is shown only when everything written before it has been given.
    State Look();
    /// Returns when another look is worth while - a host has opened, written or closed -, at a
    /// signal, or after `atMost`; without a limit when unset.
    void Wait(std::optional<std::chrono::microseconds> atMost) const;

    /// Hands `bytes` to the host. What a host that does not read leaves no room for is lost.
    void Write(std::string_view bytes);
    /// The host's line parameters. A pseudo-terminal keeps speed and stop bits as the host set
    /// them, but always reports 8 data bits without parity.
    LineSettings Line() const;
    /// Closes for good: the host sees its device gone. No other operation is allowed after it.
    void Close();

private:
    short Gather(State& state);
    void ReadEvents(State& state);
    void TakeEvent(std::uint32_t mask, State& state);
    void Divide(State& state) const;

    int mMaster = -1;
    int mEvents = -1;           // what befalls the far end
    int mOpenCount = 0;         // by these events
    bool mWasEmptied = false;   // the last close left nobody
    bool mWrote = false;        // a host wrote what may not have been read yet
    bool mWroteBefore = false;  // so it was at the last close that an open followed
    bool mLookAgain = false;    // the last look saw bytes and a close
    std::string mPath;
    sigset_t mWaitMask{};
};

}  // namespace vantor
