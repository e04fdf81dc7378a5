#include "terminal/view/ByteDecoder.hpp"

#include <algorithm>

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

/// The length of the sequence that `lead` starts; 1 for a byte that starts none.
std::size_t SequenceLength(unsigned char lead) {
    if (lead < 0xC2 || lead > 0xF4) return 1;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

bool ContinuesSequence(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

}  // namespace

ByteDecoder::Character ByteDecoder::First(std::string_view bytes) const {
    const auto lead = static_cast<unsigned char>(bytes.front());
    if (!Utf8()) return {mEncoding.Character(lead), 1};
    const std::size_t length = SequenceLength(lead);
    std::string_view sequence = bytes.substr(0, length);
    if (sequence.size() < length && std::ranges::all_of(sequence.substr(1), ContinuesSequence))
        return {kReplacementCharacter, 0};
    const std::size_t available = sequence.size();
    const char32_t codePoint = TakeCodePoint(sequence);
    // Of U+0080 to U+009F both bytes are shown.
    if (codePoint >= 0x80 && codePoint < 0xA0) return {kReplacementCharacter, 1};
    return {codePoint, available - sequence.size()};
}

char32_t ByteDecoder::Shown(char byte) const {
    const auto number = static_cast<unsigned char>(byte);
    if (Utf8() && number > 0x7F) return 0;
    const char32_t character = mEncoding.Character(number);
    return IsControl(character) ? 0 : character;
}

bool IsControl(char32_t codePoint) {
    return codePoint < U' ' || (codePoint >= 0x7F && codePoint < 0xA0) ||
           codePoint == kReplacementCharacter;
}

}  // namespace vantor
