// Paints the contents of a terminal: its cells and their colours.
#pragma once

#include <string>

#include "platform/win32/terminal/Win32TerminalFont.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor {

struct CellColours {
    COLORREF ink;
    COLORREF ground;
};

struct CellState {
    bool selected = false;
    bool highContrast = false;  ///< ignores the colours that the far end sets
};

/// The colours of `cell`. If the far end sets only one of the two, the text colour is adjusted for
/// contrast.
CellColours ColoursOf(const Cell& cell, CellState state = {});

/// Appends `character` in UTF-16.
void AppendLetter(std::wstring& text, char32_t character);

/// Paints the rows of `control` that `area` touches, and the margins of the client area `client`
/// that are too narrow for another column and too low for another row.
void PaintTerminal(TerminalControl& control, const Win32TerminalFont& font, HDC target,
                   const RECT& area, const RECT& client);

}  // namespace vantor
