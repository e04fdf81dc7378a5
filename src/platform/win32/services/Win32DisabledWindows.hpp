// The other windows of the thread while a modal window, a box or a dialog of the system is open.
#pragma once

#include <vector>

#include "platform/win32/services/Windows.hpp"

namespace vantor {

/// A box disables its owner window only. This object disables the thread's other windows while it
/// exists: the call that shows a box could not return before the end of an update started behind
/// the box.
class Win32DisabledWindows {
public:
    /// Does nothing without an `owner`: the system then disables all windows.
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
