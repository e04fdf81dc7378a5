#include "settings/CProgramSettings.hpp"

#include <array>

#include "platform/CodePage.hpp"
#include "support/RuntimeError.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

/// Closes an open key when it goes. What cannot be closed again is the system's loss.
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

}  // namespace

std::string CProgramSettings::KeyPath() const {
    std::string path = MainBranch + "\\" + RegBase + "\\" + Program + "\\" + Section;
    if (path.ends_with('\\')) path.pop_back();
    return path;
}

std::string CProgramSettings::ReadEntry(const std::string& name, const std::string& fallback) {
    std::string result;
    Boxed("ReadEntry", [&] {
        const Value value = GetKeyValue(RootKey, KeyPath(), name);
        if (const auto* text = std::get_if<std::string>(&value)) result = *text;
        if (const auto* number = std::get_if<std::uint32_t>(&value))
            result = std::to_string(static_cast<std::int32_t>(*number));
        if (result.empty()) result = fallback;
    });
    return result;
}

void CProgramSettings::WriteEntry(const std::string& name, const std::string& value) {
    Boxed("WriteEntry", [&] { SetKeyValue(RootKey, KeyPath(), name, value, kRegistryString); });
}

CProgramSettings::Value CProgramSettings::GetKeyValue(RegistryRoot root, const std::string& path,
                                                      const std::string& name) {
    Value value;
    Boxed("GetKeyValue", [&] {
        RegistryKey key = 0;
        const RegistryResult opened =
            mRegistry.OpenKey(root, mCodePage.ToAnsi(path), kRegistryAllButOwner, key);
        if (opened != kRegistrySuccess) return;
        const KeyCloser closer(mRegistry, key);
        value = QueryOpenKey(key, mCodePage.ToAnsi(name));
    });
    return value;
}

// First the type and the size, with no buffer; then the value itself.
CProgramSettings::Value CProgramSettings::QueryOpenKey(RegistryKey key, const std::string& name) {
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    if (mRegistry.QueryValue(key, name, type, nullptr, size) != kRegistrySuccess) return {};
    if (type == kRegistryString) {
        std::string buffer(size, '\0');
        if (mRegistry.QueryValue(key, name, type, buffer.data(), size) != kRegistrySuccess)
            return {};
        buffer.resize(size);
        if (!buffer.empty() && buffer.back() == '\0') buffer.pop_back();
        return mCodePage.FromAnsi(buffer);
    }
    if (type == kRegistryDword) {
        std::array<char, 4> bytes{};
        size = static_cast<std::uint32_t>(bytes.size());
        if (mRegistry.QueryValue(key, name, type, bytes.data(), size) != kRegistrySuccess)
            return {};
        std::uint32_t number = 0;
        for (std::size_t i = bytes.size(); i-- > 0;)
            number = number << 8 | static_cast<unsigned char>(bytes[i]);
        return number;
    }
    return {};
}

void CProgramSettings::SetKeyValue(RegistryRoot root, const std::string& path,
                                   const std::string& name, const std::string& value,
                                   std::uint32_t type) {
    Boxed("SetKeyValue", [&] {
        RegistryKey key = 0;
        const RegistryResult created =
            mRegistry.CreateKey(root, mCodePage.ToAnsi(path), kRegistryAllButOwner, key);
        if (created != kRegistrySuccess) return;
        const KeyCloser closer(mRegistry, key);
        std::string bytes = mCodePage.ToAnsi(value);
        bytes += '\0';
        // A failed write is silent: the program goes on with the values that it holds.
        static_cast<void>(mRegistry.SetValue(key, mCodePage.ToAnsi(name), type, bytes));
    });
}

}  // namespace vantor
