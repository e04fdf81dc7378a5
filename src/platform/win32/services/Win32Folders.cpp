#include "platform/win32/services/Win32Folders.hpp"

#include <array>

#include "platform/win32/services/Windows.hpp"
#include "support/errors/RuntimeError.hpp"
// Requires the types of <windows.h>.
#include <shlobj.h>

namespace vantor {
namespace {

std::string ShellFolder(int which) {
    std::array<wchar_t, MAX_PATH> path{};
    if (FAILED(SHGetFolderPathW(nullptr, which, nullptr, SHGFP_TYPE_CURRENT, path.data())) ||
        path.front() == L'\0')
        throw RuntimeError(ErrorNumber::PathNotFound);
    return ToUtf8(path.data());
}

}  // namespace

std::string Win32Folders::ApplicationData() const {
    return ShellFolder(CSIDL_APPDATA);
}

std::string Win32Folders::PersonalDocuments() const {
    return ShellFolder(CSIDL_PERSONAL);
}

std::string Win32Folders::Current() const {
    std::wstring path(GetCurrentDirectoryW(0, nullptr), L'\0');  // includes the NUL
    const DWORD length = GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data());
    if (length >= path.size()) return {};
    path.resize(length);
    return ToUtf8(path);
}

}  // namespace vantor
