// The character sets of a VT102: what the characters 32 to 126 show.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vantor {

enum class CharacterSet : std::uint8_t {
    Ascii,
    Uk,           ///< "£" for "#"
    LineDrawing,  ///< DEC special graphics: lines and symbols for "_" to "~"
};

/// The designated sets G0 to G3 and the one in use.
struct CharacterSets {
    std::array<CharacterSet, 4> designated{};
    std::uint8_t shift = 0;     ///< the number of the set in use
    std::uint8_t oneShift = 0;  ///< 2 or 3 for the next character only, 0 for none

    /// Replaces characters by those of the sets in use; ends a shift for one character.
    void Apply(std::span<char32_t> characters);

    friend bool operator==(const CharacterSets&, const CharacterSets&) = default;
};

}  // namespace vantor
