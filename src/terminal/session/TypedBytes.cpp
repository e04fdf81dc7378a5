#include "terminal/session/TypedBytes.hpp"

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr std::string_view kLetters = "rntbae0\\";
constexpr std::string_view kControls("\r\n\t\b\a\x1B\0\\", kLetters.size());

std::optional<unsigned> HexValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    const char small = static_cast<char>(digit | 0x20);
    if (small >= 'a' && small <= 'f') return small - 'a' + 10;
    return std::nullopt;
}

/// The byte of the two hexadecimal digits that `text` starts with.
std::optional<char> HexByte(std::string_view text) {
    if (text.size() < 2) return std::nullopt;
    const auto high = HexValue(text[0]);
    const auto low = HexValue(text[1]);
    if (!high || !low) return std::nullopt;
    return static_cast<char>(*high << 4u | *low);
}

/// A part of a text and the bytes that it stands for.
struct Part {
    std::size_t size;
    std::string bytes;
};

std::optional<Part> TakeHex(std::string_view text) {
    if (text.front() == ' ') return Part{1, {}};
    const auto byte = HexByte(text);
    if (!byte) return std::nullopt;
    return Part{2, {*byte}};
}

std::optional<Part> TakeEscape(std::string_view text) {
    if (text.size() < 2) return std::nullopt;
    if (text[1] == 'x') {
        const auto byte = HexByte(text.substr(2));
        if (!byte) return std::nullopt;
        return Part{4, {*byte}};
    }
    const std::size_t at = kLetters.find(text[1]);
    if (at == std::string_view::npos) return std::nullopt;
    return Part{2, {kControls[at]}};
}

std::optional<Part> TakeCharacter(std::string_view text, const TextEncoding& encoding) {
    if (text.front() == '\\') return TakeEscape(text);
    const std::string_view character = FirstCharacter(text);
    const auto bytes = encoding.Encode(character);
    if (!bytes) return std::nullopt;
    return Part{character.size(), *bytes};
}

}  // namespace

TypedBytes ParseBytes(std::string_view text, BytesForm form, const TextEncoding& encoding) {
    TypedBytes result;
    for (std::string_view rest = text; !rest.empty();) {
        const auto part = form == BytesForm::Hex ? TakeHex(rest) : TakeCharacter(rest, encoding);
        if (!part) return {{}, CharacterCount(text.substr(0, text.size() - rest.size())) + 1};
        result.bytes += part->bytes;
        rest.remove_prefix(part->size);
    }
    return result;
}

}  // namespace vantor
