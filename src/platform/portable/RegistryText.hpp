// The text export format of the system's registry editor: reads whole files of versions 4 and 5,
// writes the lines of version 4 (REGEDIT4).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Registry.hpp"

namespace vantor {

inline constexpr std::string_view kRegistryTextHeader = "REGEDIT4";

inline constexpr std::array<std::pair<RegistryRoot, std::string_view>, 2> kRegistryRoots = {
    {{RegistryRoot::CurrentUser, "HKEY_CURRENT_USER"},
     {RegistryRoot::LocalMachine, "HKEY_LOCAL_MACHINE"}}};

// The system's own limits. They also bound the memory that a damaged file can take.
inline constexpr std::size_t kMaxRegistryName = 255;
inline constexpr std::size_t kMaxRegistryDepth = 512;

struct RegistryValue {
    std::string name;  ///< empty: the key's default value
    std::uint32_t type = kRegistryString;
    std::string bytes;  ///< as stored, a string's terminating NUL included
};

/// The names on the way to a key, that of its root first.
using RegistryPath = std::vector<std::string>;

/// The non-empty parts of `path`, which is cut at the first NUL as by the 8-bit Win32 calls.
RegistryPath SplitRegistryPath(std::string_view path);

/// A key's name as part of a key line, printable ASCII only: any other byte, "%" and "]" become "%"
/// and two hexadecimal digits.
std::string EscapedKeyName(std::string_view name);

/// `"name"="text"`, `dword:`, `hex:` or `hex(type):`, printable ASCII only.
/// Any other byte of a name becomes "\x" and two hexadecimal digits, an extension of the format.
std::string WriteValueLine(const RegistryValue& value);

/// A key with the values below its line.
struct ExportedKey {
    RegistryPath path;
    std::vector<RegistryValue> values;
};

struct RegistryExport {
    std::vector<ExportedKey> keys;  ///< in the order of the file; a key may come more than once
    std::size_t damagedLine = 0;    ///< where reading ended, from 1; 0: the whole file was read
};

/// Reads version 4 (REGEDIT4, 8-bit) and version 5 (UTF-16 or UTF-8), with or without a byte order
/// mark. Names, strings and the bytes of `hex(1)`, `hex(2)` and `hex(7)` of version 5 become 8-bit
/// text (code page 1252). Comments and blank lines are skipped; empty text is an empty export.
/// Everything else that cannot be stored counts as damage, so that writing the result loses
/// nothing: an unknown line, a value without key, another root, a character not in the code page.
RegistryExport ReadRegistryExport(std::string_view file);

}  // namespace vantor
