// Version resources through the Win32 version calls.
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"
// Requires the types of <windows.h>.
#include <winver.h>

namespace vantor {
namespace {

class Win32FileVersions : public FileVersions {
public:
    std::uint32_t BlockSize(const std::string& path) const override {
        DWORD unused = 0;
        return GetFileVersionInfoSizeW(ToWide(path).c_str(), &unused);
    }

    bool ReadBlock(const std::string& path, std::vector<char>& block) const override {
        return GetFileVersionInfoW(ToWide(path).c_str(), 0, static_cast<DWORD>(block.size()),
                                   block.data()) != 0;
    }

    bool QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                          std::uint16_t& codePage) const override {
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

    bool QueryString(const std::vector<char>& block, const std::string& subBlock,
                     std::string& value) const override {
        void* text = nullptr;
        UINT characters = 0;
        if (VerQueryValueW(block.data(), ToWide(subBlock).c_str(), &text, &characters) == 0)
            return false;
        value = ToUtf8({static_cast<const wchar_t*>(text), characters});
        return true;
    }
};

}  // namespace

std::unique_ptr<FileVersions> MakeWin32FileVersions() {
    return std::make_unique<Win32FileVersions>();
}

}  // namespace vantor
