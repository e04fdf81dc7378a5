// UTF-8 and UTF-16: the only code of the programs that decodes either, apart from the system's own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantor {

/// Takes the first character of `utf8`, which is not empty, and returns its code point. Invalid
/// UTF-8 gives U+FFFD, one for each byte.
char32_t TakeCodePoint(std::string_view& utf8);

/// The bytes of the first character of `utf8`, which is not empty; one byte of invalid UTF-8.
std::string_view FirstCharacter(std::string_view utf8);

void AppendUtf8(std::string& utf8, char32_t codePoint);

/// Number of characters in `utf8`.
std::size_t CharacterCount(std::string_view utf8);

/// `utf8` padded with spaces, or truncated, to exactly `width` characters.
std::string FixedWidth(std::string_view utf8, std::size_t width);

/// Invalid UTF-8 becomes U+FFFD.
std::u16string Utf16FromUtf8(std::string_view utf8);

enum class ByteOrder : std::uint8_t { LowFirst, HighFirst };

/// UTF-8 of UTF-16 text given as bytes. An unpaired surrogate and an odd last byte become U+FFFD.
std::string Utf8FromUtf16(std::string_view bytes, ByteOrder order = ByteOrder::LowFirst);

}  // namespace vantor
