#include "platform/win32/Win32FormWindow.hpp"

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "controls/Controls.hpp"
#include "platform/win32/Win32PanelPaint.hpp"
#include "platform/win32/Win32TerminalView.hpp"
#include "support/RuntimeError.hpp"

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

Win32FormWindow::Win32FormWindow(Win32Stage& stage, Form& form) : mStage(stage), mForm(&form) {}

void Win32FormWindow::RegisterClasses(HINSTANCE instance) {
    WNDCLASSW windowClass{};
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{COLOR_BTNFACE + 1});
    windowClass.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(1));
    windowClass.lpfnWndProc = OnFormMessage;
    windowClass.lpszClassName = kFormClass;
    // All but the first window find the classes registered; another failure shows in the next call.
    static_cast<void>(RegisterClassW(&windowClass));
    windowClass.hIcon = nullptr;
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = OnPanelMessage;
    windowClass.lpszClassName = kPanelClass;
    static_cast<void>(RegisterClassW(&windowClass));
    Win32TerminalView::RegisterClasses(instance);
}

DWORD Win32FormWindow::Style() const {
    if (mForm->Design().smallest.width > 0) return WS_OVERLAPPEDWINDOW;
    return WS_POPUP | WS_CAPTION | WS_SYSMENU;
}

void Win32FormWindow::Create() {
    RegisterClasses(mStage.Instance());
    mMenuBar = std::make_unique<Win32MenuBar>(mStage, *mForm);
    const RECT place = mStage.ToPixels(mForm->Place());
    const bool sizable = mForm->Design().smallest.width > 0;
    mWindow =
        CreateWindowExW(WS_EX_CONTROLPARENT | (sizable ? 0 : WS_EX_DLGMODALFRAME), kFormClass,
                        ToWide(mForm->Caption()).c_str(), Style() | WS_CLIPCHILDREN, place.left,
                        place.top, place.right - place.left, place.bottom - place.top, nullptr,
                        mMenuBar->Handle(), mStage.Instance(), nullptr);
    if (mWindow == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory);
    ++mStage.held.windows;
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
    --mStage.held.windows;
    mChildren.clear();
    mMenuBar.reset();
}

void Win32FormWindow::CreateChildren() {
    int id = kFirstChildId;
    // In design order: a panel precedes its children, and the order is the tab order.
    for (const ControlDesign& row : mForm->Design().controls) {
        if (!HasWindow(row.kind)) continue;
        mChildren.push_back(std::make_unique<Win32ChildControl>(mStage, mForm->ControlOf(row), row,
                                                                ParentFor(row), id++));
    }
}

HWND Win32FormWindow::ParentFor(const ControlDesign& row) const {
    for (const auto& child : mChildren)
        if (child->Model().Name() == row.parent) return child->Window();
    return mWindow;
}

void Win32FormWindow::CreateToolTips() {
    mToolTips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0, mWindow,
                                nullptr, mStage.Instance(), nullptr);
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
    int how = SW_SHOW;
    if (mForm->State() == WindowState::Maximised) how = SW_SHOWMAXIMIZED;
    if (mForm->State() == WindowState::Minimised) how = SW_SHOWMINIMIZED;
    static_cast<void>(ShowWindow(mWindow, how));
    static_cast<void>(UpdateWindow(mWindow));
    KeepFocusUsable();
}

void Win32FormWindow::Hide() {
    static_cast<void>(ShowWindow(mWindow, SW_HIDE));
}

// --- from the model to the window --------------------------------------------------------------

void Win32FormWindow::FollowForm(Property property) {
    if (property == Property::Caption)
        static_cast<void>(SetWindowTextW(mWindow, ToWide(mForm->Caption()).c_str()));
    if (property == Property::Place) MoveWindowToModel();
    if (property == Property::State && IsWindowVisible(mWindow) != 0) Show(nullptr);
}

void Win32FormWindow::MoveWindowToModel() {
    const RECT place = mStage.ToPixels(mForm->Place());
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
    for (const auto& child : mChildren) {
        const bool tabStop = (GetWindowLongPtrW(child->Window(), GWL_STYLE) & WS_TABSTOP) != 0;
        if (!tabStop || !IsUsable(child->Window())) continue;
        static_cast<void>(SetFocus(child->Window()));
        return;
    }
    static_cast<void>(SetFocus(mWindow));
}

// --- from the user to the model -----------------------------------------------------------------

LRESULT CALLBACK Win32FormWindow::OnFormMessage(HWND window, UINT message, WPARAM first,
                                                LPARAM second) {
    Win32FormWindow* const form = WindowOf(window);
    if (form == nullptr) return DefWindowProcW(window, message, first, second);
    const std::shared_ptr<Win32FormWindow> keepAlive = form->shared_from_this();
    return form->Handle(message, first, second);
}

LRESULT Win32FormWindow::Handle(UINT message, WPARAM first, LPARAM second) {
    switch (message) {
        case WM_COMMAND:
            OnCommand(LOWORD(first), HIWORD(first));
            return 0;
        case WM_NOTIFY:
            return OnNotify(*reinterpret_cast<const NMHDR*>(second));
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
            if (mStage.cursor == nullptr || LOWORD(second) != HTCLIENT) break;
            static_cast<void>(SetCursor(mStage.cursor));
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
        if (child->Model().Kind() == ControlKind::CommandButton && notification == BN_CLICKED)
            static_cast<ClickControl&>(child->Model()).Press();
        if (child->Model().Kind() == ControlKind::ComboBox) child->ListNotified(notification);
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

LRESULT Win32FormWindow::OnNotify(const NMHDR& header) {
    Win32ChildControl* const child = FindId(static_cast<int>(header.idFrom));
    if (child == nullptr) return 0;
    child->TreeNotified(header);
    if (child->Model().Kind() != ControlKind::ListView || header.code != NM_CLICK) return 0;
    auto& list = static_cast<ListView&>(child->Model());
    list.selectedRow = static_cast<int>(
        SendMessageW(child->Window(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    list.Click.Raise();
    return 0;
}

void Win32FormWindow::OnPlaced() {
    if (mMoving || mForm == nullptr) return;
    RECT outer{};
    RECT inner{};
    if (GetWindowRect(mWindow, &outer) == 0 || GetClientRect(mWindow, &inner) == 0) return;
    WindowState state = WindowState::Normal;
    if (IsZoomed(mWindow) != 0) state = WindowState::Maximised;
    if (IsIconic(mWindow) != 0) state = WindowState::Minimised;
    // A hidden window does not have the state yet that the model wants for it.
    if (IsWindowVisible(mWindow) == 0) state = mForm->State();
    // Before the form lays out what is above it.
    for (const auto& child : mChildren)
        if (child->Model().Kind() == ControlKind::StatusBar) child->KeepToBottom();
    const Place inside = mStage.ToTwips(inner);
    mForm->Placed(mStage.ToTwips(outer), state, {inside.width, inside.height});
}

void Win32FormWindow::OnPaint() {
    PAINTSTRUCT paint{};
    const HWND window = mWindow;
    mTarget = BeginPaint(window, &paint);
    mForm->Painting();
    mTarget = nullptr;
    static_cast<void>(EndPaint(window, &paint));
}

void Win32FormWindow::DrawLine(const ThinLine& line) const {
    if (mTarget == nullptr) return;
    // Both end points belong to the line.
    const RECT area = {mStage.ToPixels(line.left), mStage.ToPixels(line.top),
                       mStage.ToPixels(line.right) + 1, mStage.ToPixels(line.bottom) + 1};
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
    limits.ptMinTrackSize = {mStage.ToPixels(smallest.width), mStage.ToPixels(smallest.height)};
}

bool Win32FormWindow::MayEndSession() {
    return mStage.reasonToStay.empty();
}

LRESULT CALLBACK Win32FormWindow::OnPanelMessage(HWND window, UINT message, WPARAM first,
                                                 LPARAM second) {
    const HWND form = GetAncestor(window, GA_ROOT);
    Win32FormWindow* const owner = form == nullptr ? nullptr : WindowOf(form);
    switch (message) {
        case WM_COMMAND:
        case WM_NOTIFY:
            return SendMessageW(form, message, first, second);
        case WM_LBUTTONUP:
            if (owner != nullptr) {
                const std::shared_ptr<Win32FormWindow> keepAlive = owner->shared_from_this();
                owner->ClickPanel(GetDlgCtrlID(window));
            }
            return 0;
        case WM_ERASEBKGND:
            if (owner != nullptr && owner->PaintPanel(window, reinterpret_cast<HDC>(first)))
                return 1;
            break;
        default:
            break;
    }
    return DefWindowProcW(window, message, first, second);
}

void Win32FormWindow::ClickPanel(int id) {
    if (Win32ChildControl* const child = FindId(id))
        static_cast<ClickControl&>(child->Model()).Press();
}

bool Win32FormWindow::PaintPanel(HWND panel, HDC target) const {
    Win32ChildControl* const child = FindId(GetDlgCtrlID(panel));
    if (child == nullptr || child->Model().Kind() != ControlKind::PictureBox) return false;
    RECT area{};
    static_cast<void>(GetClientRect(panel, &area));
    return PaintPictureBox(mStage, static_cast<PictureBox&>(child->Model()), child->Row(), target,
                           area);
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
