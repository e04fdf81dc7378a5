// The user's folders as the shell reports them, with "\". Creates none.
#include <array>

#include "platform/win32/services/Win32Services.hpp"
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

class Win32Folders : public Folders {
public:
    std::string ApplicationData() const override { return ShellFolder(CSIDL_APPDATA); }
    std::string PersonalDocuments() const override { return ShellFolder(CSIDL_PERSONAL); }
    std::string Current() const override { return ToUtf8(CurrentFolder()); }
};

}  // namespace

std::unique_ptr<Folders> MakeWin32Folders() {
    return std::make_unique<Win32Folders>();
}

}  // namespace vantor
