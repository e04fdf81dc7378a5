// Paints a picture box: its picture, its background, and the text printed on it.
#pragma once

#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

/// Paints `area` of `target`; false, with nothing painted, when the box is a plain panel. `row`
/// gives font size and background.
bool PaintPictureBox(Win32Context& context, const PictureBox& box, const ControlDesign& row,
                     HDC target, const RECT& area);

/// Paints a focus frame at the edge of `area`.
void PaintFocus(const Win32Context& context, HDC target, RECT area);

}  // namespace vantor
