// The other windows of the thread while a box or dialog of the system is open.
#pragma once

#include <vector>

#include "platform/win32/services/Windows.hpp"

namespace vantor {

/// A box disables the window that owns it and no other. This disables the rest of the thread's
/// windows for as long as it exists: an update must not be begun behind a box, whose answer would
/// then have to wait for its end.
class Win32DisabledWindows {
public:
    /// Nothing without an `owner`: the system disables all of them then.
    explicit Win32DisabledWindows(HWND owner);
    ~Win32DisabledWindows();
    Win32DisabledWindows(const Win32DisabledWindows&) = delete;
    Win32DisabledWindows& operator=(const Win32DisabledWindows&) = delete;

private:
    static BOOL CALLBACK Disable(HWND window, LPARAM self);

    HWND mOwner;
    std::vector<HWND> mDisabled;
};

}  // namespace vantor
