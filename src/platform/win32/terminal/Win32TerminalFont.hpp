// The monospaced font of a terminal, in a typeface that has the letters of the code page.
#pragma once

#include <array>
#include <cstddef>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

struct Win32TerminalFont {
    /// The typeface that `style` names, or a fallback when it is missing or incomplete, in
    /// `points`; 0 for the size of `style`. Raises RuntimeError 7 when the system cannot create the
    /// font.
    Win32TerminalFont(Win32Context& context, const ControlStyle& style, int points);

    /// In one of the four looks. All have the same cells.
    HFONT Look(bool bold, bool italic) const {
        return looks[(bold ? 1U : 0U) + (italic ? 2U : 0U)].get();
    }

    std::array<Win32Object<HFONT>, 4> looks;
    Win32Object<HFONT> small;  ///< for two letters in one cell
    int points;                ///< as requested
    int width = 8;             ///< of one cell, in pixels
    int height = 16;
};

}  // namespace vantor
