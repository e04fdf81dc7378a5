// The monospaced font of a terminal, in a typeface that has the letters of the code page.
#pragma once

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

struct Win32TerminalFont {
    /// The typeface that `style` names, or a fallback when it is missing or incomplete.
    /// Raises RuntimeError 7 when the system cannot create the font.
    Win32TerminalFont(Win32Context& context, const ControlStyle& style);

    Win32Object<HFONT> plain;
    Win32Object<HFONT> bold;
    Win32Object<HFONT> italic;
    Win32Object<HFONT> boldItalic;
    int width = 8;  ///< of one character, in pixels
    int height = 16;
};

}  // namespace vantor
