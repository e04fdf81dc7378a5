// The window of a terminal control: paints its screen and forwards keyboard and mouse
// input. It stores no text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "controls/Form.hpp"
#include "platform/win32/drawing/Win32Context.hpp"
#include "platform/win32/terminal/Win32TerminalFont.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor {

/// The window class of terminals.
inline constexpr wchar_t kTerminalClass[] = L"VantorTerminal";

/// Handlers of the control may unload its form; the view then outlives its current message,
/// without a window and without access to the control.
class Win32TerminalView : public std::enable_shared_from_this<Win32TerminalView> {
public:
    static void RegisterClasses(HINSTANCE instance);

    /// For `window`, of the class above, which displays `control`.
    Win32TerminalView(Win32Context& context, TerminalControl& control, const ControlStyle& style,
                      HWND window);
    Win32TerminalView(const Win32TerminalView&) = delete;
    Win32TerminalView& operator=(const Win32TerminalView&) = delete;

    /// Value: dirty rows are painted with the next paint. Repaint: all rows are.
    void Follow(Property property);

private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second);
    std::optional<LRESULT> Dispatch(UINT message, WPARAM first, LPARAM second);
    std::optional<LRESULT> OnKey(UINT message, WPARAM first);
    bool OnMouse(UINT message, POINT at);

    void InvalidateDirty();
    void OnPaint();
    void PaintRow(HDC target, int row) const;
    void PaintRun(HDC target, POINT from, std::span<const Cell> run, bool selected) const;
    void PaintMargins(HDC target) const;
    void PlaceCaret() const;

    void OnSize();
    void ShowScrollBar();
    void OnScrollBar(WORD request);
    void OnWheel(int delta);
    void ScrollBy(int lines);

    bool OnKeyDown(WPARAM key);
    void OnCharacter(wchar_t character);

    void Unselect();
    TextPosition PositionAt(POINT at) const;
    void BeginSelecting(POINT at);
    void Extend(POINT at);
    void EndSelecting();
    void ScrollWhileSelecting(bool on);
    void OnScrollTimer();

    bool OnContextMenu(LPARAM where);
    int AskForCommand(POINT at) const;
    void AnnounceSoon();
    void Announce();
    std::wstring ShownText() const;
    LRESULT GiveText(std::size_t room, wchar_t* into) const;

    TerminalControl& mControl;
    HWND mWindow;  // null once it is destroyed
    Win32TerminalFont mFont;
    bool mHighContrast = false;           // as of the last paint
    std::int64_t mShownFirst = 0;         // the first line of the view as last invalidated
    std::optional<TextPosition> mAnchor;  // set while the mouse selects
    bool mScrolling = false;              // the mouse is above or below the text meanwhile
    bool mAnnouncing = false;             // an announcement to screen readers is due
    wchar_t mHighSurrogate = L'\0';       // the first half of a character that is being typed
    int mWheel = 0;                       // accumulated wheel movement below one notch
};

}  // namespace vantor
