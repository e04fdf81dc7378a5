// The mouse of a terminal's window: selects text, scrolls, and changes the font size.
#pragma once

#include <optional>

#include "platform/win32/terminal/Win32TerminalWindow.hpp"

namespace vantor {

class Win32TerminalMouse {
public:
    /// `window` outlives the mouse.
    explicit Win32TerminalMouse(const Win32TerminalWindow& window) : mWindow(window) {}

    /// The messages of the left button, of moves, of the wheel and of the mouse capture, and
    /// kTerminalScrollTimer. Empty for messages that DefWindowProc has to handle.
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

private:
    MouseCell CellAt(POINT at) const;
    SelectBy CountClick(POINT at);
    void Press(POINT at, bool extends);
    void Move(POINT at);
    void ScrollWhileSelecting(bool on);
    void OnScrollTimer();
    void OnWheel(int delta, bool control);

    const Win32TerminalWindow& mWindow;
    bool mSelecting = false;  // the button is down
    bool mScrolling = false;  // the mouse is above or below the text meanwhile
    int mClicks = 0;          // in quick succession
    POINT mClickedAt{};
    DWORD mClickedMs = 0;
    int mZoom = 0;  // movement of the wheel with Ctrl below one notch
};

}  // namespace vantor
