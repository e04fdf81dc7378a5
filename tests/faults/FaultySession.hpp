// Runs one flash session with given faults and acts of the user on virtual time. Does not choose
// them; `Judge` decides whether the program reacted as it must.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "flash/FlashSession.hpp"
#include "simulator/Fault.hpp"
#include "tests/faults/FaultyLine.hpp"

namespace vantor {

/// The stages of a session. Each but two begins just before its bytes are sent; the lines are 0, 8,
/// 18 and the last one of the image.
inline constexpr struct {
    const char* name;
    std::string_view sends = "-";
} kStages[] = {{"opening"},
               {"wake-up", " \r"},
               {"TRAV", "TRAV\r"},
               {"BAUD", "BAUD 115200\r"},
               {"reopened"},  // closed after BAUD, not yet open at the new speed
               {"SYSLOAD", "SYSLOAD\r"},
               {"first line", "S1050000AB004F\r"},
               {"middle line", "S1050010AB0837\r"},
               {"last eleven", "S1050024AB1219\r"},
               {"last line", "S9030000FC\r"},
               {"verdict", ""},  // the last line is acknowledged, the status window is open
               {"BOOT", "BOOT\r"}};
inline constexpr std::size_t kOpening = 0;
inline constexpr std::size_t kReopened = 4;
inline constexpr std::size_t kVerdict = 10;

/// The user presses the abort button, or closes the window.
struct UserAct {
    bool close = false;
    std::uint32_t afterMs = 1;  ///< since the start of the stage; 1 or more
};

struct Mishap {
    std::size_t stage = kOpening;
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

    void Require(bool holds, const std::string& otherwise) {
        if (!holds && violation.find(otherwise) == std::string::npos) violation += otherwise + "\n";
    }
};

/// Runs `plan` on a new window. If the window is still open and no rule was broken, then runs a
/// session without faults, which must succeed.
Judgement RunSession(const Plan& plan);

}  // namespace vantor
