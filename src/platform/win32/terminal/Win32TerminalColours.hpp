// The colours of a terminal's cells.
#pragma once

#include "platform/win32/services/Windows.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor {

struct CellColours {
    COLORREF ink;
    COLORREF ground;
};

/// What changes the colours of all cells.
struct ColourScheme {
    bool dark = false;          ///< light text on a dark ground by default
    bool reversed = false;      ///< the default colours are exchanged
    bool highContrast = false;  ///< the colours of the system only

    friend bool operator==(const ColourScheme&, const ColourScheme&) = default;
};

/// The scheme of `control`, and of the system: SPI_GETHIGHCONTRAST.
ColourScheme SchemeOf(TerminalControl& control);

/// The colours of text that the far end has not coloured, and of the margins.
CellColours DefaultColours(const ColourScheme& scheme);

/// The colours of `cell`. If the far end sets only one of the two, the text colour is adjusted for
/// contrast.
CellColours ColoursOf(const Cell& cell, const ColourScheme& scheme = {}, Mark mark = Mark::None);

/// `part` of 4 parts of the ink, and the rest of the ground.
COLORREF Blended(const CellColours& colours, int part);

}  // namespace vantor
