#include "platform/win32/services/Win32Registry.hpp"

#include <cstdint>

#include "platform/win32/services/Windows.hpp"

namespace vantor {
namespace {

HKEY RootKey(RegistryRoot root) {
    return root == RegistryRoot::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

HKEY SystemKey(RegistryKey key) {
    return reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(key));
}

RegistryKey OurKey(HKEY key) {
    return reinterpret_cast<std::uintptr_t>(key);
}

}  // namespace

// RegOpenKeyEx clears the handle on failure, so it gets a local one.
RegistryResult Win32Registry::OpenKey(RegistryRoot root, const std::string& path,
                                      std::uint32_t access, RegistryKey& key) {
    HKEY opened = nullptr;
    const LSTATUS result = RegOpenKeyExA(RootKey(root), path.c_str(), 0, access, &opened);
    if (result == ERROR_SUCCESS) key = OurKey(opened);
    return result;
}

RegistryResult Win32Registry::CreateKey(RegistryRoot root, const std::string& path,
                                        std::uint32_t access, RegistryKey& key) {
    HKEY opened = nullptr;
    const LSTATUS result = RegCreateKeyExA(RootKey(root), path.c_str(), 0, nullptr, 0, access,
                                           nullptr, &opened, nullptr);
    if (result == ERROR_SUCCESS) key = OurKey(opened);
    return result;
}

RegistryResult Win32Registry::QueryValue(RegistryKey key, const std::string& name,
                                         std::uint32_t& type, char* data, std::uint32_t& size) {
    DWORD foundType = 0;
    DWORD foundSize = size;
    const LSTATUS result = RegQueryValueExA(SystemKey(key), name.c_str(), nullptr, &foundType,
                                            reinterpret_cast<BYTE*>(data), &foundSize);
    if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) return result;
    type = foundType;
    size = foundSize;
    return result;
}

RegistryResult Win32Registry::SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                                       std::string_view bytes) {
    return RegSetValueExA(SystemKey(key), name.c_str(), 0, type,
                          reinterpret_cast<const BYTE*>(bytes.data()),
                          static_cast<DWORD>(bytes.size()));
}

RegistryResult Win32Registry::CloseKey(RegistryKey key) {
    return RegCloseKey(SystemKey(key));
}

}  // namespace vantor
