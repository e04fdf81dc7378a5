// The boot monitor's side of the dialogue: which line it answers with what, what that does to
// flash memory, and at which speed it listens. Has no notion of time, bytes or faults.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "simulator/FlashMemory.hpp"

namespace vantor {

enum class Answer : std::uint8_t { None, Ok, Refused, Done, VerifyFailed };

/// The answer as it goes out, CR LF included; empty for `None`.
std::string_view AnswerText(Answer answer);

class BootMonitor {
public:
    enum class Phase : std::uint8_t {
        Idle,      ///< nothing but TRAV is understood
        Ready,     ///< after TRAV: BAUD and SYSLOAD are understood
        Image,     ///< after SYSLOAD: each line is a record
        Writing,   ///< after the end record, until `FinishWriting`
        Verified,  ///< after the verdict "DONE": only BOOT is understood
    };

    /// Starts at `firstSpeed` bit/s. The verdict "DONE" requires memory equal to `expected`;
    /// unset, any image that was ended.
    BootMonitor(std::uint32_t firstSpeed, std::optional<FlashMemory> expected);

    /// Acts on a line, given without its CR. A blank line is no command and gets no answer.
    /// After an accepted BAUD `BitsPerSecond` is the new speed, while the answer is still due at
    /// the old one.
    Answer TakeLine(std::string_view line);

    /// Ends `Writing` with the verdict: `Verified` after "DONE", `Ready` after "VERIFY FAILED",
    /// which `fail` enforces.
    Answer FinishWriting(bool fail);

    /// Starts anew: `Idle` at the first speed. Memory stays, as flash memory does.
    void PowerCycle();

    Phase CurrentPhase() const { return mPhase; }
    std::uint32_t BitsPerSecond() const { return mBitsPerSecond; }
    /// BAUD was the last command heard: the host is expected back at the new speed.
    bool AwaitsNewSpeed() const { return mAwaitsNewSpeed; }
    /// A command came, whether or not it was passed to `TakeLine`.
    void HeardHost() { mAwaitsNewSpeed = false; }
    const FlashMemory& Memory() const { return mMemory; }

private:
    Answer TakeCommand(std::string_view line);
    Answer ChangeSpeed(std::string_view digits);
    Answer TakeRecord(std::string_view line);

    std::uint32_t mFirstSpeed;
    std::optional<FlashMemory> mExpected;
    FlashMemory mMemory;
    Phase mPhase = Phase::Idle;
    std::uint32_t mBitsPerSecond;
    bool mAwaitsNewSpeed = false;
};

}  // namespace vantor
