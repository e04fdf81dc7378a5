#include "platform/win32/terminal/Win32TerminalMouse.hpp"

#include <windowsx.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace vantor {
namespace {

constexpr UINT kScrollIntervalMs = 50;

}  // namespace

std::optional<LRESULT> Win32TerminalMouse::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const POINT at = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_LBUTTONDOWN:
            Press(at, (wParam & MK_SHIFT) != 0);
            return std::nullopt;  // with Alt, its release does not open the menu bar
        case WM_MOUSEMOVE:
            Move(at);
            return 0;
        case WM_LBUTTONUP:
            if (mSelecting) ReleaseCapture();
            return 0;
        case WM_CAPTURECHANGED:
            mSelecting = false;
            ScrollWhileSelecting(false);
            return 0;
        case WM_MOUSEWHEEL:
            OnWheel(GET_WHEEL_DELTA_WPARAM(wParam),
                    (GET_KEYSTATE_WPARAM(wParam) & MK_CONTROL) != 0);
            return 0;
        case WM_TIMER:
            OnScrollTimer();
            return 0;
        default:
            return std::nullopt;
    }
}

MouseCell Win32TerminalMouse::CellAt(POINT at) const {
    const auto& [width, height] = std::pair{mWindow.font.width, mWindow.font.height};
    // Rounded down, left of and above the window too.
    const auto below = [](LONG pixels, int size) {
        return static_cast<int>(pixels >= 0 ? pixels / size : (pixels + 1) / size - 1);
    };
    const int column = below(at.x, width);
    return {below(at.y, height), column, static_cast<int>(at.x) - column * width >= width / 2};
}

/// What a further click at `at` selects by.
SelectBy Win32TerminalMouse::CountClick(POINT at) {
    const auto now = static_cast<DWORD>(GetMessageTime());  // wraps around
    const bool follows = mClicks > 0 && now - mClickedMs <= GetDoubleClickTime() &&
                         std::abs(at.x - mClickedAt.x) <= GetSystemMetrics(SM_CXDOUBLECLK) / 2 &&
                         std::abs(at.y - mClickedAt.y) <= GetSystemMetrics(SM_CYDOUBLECLK) / 2;
    mClicks = follows ? mClicks % 3 + 1 : 1;
    mClickedAt = at;
    mClickedMs = now;
    if (mClicks == 1) return SelectBy::Character;
    return mClicks == 2 ? SelectBy::Word : SelectBy::Line;
}

void Win32TerminalMouse::Press(POINT at, bool extends) {
    SetFocus(mWindow.handle);
    SetCapture(mWindow.handle);
    mSelecting = true;
    if (extends) return mWindow.control.ExtendSelection(CellAt(at));
    mWindow.control.BeginSelecting(CellAt(at), CountClick(at), GetKeyState(VK_MENU) < 0);
}

void Win32TerminalMouse::Move(POINT at) {
    if (!mSelecting) return;
    ScrollWhileSelecting(at.y < 0 || at.y >= mWindow.Client().bottom);
    mWindow.control.ExtendSelection(CellAt(at));
}

void Win32TerminalMouse::ScrollWhileSelecting(bool on) {
    if (std::exchange(mScrolling, on) == on) return;
    if (on)
        SetTimer(mWindow.handle, kTerminalScrollTimer, kScrollIntervalMs, nullptr);
    else
        KillTimer(mWindow.handle, kTerminalScrollTimer);
}

/// The further the mouse is outside, the faster it scrolls.
void Win32TerminalMouse::OnScrollTimer() {
    POINT at{};
    if (!mSelecting || GetCursorPos(&at) == 0 || ScreenToClient(mWindow.handle, &at) == 0) return;
    const LONG bottom = mWindow.Client().bottom;
    const int height = mWindow.font.height;
    if (at.y < 0)
        mWindow.control.ScrollBy(static_cast<int>(at.y) / height - 1);
    else if (at.y >= bottom)
        mWindow.control.ScrollBy(static_cast<int>(at.y - bottom) / height + 1);
    Move(at);
}

void Win32TerminalMouse::OnWheel(int delta, bool control) {
    if (control) {
        mZoom += delta;
        const int notches = mZoom / WHEEL_DELTA;
        mZoom -= notches * WHEEL_DELTA;
        const auto command =
            notches > 0 ? TerminalCommand::LargerText : TerminalCommand::SmallerText;
        for (int i = 0; i < std::abs(notches) && mWindow.handle != nullptr; ++i)
            mWindow.control.Invoke(command);
        return;
    }
    UINT lines = 3;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    constexpr UINT kMost = 1000;  // WHEEL_PAGESCROLL is more
    mWindow.control.Wheel(delta, static_cast<int>(std::min(lines, kMost)));
}

}  // namespace vantor
