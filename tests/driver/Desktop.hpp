// A private desktop for a driver program.
#pragma once

#include <string>

namespace vantor::driver {

/// Creates the desktop `name` of `size` pixels ("1024x768") and assigns this thread to it. Wine
/// draws it in one window of the display and manages frames and keyboard focus in it. The tests
/// therefore do not depend on a window manager, and no time-out is hit when there is none.
void EnterDesktop(const std::wstring& name, const std::wstring& size);

}  // namespace vantor::driver
