#include "settings/CProgramSettings.hpp"

#include "support/Traps.hpp"

namespace vantor {

CProgramSettings::CProgramSettings(Registry& registry, const CodePage& codePage)
    : mValues(registry, codePage) {
    BoxedSetup("Morvane.CProgramSettings.Class_Initialize", [this] {
        MainBranch = "SOFTWARE";
        Section = "Settings";
    });
}

std::string CProgramSettings::KeyPath() const {
    std::string path = MainBranch + "\\" + RegBase + "\\" + Program + "\\" + Section;
    if (path.ends_with('\\')) path.pop_back();
    return path;
}

std::string CProgramSettings::ReadEntry(const std::string& name, const std::string& fallback) {
    std::string result;
    Boxed("ReadEntry", [&] {
        const StoredValue value = GetKeyValue(RootKey, KeyPath(), name);
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

StoredValue CProgramSettings::GetKeyValue(RegistryRoot root, const std::string& path,
                                          const std::string& name) {
    StoredValue value;
    Boxed("GetKeyValue", [&] { value = mValues.Read(root, path, name, kRegistryAllButOwner); });
    return value;
}

void CProgramSettings::SetKeyValue(RegistryRoot root, const std::string& path,
                                   const std::string& name, const std::string& value,
                                   std::uint32_t type) {
    Boxed("SetKeyValue",
          [&] { mValues.Write(root, path, name, value, type, kRegistryAllButOwner); });
}

}  // namespace vantor
