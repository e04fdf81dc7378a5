// Lines of the registry's text export format (REGEDIT4): one key or one value at a time.
// It knows nothing of the tree that they make up, nor of files.
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

/// `path` without its empty parts, cut at the first NUL as the system's 8-bit calls do.
std::vector<std::string> SplitRegistryPath(std::string_view path);

/// "[HKEY_CURRENT_USER\Software]", printable ASCII only: any other byte of a name, and "%",
/// becomes "%" and two hexadecimal digits.
std::string WriteKeyLine(const RegistryPath& path);

/// `"name"="text"`, `dword:`, `hex:` or `hex(type):`, printable ASCII only. Any other byte of a
/// name becomes "\x" and two hexadecimal digits, which the format itself has no form for.
std::string WriteValueLine(const RegistryValue& value);

/// Nothing when the line names no key of a known root.
std::optional<RegistryPath> ReadKeyLine(std::string_view line);

/// Nothing when any part of the line is damaged; half a value is worse than none.
std::optional<RegistryValue> ReadValueLine(std::string_view line);

/// Takes the next line off `text`, blanks at both ends stripped and the parts of a wrapped list
/// of bytes put together. Lines that cannot be parts of such a list are never swallowed.
std::string TakeRegistryLine(std::string_view& text);

}  // namespace vantor
