#include "platform/win32/services/Win32DisabledWindows.hpp"

namespace vantor {

std::vector<HWND> WindowsInUse() {
    std::vector<HWND> windows;
    const auto take = [](HWND window, LPARAM result) -> BOOL {
        if (IsWindowVisible(window) != 0 && IsWindowEnabled(window) != 0 &&
            GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId())
            reinterpret_cast<std::vector<HWND>*>(result)->push_back(window);
        return TRUE;
    };
    EnumWindows(take, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

Win32DisabledWindows::Win32DisabledWindows(HWND owner) {
    if (owner == nullptr) return;
    mDisabled = WindowsInUse();
    std::erase(mDisabled, owner);
    for (const HWND window : mDisabled) EnableWindow(window, FALSE);
}

Win32DisabledWindows::~Win32DisabledWindows() {
    for (const HWND window : mDisabled) EnableWindow(window, TRUE);
}

}  // namespace vantor
