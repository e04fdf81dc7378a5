#include "app/base/StoredValues.hpp"

#include "platform/CodePage.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

/// Closes an open key on destruction. A failed close is ignored.
class KeyCloser {
public:
    KeyCloser(Registry& registry, RegistryKey key) : mRegistry(registry), mKey(key) {}
    ~KeyCloser() { mRegistry.CloseKey(mKey); }
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
    if (type != kRegistryString && type != kRegistryDword) return {};
    std::string bytes(type == kRegistryDword ? sizeof(std::uint32_t) : size, '\0');
    size = static_cast<std::uint32_t>(bytes.size());
    if (registry.QueryValue(key, name, type, bytes.data(), size) != kRegistrySuccess) return {};
    if (type == kRegistryDword) {
        std::uint32_t number = 0;
        for (std::size_t i = bytes.size(); i-- > 0;)
            number = number << 8 | static_cast<unsigned char>(bytes[i]);
        return number;
    }
    bytes.resize(size);
    if (bytes.ends_with('\0')) bytes.pop_back();
    return codePage.FromAnsi(bytes);
}

}  // namespace

StoredValue StoredValues::Read(RegistryRoot root, const std::string& path, const std::string& name,
                               std::uint32_t access) const {
    RegistryKey key = 0;
    if (mRegistry.OpenKey(root, mCodePage.ToAnsi(path), access, key) != kRegistrySuccess) return {};
    const KeyCloser closer(mRegistry, key);
    return QueryOpenKey(mRegistry, mCodePage, key, mCodePage.ToAnsi(name));
}

void StoredValues::Write(RegistryRoot root, const std::string& path, const std::string& name,
                         const std::string& text, std::uint32_t type, std::uint32_t access) const {
    RegistryKey key = 0;
    if (mRegistry.CreateKey(root, mCodePage.ToAnsi(path), access, key) != kRegistrySuccess) return;
    const KeyCloser closer(mRegistry, key);
    std::string bytes = mCodePage.ToAnsi(text);
    bytes += '\0';
    // The program continues with the value in memory when the write fails.
    mRegistry.SetValue(key, mCodePage.ToAnsi(name), type, bytes);
}

std::string StoredTexts::KeyPath() const {
    return SubKey.empty() ? RegistryPath : RegistryPath + "\\" + SubKey;
}

std::string StoredTexts::RegistryGetKeyValue(RegistryRoot root, const std::string& path,
                                             const std::string& name) {
    StoredValue value;
    Boxed("RegistryGetKeyValue",
          [&] { value = mValues.Read(root, path, name, kRegistryQueryValue); });
    const auto* text = std::get_if<std::string>(&value);
    return text ? *text : std::string();
}

void StoredTexts::RegistrySetKeyValue(RegistryRoot root, const std::string& path,
                                      const std::string& name, const std::string& text) {
    Boxed("RegistrySetKeyValue",
          [&] { mValues.Write(root, path, name, text, kRegistryString, kRegistryWrite); });
}

}  // namespace vantor
