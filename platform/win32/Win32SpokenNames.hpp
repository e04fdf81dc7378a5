// What is read aloud for a window that shows nothing which could be.
#pragma once

#include <string>

#include "platform/win32/Windows.hpp"

struct IAccPropServices;

namespace vantor {

/// Used from one thread, in which it keeps COM at work.
class Win32SpokenNames {
public:
    Win32SpokenNames();
    ~Win32SpokenNames();
    Win32SpokenNames(const Win32SpokenNames&) = delete;
    Win32SpokenNames& operator=(const Win32SpokenNames&) = delete;

    /// Names `window` (IAccPropServices::SetHwndPropStr), which is to be forgotten before it is
    /// destroyed. Where the system has no such service the window's text has to do.
    void Set(HWND window, const std::wstring& name);
    void Forget(HWND window);

private:
    bool mPrepared;
    IAccPropServices* mService = nullptr;  // from the first name on
};

}  // namespace vantor
