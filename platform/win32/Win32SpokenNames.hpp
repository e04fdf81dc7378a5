// What is read aloud for a window that shows nothing which could be.
#pragma once

#include <string>

#include "platform/win32/Windows.hpp"

struct IAccPropServices;

namespace vantor {

class Win32SpokenNames {
public:
    Win32SpokenNames() = default;
    ~Win32SpokenNames();
    Win32SpokenNames(const Win32SpokenNames&) = delete;
    Win32SpokenNames& operator=(const Win32SpokenNames&) = delete;

    /// Names `window` (IAccPropServices::SetHwndPropStr), which is to be forgotten before it is
    /// destroyed. Where the system has no such service, or COM is not at work in this thread, the
    /// window's text has to do.
    void Set(HWND window, const std::wstring& name);
    void Forget(HWND window);

private:
    IAccPropServices* mService = nullptr;  // from the first name on
};

}  // namespace vantor
