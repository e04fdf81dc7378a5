#include "app/base/StoredValue.hpp"

#include <array>

#include "platform/CodePage.hpp"

namespace vantor {
namespace {

/// Closes an open key on destruction. A failed close is ignored.
class KeyCloser {
public:
    KeyCloser(Registry& registry, RegistryKey key) : mRegistry(registry), mKey(key) {}
    ~KeyCloser() { static_cast<void>(mRegistry.CloseKey(mKey)); }
    KeyCloser(const KeyCloser&) = delete;
    KeyCloser& operator=(const KeyCloser&) = delete;

private:
    Registry& mRegistry;
    RegistryKey mKey;
};

// First the type and the size, without a buffer; then the value itself.
StoredValue QueryOpenKey(Registry& registry, const CodePage& codePage, RegistryKey key,
                         const std::string& name) {
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    if (registry.QueryValue(key, name, type, nullptr, size) != kRegistrySuccess) return {};
    if (type == kRegistryString) {
        std::string buffer(size, '\0');
        if (registry.QueryValue(key, name, type, buffer.data(), size) != kRegistrySuccess)
            return {};
        buffer.resize(size);
        if (!buffer.empty() && buffer.back() == '\0') buffer.pop_back();
        return codePage.FromAnsi(buffer);
    }
    if (type == kRegistryDword) {
        std::array<char, 4> bytes{};
        size = static_cast<std::uint32_t>(bytes.size());
        if (registry.QueryValue(key, name, type, bytes.data(), size) != kRegistrySuccess) return {};
        std::uint32_t number = 0;
        for (std::size_t i = bytes.size(); i-- > 0;)
            number = number << 8 | static_cast<unsigned char>(bytes[i]);
        return number;
    }
    return {};
}

}  // namespace

StoredValue ReadStoredValue(Registry& registry, const CodePage& codePage, RegistryRoot root,
                            const std::string& path, const std::string& name,
                            std::uint32_t access) {
    RegistryKey key = 0;
    if (registry.OpenKey(root, codePage.ToAnsi(path), access, key) != kRegistrySuccess) return {};
    const KeyCloser closer(registry, key);
    return QueryOpenKey(registry, codePage, key, codePage.ToAnsi(name));
}

void WriteStoredText(Registry& registry, const CodePage& codePage, RegistryRoot root,
                     const std::string& path, const std::string& name, const std::string& text,
                     std::uint32_t type, std::uint32_t access) {
    RegistryKey key = 0;
    if (registry.CreateKey(root, codePage.ToAnsi(path), access, key) != kRegistrySuccess) return;
    const KeyCloser closer(registry, key);
    std::string bytes = codePage.ToAnsi(text);
    bytes += '\0';
    // A failed write is silent: the program continues with the value in memory.
    static_cast<void>(registry.SetValue(key, codePage.ToAnsi(name), type, bytes));
}

}  // namespace vantor
