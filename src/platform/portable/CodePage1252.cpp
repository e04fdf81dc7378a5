#include "platform/portable/CodePage1252.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace vantor {
namespace {

// Bytes 80 to 9F. The five undefined ones map to the control characters of the same number,
// as on Windows: scrambled values use every byte and must survive the round trip.
constexpr std::array<char32_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t kInvalid = 0xFFFFFFFF;

char32_t CodePoint(unsigned char byte) {
    return byte < 0x80 || byte > 0x9F ? byte : kUpperControls[byte - 0x80u];
}

char Byte(char32_t codePoint) {
    if (codePoint < 0x80 || (codePoint > 0x9F && codePoint <= 0xFF))
        return static_cast<char>(codePoint);
    const auto* const found = std::find(kUpperControls.begin(), kUpperControls.end(), codePoint);
    return found == kUpperControls.end()
               ? '?'
               : static_cast<char>(0x80 + (found - kUpperControls.begin()));
}

/// Decodes the code point at `at` and moves `at` past it; past one byte of invalid UTF-8.
char32_t NextCodePoint(std::string_view utf8, std::size_t& at) {
    const auto byteAt = [utf8](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const unsigned char lead = byteAt(at);
    const std::size_t start = at++;
    if (lead < 0x80) return lead;
    if (lead < 0xC2 || lead > 0xF4) return kInvalid;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (utf8.size() - start < length) return kInvalid;
    char32_t codePoint = lead & (0x7Fu >> length);
    for (std::size_t i = start + 1; i < start + length; ++i) {
        if ((byteAt(i) & 0xC0u) != 0x80u) return kInvalid;
        codePoint = codePoint << 6u | (byteAt(i) & 0x3Fu);
    }
    constexpr std::array<char32_t, 5> kShortest = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < kShortest[length] || codePoint > 0x10FFFF || surrogate) return kInvalid;
    at = start + length;
    return codePoint;
}

}  // namespace

std::string CodePage1252::ToAnsi(std::string_view utf8) const {
    std::string ansi;
    ansi.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) ansi += Byte(NextCodePoint(utf8, at));
    return ansi;
}

std::string CodePage1252::FromAnsi(std::string_view ansi) const {
    std::string utf8;
    utf8.reserve(ansi.size());
    for (const char byte : ansi) {
        // The code page has no character above U+FFFF.
        const char32_t codePoint = CodePoint(static_cast<unsigned char>(byte));
        if (codePoint < 0x80) {
            utf8 += byte;
            continue;
        }
        if (codePoint < 0x800) {
            utf8 += static_cast<char>(0xC0u | codePoint >> 6u);
        } else {
            utf8 += static_cast<char>(0xE0u | codePoint >> 12u);
            utf8 += static_cast<char>(0x80u | (codePoint >> 6u & 0x3Fu));
        }
        utf8 += static_cast<char>(0x80u | (codePoint & 0x3Fu));
    }
    return utf8;
}

}  // namespace vantor
