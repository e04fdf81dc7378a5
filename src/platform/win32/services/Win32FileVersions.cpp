#include "platform/win32/services/Win32FileVersions.hpp"

#include "platform/win32/services/Windows.hpp"

#include <winver.h>

namespace vantor {

std::uint32_t Win32FileVersions::BlockSize(const std::string& path) const {
    DWORD unused = 0;
    return GetFileVersionInfoSizeW(ToWide(path).c_str(), &unused);
}

bool Win32FileVersions::ReadBlock(const std::string& path, std::vector<char>& block) const {
    return GetFileVersionInfoW(ToWide(path).c_str(), 0, static_cast<DWORD>(block.size()),
                               block.data()) != 0;
}

bool Win32FileVersions::QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                                         std::uint16_t& codePage) const {
    void* value = nullptr;
    UINT bytes = 0;
    if (VerQueryValueW(block.data(), L"\\VarFileInfo\\Translation", &value, &bytes) == 0 ||
        bytes < 2 * sizeof(WORD))
        return false;
    const auto* const words = static_cast<const WORD*>(value);
    language = words[0];
    codePage = words[1];
    return true;
}

bool Win32FileVersions::QueryString(const std::vector<char>& block, const std::string& subBlock,
                                    std::string& value) const {
    void* text = nullptr;
    UINT characters = 0;
    if (VerQueryValueW(block.data(), ToWide(subBlock).c_str(), &text, &characters) == 0)
        return false;
    value = ToUtf8({static_cast<const wchar_t*>(text), characters});
    return true;
}

}  // namespace vantor
