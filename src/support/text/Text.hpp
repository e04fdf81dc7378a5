// Text functions for every module: case, blanks, numbers, escapes, and the parts of a path.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantor {

/// `text` without leading and trailing spaces (character 32 only).
std::string_view TrimBlanks(std::string_view text);

/// `text` with ASCII letters in upper case.
std::string UpperCase(std::string_view text);

/// Equal except for the case of ASCII letters.
bool SameText(std::string_view a, std::string_view b);

/// All of `text` as a decimal integer, with an optional minus sign; empty for anything else.
std::optional<std::int64_t> ParseInteger(std::string_view text);

/// Two hexadecimal digits in upper case.
std::string HexDigits(std::uint8_t byte);

/// `bytes` in readable form: printable ASCII unchanged, the backslash as \\, those of `named`
/// (a selection of "\r\n\t") as \r, \n, \t, all others as \xHH.
std::string Escaped(std::string_view bytes, std::string_view named);

/// The folder of `path` with its final separator, "\" or "/"; empty when there is none.
std::string_view FolderOf(std::string_view path);

/// `path` without its folder.
std::string_view FileNameOf(std::string_view path);

}  // namespace vantor
