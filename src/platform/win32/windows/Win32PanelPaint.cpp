#include "platform/win32/windows/Win32PanelPaint.hpp"

#include <string>

#include "platform/win32/services/Win32Pictures.hpp"
#include "platform/win32/windows/Win32Banner.hpp"

namespace vantor {
namespace {

void PaintPrinted(Win32Context& context, const PictureBox& box, const ControlDesign& row,
                  HDC target, const RECT& area) {
    const bool captionBar = row.style.ground == Ground::CaptionBar;
    static_cast<void>(FillRect(target, &area,
                               GetSysColorBrush(captionBar ? COLOR_ACTIVECAPTION : COLOR_BTNFACE)));
    static_cast<void>(SetBkMode(target, TRANSPARENT));
    static_cast<void>(
        SetTextColor(target, GetSysColor(captionBar ? COLOR_CAPTIONTEXT : COLOR_BTNTEXT)));
    for (const PictureBox::Printed& printed : box.PrintedTexts()) {
        const HFONT font = context.Font(row.style.points, row.style.bold, printed.fontName);
        const HGDIOBJ before = SelectObject(target, font);
        const std::wstring text = ToWide(printed.text);
        static_cast<void>(TextOutW(target, context.ToPixels(printed.left),
                                   context.ToPixels(printed.top), text.c_str(),
                                   static_cast<int>(text.size())));
        static_cast<void>(SelectObject(target, before));
    }
}

}  // namespace

bool PaintPictureBox(Win32Context& context, const PictureBox& box, const ControlDesign& row,
                     HDC target, const RECT& area) {
    if (box.Loaded() != nullptr)
        static_cast<const Win32Picture&>(*box.Loaded()).Draw(target, area);
    else if (row.style.ground == Ground::Banner)
        DrawBanner(context, target, area);
    else if (row.style.ground == Ground::CaptionBar || !box.PrintedTexts().empty())
        PaintPrinted(context, box, row, target, area);
    else
        return false;
    return true;
}

// Two edges of opposite colours: one of them is visible on any picture.
void PaintFocus(const Win32Context& context, HDC target, RECT area) {
    constexpr float kEdgeTwips = 15;
    const int edge = context.ToPixels(kEdgeTwips);
    for (const int colour : {COLOR_WINDOWTEXT, COLOR_WINDOW})
        for (int i = 0; i < edge; ++i) {
            static_cast<void>(FrameRect(target, &area, GetSysColorBrush(colour)));
            static_cast<void>(InflateRect(&area, -1, -1));
        }
}

}  // namespace vantor
