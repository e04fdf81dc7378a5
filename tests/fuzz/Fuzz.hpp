// What the fuzz targets share: each of them defines `Seeds` and `Fuzz`.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "support/RuntimeError.hpp"

namespace vantor {

/// The inputs to start from: small ones that lead to every branch worth mutating.
std::vector<std::string> Seeds();

/// Called once for every input, in one process: what it leaves behind, the next one finds.
void Fuzz(std::string_view input);

/// A promise of the code under test; a broken one counts as a crash.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// Runs `body`, which may refuse its input with one of the program's own errors. True when it
/// did not; any other exception counts as a crash.
template <typename Body>
bool Accepts(Body&& body) {
    try {
        body();
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

/// Takes the first `count` bytes off `input`, or what there is of them.
inline std::string_view Take(std::string_view& input, std::size_t count) {
    const std::string_view taken = input.substr(0, count);
    input.remove_prefix(taken.size());
    return taken;
}

/// Takes one byte off `input`, 0 when there is none: for the choices that an input makes.
inline unsigned TakeByte(std::string_view& input) {
    const std::string_view taken = Take(input, 1);
    return taken.empty() ? 0 : static_cast<unsigned char>(taken.front());
}

/// Takes a line off `input`, its end not included.
inline std::string_view TakeLine(std::string_view& input) {
    const std::string_view line = Take(input, input.find('\n'));
    Take(input, 1);
    return line;
}

}  // namespace vantor
