// The banner shown in place of a promotional picture, drawn so that it fits every size.
#pragma once

#include "platform/win32/drawing/Win32Context.hpp"

namespace vantor {

/// Fills `area` of `target` with the banner.
void DrawBanner(Win32Context& context, HDC target, const RECT& area);

}  // namespace vantor
