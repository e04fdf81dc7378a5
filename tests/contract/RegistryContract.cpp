// Contract of Registry, as the settings require it.
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class RegistryContract : public Contract {
protected:
    /// Queries size and value in two calls, as the settings do, or the value with a buffer of
    /// `most` bytes: result, type, size and bytes.
    std::string Query(RegistryKey key, const std::string& name, const std::string& most) {
        std::uint32_t type = 0;
        std::uint32_t size = 0;
        RegistryResult result = registry->QueryValue(key, name, type, nullptr, size);
        std::string bytes(most.empty() ? size : std::stoul(most), '#');
        if (!most.empty()) size = static_cast<std::uint32_t>(bytes.size());
        if (result == kRegistrySuccess)
            result = registry->QueryValue(key, name, type, bytes.data(), size);
        return result == kRegistrySuccess ? Row(result, type, size, bytes) : Row(result, size);
    }
};
INSTANTIATE_CONTRACT(RegistryContract);

TEST_P(RegistryContract, DoesWhatTheTableSays) {
    constexpr auto kRoot = RegistryRoot::CurrentUser;
    const std::string path = "Software\\Contract Tests";
    std::map<std::string, RegistryKey> keys;
    using W = const Words&;
    ExpectTable(
        "contract/registry",
        {{"create",
          [&](W w) {
              return Row(
                  registry->CreateKey(kRoot, path + w.at(2), kRegistryAllButOwner, keys[w.at(1)]));
          }},
         {"open",
          [&](W w) {
              constexpr RegistryKey kUntouched = 4711;
              RegistryKey& key = keys[w.at(1)] = kUntouched;
              const auto access = static_cast<std::uint32_t>(std::stoul(w.at(2)));
              const RegistryResult result = registry->OpenKey(kRoot, path + w.at(3), access, key);
              return Row(result, key == kUntouched ? "untouched" : "set");
          }},
         {"close", [&](W w) { return Row(registry->CloseKey(keys.at(w.at(1)))); }},
         {"set",
          [&](W w) {
              const auto type = static_cast<std::uint32_t>(std::stoul(w.at(3)));
              return Row(registry->SetValue(keys.at(w.at(1)), w.at(2), type, w.at(4)));
          }},
         {"query", [&](W w) { return Query(keys.at(w.at(1)), w.at(2), w.size() > 3 ? w[3] : ""); }},
         {"restart", [&](W) { return registry = restarted(*registry), ""; }}});
}

}  // namespace vantor::contract
