// tsflash: the flash session as a command-line tool.
#pragma once

#include "console/ExitStatus.hpp"
#include "platform/NativePlatform.hpp"

namespace vantor {

/// Runs the program with the arguments of `native`'s process.
ExitStatus RunTsFlash(NativePlatform& native);

}  // namespace vantor
