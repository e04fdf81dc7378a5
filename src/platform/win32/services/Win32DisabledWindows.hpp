// The windows of the thread that the user can use, and their state while a box or dialog is open.
#pragma once

#include <vector>

#include "platform/win32/services/Windows.hpp"

namespace vantor {

/// The visible and enabled top-level windows of this thread, from the topmost down.
std::vector<HWND> WindowsInUse();

/// A box disables its owner window only. This object disables the thread's other windows while it
/// exists: the call that shows a box could not return before the end of an update started behind
/// the box.
class Win32DisabledWindows {
public:
    /// Does nothing without an `owner`: a message box without one disables all windows by itself.
    explicit Win32DisabledWindows(HWND owner);
    ~Win32DisabledWindows();
    Win32DisabledWindows(const Win32DisabledWindows&) = delete;
    Win32DisabledWindows& operator=(const Win32DisabledWindows&) = delete;

private:
    std::vector<HWND> mDisabled;
};

}  // namespace vantor
