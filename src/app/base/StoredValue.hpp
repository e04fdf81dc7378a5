// Reads and writes one registry value as text, with the same sequence of calls as Win32 code.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/Registry.hpp"

namespace vantor {

class CodePage;

/// The value read: nothing (missing, or of another type), a string, or a number.
using StoredValue = std::variant<std::monostate, std::string, std::uint32_t>;

/// Opens the key with `access`, queries type and size, then the value, and closes the key.
/// Strings are UTF-8 here and 8-bit in the registry; the terminating NUL is removed.
StoredValue ReadStoredValue(Registry& registry, const CodePage& codePage, RegistryRoot root,
                            const std::string& path, const std::string& name, std::uint32_t access);

/// Opens or creates the key with `access` and sets the value to `text`, terminating NUL included,
/// as `type`. Registry failures are silent.
void WriteStoredText(Registry& registry, const CodePage& codePage, RegistryRoot root,
                     const std::string& path, const std::string& name, const std::string& text,
                     std::uint32_t type, std::uint32_t access = kRegistryAllButOwner);

}  // namespace vantor
