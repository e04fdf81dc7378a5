#include "platform/win32/terminal/Win32TerminalView.hpp"

#include <windowsx.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "platform/win32/terminal/Win32CellLooks.hpp"
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
    switch (key) {
        case VK_UP:
            return "\x1b[A";
        case VK_DOWN:
            return "\x1b[B";
        case VK_RIGHT:
            return "\x1b[C";
        case VK_LEFT:
            return "\x1b[D";
        default:
            return {};
    }
}

}  // namespace

void Win32TerminalView::RegisterClasses(HINSTANCE instance) {
    WNDCLASSW windowClass{};
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_IBEAM);
    windowClass.lpfnWndProc = OnMessage;
    windowClass.lpszClassName = kTerminalClass;
    static_cast<void>(RegisterClassW(&windowClass));
}

Win32TerminalView::Win32TerminalView(Win32Context& context, TerminalControl& control,
                                     const ControlStyle& style, HWND window)
    : mControl(control), mWindow(window), mFont(context, style) {
    static_cast<void>(SetWindowLongPtrW(mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this)));
}

LRESULT CALLBACK Win32TerminalView::OnMessage(HWND window, UINT message, WPARAM first,
                                              LPARAM second) {
    auto* const view =
        reinterpret_cast<Win32TerminalView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (view == nullptr) return DefWindowProcW(window, message, first, second);
    const std::shared_ptr<Win32TerminalView> keepAlive = view->shared_from_this();
    if (message == WM_NCDESTROY) {
        static_cast<void>(SetWindowLongPtrW(window, GWLP_USERDATA, 0));
        view->mWindow = nullptr;
        return DefWindowProcW(window, message, first, second);
    }
    LRESULT answer = 0;
    Guarded("Win32TerminalView.OnMessage", [&] {
        const std::optional<LRESULT> handled = view->Dispatch(message, first, second);
        answer = handled ? *handled : DefWindowProcW(window, message, first, second);
    });
    return answer;
}

/// Empty for messages that DefWindowProc has to handle.
std::optional<LRESULT> Win32TerminalView::Dispatch(UINT message, WPARAM first, LPARAM second) {
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
            OnScrollBar(LOWORD(first));
            return 0;
        case WM_MOUSEWHEEL:
            OnWheel(GET_WHEEL_DELTA_WPARAM(first));
            return 0;
        case WM_TIMER:
            first == kScrollTimer ? OnScrollTimer() : Announce();
            return 0;
        case WM_SETFOCUS:
            static_cast<void>(CreateCaret(mWindow, nullptr, mFont.Width(), kCaretPixels));
            PlaceCaret();
            static_cast<void>(ShowCaret(mWindow));
            return 0;
        case WM_KILLFOCUS:
            static_cast<void>(DestroyCaret());
            return 0;
        case WM_CONTEXTMENU:
            if (OnContextMenu(second)) return 0;
            return std::nullopt;
        // Screen readers get the text here.
        case WM_GETTEXTLENGTH:
            return static_cast<LRESULT>(ShownText().size());
        case WM_GETTEXT:
            return GiveText(first, reinterpret_cast<wchar_t*>(second));
        default:
            break;
    }
    if (OnMouse(message, {GET_X_LPARAM(second), GET_Y_LPARAM(second)})) return 0;
    return OnKey(message, first);
}

std::optional<LRESULT> Win32TerminalView::OnKey(UINT message, WPARAM first) {
    switch (message) {
        case WM_GETDLGCODE:  // Tab, Enter, Esc and the arrows are sent to the line
            return DLGC_WANTALLKEYS | DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_WANTTAB;
        case WM_KEYDOWN:
            if (OnKeyDown(first)) return 0;
            return std::nullopt;
        case WM_CHAR:
            OnCharacter(static_cast<wchar_t>(first));
            return 0;
        default:
            return std::nullopt;
    }
}

bool Win32TerminalView::OnMouse(UINT message, POINT at) {
    switch (message) {
        case WM_LBUTTONDOWN:
            BeginSelecting(at);
            return true;
        case WM_MOUSEMOVE:
            Extend(at);
            return true;
        case WM_LBUTTONUP:
            EndSelecting();
            return true;
        case WM_CAPTURECHANGED:
            mAnchor.reset();
            ScrollWhileSelecting(false);
            return true;
        default:
            return false;
    }
}

// --- painting -----------------------------------------------------------------------------------

void Win32TerminalView::Follow(Property property) {
    if (mWindow == nullptr) return;
    if (property == Property::Repaint || mControl.FirstShownLine() != mShownFirst)
        static_cast<void>(InvalidateRect(mWindow, nullptr, FALSE));
    else if (mControl.Screen().AnyDirty())
        InvalidateDirty();
    if (property == Property::Value && mControl.Screen().AnyDirty()) AnnounceSoon();
    mShownFirst = mControl.FirstShownLine();
    mControl.Screen().Clean();
}

// One rectangle for all dirty rows: however much arrives, there is one call.
void Win32TerminalView::InvalidateDirty() {
    const TerminalScreen& screen = mControl.Screen();
    const auto below = static_cast<int>(screen.TopLine() - mShownFirst);
    int first = screen.Rows();
    int last = -1;
    for (int row = 0; row + below < screen.Rows(); ++row) {
        if (!screen.Dirty(row)) continue;
        first = std::min(first, row + below);
        last = row + below;
    }
    if (last < 0) {
        ShowScrollBar();  // no paint follows that would do it
        return;
    }
    RECT area{};
    static_cast<void>(GetClientRect(mWindow, &area));
    area.top = first * mFont.Height();
    area.bottom = (last + 1) * mFont.Height();
    static_cast<void>(InvalidateRect(mWindow, &area, FALSE));
}

void Win32TerminalView::OnPaint() {
    PAINTSTRUCT paint{};
    const HDC target = BeginPaint(mWindow, &paint);
    mHighContrast = HighContrast();
    const int first = static_cast<int>(paint.rcPaint.top) / mFont.Height();
    const int end = (static_cast<int>(paint.rcPaint.bottom) - 1) / mFont.Height() + 1;
    const HGDIOBJ before = GetCurrentObject(target, OBJ_FONT);
    for (int row = first; row < std::min(end, mControl.Screen().Rows()); ++row)
        PaintRow(target, row);
    static_cast<void>(SelectObject(target, before));
    PaintMargins(target);
    static_cast<void>(EndPaint(mWindow, &paint));
    PlaceCaret();
    ShowScrollBar();
}

void Win32TerminalView::PaintRow(HDC target, int row) const {
    const auto columns = static_cast<std::size_t>(mControl.Screen().Columns());
    const std::int64_t line = mControl.FirstShownLine() + row;
    std::array<Cell, TerminalScreen::kMostColumns> cells{};
    const std::span<const Cell> written = mControl.Screen().Line(line);
    std::copy_n(written.begin(), std::min(written.size(), columns), cells.begin());
    const auto selected = [&](std::size_t column) {
        return mControl.Selection().Contains({line, static_cast<int>(column)});
    };
    for (std::size_t from = 0; from < columns;) {
        std::size_t to = from + 1;
        while (to < columns && LooksLike(cells[to], cells[from]) && selected(to) == selected(from))
            ++to;
        PaintRun(target, {static_cast<int>(from), row}, std::span(cells).subspan(from, to - from),
                 selected(from));
        from = to;
    }
}

/// Cells with equal attributes, at a position in columns and rows. Blinking is not animated:
/// an idle window must use no processor time.
void Win32TerminalView::PaintRun(HDC target, POINT from, std::span<const Cell> run,
                                 bool selected) const {
    std::array<wchar_t, TerminalScreen::kMostColumns> text{};
    std::array<INT, TerminalScreen::kMostColumns> steps{};
    std::ranges::transform(run, text.begin(),
                           [](const Cell& cell) { return LetterOf(cell.character); });
    std::fill_n(steps.begin(), run.size(), mFont.Width());
    const Cell& look = run.front();
    const CellColours colours = ColoursOf(look, selected, mHighContrast);
    const auto count = static_cast<int>(run.size());
    const int left = static_cast<int>(from.x) * mFont.Width();
    const int top = static_cast<int>(from.y) * mFont.Height();
    RECT area = {left, top, left + count * mFont.Width(), top + mFont.Height()};
    static_cast<void>(SelectObject(target, mFont.Face((look.flags & kBold) != 0)));
    static_cast<void>(SetTextColor(target, colours.ink));
    static_cast<void>(SetBkColor(target, colours.ground));
    static_cast<void>(ExtTextOutW(target, left, top, ETO_OPAQUE | ETO_CLIPPED, &area, text.data(),
                                  static_cast<UINT>(count), steps.data()));
    if ((look.flags & kUnderlined) == 0) return;
    area.top = area.bottom - 1;
    static_cast<void>(SetBkColor(target, colours.ink));
    static_cast<void>(ExtTextOutW(target, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr));
}

/// The areas too narrow for another column and too low for another row.
void Win32TerminalView::PaintMargins(HDC target) const {
    RECT client{};
    static_cast<void>(GetClientRect(mWindow, &client));
    RECT right = client;
    right.left = mControl.Screen().Columns() * mFont.Width();
    RECT below = client;
    below.top = mControl.Screen().Rows() * mFont.Height();
    static_cast<void>(FillRect(target, &right, GetSysColorBrush(COLOR_WINDOW)));
    static_cast<void>(FillRect(target, &below, GetSysColorBrush(COLOR_WINDOW)));
}

void Win32TerminalView::PlaceCaret() const {
    if (GetFocus() != mWindow) return;
    const TerminalScreen& screen = mControl.Screen();
    const ScreenCursor cursor = screen.Cursor();
    const auto row = static_cast<int>(screen.TopLine() - mControl.FirstShownLine()) + cursor.row;
    const bool shown = screen.modes.cursorVisible && row < screen.Rows();
    const int left = shown ? cursor.column * mFont.Width() : -2 * mFont.Width();
    static_cast<void>(SetCaretPos(left, (row + 1) * mFont.Height() - kCaretPixels));
}

// --- size and scrolling -------------------------------------------------------------------------

void Win32TerminalView::OnSize() {
    RECT client{};
    if (GetClientRect(mWindow, &client) == 0 || client.right <= 0 || client.bottom <= 0) return;
    mControl.ScreenSize(static_cast<int>(client.right) / mFont.Width(),
                        static_cast<int>(client.bottom) / mFont.Height());
    static_cast<void>(InvalidateRect(mWindow, nullptr, FALSE));
}

// Always shown; otherwise the first line that scrolls off would change the width of the text.
void Win32TerminalView::ShowScrollBar() {
    const TerminalScreen& screen = mControl.Screen();
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL | SIF_DISABLENOSCROLL;
    info.nMax = static_cast<int>(screen.EndLine() - screen.FirstLine()) - 1;
    info.nPage = static_cast<UINT>(screen.Rows());
    info.nPos = static_cast<int>(mControl.FirstShownLine() - screen.FirstLine());
    static_cast<void>(SetScrollInfo(mWindow, SB_VERT, &info, TRUE));
}

void Win32TerminalView::OnScrollBar(WORD request) {
    const int page = std::max(mControl.Screen().Rows() - 1, 1);
    SCROLLINFO info{};
    switch (request) {
        case SB_LINEUP:
            return ScrollBy(-1);
        case SB_LINEDOWN:
            return ScrollBy(1);
        case SB_PAGEUP:
            return ScrollBy(-page);
        case SB_PAGEDOWN:
            return ScrollBy(page);
        case SB_TOP:
            return mControl.ScrollTo(mControl.Screen().FirstLine());
        case SB_BOTTOM:
            return mControl.ScrollTo(mControl.Screen().TopLine());
        case SB_THUMBTRACK:
            info.cbSize = sizeof info;
            info.fMask = SIF_TRACKPOS;
            if (GetScrollInfo(mWindow, SB_VERT, &info) != 0)
                mControl.ScrollTo(mControl.Screen().FirstLine() + info.nTrackPos);
            return;
        default:
            return;
    }
}

void Win32TerminalView::OnWheel(int delta) {
    UINT lines = 3;
    static_cast<void>(SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0));
    const int step = static_cast<int>(
        std::min(lines, static_cast<UINT>(std::max(mControl.Screen().Rows() - 1, 1))));
    mWheel += delta;
    const int notches = mWheel / WHEEL_DELTA;
    mWheel -= notches * WHEEL_DELTA;
    ScrollBy(-notches * step);
}

void Win32TerminalView::ScrollBy(int lines) {
    const TerminalScreen& screen = mControl.Screen();
    mControl.ScrollTo(
        std::clamp(mControl.FirstShownLine() + lines, screen.FirstLine(), screen.TopLine()));
}

// --- keys ---------------------------------------------------------------------------------------

/// Keys without a character. True when the terminal handles the key.
bool Win32TerminalView::OnKeyDown(WPARAM key) {
    const bool shift = IsDown(VK_SHIFT);
    const bool control = IsDown(VK_CONTROL);
    const int page = std::max(mControl.Screen().Rows() - 1, 1);
    if (key == VK_INSERT && control != shift) {
        mControl.Invoke(control ? TerminalCommand::Copy : TerminalCommand::Paste);
        return true;
    }
    if (shift && (key == VK_PRIOR || key == VK_NEXT)) {
        ScrollBy(key == VK_PRIOR ? -page : page);
        return true;
    }
    const std::string_view sequence = SequenceOf(key);
    if (sequence.empty()) return false;
    Unselect();
    mControl.Key(sequence);
    return true;
}

// Ctrl+C and Ctrl+V are characters for the line; only while text is selected, Ctrl+C copies.
void Win32TerminalView::OnCharacter(wchar_t character) {
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

// --- selecting ----------------------------------------------------------------------------------

void Win32TerminalView::Unselect() {
    if (!mControl.Selection().Empty()) mControl.Select({}, {});
}

TextPosition Win32TerminalView::PositionAt(POINT at) const {
    const TerminalScreen& screen = mControl.Screen();
    const int row = std::clamp(static_cast<int>(at.y) / mFont.Height(), 0, screen.Rows() - 1);
    const int column = (static_cast<int>(at.x) + mFont.Width() / 2) / mFont.Width();
    return {mControl.FirstShownLine() + row, std::clamp(column, 0, screen.Columns())};
}

void Win32TerminalView::BeginSelecting(POINT at) {
    static_cast<void>(SetFocus(mWindow));
    Unselect();
    static_cast<void>(SetCapture(mWindow));
    mAnchor = PositionAt(at);
}

void Win32TerminalView::Extend(POINT at) {
    if (!mAnchor) return;
    RECT client{};
    static_cast<void>(GetClientRect(mWindow, &client));
    ScrollWhileSelecting(at.y < 0 || at.y >= client.bottom);
    mControl.Select(*mAnchor, PositionAt(at));
}

void Win32TerminalView::EndSelecting() {
    if (mAnchor) static_cast<void>(ReleaseCapture());
}

void Win32TerminalView::ScrollWhileSelecting(bool on) {
    if (std::exchange(mScrolling, on) == on) return;
    if (on)
        static_cast<void>(SetTimer(mWindow, kScrollTimer, kScrollIntervalMs, nullptr));
    else
        static_cast<void>(KillTimer(mWindow, kScrollTimer));
}

/// The further the mouse is outside, the faster it scrolls.
void Win32TerminalView::OnScrollTimer() {
    POINT at{};
    RECT client{};
    if (!mAnchor || GetCursorPos(&at) == 0 || ScreenToClient(mWindow, &at) == 0 ||
        GetClientRect(mWindow, &client) == 0)
        return;
    if (at.y < 0)
        ScrollBy(static_cast<int>(at.y) / mFont.Height() - 1);
    else if (at.y >= client.bottom)
        ScrollBy(static_cast<int>(at.y - client.bottom) / mFont.Height() + 1);
    Extend(at);
}

// --- the context menu ---------------------------------------------------------------------------

/// False where Windows shows its own menu, as on the scroll bar.
bool Win32TerminalView::OnContextMenu(LPARAM where) {
    POINT at = {GET_X_LPARAM(where), GET_Y_LPARAM(where)};
    RECT client{};
    static_cast<void>(GetClientRect(mWindow, &client));
    if (where == -1) {  // opened by the keyboard
        at = {0, 0};
        static_cast<void>(ClientToScreen(mWindow, &at));
    } else {
        POINT inside = at;
        static_cast<void>(ScreenToClient(mWindow, &inside));
        if (PtInRect(&client, inside) == 0) return false;
    }
    const int command = AskForCommand(at);
    // The window may have been destroyed while the menu was open.
    if (command != 0 && mWindow != nullptr) mControl.Invoke(static_cast<TerminalCommand>(command));
    return true;
}

/// The number of the command that the user chooses; 0 for none.
int Win32TerminalView::AskForCommand(POINT at) const {
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) return 0;
    for (const OfferedCommand& offered : mControl.ContextMenu()) {
        if (offered.startsGroup) static_cast<void>(AppendMenuW(menu, MF_SEPARATOR, 0, nullptr));
        static_cast<void>(AppendMenuW(menu, offered.enabled ? MF_STRING : MF_STRING | MF_GRAYED,
                                      static_cast<UINT_PTR>(offered.command),
                                      ToWide(offered.caption).c_str()));
    }
    const int chosen = static_cast<int>(TrackPopupMenu(
        menu, TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, at.x, at.y, 0, mWindow, nullptr));
    static_cast<void>(DestroyMenu(menu));
    return chosen;
}

// --- text for screen readers --------------------------------------------------------------------

std::wstring Win32TerminalView::ShownText() const {
    std::wstring text;
    for (int row = 0; row < mControl.Screen().Rows(); ++row) {
        if (row > 0) text += L"\r\n";
        for (const Cell& cell : mControl.Screen().Line(mControl.FirstShownLine() + row))
            text += LetterOf(cell.character);
        text.resize(text.find_last_not_of(L' ') + 1);
    }
    return text;
}

// Screen readers speak at each event, so text that arrives in pieces raises one for many.
void Win32TerminalView::AnnounceSoon() {
    if (!mAnnouncing)
        mAnnouncing = SetTimer(mWindow, kAnnounceTimer, kAnnounceIntervalMs, nullptr) != 0;
}

void Win32TerminalView::Announce() {
    static_cast<void>(KillTimer(mWindow, kAnnounceTimer));
    mAnnouncing = false;
    NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, mWindow, OBJID_CLIENT, CHILDID_SELF);
    NotifyWinEvent(EVENT_OBJECT_LIVEREGIONCHANGED, mWindow, OBJID_CLIENT, CHILDID_SELF);
}

LRESULT Win32TerminalView::GiveText(std::size_t room, wchar_t* into) const {
    if (room == 0 || into == nullptr) return 0;
    const std::wstring text = ShownText().substr(0, room - 1);
    *std::copy(text.begin(), text.end(), into) = L'\0';
    return static_cast<LRESULT>(text.size());
}

}  // namespace vantor
