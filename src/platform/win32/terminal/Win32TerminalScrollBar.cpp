#include "platform/win32/terminal/Win32TerminalScrollBar.hpp"

namespace vantor {

void ShowScrollBar(const Win32TerminalWindow& window) {
    const TerminalViewport& view = window.control.View();
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL | SIF_DISABLENOSCROLL;
    info.nMax = static_cast<int>(view.EndLine() - view.FirstLine()) - 1;
    info.nPage = static_cast<UINT>(view.Rows());
    info.nPos = static_cast<int>(view.FirstShownLine() - view.FirstLine());
    SetScrollInfo(window.handle, SB_VERT, &info, TRUE);
}

void OnScrollBar(const Win32TerminalWindow& window, WORD request) {
    TerminalControl& control = window.control;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    switch (request) {
        case SB_LINEUP:
            return control.Scroll(ScrollStep::LineUp);
        case SB_LINEDOWN:
            return control.Scroll(ScrollStep::LineDown);
        case SB_PAGEUP:
            return control.Scroll(ScrollStep::PageUp);
        case SB_PAGEDOWN:
            return control.Scroll(ScrollStep::PageDown);
        case SB_TOP:
            return control.Scroll(ScrollStep::Start);
        case SB_BOTTOM:
            return control.Scroll(ScrollStep::End);
        case SB_THUMBTRACK:
            if (GetScrollInfo(window.handle, SB_VERT, &info) != 0)
                control.ScrollTo(control.View().FirstLine() + info.nTrackPos);
            return;
        default:
            return;
    }
}

}  // namespace vantor
