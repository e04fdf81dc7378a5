// Runs one flash session with given faults on virtual time and checks sends, message boxes and
// outcome against the bytes that the program received. Does not choose the faults.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "flash/FlashSession.hpp"
#include "simulator/Fault.hpp"
#include "tests/faults/FaultyLine.hpp"

namespace vantor {

/// The stages of a session. Each begins just before its first byte is sent.
enum class Stage : std::uint8_t {
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
    Verdict,  ///< the last line is acknowledged, the status window is open
    Boot,
};
inline constexpr std::array<const char*, 12> kStageNames = {
    "opening",    "wake-up",     "TRAV",        "BAUD",      "reopened", "SYSLOAD",
    "first line", "middle line", "last eleven", "last line", "verdict",  "BOOT"};

std::string OutcomeName(FlashOutcome outcome);

/// The user presses the abort button, or closes the window.
struct UserAct {
    bool close = false;
    std::uint32_t afterMs = 1;  ///< since the start of the stage; 1 or more
};

struct Mishap {
    Stage stage = Stage::Opening;
    /// `LineFault::byte` counts from the start of the stage.
    std::variant<LineFault, Fault, UserAct> what;
};

struct Plan {
    std::vector<Mishap> mishaps = {};
    std::int64_t thinkUs = 0;
    std::int64_t writeFlashUs = 1'000'000;
    bool compares = true;  ///< the indicator sends DONE only when its memory equals the image
    /// As the settings say; the program always sends two stop bits.
    LineSettings line{38400, Parity::None, 8, 2};
};

struct Judgement {
    FlashOutcome outcome = FlashOutcome::None;
    bool gone = false;        ///< the window was closed
    bool memoryWhole = true;  ///< the indicator holds exactly the image
    std::string violation;    ///< the rules broken, one per line; empty when none
};

/// Runs `plan` on a new window. If the window is still open and no rule was broken, then runs a
/// session without faults, which must succeed.
Judgement RunSession(const Plan& plan);

}  // namespace vantor
