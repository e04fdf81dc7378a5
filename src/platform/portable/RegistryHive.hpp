// An in-memory registry with Win32 semantics, and its text export and import.
// It does not persist anything and enforces no rights except the access mask a key was opened with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "platform/Registry.hpp"
#include "platform/portable/RegistryText.hpp"

namespace vantor {

/// Handles refer to a key by its path, so they stay valid across an import.
class RegistryHive : public Registry {
public:
    RegistryHive() { Clear(); }

    RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                           RegistryKey& key) override;
    RegistryResult CreateKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                             RegistryKey& key) override;
    RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                              char* data, std::uint32_t& size) override;
    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override;
    RegistryResult CloseKey(RegistryKey key) override;

    /// All keys and values in the format of the registry editor (REGEDIT4), printable ASCII and
    /// line feeds only.
    std::string Export() const;

    /// Adds the contents of an export file of either version. Returns 0, or the number of the first
    /// line that cannot be read; nothing is added then.
    std::size_t Import(std::string_view file);

    /// Removes all keys and values. Open handles stay valid.
    void Clear();

private:
    struct Node {
        std::string name;
        std::map<std::string, Node> children;         // by folded name
        std::map<std::string, RegistryValue> values;  // by folded name
    };
    struct Handle {
        RegistryPath path;
        std::uint32_t access = 0;
    };

    static void ExportKeys(const Node& node, const std::string& path, std::string& text);
    const Node* Find(const RegistryPath& path) const;
    Node* Create(const RegistryPath& path);

    Node mRoots;  // the parent of the root keys
    std::map<RegistryKey, Handle> mHandles;
    RegistryKey mLastHandle = 0;
};

}  // namespace vantor
