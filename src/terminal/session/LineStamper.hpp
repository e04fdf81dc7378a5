// Inserts time stamps into captured bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "terminal/options/TerminalOptions.hpp"

namespace vantor {

/// Puts a stamp before the first byte of each line. A line ends with LF, or with a CR that no LF
/// follows.
class LineStamper {
public:
    /// The next byte starts a line, the first one of its text.
    void Restart() { *this = {}; }

    /// `bytes`, which have arrived at `timeMs`, with stamps of `kind`, which may change within a
    /// text. See StampText.
    std::string Stamped(TimeStamps kind, std::string_view bytes, std::int64_t timeMs);

private:
    void Pass(char byte);

    bool mAtStart = true;
    bool mAfterReturn = false;
    bool mStamped = false;         // a line of this text
    std::int64_t mPreviousMs = 0;  // of the last stamped line
};

}  // namespace vantor
