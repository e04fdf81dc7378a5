// Paints a picture box: its picture, its background, and the text printed on it.
#pragma once

#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "platform/win32/Win32Stage.hpp"

namespace vantor {

/// Paints `area` of `target`; returns false, with nothing painted, when the box is a plain panel.
/// `row` gives the font size.
bool PaintPictureBox(Win32Stage& stage, const PictureBox& box, const ControlDesign& row, HDC target,
                     const RECT& area);

}  // namespace vantor
