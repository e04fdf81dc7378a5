// Characters that a terminal draws itself: lines, scan lines and blocks, so that they join the
// cells around them at every size, and what most fonts lack: the diamond and names of control
// characters.
#pragma once

#include "platform/win32/terminal/Win32TerminalColours.hpp"

namespace vantor {

/// True for the characters of `DrawGlyph`.
bool IsDrawn(char32_t character);

/// Draws `character` into `cell`, whose ground is painted already. `font` is small enough for two
/// letters in a cell; another one may be selected afterwards.
void DrawGlyph(HDC target, char32_t character, const RECT& cell, const CellColours& colours,
               HFONT font);

/// Fills `area` with `colour`.
void FillArea(HDC target, const RECT& area, COLORREF colour);

/// The thickness of a line in cells of `width` pixels.
int LineThickness(int width);

}  // namespace vantor
