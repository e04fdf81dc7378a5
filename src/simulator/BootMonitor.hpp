// Protocol state machine of the boot monitor: the reply to each line, its effect on flash memory,
// and the current line speed. Does not model time, single bytes or faults.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "simulator/FlashMemory.hpp"

namespace vantor {

enum class Answer : std::uint8_t { None, Ok, Refused, Done, VerifyFailed };

/// The reply as transmitted, CR LF included; empty for `None`.
std::string_view AnswerText(Answer answer);

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
    Answer TakeLine(std::string_view line);

    /// Ends `Writing` with the verdict: `Verified` after "DONE", `Ready` after "VERIFY FAILED".
    /// `fail` forces the latter.
    Answer FinishWriting(bool fail);

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
    Answer TakeCommand(std::string_view line);
    Answer ChangeSpeed(std::string_view digits);
    Answer TakeRecord(std::string_view line);

    std::uint32_t mFirstSpeed;
    std::optional<FlashMemory> mExpected;
    FlashMemory mMemory;
    State mState = State::Idle;
    std::uint32_t mBitsPerSecond;
    bool mAwaitsNewSpeed = false;
};

}  // namespace vantor
