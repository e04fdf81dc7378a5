// The Windows shell.
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"
// Requires the types of <windows.h>.
#include <shellapi.h>

namespace vantor {
namespace {

/// The shell returns its codes as instance handles, for compatibility with 16-bit Windows.
std::int32_t CodeOf(HINSTANCE instance) {
    return static_cast<std::int32_t>(reinterpret_cast<INT_PTR>(instance));
}

class Win32Shell : public Shell {
public:
    std::int32_t Execute(const ShellRequest& request) override {
        // Windows would open the current folder.
        if (request.file.empty()) return SE_ERR_FNF;
        return CodeOf(ShellExecuteW(reinterpret_cast<HWND>(request.owner),
                                    OrNull(ToWide(request.verb)), ToWide(request.file).c_str(),
                                    OrNull(ToWide(request.parameters)),
                                    OrNull(ToWide(request.folder)), request.show));
    }

    std::int32_t Start(const ShellRequest& request, ShellProcess& process) override {
        process = 0;
        if (request.file.empty()) return SE_ERR_FNF;
        const std::wstring verb = ToWide(request.verb);
        const std::wstring file = ToWide(request.file);
        const std::wstring parameters = ToWide(request.parameters);
        const std::wstring folder = ToWide(request.folder);
        SHELLEXECUTEINFOW record{};
        record.cbSize = sizeof record;
        record.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_DOENVSUBST;
        record.hwnd = reinterpret_cast<HWND>(request.owner);
        record.lpVerb = OrNull(verb);
        record.lpFile = file.c_str();
        record.lpParameters = OrNull(parameters);
        record.lpDirectory = OrNull(folder);
        record.nShow = request.show;
        ShellExecuteExW(&record);  // an error is reported in `hInstApp`
        process = reinterpret_cast<ShellProcess>(record.hProcess);
        return CodeOf(record.hInstApp);
    }

    bool IsActive(ShellProcess process) const override {
        DWORD code = 0;
        return GetExitCodeProcess(reinterpret_cast<HANDLE>(process), &code) != 0 &&
               code == STILL_ACTIVE;
    }

    void Release(ShellProcess process) override {
        if (process != 0) CloseHandle(reinterpret_cast<HANDLE>(process));
    }
};

}  // namespace

std::unique_ptr<Shell> MakeWin32Shell() {
    return std::make_unique<Win32Shell>();
}

}  // namespace vantor
