// The registry through its 8-bit calls: the stored format is defined on the bytes that those read
// and write. Open keys are not tracked; leaked ones are closed with the process.
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"

namespace vantor {
namespace {

HKEY RootKey(RegistryRoot root) {
    return root == RegistryRoot::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

HKEY SystemKey(RegistryKey key) {
    return reinterpret_cast<HKEY>(key);
}

class Win32Registry : public Registry {
public:
    RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                           RegistryKey& key) override {
        HKEY opened = nullptr;
        const LSTATUS result = RegOpenKeyExA(RootKey(root), path.c_str(), 0, access, &opened);
        return Opened(result, opened, key);
    }

    RegistryResult CreateKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                             RegistryKey& key) override {
        HKEY opened = nullptr;
        const LSTATUS result = RegCreateKeyExA(RootKey(root), path.c_str(), 0, nullptr, 0, access,
                                               nullptr, &opened, nullptr);
        return Opened(result, opened, key);
    }

    RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                              char* data, std::uint32_t& size) override {
        DWORD foundType = 0;
        DWORD foundSize = size;
        const LSTATUS result = RegQueryValueExA(SystemKey(key), name.c_str(), nullptr, &foundType,
                                                reinterpret_cast<BYTE*>(data), &foundSize);
        if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) return result;
        type = foundType;
        size = foundSize;
        return result;
    }

    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override {
        return RegSetValueExA(SystemKey(key), name.c_str(), 0, type,
                              reinterpret_cast<const BYTE*>(bytes.data()),
                              static_cast<DWORD>(bytes.size()));
    }

    RegistryResult CloseKey(RegistryKey key) override { return RegCloseKey(SystemKey(key)); }

private:
    // RegOpenKeyEx clears its handle on failure; the caller's key must stay untouched.
    static RegistryResult Opened(LSTATUS result, HKEY opened, RegistryKey& key) {
        if (result == ERROR_SUCCESS) key = reinterpret_cast<RegistryKey>(opened);
        return result;
    }
};

}  // namespace

std::unique_ptr<Registry> MakeWin32Registry() {
    return std::make_unique<Win32Registry>();
}

}  // namespace vantor
