// The exit statuses of tsflash, and how a session's outcome becomes one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "flash/FlashSession.hpp"

namespace vantor {

class StringTable;

enum class ExitStatus : std::uint8_t {
    Done = 0,  ///< the indicator reported DONE
    /// A line refused four times, no line accepted, no verdict in time, an unexpected error.
    UpdateFailure = 1,
    Usage = 2,  ///< usage, or an image that is missing, unreadable, without lines or suspicious
    PortNotOpen = 3,
    NotReady = 4,  ///< not in boot monitor, or system load refused
    VerifyFailed = 5,
    Aborted = 6,  ///< in any stage, a declined warning included
};

ExitStatus StatusOf(FlashOutcome outcome);

/// The name of `outcome` in records and JSON: the same in every language and version.
const char* CodeOf(FlashOutcome outcome);

/// The outcome with this code for people: "done", else with its exit status.
std::string OutcomeText(std::string_view code, ExitStatus status, const StringTable& strings);

/// The worse of two exit statuses, from the worst: 5, 1, 6, 4, 3, 2, 0.
ExitStatus Worse(ExitStatus a, ExitStatus b);

}  // namespace vantor
