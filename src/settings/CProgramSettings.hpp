// Named text values under one registry key.
#pragma once

#include <cstdint>
#include <string>

#include "app/base/StoredValues.hpp"

namespace vantor {

/// A store whose key consists of a root and four path parts. Registry failures are silent:
/// an unreadable value becomes the caller's default. Run-time errors are shown in a box of this
/// class. Strings are UTF-8 here and in the ANSI code page in the registry.
class CProgramSettings {
public:
    CProgramSettings(Registry& registry, const CodePage& codePage);

    RegistryRoot RootKey = RegistryRoot::LocalMachine;
    std::string MainBranch;  ///< default: "SOFTWARE"
    std::string RegBase;     ///< company
    std::string Program;
    std::string Section;  ///< default: "Settings"

    /// The value `name` as text (a DWORD in decimal); `fallback` when the key or the value
    /// is missing, has another type, or is empty. Never creates the key.
    std::string ReadEntry(const std::string& name, const std::string& fallback);

    /// Sets the value `name` to `value` as REG_SZ, creating the key when it is missing.
    void WriteEntry(const std::string& name, const std::string& value);

private:
    std::string KeyPath() const;
    StoredValue GetKeyValue(RegistryRoot root, const std::string& path, const std::string& name);
    void SetKeyValue(RegistryRoot root, const std::string& path, const std::string& name,
                     const std::string& value, std::uint32_t type);

    StoredValues mValues;
};

}  // namespace vantor
