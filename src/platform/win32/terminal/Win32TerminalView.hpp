// The window of a terminal control: paints its screen and forwards keyboard and mouse
// input. It stores no text.
#pragma once

#include <memory>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor {

/// The window class of terminals.
inline constexpr wchar_t kTerminalClass[] = L"VantorTerminal";
void RegisterTerminalClass(HINSTANCE instance);

/// Defined in the source file; used through the functions below.
class Win32TerminalView;

/// The view in `window`, of the class above, which displays `control`. The view may outlive the
/// window. Raises RuntimeError 7 when the system cannot create the font.
std::shared_ptr<Win32TerminalView> MakeTerminalView(Win32Context& context, TerminalControl& control,
                                                    const ControlStyle& style, HWND window);

/// Shows a change of the control. Value: dirty rows are painted with the next paint. Repaint: all
/// rows are.
void FollowTerminal(Win32TerminalView& view, Property property);

/// Shows the number of cells in the middle of the window, or no longer.
void ShowTerminalSize(Win32TerminalView& view, bool shown);

/// Outer size in pixels of a window that shows `columns` x `rows` cells.
SIZE TerminalOuterSize(const Win32TerminalView& view, int columns, int rows);

}  // namespace vantor
