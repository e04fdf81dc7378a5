// Updates at several ports at once, each in a process of its own, so that a driver that hangs holds
// up no other port.
#pragma once

#include <string>
#include <vector>

#include "console/ExitStatus.hpp"
#include "console/JsonView.hpp"
#include "console/Options.hpp"
#include "platform/NativePlatform.hpp"

namespace vantor {

/// Starts this program once for each of `ports` and shows what the processes tell: a row a port on
/// a terminal, else lines; their JSON with `--json`. The interrupt key goes to all. When nobody
/// reads the output any more, those that still wait for an indicator end. Returns the worst exit
/// status. `ports` are not empty. Raises nothing: a process that cannot be started has failed.
ExitStatus FlashSeveral(NativePlatform& native, const Options& options,
                        const std::vector<std::string>& ports, const JsonEvents& events);

}  // namespace vantor
