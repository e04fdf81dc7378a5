#include "platform/win32/windows/Win32FormWindow.hpp"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "controls/Controls.hpp"
#include "platform/win32/terminal/Win32TerminalView.hpp"
#include "platform/win32/windows/Win32PanelPaint.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

constexpr wchar_t kFormClass[] = L"VantorForm";
constexpr UINT kCatchUp = WM_APP;

bool IsUsable(HWND window) {
    if (window == nullptr || IsWindowVisible(window) == 0) return false;
    // A child of a disabled panel gets no input, but IsWindowEnabled still returns true for it.
    HWND each = window;
    while (IsWindowEnabled(each) != 0) {
        if ((GetWindowLongPtrW(each, GWL_STYLE) & WS_CHILD) == 0) return true;
        each = GetParent(each);
    }
    return false;
}

Win32FormWindow* WindowOf(HWND window) {
    return reinterpret_cast<Win32FormWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

}  // namespace

Win32FormWindow::Win32FormWindow(Win32Context& context, Form& form)
    : mContext(context), mForm(&form) {}

void Win32FormWindow::RegisterClasses(HINSTANCE instance) {
    WNDCLASSW windowClass{};
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{COLOR_BTNFACE + 1});
    windowClass.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(1));
    windowClass.lpfnWndProc = OnFormMessage;
    windowClass.lpszClassName = kFormClass;
    // Fails if an earlier window has registered the classes; other failures show in the next call.
    static_cast<void>(RegisterClassW(&windowClass));
    windowClass.hIcon = nullptr;
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = OnPanelMessage;
    windowClass.lpszClassName = kPanelClass;
    static_cast<void>(RegisterClassW(&windowClass));
    Win32TerminalView::RegisterClasses(instance);
}

RECT Win32FormWindow::FirstPlace() const {
    RECT place = mContext.ToPixels(mForm->Place());
    const RECT area = Win32Context::MonitorAt(place).rcWork;
    const LONG right = std::max(area.right - area.left - (place.right - place.left), LONG{0});
    const LONG down = std::max(area.bottom - area.top - (place.bottom - place.top), LONG{0});
    static_cast<void>(OffsetRect(&place, static_cast<int>(area.left + right / 2 - place.left),
                                 static_cast<int>(area.top + down / 2 - place.top)));
    return place;
}

void Win32FormWindow::Create() {
    RegisterClasses(mContext.Instance());
    mMenuBar = std::make_unique<Win32MenuBar>(mContext, *mForm);
    const RECT place = FirstPlace();
    const DWORD style =
        IsSizable() ? DWORD{WS_OVERLAPPEDWINDOW} : DWORD{WS_POPUP | WS_CAPTION | WS_SYSMENU};
    mWindow = Made(CreateWindowExW(WS_EX_CONTROLPARENT | (IsSizable() ? 0 : WS_EX_DLGMODALFRAME),
                                   kFormClass, ToWide(mForm->Caption()).c_str(),
                                   style | WS_CLIPCHILDREN, place.left, place.top,
                                   place.right - place.left, place.bottom - place.top, nullptr,
                                   mMenuBar->Menu(), mContext.Instance(), nullptr));
    ++mContext.held.windows;
    static_cast<void>(SetWindowLongPtrW(mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this)));
    CreateChildren();
    CreateToolTips();
    OnPlaced();
}

void Win32FormWindow::Destroy() {
    mForm = nullptr;
    if (mWindow == nullptr) return;
    static_cast<void>(SetWindowLongPtrW(mWindow, GWLP_USERDATA, 0));
    for (const auto& child : mChildren) child->ForgetSpokenName();
    static_cast<void>(SetMenu(mWindow, nullptr));  // the bar is destroyed by its owner
    static_cast<void>(DestroyWindow(std::exchange(mWindow, nullptr)));
    --mContext.held.windows;
    mChildren.clear();
    mMenuBar.reset();
}

void Win32FormWindow::CreateChildren() {
    int id = kFirstChildId;
    // In design order: a panel precedes its children, and the order is the tab order.
    for (const ControlDesign& row : mForm->Design().controls) {
        if (!HasWindow(row.kind)) continue;
        mChildren.push_back(std::make_unique<Win32ChildControl>(mContext, mForm->ControlOf(row),
                                                                row, ParentFor(row), id++));
    }
}

HWND Win32FormWindow::ParentFor(const ControlDesign& row) const {
    for (const auto& child : mChildren)
        if (child->Model().Name() == row.parent) return child->Window();
    return mWindow;
}

void Win32FormWindow::CreateToolTips() {
    mToolTips = Made(CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                     WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0, mWindow,
                                     nullptr, mContext.Instance(), nullptr));
    for (const auto& child : mChildren)
        if (!child->Model().ToolTip().empty()) FollowToolTip(*child);
}

void Win32FormWindow::FollowToolTip(const Win32ChildControl& child) {
    std::wstring text = ToWide(child.Model().ToolTip());
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = mWindow;
    tool.uId = reinterpret_cast<UINT_PTR>(child.Window());
    tool.lpszText = text.data();
    SendMessageW(mToolTips, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    if (!text.empty()) SendMessageW(mToolTips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void Win32FormWindow::Show(HWND owner) {
    if (owner != nullptr && owner != mWindow)
        static_cast<void>(
            SetWindowLongPtrW(mWindow, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner)));
    const bool restored = IsIconic(mWindow) == 0 && IsZoomed(mWindow) == 0;
    int how = restored ? SW_SHOW : SW_SHOWNORMAL;
    if (mForm->State() == WindowState::Maximised) how = SW_SHOWMAXIMIZED;
    if (mForm->State() == WindowState::Minimised) how = SW_SHOWMINIMIZED;
    static_cast<void>(ShowWindow(mWindow, how));
    static_cast<void>(UpdateWindow(mWindow));
    KeepFocusUsable();
}

Place Win32FormWindow::NormalPlace() const {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    if (GetWindowPlacement(mWindow, &placement) == 0) return mForm->Place();
    // rcNormalPosition is in workspace coordinates, relative to the monitor's work area.
    RECT place = placement.rcNormalPosition;
    const MONITORINFO monitor = Win32Context::MonitorAt(place);
    static_cast<void>(OffsetRect(&place,
                                 static_cast<int>(monitor.rcWork.left - monitor.rcMonitor.left),
                                 static_cast<int>(monitor.rcWork.top - monitor.rcMonitor.top)));
    return mContext.ToTwips(place);
}

// --- from the model to the window --------------------------------------------------------------

void Win32FormWindow::FollowForm(Property property) {
    if (property == Property::Caption)
        static_cast<void>(SetWindowTextW(mWindow, ToWide(mForm->Caption()).c_str()));
    if (property == Property::Place) MoveWindowToModel();
    if (property == Property::State && IsWindowVisible(mWindow) != 0) Show(nullptr);
}

void Win32FormWindow::MoveWindowToModel() {
    const RECT place = mContext.ToPixels(mForm->Place());
    mMoving = true;
    static_cast<void>(SetWindowPos(mWindow, nullptr, place.left, place.top,
                                   place.right - place.left, place.bottom - place.top,
                                   SWP_NOZORDER | SWP_NOACTIVATE));
    mMoving = false;
    OnPlaced();
}

void Win32FormWindow::FollowControl(const Control& control, Property property) {
    if (control.Kind() == ControlKind::MenuItem) {
        mMenuBar->Follow(control, property, mWindow);
        return;
    }
    Win32ChildControl* const child = Find(control);
    if (child == nullptr) return;
    if (property == Property::ToolTip)
        FollowToolTip(*child);
    else if (IsWindowVisible(mWindow) != 0 && child->FollowLater(property))
        CatchUpSoon();  // a window must be complete when it is first shown
    else
        child->Follow(property);
    if (property == Property::Enabled || property == Property::Visible) KeepFocusUsable();
}

// By a posted message: the modal loops of menus and message boxes dispatch it too.
void Win32FormWindow::CatchUpSoon() {
    if (std::exchange(mCatchingUp, true)) return;
    if (PostMessageW(mWindow, kCatchUp, 0, 0) == 0) CatchUp();  // the queue is full
}

void Win32FormWindow::CatchUp() {
    mCatchingUp = false;
    for (const auto& child : mChildren) child->CatchUp();
}

// With the focus on a hidden or disabled control, keyboard input would be lost.
void Win32FormWindow::KeepFocusUsable() {
    if (GetActiveWindow() != mWindow) return;
    const HWND focus = GetFocus();
    if (focus != nullptr && focus != mWindow && IsUsable(focus)) return;
    static_cast<void>(SetFocus(FirstFocus()));
}

// Only the user's own Tab leads to a picture: Enter would no longer press the default button.
HWND Win32FormWindow::FirstFocus() const {
    for (const bool holders : {true, false}) {
        for (const auto& child : mChildren) {
            const ControlStyle& style = child->Row().style;
            const bool tabStop = (GetWindowLongPtrW(child->Window(), GWL_STYLE) & WS_TABSTOP) != 0;
            const bool wanted = holders ? style.holdsFocus : tabStop && !style.clickable;
            if (wanted && IsUsable(child->Window())) return child->Window();
        }
    }
    return mWindow;
}

// --- from the user to the model -----------------------------------------------------------------

LRESULT CALLBACK Win32FormWindow::OnFormMessage(HWND window, UINT message, WPARAM first,
                                                LPARAM second) {
    Win32FormWindow* const form = WindowOf(window);
    if (form == nullptr) return DefWindowProcW(window, message, first, second);
    const std::shared_ptr<Win32FormWindow> keepAlive = form->shared_from_this();
    const std::shared_ptr<Form> keepModel = form->mForm->weak_from_this().lock();
    LRESULT answer = 0;
    Guarded("Win32FormWindow.OnFormMessage",
            [&] { answer = form->Dispatch(message, first, second); });
    return answer;
}

LRESULT Win32FormWindow::Dispatch(UINT message, WPARAM first, LPARAM second) {
    switch (message) {
        case WM_COMMAND:
            OnCommand(LOWORD(first), HIWORD(first));
            return 0;
        case WM_NOTIFY:
            OnNotify(*reinterpret_cast<const NMHDR*>(second));
            return 0;
        case kChoiceMade:
            if (Win32ChildControl* const list = FindId(static_cast<int>(first))) list->TakeChoice();
            return 0;
        case WM_CLOSE:
            mForm->Unload();
            return 0;
        case WM_MOVE:
        case WM_SIZE:
            OnPlaced();
            return 0;
        case WM_GETMINMAXINFO:
            OnSmallest(*reinterpret_cast<MINMAXINFO*>(second));
            return 0;
        case WM_ACTIVATE:
            OnActivate(LOWORD(first) != WA_INACTIVE);
            return 0;
        case WM_SETFOCUS:
            KeepFocusUsable();
            return 0;
        case WM_PAINT:
            OnPaint();
            return 0;
        case WM_HELP:  // F1 in any control
            mForm->HelpWanted();
            return TRUE;
        case kCatchUp:
            CatchUp();
            return 0;
        case DM_GETDEFID:
            return DefaultButton();
        case WM_QUERYENDSESSION:
            return MayEndSession() ? TRUE : FALSE;
        case WM_ENDSESSION:
            if (first != 0) mForm->Unload();
            return 0;
        case WM_SYSCOLORCHANGE:  // sent to top-level windows only
            for (const auto& child : mChildren) SendMessageW(child->Window(), message, 0, 0);
            return 0;
        case WM_SETCURSOR:
            if (mContext.cursor == nullptr || LOWORD(second) != HTCLIENT) break;
            static_cast<void>(SetCursor(mContext.cursor));
            return TRUE;
        default:
            break;
    }
    return DefWindowProcW(mWindow, message, first, second);
}

void Win32FormWindow::OnCommand(UINT id, UINT notification) {
    if (id == IDOK || id == IDCANCEL) {
        OnDefaultKey(id);
    } else if (MenuItem* const item = mMenuBar->Find(id)) {
        item->Press();
    } else if (Win32ChildControl* const child = FindId(static_cast<int>(id))) {
        child->Commanded(notification);
    }
}

/// Enter without a focused button, and Esc.
void Win32FormWindow::OnDefaultKey(UINT id) {
    for (const auto& child : mChildren) {
        const ControlStyle& style = child->Row().style;
        if (!(id == IDCANCEL ? style.cancelButton : style.defaultButton)) continue;
        if (IsUsable(child->Window())) static_cast<ClickControl&>(child->Model()).Press();
        return;
    }
}

LRESULT Win32FormWindow::DefaultButton() const {
    for (const auto& child : mChildren)
        if (child->Row().style.defaultButton && IsUsable(child->Window()))
            return MAKELRESULT(GetDlgCtrlID(child->Window()), DC_HASDEFID);
    return 0;
}

void Win32FormWindow::OnNotify(const NMHDR& header) {
    if (Win32ChildControl* const child = FindId(static_cast<int>(header.idFrom)))
        child->Notified(header);
}

void Win32FormWindow::OnPlaced() {
    if (mMoving || mForm == nullptr) return;
    RECT outer{};
    RECT inner{};
    if (GetWindowRect(mWindow, &outer) == 0 || GetClientRect(mWindow, &inner) == 0) return;
    WindowState state = WindowState::Normal;
    if (IsZoomed(mWindow) != 0) state = WindowState::Maximised;
    if (IsIconic(mWindow) != 0) state = WindowState::Minimised;
    // A hidden window does not have the model's window state yet.
    if (IsWindowVisible(mWindow) == 0) state = mForm->State();
    // Before the form lays out the controls above it.
    for (const auto& child : mChildren)
        if (child->Model().Kind() == ControlKind::StatusBar) child->KeepToBottom();
    const Place inside = mContext.ToTwips(inner);
    mForm->Placed(mContext.ToTwips(outer), state, {inside.width, inside.height});
}

void Win32FormWindow::OnPaint() {
    PAINTSTRUCT paint{};
    const HWND window = mWindow;
    mTarget = BeginPaint(window, &paint);
    Guarded("Win32FormWindow.OnPaint", [this] { mForm->Painting(); });
    mTarget = nullptr;
    static_cast<void>(EndPaint(window, &paint));
}

void Win32FormWindow::DrawLine(const ThinLine& line) const {
    if (mTarget == nullptr) return;
    // Both end points belong to the line.
    const RECT area = {mContext.ToPixels(line.left), mContext.ToPixels(line.top),
                       mContext.ToPixels(line.right) + 1, mContext.ToPixels(line.bottom) + 1};
    const bool shadow = line.colour == SystemColour::ButtonShadow;
    static_cast<void>(
        FillRect(mTarget, &area, GetSysColorBrush(shadow ? COLOR_BTNSHADOW : COLOR_BTNHIGHLIGHT)));
}

void Win32FormWindow::OnActivate(bool active) {
    if (!active) {
        mFocus = GetFocus();
    } else if (IsUsable(mFocus) && IsChild(mWindow, mFocus) != 0) {
        static_cast<void>(SetFocus(mFocus));
    } else {
        KeepFocusUsable();
    }
}

void Win32FormWindow::OnSmallest(MINMAXINFO& limits) const {
    const Size& smallest = mForm->Design().smallest;
    if (smallest.width <= 0) return;
    limits.ptMinTrackSize = {mContext.ToPixels(smallest.width), mContext.ToPixels(smallest.height)};
}

bool Win32FormWindow::MayEndSession() {
    return mContext.reasonToStay.empty();
}

// --- panels and pictures ------------------------------------------------------------------------

LRESULT CALLBACK Win32FormWindow::OnPanelMessage(HWND window, UINT message, WPARAM first,
                                                 LPARAM second) {
    const HWND root = GetAncestor(window, GA_ROOT);
    if (message == WM_COMMAND || message == WM_NOTIFY)
        return SendMessageW(root, message, first, second);
    Win32FormWindow* const form = root == nullptr ? nullptr : WindowOf(root);
    if (form == nullptr) return DefWindowProcW(window, message, first, second);
    const std::shared_ptr<Win32FormWindow> keepAlive = form->shared_from_this();
    LRESULT answer = 0;
    Guarded("Win32FormWindow.OnPanelMessage",
            [&] { answer = form->HandlePanel(window, message, first, second); });
    return answer;
}

LRESULT Win32FormWindow::HandlePanel(HWND panel, UINT message, WPARAM first, LPARAM second) {
    const Win32ChildControl* const child = FindId(GetDlgCtrlID(panel));
    if (child == nullptr) return DefWindowProcW(panel, message, first, second);
    if (message == WM_ERASEBKGND && PaintPanel(*child, reinterpret_cast<HDC>(first))) return 1;
    std::optional<LRESULT> answer;
    if (child->Row().style.clickable) answer = HandlePicture(*child, message, first, second);
    return answer ? *answer : DefWindowProcW(panel, message, first, second);
}

// A click is a press and a release on the same picture, as on a button. A release alone can end
// another action, such as the double click on the title bar that moves a picture under the mouse.
std::optional<LRESULT> Win32FormWindow::HandlePicture(const Win32ChildControl& picture,
                                                      UINT message, WPARAM first, LPARAM second) {
    const HWND window = picture.Window();
    const bool isKey = first == VK_SPACE || first == VK_RETURN;
    switch (message) {
        case WM_LBUTTONDOWN:
            static_cast<void>(SetCapture(window));
            mPressed = window;
            return 0;
        case WM_LBUTTONUP: {
            if (std::exchange(mPressed, nullptr) != window) return 0;
            static_cast<void>(ReleaseCapture());
            RECT inside{};
            static_cast<void>(GetClientRect(window, &inside));
            if (PtInRect(&inside, {GET_X_LPARAM(second), GET_Y_LPARAM(second)}) != 0)
                Click(picture);
            return 0;
        }
        case WM_CAPTURECHANGED:
            mPressed = nullptr;
            return 0;
        case WM_GETDLGCODE: {
            // A button that takes Enter itself, so that the default button does not get it.
            const auto* const asked = reinterpret_cast<const MSG*>(second);
            const bool enter = asked != nullptr && asked->wParam == VK_RETURN;
            return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON | (enter ? DLGC_WANTMESSAGE : 0);
        }
        case WM_KEYDOWN:
            if (!isKey) return std::nullopt;
            if ((HIWORD(second) & KF_REPEAT) == 0) Click(picture);
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            static_cast<void>(InvalidateRect(window, nullptr, TRUE));
            return 0;
        default:
            return std::nullopt;
    }
}

void Win32FormWindow::Click(const Win32ChildControl& picture) {
    static_cast<PictureBox&>(picture.Model()).Press();
}

bool Win32FormWindow::PaintPanel(const Win32ChildControl& panel, HDC target) const {
    RECT area{};
    static_cast<void>(GetClientRect(panel.Window(), &area));
    if (!PaintPictureBox(mContext, static_cast<PictureBox&>(panel.Model()), panel.Row(), target,
                         area))
        return false;
    if (panel.Row().style.clickable && GetFocus() == panel.Window())
        PaintFocus(mContext, target, area);
    return true;
}

Size Win32FormWindow::TextSize(const Control& control, const std::string& face,
                               const std::string& text) const {
    const Win32ChildControl* const child = Find(control);
    return child == nullptr ? Size{} : child->TextSize(face, text);
}

Win32ChildControl* Win32FormWindow::Find(const Control& control) const {
    const auto found = std::ranges::find_if(
        mChildren, [&control](const auto& child) { return &child->Model() == &control; });
    return found == mChildren.end() ? nullptr : found->get();
}

Win32ChildControl* Win32FormWindow::FindId(int id) const {
    const int index = id - kFirstChildId;
    if (index < 0 || index >= static_cast<int>(mChildren.size())) return nullptr;
    return mChildren[static_cast<std::size_t>(index)].get();
}

}  // namespace vantor
