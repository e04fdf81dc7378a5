// The character encoding of a serial line: what received bytes mean, and which bytes are sent for
// typed characters.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/CodePage.hpp"

namespace vantor {

enum class LineEncoding : std::uint8_t {
    System,       ///< the system's ANSI code page
    Cp437,        ///< code page 437, the letters and lines of MS-DOS
    Windows1252,  ///< code page 1252
    Latin1,       ///< ISO 8859-1
    Utf8,
};

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// A table of the 256 characters of an 8-bit encoding, or UTF-8. In an 8-bit encoding the bytes
/// 128 to 159 are characters, not controls.
class TextEncoding {
public:
    /// Latin-1, which needs no system.
    TextEncoding();
    /// Reads the table of `system` if `encoding` is System; keeps no reference to it.
    TextEncoding(LineEncoding encoding, const CodePage& system);

    LineEncoding Kind() const { return mKind; }
    /// The character of a byte from 32 up. Not for UTF-8.
    char32_t Character(unsigned char byte) const { return mCharacters[byte]; }

    /// The bytes of `utf8`, or nothing when the encoding lacks one of its characters. In the
    /// system's code page a similar character is no replacement.
    std::optional<std::string> Encode(std::string_view utf8) const;
    /// The first character of `utf8` that the encoding lacks; empty when it has all.
    std::string_view FirstMissing(std::string_view utf8) const;

private:
    std::optional<char> Byte(char32_t character) const;

    LineEncoding mKind = LineEncoding::Latin1;
    std::array<char32_t, 256> mCharacters{};
};

/// Decodes the text of a line, split anywhere. Malformed UTF-8 becomes U+FFFD, one for each longest
/// start of a valid sequence; U+0080 to U+009F in UTF-8 are ignored.
class TextDecoder {
public:
    /// Restarts: an incomplete character is discarded.
    void Encoding(TextEncoding encoding);
    void Reset() { mMissing = 0; }

    struct Decoded {
        std::size_t bytes = 0;       ///< consumed
        std::size_t characters = 0;  ///< written
    };
    /// Decodes the bytes before the first control character (below 32, and DEL), as far as their
    /// characters fit into `into`, which has room for at least two.
    Decoded Decode(std::string_view bytes, std::span<char32_t> into);

    /// Ends an incomplete character, of which U+FFFD remains to be shown. True if there was one.
    bool Interrupt();

private:
    std::size_t TakeUtf8(unsigned char byte, std::span<char32_t, 2> into);
    std::size_t StartUtf8(unsigned char byte, char32_t& into);

    TextEncoding mEncoding;
    // An incomplete UTF-8 character:
    char32_t mPartial = 0;
    int mMissing = 0;              // bytes to come
    unsigned char mLowest = 0x80;  // the next one's range
    unsigned char mHighest = 0xBF;
};

}  // namespace vantor
