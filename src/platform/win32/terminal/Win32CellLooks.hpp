// How a terminal's cell looks: its letter and its colours.
#pragma once

#include "platform/win32/services/Windows.hpp"
#include "terminal/TerminalScreen.hpp"

namespace vantor {

struct CellColours {
    COLORREF ink;
    COLORREF ground;
};

/// The colours of `cell`. Where the far end has chosen only one of the two, the other makes the
/// letters readable. `systemOnly`: whatever colours the far end asks for.
CellColours ColoursOf(const Cell& cell, bool selected, bool systemOnly);

/// True while the user has the whole system in few colours of strong contrast.
bool HighContrast();

bool LooksLike(const Cell& one, const Cell& other);

/// What a byte is in the system's code page. One by one: where two bytes can make a character they
/// are still two cells.
wchar_t LetterOf(char character);

}  // namespace vantor
