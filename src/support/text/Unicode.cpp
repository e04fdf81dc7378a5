#include "support/text/Unicode.hpp"

#include <array>

namespace vantor {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
/// The smallest code point of a character of so many bytes.
constexpr std::array<char32_t, 5> kShortest = {0, 0, 0x80, 0x800, 0x10000};

bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The code point of the character of `length` bytes at the start of `utf8`; U+FFFD for an
/// incomplete, overlong or excluded one.
char32_t Decode(std::string_view utf8, std::size_t length) {
    if (utf8.size() < length) return kReplacement;
    char32_t point = static_cast<unsigned char>(utf8[0]) & (0x7Fu >> length);
    for (const char c : utf8.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0u) != 0x80u) return kReplacement;
        point = point << 6u | (byte & 0x3Fu);
    }
    const bool excluded = IsHighSurrogate(point) || IsLowSurrogate(point) || point > 0x10FFFF;
    return excluded || point < kShortest[length] ? kReplacement : point;
}

}  // namespace

char32_t TakeCodePoint(std::string_view& utf8) {
    const auto lead = static_cast<unsigned char>(utf8[0]);
    std::size_t length = 1;
    char32_t point = lead;
    if (lead >= 0x80) {
        length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        point = lead < 0xC2 || lead > 0xF4 ? kReplacement : Decode(utf8, length);
        // U+FFFD itself is valid.
        if (point == kReplacement && utf8.substr(0, 3) != "\xEF\xBF\xBD") length = 1;
    }
    utf8.remove_prefix(length);
    return point;
}

std::string_view FirstCharacter(std::string_view utf8) {
    std::string_view rest = utf8;
    TakeCodePoint(rest);
    return utf8.substr(0, utf8.size() - rest.size());
}

void AppendUtf8(std::string& utf8, char32_t codePoint) {
    constexpr std::array<unsigned, 4> kLeads = {0, 0xC0, 0xE0, 0xF0};
    unsigned following = 0;  // bytes after the first, with six bits each
    while (following < 3 && codePoint >= kShortest[following + 2]) ++following;
    utf8 += static_cast<char>(kLeads[following] | codePoint >> 6 * following);
    while (following > 0) utf8 += static_cast<char>(0x80u | (codePoint >> 6 * --following & 0x3Fu));
}

std::size_t CharacterCount(std::string_view utf8) {
    std::size_t count = 0;
    for (; !utf8.empty(); ++count) TakeCodePoint(utf8);
    return count;
}

std::string FixedWidth(std::string_view utf8, std::size_t width) {
    std::string text;
    for (; width > 0 && !utf8.empty(); --width) {
        text += FirstCharacter(utf8);
        TakeCodePoint(utf8);
    }
    return text + std::string(width, ' ');
}

std::u16string Utf16FromUtf8(std::string_view utf8) {
    std::u16string units;
    while (!utf8.empty()) {
        const char32_t point = TakeCodePoint(utf8);
        if (point >= 0x10000) {
            units += static_cast<char16_t>(0xD800u + ((point - 0x10000u) >> 10u));
            units += static_cast<char16_t>(0xDC00u + (point & 0x3FFu));
        } else {
            units += static_cast<char16_t>(point);
        }
    }
    return units;
}

std::string Utf8FromUtf16(std::string_view bytes, ByteOrder order) {
    const std::size_t high = order == ByteOrder::HighFirst ? 0 : 1;
    const auto unitAt = [&](std::size_t at) -> char32_t {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
        return static_cast<char32_t>(byte(at + high) << 8u | byte(at + 1 - high));
    };
    std::string utf8;
    utf8.reserve(bytes.size() / 2);
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        const char32_t unit = unitAt(at);
        const char32_t next = IsHighSurrogate(unit) && at + 3 < bytes.size() ? unitAt(at + 2) : 0;
        if (IsLowSurrogate(next)) {
            AppendUtf8(utf8, 0x10000 + ((unit - 0xD800) << 10u) + (next - 0xDC00));
            at += 2;
        } else {
            AppendUtf8(utf8, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit);
        }
    }
    if (at < bytes.size()) AppendUtf8(utf8, kReplacement);
    return utf8;
}

}  // namespace vantor
