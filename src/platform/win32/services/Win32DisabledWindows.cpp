#include "platform/win32/services/Win32DisabledWindows.hpp"

namespace vantor {

Win32DisabledWindows::Win32DisabledWindows(HWND owner) : mOwner(owner) {
    if (owner != nullptr)
        static_cast<void>(
            EnumThreadWindows(GetCurrentThreadId(), Disable, reinterpret_cast<LPARAM>(this)));
}

Win32DisabledWindows::~Win32DisabledWindows() {
    for (const HWND window : mDisabled) static_cast<void>(EnableWindow(window, TRUE));
}

BOOL CALLBACK Win32DisabledWindows::Disable(HWND window, LPARAM self) {
    auto& all = *reinterpret_cast<Win32DisabledWindows*>(self);
    if (window == all.mOwner || IsWindowVisible(window) == 0 || IsWindowEnabled(window) == 0)
        return TRUE;
    static_cast<void>(EnableWindow(window, FALSE));
    all.mDisabled.push_back(window);
    return TRUE;
}

}  // namespace vantor
