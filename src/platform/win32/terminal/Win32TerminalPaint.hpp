// Paints the contents of a terminal: its cells, and while the user sizes the window, their number.
#pragma once

#include "platform/win32/terminal/Win32TerminalColours.hpp"
#include "platform/win32/terminal/Win32TerminalWindow.hpp"

namespace vantor {

/// Paints the rows that `area` touches, and the margins of the client area that are too narrow for
/// another column and too low for another row.
void PaintTerminal(const Win32TerminalWindow& window, const ColourScheme& scheme, HDC target,
                   const RECT& area);

/// Paints the size of the screen ("100 x 30") in a box in the middle of the window.
void PaintTerminalSize(const Win32TerminalWindow& window, HDC target);

}  // namespace vantor
