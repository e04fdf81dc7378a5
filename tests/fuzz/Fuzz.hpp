// Interface and helpers of the fuzz targets.
#pragma once

#include <cstdlib>
#include <string_view>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

/// Called once per input of `target` in the same process; global state carries over to the next
/// call.
void Fuzz(std::string_view target, std::string_view input);

/// Asserts an invariant of the code under test; a failure counts as a crash.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// Runs `body`; returns false if it raises RuntimeError. Any other exception counts as a crash.
template <typename Body>
bool Accepts(Body&& body) {
    try {
        body();
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

/// Removes and returns the first `count` bytes of `input`, or all if there are fewer.
inline std::string_view Take(std::string_view& input, std::size_t count) {
    const std::string_view taken = input.substr(0, count);
    input.remove_prefix(taken.size());
    return taken;
}

/// Removes and returns the first byte of `input`, 0 if empty.
inline unsigned TakeByte(std::string_view& input) {
    const std::string_view taken = Take(input, 1);
    return taken.empty() ? 0 : static_cast<unsigned char>(taken.front());
}

/// Removes and returns the first line of `input`, without its line feed.
inline std::string_view TakeLine(std::string_view& input) {
    const std::string_view line = Take(input, input.find('\n'));
    Take(input, 1);
    return line;
}

}  // namespace vantor
