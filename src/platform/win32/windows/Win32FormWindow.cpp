#include "platform/win32/windows/Win32FormWindow.hpp"

#include <commctrl.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "controls/Controls.hpp"
#include "platform/win32/services/Win32DisabledWindows.hpp"
#include "platform/win32/terminal/Win32TerminalView.hpp"
#include "platform/win32/windows/Win32ChildControl.hpp"
#include "platform/win32/windows/Win32MenuBar.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

constexpr wchar_t kFormClass[] = L"VantorForm";
constexpr UINT kCatchUp = WM_APP;

/// The window of one form. Handlers may unload the form; the object then outlives its current
/// message, without a window and without access to the model.
class Win32FormWindow : public std::enable_shared_from_this<Win32FormWindow> {
public:
    Win32FormWindow(Win32Context& context, Form& form) : mContext(context), mForm(&form) {}
    ~Win32FormWindow() { Destroy(); }
    Win32FormWindow(const Win32FormWindow&) = delete;
    Win32FormWindow& operator=(const Win32FormWindow&) = delete;

    void Create() {
        RegisterClasses(mContext.Instance());
        mMenuBar.emplace(mContext, *mForm);
        const RECT place = Win32Context::Centred(mContext.WindowPlace(mForm->Place()));
        const bool sizable = mForm->Design().smallest.width > 0;
        const DWORD style =
            sizable ? DWORD{WS_OVERLAPPEDWINDOW} : DWORD{WS_POPUP | WS_CAPTION | WS_SYSMENU};
        mWindow = Made(CreateWindowExW(WS_EX_CONTROLPARENT | (sizable ? 0 : WS_EX_DLGMODALFRAME),
                                       kFormClass, ToWide(mForm->Caption()).c_str(),
                                       style | WS_CLIPCHILDREN, place.left, place.top,
                                       place.right - place.left, place.bottom - place.top, nullptr,
                                       mMenuBar->Menu(), mContext.Instance(), nullptr));
        ++mContext.held.windows;
        SetWindowLongPtrW(mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        CreateChildren();
        CreateToolTips();
        OnPlaced();
        mContext.formWindows.push_back(mWindow);
    }

    /// Destroys the window; the model is not accessed afterwards.
    void Destroy() {
        mForm = nullptr;
        if (mWindow == nullptr) return;
        std::erase(mContext.formWindows, mWindow);
        SetWindowLongPtrW(mWindow, GWLP_USERDATA, 0);
        for (const auto& child : mChildren) child->ForgetSpokenName();
        SetMenu(mWindow, nullptr);  // the bar is destroyed by its owner
        DestroyWindow(std::exchange(mWindow, nullptr));
        --mContext.held.windows;
        mChildren.clear();
        mMenuBar.reset();
    }

    HWND WindowHandle() const { return mWindow; }

    void Show(HWND owner) {
        if (owner != nullptr && owner != mWindow)
            SetWindowLongPtrW(mWindow, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
        int how = IsIconic(mWindow) == 0 && IsZoomed(mWindow) == 0 ? SW_SHOW : SW_SHOWNORMAL;
        if (mForm->State() == WindowState::Maximised) how = SW_SHOWMAXIMIZED;
        if (mForm->State() == WindowState::Minimised) how = SW_SHOWMINIMIZED;
        ShowWindow(mWindow, how);
        if (how == SW_SHOW) SetActiveWindow(mWindow);  // also one that was visible before
        UpdateWindow(mWindow);
        KeepFocusUsable();
    }

    Place NormalPlace() const {
        WINDOWPLACEMENT placement{};
        placement.length = sizeof placement;
        if (GetWindowPlacement(mWindow, &placement) == 0) return mForm->Place();
        // rcNormalPosition is in workspace coordinates, relative to the monitor's work area.
        RECT place = placement.rcNormalPosition;
        const MONITORINFO monitor = Win32Context::MonitorAt(place);
        OffsetRect(&place, static_cast<int>(monitor.rcWork.left - monitor.rcMonitor.left),
                   static_cast<int>(monitor.rcWork.top - monitor.rcMonitor.top));
        return mContext.FormPlace(place);
    }

    void FollowForm(Property property) {
        if (property == Property::Caption)
            SetWindowTextW(mWindow, ToWide(mForm->Caption()).c_str());
        if (property == Property::Place) MoveWindowToModel();
        if (property == Property::State && IsWindowVisible(mWindow) != 0) Show(nullptr);
    }

    void FollowControl(const Control& control, Property property) {
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

    void DrawLine(const ThinLine& line) const {
        if (mTarget == nullptr) return;
        // Both end points belong to the line.
        const RECT area = {mContext.ToPixels(line.left), mContext.ToPixels(line.top),
                           mContext.ToPixels(line.right) + 1, mContext.ToPixels(line.bottom) + 1};
        const bool shadow = line.colour == SystemColour::ButtonShadow;
        FillRect(mTarget, &area, GetSysColorBrush(shadow ? COLOR_BTNSHADOW : COLOR_BTNHIGHLIGHT));
    }

    Size TextSize(const Control& control, const std::string& face, const std::string& text) const {
        const Win32ChildControl* const child = Find(control);
        if (child == nullptr) return {};
        const SIZE size = child->TextExtent(ToWide(text), face);
        return {mContext.ToTwips(size.cx), mContext.ToTwips(size.cy)};
    }

    Size TerminalSize(const Control& control, int columns, int rows) const {
        const Win32ChildControl* const child = Find(control);
        return child == nullptr ? Size{} : child->TerminalSize(columns, rows);
    }

private:
    // --- creation -------------------------------------------------------------------------------

    static void RegisterClasses(HINSTANCE instance) {
        WNDCLASSW windowClass{};
        windowClass.hInstance = instance;
        windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        windowClass.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{COLOR_BTNFACE + 1});
        windowClass.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(1));
        windowClass.lpfnWndProc = OnFormMessage;
        windowClass.lpszClassName = kFormClass;
        // Fails if an earlier window has registered the classes; other failures show in the next
        // call.
        RegisterClassW(&windowClass);
        windowClass.hIcon = nullptr;
        windowClass.style = CS_HREDRAW | CS_VREDRAW;
        windowClass.lpfnWndProc = OnPanelMessage;
        windowClass.lpszClassName = kPanelClass;
        RegisterClassW(&windowClass);
        RegisterTerminalClass(instance);
    }

    void CreateChildren() {
        int id = kFirstChildId;
        // In design order: a panel precedes its children, and the order is the tab order.
        for (const ControlDesign& row : mForm->Design().controls) {
            if (row.kind == ControlKind::MenuItem) continue;
            mChildren.push_back(
                MakeChild({mContext, mForm->ControlOf(row), row.style}, ParentFor(row), id++));
        }
    }

    HWND ParentFor(const ControlDesign& row) const {
        for (const auto& child : mChildren)
            if (child->Model().Name() == row.parent) return child->Window();
        return mWindow;
    }

    void CreateToolTips() {
        mToolTips = Made(CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                         WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0,
                                         mWindow, nullptr, mContext.Instance(), nullptr));
        for (const auto& child : mChildren)
            if (!child->Model().ToolTip().empty()) FollowToolTip(*child);
    }

    // --- from the model to the window -----------------------------------------------------------

    void FollowToolTip(const Win32ChildControl& child) {
        std::wstring text = ToWide(child.Model().ToolTip());
        TTTOOLINFOW tool{};
        tool.cbSize = sizeof tool;
        tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
        tool.hwnd = mWindow;
        tool.uId = reinterpret_cast<UINT_PTR>(child.Window());
        tool.lpszText = text.data();
        const auto lParam = reinterpret_cast<LPARAM>(&tool);
        SendMessageW(mToolTips, TTM_DELTOOLW, 0, lParam);
        if (!text.empty()) SendMessageW(mToolTips, TTM_ADDTOOLW, 0, lParam);
    }

    void MoveWindowToModel() {
        const RECT place = mContext.WindowPlace(mForm->Place());
        mMoving = true;
        SetWindowPos(mWindow, nullptr, place.left, place.top, place.right - place.left,
                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
        mMoving = false;
        OnPlaced();
    }

    // By a posted message: the modal loops of menus and message boxes dispatch it too.
    void CatchUpSoon() {
        if (std::exchange(mCatchingUp, true)) return;
        if (PostMessageW(mWindow, kCatchUp, 0, 0) == 0) CatchUp();  // the queue is full
    }

    void CatchUp() {
        mCatchingUp = false;
        for (const auto& child : mChildren) child->CatchUp();
    }

    // With the focus on a hidden or disabled control, keyboard input would be lost.
    void KeepFocusUsable() {
        if (GetActiveWindow() != mWindow) return;
        const HWND focus = GetFocus();
        if (focus != nullptr && focus != mWindow && IsUsable(focus)) return;
        SetFocus(FirstFocus());
    }

    // Only the user's own Tab leads to a picture: Enter would no longer press the default button.
    HWND FirstFocus() const {
        for (const bool holders : {true, false}) {
            for (const auto& child : mChildren) {
                const HWND window = child->Window();
                const ControlStyle& style = child->Style();
                const bool tabStop = (GetWindowLongPtrW(window, GWL_STYLE) & WS_TABSTOP) != 0;
                const bool wanted = holders ? style.holdsFocus : tabStop && !style.clickable;
                if (wanted && IsUsable(window)) return window;
            }
        }
        return mWindow;
    }

    // --- from the user to the model -------------------------------------------------------------

    static LRESULT CALLBACK OnFormMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        Win32FormWindow* const form = Of(window);
        if (form == nullptr) return DefWindowProcW(window, message, wParam, lParam);
        const std::shared_ptr<Win32FormWindow> keepAlive = form->shared_from_this();
        const std::shared_ptr<Form> keepModel = form->mForm->weak_from_this().lock();
        LRESULT answer = 0;
        Guarded("Win32FormWindow.OnFormMessage",
                [&] { answer = form->Dispatch(message, wParam, lParam); });
        return answer;
    }

    static LRESULT CALLBACK OnPanelMessage(HWND window, UINT message, WPARAM wParam,
                                           LPARAM lParam) {
        const HWND root = GetAncestor(window, GA_ROOT);
        if (message == WM_COMMAND || message == WM_NOTIFY)
            return SendMessageW(root, message, wParam, lParam);
        Win32FormWindow* const form = root == nullptr ? nullptr : Of(root);
        if (form == nullptr) return DefWindowProcW(window, message, wParam, lParam);
        const std::shared_ptr<Win32FormWindow> keepAlive = form->shared_from_this();
        LRESULT answer = 0;
        Guarded("Win32FormWindow.OnPanelMessage", [&] {
            const auto id = static_cast<UINT_PTR>(GetDlgCtrlID(window));
            const std::optional<LRESULT> handled = form->ToChild(id, message, wParam, lParam);
            answer = handled ? *handled : DefWindowProcW(window, message, wParam, lParam);
        });
        return answer;
    }

    static Win32FormWindow* Of(HWND window) {
        return reinterpret_cast<Win32FormWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    }

    LRESULT Dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_COMMAND:
                OnCommand(wParam, lParam);
                return 0;
            case WM_NOTIFY:
                ToChild(reinterpret_cast<const NMHDR*>(lParam)->idFrom, message, wParam, lParam);
                return 0;
            case kChoiceMade:
                ToChild(wParam, message, wParam, lParam);
                return 0;
            case WM_MOVE:
            case WM_SIZE:
                OnPlaced();
                return 0;
            case WM_ACTIVATE:
                OnActivate(LOWORD(wParam));
                return 0;
            case WM_SETFOCUS:
                KeepFocusUsable();
                return 0;
            case WM_PAINT:
                OnPaint();
                return 0;
            case kCatchUp:
                CatchUp();
                return 0;
            case DM_GETDEFID:
                return DefaultButton();
            default:
                return DispatchOther(message, wParam, lParam);
        }
    }

    /// Messages that concern the window as a whole.
    LRESULT DispatchOther(UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_CLOSE:
                mForm->Unload();
                return 0;
            case WM_GETMINMAXINFO:
                OnSmallest(*reinterpret_cast<MINMAXINFO*>(lParam));
                return 0;
            case WM_HELP:  // F1 in any control
                mForm->HelpWanted();
                return TRUE;
            case WM_QUERYENDSESSION:
                return mContext.reasonToStay.empty() ? TRUE : FALSE;
            case WM_ENDSESSION:
                if (wParam != FALSE) mForm->Unload();
                return 0;
            case WM_SYSCOLORCHANGE:  // sent to top-level windows only
                for (const auto& child : mChildren) SendMessageW(child->Window(), message, 0, 0);
                return 0;
            case WM_SIZING:
            case WM_EXITSIZEMOVE:
                for (const auto& child : mChildren) child->ParentSizing(message == WM_SIZING);
                break;
            case WM_SETCURSOR:
                if (mContext.cursor == nullptr || LOWORD(lParam) != HTCLIENT) break;
                SetCursor(mContext.cursor);
                return TRUE;
            default:
                break;
        }
        return DefWindowProcW(mWindow, message, wParam, lParam);
    }

    void OnCommand(WPARAM wParam, LPARAM lParam) {
        const UINT id = LOWORD(wParam);
        if (id == IDOK || id == IDCANCEL)
            OnDefaultKey(id);
        else if (ClickControl* const item = mMenuBar->Find(id))
            item->Press();
        else
            ToChild(id, WM_COMMAND, wParam, lParam);
    }

    /// Enter without a focused button, and Esc.
    void OnDefaultKey(UINT id) {
        for (const auto& child : mChildren) {
            const ControlStyle& style = child->Style();
            if (!(id == IDCANCEL ? style.cancelButton : style.defaultButton)) continue;
            if (IsUsable(child->Window()))
                child->OnMessage(WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
            return;
        }
    }

    LRESULT DefaultButton() const {
        for (const auto& child : mChildren)
            if (child->Style().defaultButton && IsUsable(child->Window()))
                return MAKELRESULT(GetDlgCtrlID(child->Window()), DC_HASDEFID);
        return 0;
    }

    void OnPlaced() {
        if (mMoving || mForm == nullptr) return;
        RECT outer{};
        RECT inner{};
        if (GetWindowRect(mWindow, &outer) == 0 || GetClientRect(mWindow, &inner) == 0) return;
        WindowState state = WindowState::Normal;
        if (IsZoomed(mWindow) != 0) state = WindowState::Maximised;
        if (IsIconic(mWindow) != 0) state = WindowState::Minimised;
        // A hidden window does not have the model's window state yet.
        if (IsWindowVisible(mWindow) == 0) state = mForm->State();
        // Before the form lays out the controls above its status bar.
        for (const auto& child : mChildren) child->ParentResized();
        const Place inside = mContext.ToTwips(inner);
        mForm->Placed(mContext.FormPlace(outer), state, {inside.width, inside.height});
    }

    void OnPaint() {
        PAINTSTRUCT paint{};
        const HWND window = mWindow;
        mTarget = BeginPaint(window, &paint);
        Guarded("Win32FormWindow.OnPaint", [this] { mForm->Painting(); });
        mTarget = nullptr;
        EndPaint(window, &paint);
    }

    void OnActivate(WORD activation) {
        if (activation == WA_INACTIVE)
            mFocus = GetFocus();
        else if (IsUsable(mFocus) && IsChild(mWindow, mFocus) != 0)
            SetFocus(mFocus);
        else
            KeepFocusUsable();
    }

    void OnSmallest(MINMAXINFO& limits) const {
        const auto [width, height] = mForm->Design().smallest;
        const RECT smallest = mContext.WindowPlace({0, 0, width, height});
        if (width > 0) limits.ptMinTrackSize = {smallest.right, smallest.bottom};
    }

    Win32ChildControl* Find(const Control& control) const {
        const auto found = std::ranges::find_if(
            mChildren, [&control](const auto& child) { return &child->Model() == &control; });
        return found == mChildren.end() ? nullptr : found->get();
    }

    std::optional<LRESULT> ToChild(UINT_PTR id, UINT message, WPARAM wParam, LPARAM lParam) const {
        const UINT_PTR index = id - kFirstChildId;  // below the first one wraps around
        if (index >= mChildren.size()) return std::nullopt;
        return mChildren[index]->OnMessage(message, wParam, lParam);
    }

    Win32Context& mContext;
    Form* mForm;  // null once destroyed
    HWND mWindow = nullptr;
    HWND mToolTips = nullptr;
    HWND mFocus = nullptr;  // the child that had the focus when the window was left
    std::optional<Win32MenuBar> mMenuBar;
    std::vector<std::unique_ptr<Win32ChildControl>> mChildren;
    HDC mTarget = nullptr;     // while the form paints itself
    bool mCatchingUp = false;  // a kCatchUp message is posted
    bool mMoving = false;      // the model moves the window: do not notify it
};

/// Owns the window; destroyed when the form unloads.
class Win32FormPeer : public FormPeer {
public:
    Win32FormPeer(Win32Context& context, Win32MessagePump& pump, Form& form)
        : mPump(pump), mForm(form), mWindow(std::make_shared<Win32FormWindow>(context, form)) {
        mWindow->Create();
    }
    ~Win32FormPeer() override {
        // Before the window closes; otherwise Windows would activate a window of another program.
        mDisabled.reset();
        mWindow->Destroy();
    }
    Win32FormPeer(const Win32FormPeer&) = delete;
    Win32FormPeer& operator=(const Win32FormPeer&) = delete;

    void Show(ShowMode mode, NativeWindow owner) override {
        HWND above = reinterpret_cast<HWND>(owner);
        if (mode == ShowMode::Modeless) return mWindow->Show(above);
        // A modal window without an owner is shown above the active window.
        if (above == nullptr) above = GetActiveWindow();
        mDisabled.emplace(mWindow->WindowHandle());
        mWindow->Show(above);
        // The peer is destroyed when the form unloads; the loop keeps its own references.
        Win32MessagePump& pump = mPump;
        const std::shared_ptr<Form> form = mForm.shared_from_this();
        while (!form->Gone() && pump.WaitAndDispatch()) continue;
    }
    void FormChanged(Property property) override { mWindow->FollowForm(property); }
    void ControlChanged(const Control& control, Property property) override {
        mWindow->FollowControl(control, property);
    }
    void DrawLine(const ThinLine& line) override { mWindow->DrawLine(line); }
    Size TextSize(const Control& control, const std::string& face,
                  const std::string& text) const override {
        return mWindow->TextSize(control, face, text);
    }
    Size TerminalSize(const Control& control, int columns, int rows) const override {
        return mWindow->TerminalSize(control, columns, rows);
    }
    std::optional<Place> NormalPlace() const override { return mWindow->NormalPlace(); }
    NativeWindow WindowHandle() const override {
        return reinterpret_cast<NativeWindow>(mWindow->WindowHandle());
    }

private:
    Win32MessagePump& mPump;
    Form& mForm;
    std::shared_ptr<Win32FormWindow> mWindow;
    std::optional<Win32DisabledWindows> mDisabled;  // the other windows, while this one is modal
};

}  // namespace

std::unique_ptr<FormPeer> MakeFormPeer(Win32Context& context, Win32MessagePump& pump, Form& form) {
    return std::make_unique<Win32FormPeer>(context, pump, form);
}

}  // namespace vantor
