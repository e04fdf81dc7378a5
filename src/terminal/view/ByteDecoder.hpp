// Turns received bytes into the characters that show them, each by itself: unlike `TextDecoder`, it
// can start anywhere and says how many bytes a character has.
#pragma once

#include <cstddef>
#include <string_view>

#include "terminal/engine/TextEncoding.hpp"

namespace vantor {

class ByteDecoder {
public:
    ByteDecoder() = default;
    explicit ByteDecoder(const TextEncoding& encoding) : mEncoding(encoding) {}

    struct Character {
        char32_t codePoint;
        std::size_t bytes;  ///< 0 for the start of a sequence whose end is missing
    };
    /// The first character of `bytes`, which is not empty. A byte that is no character, or in UTF-8
    /// a part of a control character, gives U+FFFD.
    Character First(std::string_view bytes) const;

    /// The character of a byte by itself, 0 when it has none that can be shown.
    char32_t Shown(char byte) const;

    bool SameAs(const ByteDecoder& other) const {
        return mEncoding.Kind() == other.mEncoding.Kind();
    }

private:
    bool Utf8() const { return mEncoding.Kind() == LineEncoding::Utf8; }

    TextEncoding mEncoding;
};

/// True for control characters and for U+FFFD: what has no picture of its own.
bool IsControl(char32_t codePoint);

}  // namespace vantor
