// What the parts of a terminal's window share.
#pragma once

#include "platform/win32/terminal/Win32TerminalFont.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor {

/// Handlers of the control may destroy its window: after each of its events, check `handle`.
struct Win32TerminalWindow {
    RECT Client() const {
        RECT area{};
        GetClientRect(handle, &area);
        return area;
    }

    Win32Context& context;
    TerminalControl& control;  ///< not to be used once `handle` is null
    HWND handle;               ///< null once the window is destroyed
    Win32TerminalFont font;
};

/// The timers of a terminal's window.
enum : UINT_PTR { kTerminalScrollTimer = 1, kTerminalAnnounceTimer };

}  // namespace vantor
