#include "terminal/engine/TextEncoding.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr unsigned char kDelete = 0x7F;
constexpr std::size_t kUpperHalf = 0x80;

/// The characters of code page 437 from byte 128 up.
constexpr std::u32string_view k437 =
    U"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒáíóúñÑªº¿⌐¬½¼¡«»"
    U"░▒▓│┤╡╢╖╕╣║╗╝╜╛┐└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
    U"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0";
static_assert(k437.size() == kUpperHalf);

/// Those of code page 1252 where it differs from Latin-1: from 128 to 159. Undefined bytes are the
/// control characters of the same number, as on Windows.
constexpr std::u32string_view k1252 = U"€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸ";
static_assert(k1252.size() == 0x20);

bool IsControl(unsigned char byte) {
    return byte < ' ' || byte == kDelete;
}

/// The character of one byte of the system's code page. The first byte of a pair in a double-byte
/// code page has none.
char32_t SystemCharacter(const CodePage& system, char byte) {
    const std::string utf8 = system.FromAnsi({&byte, 1});
    std::string_view rest = utf8;
    const char32_t character = rest.empty() ? 0 : TakeCodePoint(rest);
    return character < ' ' ? kReplacementCharacter : character;
}

}  // namespace

TextEncoding::TextEncoding() {
    std::iota(mCharacters.begin(), mCharacters.end(), char32_t{0});
}

TextEncoding::TextEncoding(LineEncoding encoding, const CodePage& system) : TextEncoding() {
    mKind = encoding;
    if (encoding == LineEncoding::Cp437) std::ranges::copy(k437, mCharacters.begin() + kUpperHalf);
    if (encoding == LineEncoding::Windows1252)
        std::ranges::copy(k1252, mCharacters.begin() + kUpperHalf);
    if (encoding != LineEncoding::System) return;
    for (std::size_t byte = kUpperHalf; byte < mCharacters.size(); ++byte)
        mCharacters[byte] = SystemCharacter(system, static_cast<char>(byte));
}

std::optional<char> TextEncoding::Byte(char32_t character) const {
    const auto* const found = std::ranges::find(mCharacters, character);
    if (found == mCharacters.end() || character == kReplacementCharacter) return {};
    return static_cast<char>(found - mCharacters.begin());
}

std::optional<std::string> TextEncoding::Encode(std::string_view utf8) const {
    if (mKind == LineEncoding::Utf8) return std::string(utf8);
    std::string bytes;
    bytes.reserve(utf8.size());
    while (!utf8.empty()) {
        const std::optional<char> byte = Byte(TakeCodePoint(utf8));
        if (!byte) return {};
        bytes += *byte;
    }
    return bytes;
}

std::string_view TextEncoding::FirstMissing(std::string_view utf8) const {
    if (mKind == LineEncoding::Utf8) return {};
    while (!utf8.empty()) {
        const std::string_view first = FirstCharacter(utf8);
        if (!Byte(TakeCodePoint(utf8))) return first;
    }
    return {};
}

void TextDecoder::Encoding(TextEncoding encoding) {
    mEncoding = encoding;
    Reset();
}

bool TextDecoder::Interrupt() {
    return std::exchange(mMissing, 0) > 0;
}

TextDecoder::Decoded TextDecoder::Decode(std::string_view bytes, std::span<char32_t> into) {
    const bool isUtf8 = mEncoding.Kind() == LineEncoding::Utf8;
    Decoded done;
    while (done.bytes < bytes.size() && done.characters + 2 <= into.size()) {
        const auto byte = static_cast<unsigned char>(bytes[done.bytes]);
        if (IsControl(byte)) break;
        if (isUtf8)
            done.characters += TakeUtf8(byte, into.subspan(done.characters).first<2>());
        else
            into[done.characters++] = mEncoding.Character(byte);
        ++done.bytes;
    }
    return done;
}

/// Returns the number of characters that `byte` completes: a broken one and its own.
std::size_t TextDecoder::TakeUtf8(unsigned char byte, std::span<char32_t, 2> into) {
    if (mMissing == 0) return StartUtf8(byte, into[0]);
    if (byte < mLowest || byte > mHighest) {
        mMissing = 0;
        into[0] = kReplacementCharacter;
        return 1 + StartUtf8(byte, into[1]);
    }
    mLowest = 0x80;
    mHighest = 0xBF;
    mPartial = mPartial << 6u | (byte & 0x3Fu);
    if (--mMissing > 0) return 0;
    into[0] = mPartial;
    return mPartial < 0xA0 ? 0 : 1;
}

std::size_t TextDecoder::StartUtf8(unsigned char byte, char32_t& into) {
    if (byte >= 0xC2 && byte <= 0xF4) {
        mMissing = byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        mPartial = byte & (0x3Fu >> mMissing);
        // Excludes overlong forms, surrogates and numbers beyond U+10FFFF.
        mLowest = byte == 0xE0 ? 0xA0 : byte == 0xF0 ? 0x90 : 0x80;
        mHighest = byte == 0xED ? 0x9F : byte == 0xF4 ? 0x8F : 0xBF;
        return 0;
    }
    into = byte < 0x80 ? byte : kReplacementCharacter;
    return 1;
}

}  // namespace vantor
