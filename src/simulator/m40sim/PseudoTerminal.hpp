// Master side of a pseudo-terminal; a host program opens the slave side like a serial port. Moves
// bytes and reports opens and closes of the slave; does not interpret the bytes.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/SerialPort.hpp"

namespace vantor {

/// Used from one thread. Blocks SIGTERM and SIGINT except within `Look` and `Wait`. No signal is
/// lost between the caller's check of its flag and the wait that follows.
/// Failed system calls throw std::system_error.
class PseudoTerminal {
public:
    /// Opens the terminal in raw mode: no echo or translation even before the first host
    /// configures it.
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// Path of the slave device.
    const std::string& Path() const { return mPath; }

    /// Events on the slave side since the last call of `Look`.
    struct State {
        bool reopened;            ///< it was closed and opened again
        std::string bytesBefore;  ///< `reopened`: bytes written before the close
        std::string bytes;        ///< bytes written (after the reopen); a close may have followed
        bool hostOpen;            ///< the slave is open, or its close is not reported yet
    };
    /// Does not block. A close is reported only after every byte written before it.
    State Look();
    /// Blocks until a host opens, writes or closes, until a signal, or for `atMost` (unset: no
    /// limit). Returns at once when the last `Look` has left a close unreported.
    void Wait(std::optional<std::chrono::microseconds> atMost) const;

    /// Sends `bytes` to the host. Bytes that do not fit its input buffer are lost.
    void Write(std::string_view bytes);
    /// The host's line parameters. A pseudo-terminal keeps speed and stop bits as the host set
    /// them, but always reports 8 data bits without parity.
    LineSettings Line() const;
    /// Closes the master; the host sees a hang-up. No other operation is allowed afterwards.
    void Close();

private:
    short Gather(State& state);
    void ReadEvents(State& state);
    void TakeEvent(std::uint32_t mask, State& state);
    void Divide(State& state) const;

    int mMaster = -1;
    int mEvents = -1;           // inotify descriptor watching the slave
    int mOpenCount = 0;         // open slave descriptors, counted from the events
    bool mWasEmptied = false;   // the last close brought the count to 0
    bool mWrote = false;        // a host wrote bytes that may still be unread
    bool mWroteBefore = false;  // `mWrote` at the last reopen
    bool mLookAgain = false;    // the last `Look` left a close unreported
    std::string mPath;
    sigset_t mWaitMask{};
};

}  // namespace vantor
