// A desktop of a test program's own.
#pragma once

#include <string>

namespace vantor::driver {

/// Makes the desktop `name`, of `size` pixels ("1024x768"), and puts the windows of this thread
/// on it. Wine draws it in one window of the display, with window frames and a keyboard focus of
/// its own: no window manager has a say in the tests, and its absence costs no waits.
void EnterDesktop(const std::wstring& name, const std::wstring& size);

}  // namespace vantor::driver
