// tsflash: the flash session as a command-line tool.
#pragma once

#include <cstdint>

#include "platform/NativePlatform.hpp"

namespace vantor {

/// Exit statuses.
enum class ExitStatus : std::uint8_t {
    Done = 0,  ///< the indicator reported DONE
    /// A line refused four times, no line accepted, no verdict in time, an unexpected error.
    UpdateFailure = 1,
    Usage = 2,  ///< usage, or an image that is missing, unreadable or without lines
    PortNotOpen = 3,
    NotReady = 4,  ///< not in boot monitor, or system load refused
    VerifyFailed = 5,
    Aborted = 6,  ///< in any stage, a declined warning included
};

/// Runs the program with the arguments of `native`'s process.
ExitStatus RunTsFlash(NativePlatform& native);

}  // namespace vantor
