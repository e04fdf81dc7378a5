#include "platform/win32/terminal/Win32TerminalView.hpp"

#include <windowsx.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/win32/terminal/Win32TerminalPaint.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

enum : UINT_PTR { kScrollTimer = 1, kAnnounceTimer };
constexpr UINT kScrollIntervalMs = 50;
constexpr UINT kAnnounceIntervalMs = 300;
constexpr int kCaretPixels = 2;

bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

std::string_view SequenceOf(WPARAM key) {
    constexpr std::pair<WPARAM, std::string_view> kSequences[] = {
        {VK_UP, "\x1b[A"}, {VK_DOWN, "\x1b[B"}, {VK_RIGHT, "\x1b[C"}, {VK_LEFT, "\x1b[D"}};
    for (const auto& [each, sequence] : kSequences)
        if (each == key) return sequence;
    return {};
}

}  // namespace

/// Handlers of the control may unload its form; the view then outlives its current message,
/// without a window and without access to the control.
class Win32TerminalView : public std::enable_shared_from_this<Win32TerminalView> {
public:
    Win32TerminalView(Win32Context& context, TerminalControl& control, const ControlStyle& style,
                      HWND window)
        : mControl(control), mScreen(control.Screen()), mWindow(window), mFont(context, style) {
        SetWindowLongPtrW(mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }

    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* const view =
            reinterpret_cast<Win32TerminalView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (view == nullptr) return DefWindowProcW(window, message, wParam, lParam);
        const std::shared_ptr<Win32TerminalView> keepAlive = view->shared_from_this();
        if (message == WM_NCDESTROY) {
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            view->mWindow = nullptr;
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
        if (mWindow == nullptr) return;
        const bool dirty = mScreen.AnyDirty();
        if (property == Property::Repaint || mControl.FirstShownLine() != mShownFirst)
            InvalidateRect(mWindow, nullptr, FALSE);
        else if (dirty)
            InvalidateDirty();
        if (property == Property::Value && dirty) AnnounceSoon();
        mShownFirst = mControl.FirstShownLine();
        mScreen.Clean();
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
                OnScrollBar(LOWORD(wParam));
                return 0;
            case WM_MOUSEWHEEL:
                OnWheel(GET_WHEEL_DELTA_WPARAM(wParam));
                return 0;
            case WM_TIMER:
                wParam == kScrollTimer ? OnScrollTimer() : Announce();
                return 0;
            case WM_SETFOCUS:
                CreateCaret(mWindow, nullptr, mFont.width, kCaretPixels);
                PlaceCaret();
                ShowCaret(mWindow);
                return 0;
            case WM_KILLFOCUS:
                DestroyCaret();
                return 0;
            case WM_CONTEXTMENU:
                return OnContextMenu(lParam);
            // Screen readers get the text here.
            case WM_GETTEXTLENGTH:
                return static_cast<LRESULT>(ShownText().size());
            case WM_GETTEXT:
                return GiveText(wParam, reinterpret_cast<wchar_t*>(lParam));
            default:
                return OnInput(message, wParam, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        }
    }

    /// Keyboard, and mouse at `at`.
    std::optional<LRESULT> OnInput(UINT message, WPARAM wParam, POINT at) {
        switch (message) {
            case WM_GETDLGCODE:  // Tab, Enter, Esc and the arrows are sent to the line
                return DLGC_WANTALLKEYS | DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_WANTTAB;
            case WM_KEYDOWN:
                return OnKeyDown(wParam);
            case WM_CHAR:
                OnCharacter(static_cast<wchar_t>(wParam));
                return 0;
            case WM_LBUTTONDOWN:
                BeginSelecting(at);
                return 0;
            case WM_MOUSEMOVE:
                Extend(at);
                return 0;
            case WM_LBUTTONUP:
                if (mAnchor) ReleaseCapture();
                return 0;
            case WM_CAPTURECHANGED:
                mAnchor.reset();
                ScrollWhileSelecting(false);
                return 0;
            default:
                return std::nullopt;
        }
    }

    RECT ClientArea() const {
        RECT area{};
        GetClientRect(mWindow, &area);
        return area;
    }

    // --- painting -------------------------------------------------------------------------------

    // One rectangle for all dirty rows: however much arrives, there is one call.
    void InvalidateDirty() {
        const auto below = static_cast<int>(mScreen.TopLine() - mShownFirst);
        int first = mScreen.Rows();
        int last = -1;
        for (int row = 0; row + below < mScreen.Rows(); ++row) {
            if (!mScreen.Dirty(row)) continue;
            first = std::min(first, row + below);
            last = row + below;
        }
        if (last < first) return ShowScrollBar();  // no paint follows that would do it
        RECT area = ClientArea();
        area.top = first * mFont.height;
        area.bottom = (last + 1) * mFont.height;
        InvalidateRect(mWindow, &area, FALSE);
    }

    void OnPaint() {
        PAINTSTRUCT paint{};
        const HDC target = BeginPaint(mWindow, &paint);
        PaintTerminal(mControl, mFont, target, paint.rcPaint, ClientArea());
        EndPaint(mWindow, &paint);
        PlaceCaret();
        ShowScrollBar();
    }

    void PlaceCaret() const {
        if (GetFocus() != mWindow) return;
        const ScreenCursor cursor = mScreen.Cursor();
        const int row =
            static_cast<int>(mScreen.TopLine() - mControl.FirstShownLine()) + cursor.row;
        const bool shown = mScreen.modes.cursorVisible && row < mScreen.Rows();
        const int left = shown ? cursor.column * mFont.width : -2 * mFont.width;
        SetCaretPos(left, (row + 1) * mFont.height - kCaretPixels);
    }

    // --- size and scrolling ---------------------------------------------------------------------

    void OnSize() {
        const RECT client = ClientArea();
        if (client.right <= 0 || client.bottom <= 0) return;
        mControl.ScreenSize(static_cast<int>(client.right) / mFont.width,
                            static_cast<int>(client.bottom) / mFont.height);
        InvalidateRect(mWindow, nullptr, FALSE);
    }

    // Always shown; otherwise the first line that scrolls off would change the width of the text.
    void ShowScrollBar() const {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_ALL | SIF_DISABLENOSCROLL;
        info.nMax = static_cast<int>(mScreen.EndLine() - mScreen.FirstLine()) - 1;
        info.nPage = static_cast<UINT>(mScreen.Rows());
        info.nPos = static_cast<int>(mControl.FirstShownLine() - mScreen.FirstLine());
        SetScrollInfo(mWindow, SB_VERT, &info, TRUE);
    }

    void OnScrollBar(WORD request) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_TRACKPOS;
        switch (request) {
            case SB_LINEUP:
                return ScrollBy(-1);
            case SB_LINEDOWN:
                return ScrollBy(1);
            case SB_PAGEUP:
                return ScrollBy(-PageRows());
            case SB_PAGEDOWN:
                return ScrollBy(PageRows());
            case SB_TOP:
                return mControl.ScrollTo(mScreen.FirstLine());
            case SB_BOTTOM:
                return mControl.ScrollTo(mScreen.TopLine());
            case SB_THUMBTRACK:
                if (GetScrollInfo(mWindow, SB_VERT, &info) != 0)
                    mControl.ScrollTo(mScreen.FirstLine() + info.nTrackPos);
                return;
            default:
                return;
        }
    }

    void OnWheel(int delta) {
        UINT lines = 3;
        SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
        mWheel += delta;
        const int notches = mWheel / WHEEL_DELTA;
        mWheel -= notches * WHEEL_DELTA;
        ScrollBy(-notches * static_cast<int>(std::min(lines, static_cast<UINT>(PageRows()))));
    }

    int PageRows() const { return std::max(mScreen.Rows() - 1, 1); }

    void ScrollBy(int lines) { mControl.ScrollTo(mControl.FirstShownLine() + lines); }

    // --- keys -----------------------------------------------------------------------------------

    /// Keys without a character. Empty for keys that the terminal does not handle.
    std::optional<LRESULT> OnKeyDown(WPARAM key) {
        const bool shift = IsDown(VK_SHIFT);
        const bool control = IsDown(VK_CONTROL);
        const std::string_view sequence = SequenceOf(key);
        if (key == VK_INSERT && control != shift) {
            mControl.Invoke(control ? TerminalCommand::Copy : TerminalCommand::Paste);
        } else if (shift && (key == VK_PRIOR || key == VK_NEXT)) {
            ScrollBy(key == VK_PRIOR ? -PageRows() : PageRows());
        } else if (!sequence.empty()) {
            Unselect();
            mControl.Key(sequence);
        } else {
            return std::nullopt;
        }
        return 0;
    }

    // Ctrl+C and Ctrl+V are characters for the line; only while text is selected, Ctrl+C copies.
    void OnCharacter(wchar_t character) {
        constexpr wchar_t kCtrlC = 3;
        if (character == kCtrlC && !mControl.Selection().Empty()) {
            mControl.Invoke(TerminalCommand::Copy);
            if (mWindow != nullptr) Unselect();  // the next one is for the line
            return;
        }
        if (IS_HIGH_SURROGATE(character)) {
            mHighSurrogate = character;
            return;
        }
        std::wstring typed(1, character);
        const wchar_t high = std::exchange(mHighSurrogate, L'\0');
        if (IS_SURROGATE_PAIR(high, character)) typed.insert(0, 1, high);
        Unselect();
        mControl.Type(ToUtf8(typed));
    }

    // --- selecting ------------------------------------------------------------------------------

    void Unselect() {
        if (!mControl.Selection().Empty()) mControl.Select({}, {});
    }

    TextPosition PositionAt(POINT at) const {
        const int row = std::clamp(static_cast<int>(at.y) / mFont.height, 0, mScreen.Rows() - 1);
        const int column = (static_cast<int>(at.x) + mFont.width / 2) / mFont.width;
        return {mControl.FirstShownLine() + row, std::clamp(column, 0, mScreen.Columns())};
    }

    void BeginSelecting(POINT at) {
        SetFocus(mWindow);
        Unselect();
        SetCapture(mWindow);
        mAnchor = PositionAt(at);
    }

    void Extend(POINT at) {
        if (!mAnchor) return;
        ScrollWhileSelecting(at.y < 0 || at.y >= ClientArea().bottom);
        mControl.Select(*mAnchor, PositionAt(at));
    }

    void ScrollWhileSelecting(bool on) {
        if (std::exchange(mScrolling, on) == on) return;
        if (on)
            SetTimer(mWindow, kScrollTimer, kScrollIntervalMs, nullptr);
        else
            KillTimer(mWindow, kScrollTimer);
    }

    /// The further the mouse is outside, the faster it scrolls.
    void OnScrollTimer() {
        POINT at{};
        if (!mAnchor || GetCursorPos(&at) == 0 || ScreenToClient(mWindow, &at) == 0) return;
        const LONG bottom = ClientArea().bottom;
        if (at.y < 0)
            ScrollBy(static_cast<int>(at.y) / mFont.height - 1);
        else if (at.y >= bottom)
            ScrollBy(static_cast<int>(at.y - bottom) / mFont.height + 1);
        Extend(at);
    }

    // --- the context menu -----------------------------------------------------------------------

    /// Empty where Windows shows its own menu, as on the scroll bar.
    std::optional<LRESULT> OnContextMenu(LPARAM where) {
        POINT at = {GET_X_LPARAM(where), GET_Y_LPARAM(where)};
        if (where == -1) {  // opened by the keyboard
            at = {0, 0};
            ClientToScreen(mWindow, &at);
        } else {
            const RECT client = ClientArea();
            POINT inside = at;
            ScreenToClient(mWindow, &inside);
            if (PtInRect(&client, inside) == 0) return std::nullopt;
        }
        const int command = AskForCommand(at);
        // The window may have been destroyed while the menu was open.
        if (command != 0 && mWindow != nullptr)
            mControl.Invoke(static_cast<TerminalCommand>(command));
        return 0;
    }

    /// The number of the command that the user chooses; 0 for none.
    int AskForCommand(POINT at) const {
        const Win32Object<HMENU> menu(CreatePopupMenu());
        AppendEntries(menu.get(), mControl.ContextMenu());
        return static_cast<int>(TrackPopupMenu(menu.get(),
                                               TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, at.x,
                                               at.y, 0, mWindow, nullptr));
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

    // --- text for screen readers ----------------------------------------------------------------

    std::wstring ShownText() const {
        std::wstring text;
        for (int row = 0; row < mScreen.Rows(); ++row) {
            if (row > 0) text += L"\r\n";
            for (const Cell& cell : mScreen.Line(mControl.FirstShownLine() + row))
                AppendLetter(text, cell.character);
            text.resize(text.find_last_not_of(L' ') + 1);
        }
        return text;
    }

    LRESULT GiveText(std::size_t room, wchar_t* into) const {
        if (room == 0 || into == nullptr) return 0;
        const std::wstring text = ShownText().substr(0, room - 1);
        *std::copy(text.begin(), text.end(), into) = L'\0';
        return static_cast<LRESULT>(text.size());
    }

    // Screen readers speak at each event, so text that arrives in pieces raises one for many.
    void AnnounceSoon() {
        if (!mAnnouncing)
            mAnnouncing = SetTimer(mWindow, kAnnounceTimer, kAnnounceIntervalMs, nullptr) != 0;
    }

    void Announce() {
        KillTimer(mWindow, kAnnounceTimer);
        mAnnouncing = false;
        NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, mWindow, OBJID_CLIENT, CHILDID_SELF);
        NotifyWinEvent(EVENT_OBJECT_LIVEREGIONCHANGED, mWindow, OBJID_CLIENT, CHILDID_SELF);
    }

    TerminalControl& mControl;
    TerminalScreen& mScreen;
    HWND mWindow;  // null once it is destroyed
    Win32TerminalFont mFont;
    std::int64_t mShownFirst = 0;         // the first line of the view as last invalidated
    std::optional<TextPosition> mAnchor;  // set while the mouse selects
    bool mScrolling = false;              // the mouse is above or below the text meanwhile
    bool mAnnouncing = false;             // an announcement to screen readers is due
    wchar_t mHighSurrogate = L'\0';       // the first half of a character that is being typed
    int mWheel = 0;                       // accumulated wheel movement below one notch
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

}  // namespace vantor
