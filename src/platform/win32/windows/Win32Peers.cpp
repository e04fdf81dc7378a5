#include "platform/win32/windows/Win32Peers.hpp"

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "platform/win32/windows/Win32FormWindow.hpp"

namespace vantor {

/// The peer of one form. Owns its window.
class Win32FormPeer : public FormPeer {
public:
    Win32FormPeer(Win32Peers& peers, Form& form)
        : mPeers(peers),
          mForm(form),
          mWindow(std::make_shared<Win32FormWindow>(peers.mContext, form)) {
        mWindow->Create();
        mPeers.mWindows.push_back(mWindow->WindowHandle());
    }
    ~Win32FormPeer() override {
        EnableOthers();
        std::erase(mPeers.mWindows, mWindow->WindowHandle());
        mWindow->Destroy();
    }
    Win32FormPeer(const Win32FormPeer&) = delete;
    Win32FormPeer& operator=(const Win32FormPeer&) = delete;

    void Show(ShowMode mode, NativeWindow owner) override;
    void FormChanged(Property property) override { mWindow->FollowForm(property); }
    void ControlChanged(const Control& control, Property property) override {
        mWindow->FollowControl(control, property);
    }
    void DrawLine(const ThinLine& line) override { mWindow->DrawLine(line); }
    Size TextSize(const Control& control, const std::string& face,
                  const std::string& text) const override {
        return mWindow->TextSize(control, face, text);
    }
    std::optional<Place> NormalPlace() const override { return mWindow->NormalPlace(); }
    NativeWindow WindowHandle() const override {
        return reinterpret_cast<NativeWindow>(mWindow->WindowHandle());
    }

private:
    void DisableOthers();
    void EnableOthers();

    Win32Peers& mPeers;
    Form& mForm;
    std::shared_ptr<Win32FormWindow> mWindow;
    std::vector<HWND> mDisabled;  // by this window while it is modal
};

void Win32FormPeer::Show(ShowMode mode, NativeWindow owner) {
    HWND above = reinterpret_cast<HWND>(owner);
    if (mode == ShowMode::Modeless) {
        mWindow->Show(above);
        return;
    }
    // A modal window without an owner is shown above the active window.
    if (above == nullptr) above = GetActiveWindow();
    DisableOthers();
    mWindow->Show(above);
    // The peer is destroyed when the form unloads; the loop keeps its own references.
    Win32MessagePump& pump = mPeers.mPump;
    const std::shared_ptr<Form> form = mForm.shared_from_this();
    while (!form->Gone() && pump.WaitAndDispatch()) continue;
}

void Win32FormPeer::DisableOthers() {
    for (const HWND window : mPeers.mWindows) {
        if (window == mWindow->WindowHandle() || IsWindowEnabled(window) == 0) continue;
        static_cast<void>(EnableWindow(window, FALSE));
        mDisabled.push_back(window);
    }
}

// Before the modal window closes; otherwise Windows would activate a window of another program.
void Win32FormPeer::EnableOthers() {
    for (const HWND window : std::exchange(mDisabled, {}))
        static_cast<void>(EnableWindow(window, TRUE));
}

Win32Peers::Win32Peers(Win32MessagePump& pump) : mPump(pump) {
    INITCOMMONCONTROLSEX wanted{};
    wanted.dwSize = sizeof wanted;
    wanted.dwICC = ICC_WIN95_CLASSES;
    // Without the classes, only the children that need them are missing.
    static_cast<void>(InitCommonControlsEx(&wanted));
    mPump.Filter([this](MSG& message) {
        return std::ranges::any_of(
            mWindows, [&message](HWND window) { return IsDialogMessageW(window, &message) != 0; });
    });
}

Win32Peers::~Win32Peers() {
    mPump.Filter({});
}

std::unique_ptr<FormPeer> Win32Peers::Draw(Form& form) {
    return std::make_unique<Win32FormPeer>(*this, form);
}

Size Win32Peers::ScreenSize() const {
    return {mContext.ToTwips(GetSystemMetrics(SM_CXSCREEN)),
            mContext.ToTwips(GetSystemMetrics(SM_CYSCREEN))};
}

float Win32Peers::TwipsPerPixel() const {
    return mContext.ToTwips(1);
}

Place Win32Peers::WorkArea(const Place& place) const {
    return mContext.ToTwips(Win32Context::MonitorAt(mContext.ToPixels(place)).rcWork);
}

void Win32Peers::SetMousePointer(MousePointer pointer) {
    mContext.cursor = pointer == MousePointer::Hourglass ? LoadCursorW(nullptr, IDC_WAIT) : nullptr;
    static_cast<void>(
        SetCursor(mContext.cursor != nullptr ? mContext.cursor : LoadCursorW(nullptr, IDC_ARROW)));
}

void Win32Peers::HoldSystem(const std::string& reason) {
    mContext.reasonToStay = ToWide(reason);
    const bool hold = !reason.empty();
    // If this fails, the machine behaves as without the request, and the flash continues.
    static_cast<void>(
        SetThreadExecutionState(hold ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS));
    if (mWindows.empty()) return;
    static_cast<void>(
        hold ? ShutdownBlockReasonCreate(mWindows.front(), mContext.reasonToStay.c_str())
             : ShutdownBlockReasonDestroy(mWindows.front()));
}

}  // namespace vantor
