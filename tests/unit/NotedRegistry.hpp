// A registry that records its calls, and fails on request.
#pragma once

#include <new>
#include <string>
#include <string_view>
#include <tuple>

#include "platform/portable/RegistryHive.hpp"

namespace vantor {

class NotedRegistry : public RegistryHive {
public:
    RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                           RegistryKey& key) override {
        return Noted({root, path, access}, RegistryHive::OpenKey(root, path, access, key));
    }
    RegistryResult CreateKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                             RegistryKey& key) override {
        return Noted({root, path, access}, RegistryHive::CreateKey(root, path, access, key));
    }
    RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                              char* data, std::uint32_t& size) override {
        if (exhausted) throw std::bad_alloc();
        return RegistryHive::QueryValue(key, name, type, data, size);
    }
    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override {
        if (exhausted) throw std::bad_alloc();
        return refuseValues ? kRegistryWriteFault : RegistryHive::SetValue(key, name, type, bytes);
    }
    RegistryResult CloseKey(RegistryKey key) override {
        --openKeys;
        return RegistryHive::CloseKey(key);
    }

    using Request = std::tuple<RegistryRoot, std::string, std::uint32_t>;
    Request asked;
    int openKeys = 0;
    bool refuseKeys = false;
    bool refuseValues = false;
    bool exhausted = false;

private:
    RegistryResult Noted(const Request& request, RegistryResult result) {
        if (refuseKeys) return kRegistryAccessDenied;
        asked = request;
        openKeys += result == kRegistrySuccess;
        return result;
    }
};

}  // namespace vantor
