// Bytes that the user writes as text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "terminal/engine/TextEncoding.hpp"

namespace vantor {

enum class BytesForm : std::uint8_t {
    Text,  ///< characters, with the escapes \r \n \t \b \a \e \0 \xNN and \\.
    Hex,   ///< pairs of hexadecimal digits, with or without spaces between them
};

/// The bytes of a text, or where it is wrong.
struct TypedBytes {
    std::string bytes;
    /// Number, from 1, of the first character that cannot be read; `bytes` is then empty.
    std::optional<std::size_t> wrongAt{};

    friend bool operator==(const TypedBytes&, const TypedBytes&) = default;
};

/// The bytes that UTF-8 `text` stands for. Characters are encoded for the line; one that `encoding`
/// lacks cannot be read. An incomplete or unknown escape is wrong at its backslash, a single
/// hexadecimal digit at the digit.
TypedBytes ParseBytes(std::string_view text, BytesForm form, const TextEncoding& encoding);

}  // namespace vantor
