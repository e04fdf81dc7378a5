// Protocol state machine of the boot monitor: the reply to each line, its effect on flash memory,
// and the current line speed. Does not model time, single bytes or faults.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "simulator/FlashMemory.hpp"

namespace vantor {

/// The replies as transmitted. No reply is an empty text.
inline constexpr std::string_view kReplyOk = "OK\r\n";
inline constexpr std::string_view kReplyRefused = "??\r\n";
inline constexpr std::string_view kReplyDone = "DONE\r\n";
inline constexpr std::string_view kReplyVerifyFailed = "VERIFY FAILED\r\n";

class BootMonitor {
public:
    enum class State : std::uint8_t {
        Idle,      ///< accepts TRAV only
        Ready,     ///< after TRAV: accepts BAUD and SYSLOAD too
        Image,     ///< after SYSLOAD: each line is a record
        Writing,   ///< after the end record, until `FinishWriting`
        Verified,  ///< after the verdict "DONE": accepts BOOT only
    };

    /// Starts at `firstSpeed` bit/s. The verdict "DONE" requires memory equal to `expected`; if
    /// unset, any image with an end record passes.
    BootMonitor(std::uint32_t firstSpeed, std::optional<FlashMemory> expected);

    /// Processes a line, given without its CR. A blank line is ignored and gets no reply.
    /// After an accepted BAUD `BitsPerSecond` returns the new speed; the caller sends the reply at
    /// the old one.
    std::string_view TakeLine(std::string_view line);

    /// Ends `Writing` with the verdict: `Verified` after "DONE", `Ready` after "VERIFY FAILED".
    /// `fail` forces the latter.
    std::string_view FinishWriting(bool fail);

    /// Resets to `Idle` at the first speed. Flash memory keeps its contents.
    void PowerCycle();

    State CurrentState() const { return mState; }
    std::uint32_t BitsPerSecond() const { return mBitsPerSecond; }
    /// True after an accepted BAUD until the next command: the host is to reopen at the new speed.
    bool AwaitsNewSpeed() const { return mAwaitsNewSpeed; }
    /// Call for a command that is not passed to `TakeLine`.
    void HeardHost() { mAwaitsNewSpeed = false; }
    const FlashMemory& Memory() const { return mMemory; }

private:
    std::string_view TakeCommand(std::string_view line);
    std::string_view ChangeSpeed(std::string_view digits);
    std::string_view TakeRecord(std::string_view line);

    std::uint32_t mFirstSpeed;
    std::optional<FlashMemory> mExpected;
    FlashMemory mMemory;
    State mState = State::Idle;
    std::uint32_t mBitsPerSecond;
    bool mAwaitsNewSpeed = false;
};

}  // namespace vantor
