#include "terminal/engine/CharacterSets.hpp"

#include <string_view>
#include <utility>

namespace vantor {
namespace {

constexpr char32_t kFirstDrawing = U'_';
constexpr std::u32string_view kDrawings = U"\u00A0◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺⎻─⎼⎽├┤┴┬│≤≥π≠£·";
static_assert(kFirstDrawing + kDrawings.size() - 1 == U'~');

void Replace(std::span<char32_t> characters, CharacterSet set) {
    if (set == CharacterSet::Ascii) return;
    for (char32_t& character : characters) {
        if (set == CharacterSet::Uk && character == U'#') character = U'£';
        if (set == CharacterSet::LineDrawing && character >= kFirstDrawing && character <= U'~')
            character = kDrawings[character - kFirstDrawing];
    }
}

}  // namespace

void CharacterSets::Apply(std::span<char32_t> characters) {
    if (characters.empty()) return;
    if (const std::uint8_t one = std::exchange(oneShift, std::uint8_t{0}); one != 0) {
        Replace(characters.first(1), designated.at(one));
        characters = characters.subspan(1);
    }
    Replace(characters, designated.at(shift));
}

}  // namespace vantor
