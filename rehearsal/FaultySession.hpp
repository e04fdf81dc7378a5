// One flash session with things going wrong in it, on virtual time, and the judgement on it: what
// the program did is compared with what it was sent, byte for byte. Chooses no faults itself.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "flash/FlashSession.hpp"
#include "platform/headless/FaultyLine.hpp"
#include "simulator/Fault.hpp"

namespace vantor {

/// The phases of a session, each beginning just before its first byte is sent.
enum class Phase : std::uint8_t {
    Opening,
    WakeUp,
    Trav,
    Baud,
    Reopened,  ///< closed after BAUD, not yet open at the new speed
    Sysload,
    FirstLine,
    MiddleLine,
    LateLine,  ///< one of the last eleven
    LastLine,
    Verdict,  ///< the last line is acknowledged, the status window is up
    Boot,
};
inline constexpr std::array<const char*, 12> kPhaseNames = {
    "opening",    "wake-up",     "TRAV",        "BAUD",      "reopened", "SYSLOAD",
    "first line", "middle line", "last eleven", "last line", "verdict",  "BOOT"};

std::string OutcomeName(FlashOutcome outcome);

/// The user presses the abort button, or closes the window.
struct UserAct {
    bool close = false;
    std::uint32_t afterMs = 1;  ///< from the beginning of the phase; 1 or more
};

struct Mishap {
    Phase phase = Phase::Opening;
    /// A line fault's `byte` counts from the beginning of the phase.
    std::variant<LineFault, Fault, UserAct> what;
};

struct Plan {
    std::vector<Mishap> mishaps;
    std::int64_t thinkUs = 0;
    std::int64_t writeFlashUs = 1'000'000;
    bool compares = true;  ///< the indicator says DONE only when its memory is the image's
};

struct Verdict {
    FlashOutcome outcome = FlashOutcome::None;
    bool gone = false;        ///< the window was closed
    bool memoryWhole = true;  ///< the indicator holds exactly the image
    std::string violation;    ///< empty when everything held
};

/// Runs `plan` on a window of its own and then, when the window is still there, an undisturbed
/// session, which must succeed.
Verdict RunSession(const Plan& plan);

}  // namespace vantor
