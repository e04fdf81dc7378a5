// The scroll bar of a terminal's window.
#pragma once

#include "platform/win32/terminal/Win32TerminalWindow.hpp"

namespace vantor {

/// Sets range and position. The bar is always shown; otherwise the first line that scrolls off
/// would change the width of the text.
void ShowScrollBar(const Win32TerminalWindow& window);

/// WM_VSCROLL with `request`.
void OnScrollBar(const Win32TerminalWindow& window, WORD request);

}  // namespace vantor
