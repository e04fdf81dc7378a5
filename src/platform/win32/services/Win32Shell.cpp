#include "platform/win32/services/Win32Shell.hpp"

#include "platform/win32/services/Windows.hpp"

#include <shellapi.h>

namespace vantor {
namespace {

/// The wide strings of a request; valid as long as this object.
struct WideRequest {
    explicit WideRequest(const ShellRequest& request)
        : owner(reinterpret_cast<HWND>(request.owner)),
          verb(ToWide(request.verb)),
          file(ToWide(request.file)),
          parameters(ToWide(request.parameters)),
          folder(ToWide(request.folder)) {}

    static const wchar_t* OrNull(const std::wstring& text) {
        return text.empty() ? nullptr : text.c_str();
    }

    HWND owner;
    std::wstring verb;
    std::wstring file;
    std::wstring parameters;
    std::wstring folder;
};

/// The shell returns its codes as instance handles, for compatibility with 16-bit Windows.
std::int32_t CodeOf(HINSTANCE instance) {
    return static_cast<std::int32_t>(reinterpret_cast<INT_PTR>(instance));
}

}  // namespace

std::int32_t Win32Shell::Execute(const ShellRequest& request) {
    // Windows would open the current folder.
    if (request.file.empty()) return SE_ERR_FNF;
    const WideRequest wide(request);
    return CodeOf(ShellExecuteW(wide.owner, WideRequest::OrNull(wide.verb), wide.file.c_str(),
                                WideRequest::OrNull(wide.parameters),
                                WideRequest::OrNull(wide.folder), request.show));
}

std::int32_t Win32Shell::Start(const ShellRequest& request, ShellProcess& process) {
    process = 0;
    if (request.file.empty()) return SE_ERR_FNF;
    const WideRequest wide(request);
    SHELLEXECUTEINFOW record{};
    record.cbSize = sizeof record;
    record.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_DOENVSUBST;
    record.hwnd = wide.owner;
    record.lpVerb = WideRequest::OrNull(wide.verb);
    record.lpFile = wide.file.c_str();
    record.lpParameters = WideRequest::OrNull(wide.parameters);
    record.lpDirectory = WideRequest::OrNull(wide.folder);
    record.nShow = request.show;
    // An error is reported in `hInstApp`.
    static_cast<void>(ShellExecuteExW(&record));
    process = reinterpret_cast<ShellProcess>(record.hProcess);
    return CodeOf(record.hInstApp);
}

bool Win32Shell::IsActive(ShellProcess process) const {
    DWORD code = 0;
    return GetExitCodeProcess(reinterpret_cast<HANDLE>(process), &code) != 0 &&
           code == STILL_ACTIVE;
}

void Win32Shell::Release(ShellProcess process) {
    if (process != 0) static_cast<void>(CloseHandle(reinterpret_cast<HANDLE>(process)));
}

}  // namespace vantor
