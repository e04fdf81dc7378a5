// Single lines of the registry's text export format (REGEDIT4): one key or one value at a time.
// It does not handle the tree that they form, nor files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.hpp"

namespace vantor {

struct RegistryValue {
    std::string name;  ///< empty: the key's default value
    std::uint32_t type = kRegistryString;
    std::string bytes;  ///< as stored, a string's terminating NUL included
};

struct RegistryPath {
    RegistryRoot root = RegistryRoot::CurrentUser;
    std::vector<std::string> parts;
};

/// The non-empty parts of `path`, which is cut at the first NUL as by the 8-bit Win32 calls.
std::vector<std::string> SplitRegistryPath(std::string_view path);

/// "[HKEY_CURRENT_USER\Software]", printable ASCII only: any other byte of a name, and "%",
/// becomes "%" and two hexadecimal digits.
std::string WriteKeyLine(const RegistryPath& path);

/// `"name"="text"`, `dword:`, `hex:` or `hex(type):`, printable ASCII only.
/// Any other byte of a name becomes "\x" and two hexadecimal digits, an extension of the format.
std::string WriteValueLine(const RegistryValue& value);

/// Empty when the line names no key of a known root.
std::optional<RegistryPath> ReadKeyLine(std::string_view line);

/// Empty when any part of the line is damaged; a partial value is worse than none.
std::optional<RegistryValue> ReadValueLine(std::string_view line);

/// Removes the next line from `text` and returns it trimmed, with the parts of a wrapped byte list
/// joined. Lines that cannot continue such a list are never consumed.
std::string TakeRegistryLine(std::string_view& text);

}  // namespace vantor
