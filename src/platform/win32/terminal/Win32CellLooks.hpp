// The appearance of a terminal cell: its character and its colours.
#pragma once

#include "platform/win32/services/Windows.hpp"
#include "terminal/TerminalScreen.hpp"

namespace vantor {

struct CellColours {
    COLORREF ink;
    COLORREF ground;
};

/// The colours of `cell`. If the far end sets only one of the two, the text colour is adjusted for
/// contrast. `systemOnly`: ignores the colours that the far end sets.
CellColours ColoursOf(const Cell& cell, bool selected, bool systemOnly);

/// True in high-contrast mode (SPI_GETHIGHCONTRAST).
bool HighContrast();

bool LooksLike(const Cell& one, const Cell& other);

/// The character of one byte in the system's code page. In a double-byte code page, too, each byte
/// is a cell.
wchar_t LetterOf(char character);

}  // namespace vantor
