// Lines of the registry's text export format, written as version 4 (REGEDIT4): one key or one value
// at a time. RegistryExport reads the format.
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

struct RegistryKeyPath {
    RegistryRoot root = RegistryRoot::CurrentUser;
    std::vector<std::string> parts;
};

/// The non-empty parts of `path`, which is cut at the first NUL as by the 8-bit Win32 calls.
std::vector<std::string> SplitRegistryPath(std::string_view path);

/// "[HKEY_CURRENT_USER\Software]", printable ASCII only: any other byte of a name, "%" and "]"
/// become "%" and two hexadecimal digits.
std::string WriteKeyLine(const RegistryKeyPath& path);

/// `"name"="text"`, `dword:`, `hex:` or `hex(type):`, printable ASCII only.
/// Any other byte of a name becomes "\x" and two hexadecimal digits, an extension of the format.
std::string WriteValueLine(const RegistryValue& value);

}  // namespace vantor
