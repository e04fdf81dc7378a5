#include "platform/win32/terminal/Win32TerminalView.hpp"

#include <windowsx.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/win32/terminal/Win32TerminalKeyboard.hpp"
#include "platform/win32/terminal/Win32TerminalMouse.hpp"
#include "platform/win32/terminal/Win32TerminalPaint.hpp"
#include "platform/win32/terminal/Win32TerminalScrollBar.hpp"
#include "platform/win32/terminal/Win32TerminalSpeech.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

constexpr int kCaretPixels = 2;

}  // namespace

/// Handlers of the control may unload its form; the view then outlives its current message,
/// without a window and without access to the control.
class Win32TerminalView : public std::enable_shared_from_this<Win32TerminalView> {
public:
    Win32TerminalView(Win32Context& context, TerminalControl& control, const ControlStyle& style,
                      HWND window)
        : mStyle(style),
          mShared{context, control, window,
                  Win32TerminalFont(context, style, control.Options().fontPoints)},
          mScheme(SchemeOf(control)) {
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }

    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* const view =
            reinterpret_cast<Win32TerminalView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (view == nullptr) return DefWindowProcW(window, message, wParam, lParam);
        const std::shared_ptr<Win32TerminalView> keepAlive = view->shared_from_this();
        if (message == WM_NCDESTROY) {
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            view->mShared.handle = nullptr;
            return DefWindowProcW(window, message, wParam, lParam);
        }
        LRESULT answer = 0;
        Guarded("Win32TerminalView.OnMessage", [&] {
            const std::optional<LRESULT> handled = view->Dispatch(message, wParam, lParam);
            answer = handled ? *handled : DefWindowProcW(window, message, wParam, lParam);
        });
        return answer;
    }

    void Follow(Property property) {
        if (mShared.handle == nullptr) return;
        TerminalViewport& view = mShared.control.View();
        FollowFont();
        const bool dirty = view.AnyDirty();
        // The high contrast of the system is read with each paint.
        const ColourScheme scheme = {.dark = mShared.control.Options().darkScheme,
                                     .reversed = mShared.control.Screen().modes.reverseScreen,
                                     .highContrast = mScheme.highContrast};
        if (property == Property::Repaint || scheme != mScheme)
            InvalidateAll();
        else if (dirty)
            InvalidateDirty();
        if (property == Property::Value && dirty) mSpeech.AnnounceSoon();
        view.Clean();
    }

    void ShowSize(bool shown) {
        if (std::exchange(mShowsSize, shown) != shown && mShared.handle != nullptr) InvalidateAll();
    }

    SIZE OuterSize(int columns, int rows) const {
        RECT area = {0, 0, columns * mShared.font.width, rows * mShared.font.height};
        const auto style = static_cast<DWORD>(GetWindowLongPtrW(mShared.handle, GWL_STYLE));
        const auto extended = static_cast<DWORD>(GetWindowLongPtrW(mShared.handle, GWL_EXSTYLE));
        AdjustWindowRectEx(&area, style, FALSE, extended);
        return {area.right - area.left + GetSystemMetrics(SM_CXVSCROLL), area.bottom - area.top};
    }

private:
    /// Empty for messages that DefWindowProc has to handle.
    std::optional<LRESULT> Dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_PAINT:
                OnPaint();
                return 0;
            case WM_ERASEBKGND:
                return 1;  // every pixel is painted anyway, and once is enough
            case WM_SIZE:
                OnSize();
                return 0;
            case WM_VSCROLL:
                OnScrollBar(mShared, LOWORD(wParam));
                return 0;
            case WM_SETFOCUS:
                MakeCaret();
                return 0;
            case WM_KILLFOCUS:
                DestroyCaret();
                return 0;
            case WM_CONTEXTMENU:
                return OnContextMenu(lParam);
            // Screen readers get the text here.
            case WM_GETTEXTLENGTH:
                return static_cast<LRESULT>(mSpeech.ShownText().size());
            case WM_GETTEXT:
                return mSpeech.GiveText(wParam, reinterpret_cast<wchar_t*>(lParam));
            default:
                return OnInput(message, wParam, lParam);
        }
    }

    /// Keyboard, mouse and timers.
    std::optional<LRESULT> OnInput(UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_GETDLGCODE)  // Tab, Enter, Esc and the arrows are sent to the line
            return DLGC_WANTALLKEYS | DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_WANTTAB;
        if (message == WM_TIMER && wParam == kTerminalAnnounceTimer) {
            mSpeech.OnAnnounceTimer();
            return 0;
        }
        if (message >= WM_KEYFIRST && message <= WM_KEYLAST)
            return mKeyboard.OnMessage(message, wParam, lParam);
        return mMouse.OnMessage(message, wParam, lParam);
    }

    // --- painting -------------------------------------------------------------------------------

    void InvalidateAll() const { InvalidateRect(mShared.handle, nullptr, FALSE); }

    // One rectangle for all dirty rows: however much arrives, there is one call.
    void InvalidateDirty() const {
        const TerminalViewport& view = mShared.control.View();
        int first = view.Rows();
        int last = -1;
        for (int row = 0; row < view.Rows(); ++row) {
            if (!view.Dirty(row)) continue;
            first = std::min(first, row);
            last = row;
        }
        if (last < first) return ShowScrollBar(mShared);  // no paint follows that would do it
        RECT area = mShared.Client();
        area.top = first * mShared.font.height;
        area.bottom = (last + 1) * mShared.font.height;
        InvalidateRect(mShared.handle, &area, FALSE);
    }

    void OnPaint() {
        PAINTSTRUCT paint{};
        mScheme = SchemeOf(mShared.control);
        const HDC target = BeginPaint(mShared.handle, &paint);
        PaintTerminal(mShared, mScheme, target, paint.rcPaint);
        if (mShowsSize) PaintTerminalSize(mShared, target);
        EndPaint(mShared.handle, &paint);
        PlaceCaret();
        ShowScrollBar(mShared);
    }

    void MakeCaret() const {
        CreateCaret(mShared.handle, nullptr, mShared.font.width, kCaretPixels);
        PlaceCaret();
        ShowCaret(mShared.handle);
    }

    void PlaceCaret() const {
        if (GetFocus() != mShared.handle) return;
        const auto& [width, height] = std::pair{mShared.font.width, mShared.font.height};
        if (const std::optional<ScreenCursor> cursor = mShared.control.View().Cursor())
            SetCaretPos(cursor->column * width, (cursor->row + 1) * height - kCaretPixels);
        else
            SetCaretPos(-2 * width, 0);
    }

    // --- size -----------------------------------------------------------------------------------

    void FollowFont() {
        const int points = mShared.control.Options().fontPoints;
        if (points == mShared.font.points) return;
        mShared.font = Win32TerminalFont(mShared.context, mStyle, points);
        if (GetFocus() == mShared.handle) MakeCaret();
        OnSize();
    }

    void OnSize() const {
        const RECT client = mShared.Client();
        if (client.right <= 0 || client.bottom <= 0) return;
        mShared.control.ScreenSize(static_cast<int>(client.right) / mShared.font.width,
                                   static_cast<int>(client.bottom) / mShared.font.height);
        InvalidateAll();
    }

    // --- the context menu -----------------------------------------------------------------------

    /// Empty where Windows shows its own menu, as on the scroll bar.
    std::optional<LRESULT> OnContextMenu(LPARAM where) {
        POINT at = {GET_X_LPARAM(where), GET_Y_LPARAM(where)};
        if (where == -1) {  // opened by the keyboard
            at = {0, 0};
            ClientToScreen(mShared.handle, &at);
        } else {
            const RECT client = mShared.Client();
            POINT inside = at;
            ScreenToClient(mShared.handle, &inside);
            if (PtInRect(&client, inside) == 0) return std::nullopt;
        }
        const int command = AskForCommand(at);
        // The window may have been destroyed while the menu was open.
        if (command != 0 && mShared.handle != nullptr)
            mShared.control.Invoke(static_cast<TerminalCommand>(command));
        return 0;
    }

    /// The number of the command that the user chooses; 0 for none.
    int AskForCommand(POINT at) const {
        const Win32Object<HMENU> menu(CreatePopupMenu());
        AppendEntries(menu.get(), mShared.control.ContextMenu());
        return static_cast<int>(TrackPopupMenu(menu.get(),
                                               TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, at.x,
                                               at.y, 0, mShared.handle, nullptr));
    }

    /// Submenus are destroyed with the menu.
    static void AppendEntries(HMENU menu, const std::vector<OfferedCommand>& entries) {
        for (const OfferedCommand& entry : entries) {
            if (entry.startsGroup) AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
            UINT flags = MF_STRING;
            if (!entry.enabled) flags |= MF_GRAYED;
            if (entry.checked) flags |= MF_CHECKED;
            auto id = static_cast<UINT_PTR>(entry.command);
            if (!entry.children.empty()) {
                const HMENU submenu = CreatePopupMenu();
                AppendEntries(submenu, entry.children);
                flags |= MF_POPUP;
                id = reinterpret_cast<UINT_PTR>(submenu);
            }
            AppendMenuW(menu, flags, id, ToWide(entry.caption).c_str());
        }
    }

    const ControlStyle& mStyle;
    Win32TerminalWindow mShared;
    ColourScheme mScheme;     // as last painted
    bool mShowsSize = false;  // the user is sizing the window
    Win32TerminalKeyboard mKeyboard{mShared};
    Win32TerminalMouse mMouse{mShared};
    Win32TerminalSpeech mSpeech{mShared};
};

void RegisterTerminalClass(HINSTANCE instance) {
    WNDCLASSW windowClass{};
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_IBEAM);
    windowClass.lpfnWndProc = Win32TerminalView::OnMessage;
    windowClass.lpszClassName = kTerminalClass;
    RegisterClassW(&windowClass);
}

std::shared_ptr<Win32TerminalView> MakeTerminalView(Win32Context& context, TerminalControl& control,
                                                    const ControlStyle& style, HWND window) {
    return std::make_shared<Win32TerminalView>(context, control, style, window);
}

void FollowTerminal(Win32TerminalView& view, Property property) {
    view.Follow(property);
}

void ShowTerminalSize(Win32TerminalView& view, bool shown) {
    view.ShowSize(shown);
}

SIZE TerminalOuterSize(const Win32TerminalView& view, int columns, int rows) {
    return view.OuterSize(columns, rows);
}

}  // namespace vantor
