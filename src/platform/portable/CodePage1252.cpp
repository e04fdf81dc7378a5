#include "platform/portable/CodePage1252.hpp"

#include <algorithm>
#include <array>

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

// Bytes 80 to 9F. The five undefined ones map to the control characters of the same number,
// as on Windows: scrambled values use every byte and must survive the round trip.
constexpr std::array<char32_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

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

}  // namespace

std::string CodePage1252::ToAnsi(std::string_view utf8) const {
    std::string ansi;
    ansi.reserve(utf8.size());
    while (!utf8.empty()) ansi += Byte(TakeCodePoint(utf8));
    return ansi;
}

std::string CodePage1252::FromAnsi(std::string_view ansi) const {
    std::string utf8;
    utf8.reserve(ansi.size());
    for (const char byte : ansi) AppendUtf8(utf8, CodePoint(static_cast<unsigned char>(byte)));
    return utf8;
}

}  // namespace vantor
