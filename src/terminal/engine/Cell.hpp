// One character position of a terminal: a character with its colours and other attributes.
#pragma once

#include <cstdint>

namespace vantor {

/// The default colour of the view, instead of one of the 256: 0 to 7 black, red, green, yellow,
/// blue, magenta, cyan, white; 8 to 15 the bright ones in the same order; 16 to 231 a cube of
/// 6 x 6 x 6 colours; 232 to 255 greys.
inline constexpr std::uint16_t kDefaultColour = 256;

/// Attributes of a cell besides its colours; combined in a cell's `flags`.
enum CellFlag : std::uint8_t {
    kBold = 1,
    kUnderlined = 2,
    kBlinking = 4,
    kReversed = 8,
    kConcealed = 16,
    kFaint = 32,
    kItalic = 64,
    kStruckOut = 128,
};

/// A Unicode character, already decoded and mapped through its character set. A screen holds many
/// cells, so they are packed into 8 bytes.
struct Cell {
    char32_t character = U' ';
    std::uint32_t foreground : 9 = kDefaultColour;
    std::uint32_t background : 9 = kDefaultColour;
    std::uint32_t flags : 8 = 0;

    friend bool operator==(const Cell&, const Cell&) = default;
};
static_assert(sizeof(Cell) == 8);

}  // namespace vantor
