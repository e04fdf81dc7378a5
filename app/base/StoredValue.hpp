// Reading and writing one registry value as text, with the system's own calls in their order.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/Registry.hpp"

namespace vantor {

class CodePage;

/// What a value reads as: nothing (missing, or of another type), a text, or a number.
using StoredValue = std::variant<std::monostate, std::string, std::uint32_t>;

/// Opens the key with `access`, queries type and size, then the value, and closes the key. Texts
/// are UTF-8 here and 8-bit in the registry; a string loses its terminating NUL.
StoredValue ReadStoredValue(Registry& registry, const CodePage& codePage, RegistryRoot root,
                            const std::string& path, const std::string& name, std::uint32_t access);

/// Creates or opens the key with `access` and sets the value to `text`, terminating NUL included,
/// as `type`. Failures of the registry are silent.
void WriteStoredText(Registry& registry, const CodePage& codePage, RegistryRoot root,
                     const std::string& path, const std::string& name, const std::string& text,
                     std::uint32_t type, std::uint32_t access = kRegistryAllButOwner);

}  // namespace vantor
