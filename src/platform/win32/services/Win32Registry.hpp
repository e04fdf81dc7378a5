// The Windows registry through its 8-bit calls: the stored format is defined on the bytes that
// those read and write. Open keys are not tracked; leaked ones are closed with the process.
#pragma once

#include "platform/Registry.hpp"

namespace vantor {

class Win32Registry : public Registry {
public:
    RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                           RegistryKey& key) override;
    RegistryResult CreateKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                             RegistryKey& key) override;
    RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                              char* data, std::uint32_t& size) override;
    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override;
    RegistryResult CloseKey(RegistryKey key) override;
};

}  // namespace vantor
