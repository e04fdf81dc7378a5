// The text of a time stamp at the start of a line, for the view and for capture files.
#pragma once

#include <cstdint>
#include <string>

#include "terminal/options/TerminalOptions.hpp"

namespace vantor {

/// "HH:MM:SS.mmm " or, since the previous line, "+S.mmm "; empty for `Off`. Times are local, in
/// milliseconds as of Clock::LocalMilliseconds: when the first byte of the line and of the line
/// before it arrived. The first line has its own time as `previousMs`. A clock that was set back
/// gives "+0.000 ".
std::string StampText(TimeStamps kind, std::int64_t timeMs, std::int64_t previousMs);

}  // namespace vantor
