// Reads and writes single registry values as text, with the same sequence of calls as Win32 code.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "app/base/AppInfo.hpp"
#include "platform/Registry.hpp"

namespace vantor {

class CodePage;

/// The value read: nothing (missing, or of another type), a string, or a number.
using StoredValue = std::variant<std::monostate, std::string, std::uint32_t>;

/// Strings are UTF-8 here and 8-bit in the registry, with a terminating NUL. Registry failures are
/// silent. Both services must outlive the object.
class StoredValues {
public:
    StoredValues(Registry& registry, const CodePage& codePage)
        : mRegistry(registry), mCodePage(codePage) {}

    /// Opens the key with `access`, queries type and size, then the value, and closes the key.
    StoredValue Read(RegistryRoot root, const std::string& path, const std::string& name,
                     std::uint32_t access) const;

    /// Opens or creates the key with `access` and sets the value to `text`, as `type`.
    void Write(RegistryRoot root, const std::string& path, const std::string& name,
               const std::string& text, std::uint32_t type, std::uint32_t access) const;

private:
    Registry& mRegistry;
    const CodePage& mCodePage;
};

/// String values below one key of the program, for a class that stores the state of a window.
class StoredTexts {
public:
    RegistryRoot RootKey = RegistryRoot::CurrentUser;
    std::string RegistryPath = kProgramKey;
    std::string SubKey;  ///< below RegistryPath; may be empty

protected:
    StoredTexts(Registry& registry, const CodePage& codePage) : mValues(registry, codePage) {}

    /// The whole path of the key.
    std::string KeyPath() const;
    /// Empty when there is no such string. Errors of both are shown in boxes.
    std::string RegistryGetKeyValue(RegistryRoot root, const std::string& path,
                                    const std::string& name);
    void RegistrySetKeyValue(RegistryRoot root, const std::string& path, const std::string& name,
                             const std::string& text);

private:
    StoredValues mValues;
};

}  // namespace vantor
