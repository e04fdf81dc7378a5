// The message boxes and the default sound of Windows.
#include <utility>

#include "platform/win32/services/Win32DisabledWindows.hpp"
#include "platform/win32/services/Win32Services.hpp"

namespace vantor {
namespace {

// By BoxIcon.
constexpr UINT kIcons[] = {0, MB_ICONERROR, MB_ICONQUESTION, MB_ICONWARNING, MB_ICONINFORMATION};

struct ButtonSet {
    UINT flag;
    BoxAnswer refusal;
};
// By BoxButtons.
constexpr ButtonSet kButtonSets[] = {
    {MB_OK, BoxAnswer::Ok}, {MB_YESNO, BoxAnswer::No}, {MB_YESNOCANCEL, BoxAnswer::Cancel}};

/// The active window; while another program is in the foreground, the topmost enabled one.
HWND WindowInUse() {
    const HWND active = GetActiveWindow();
    HWND topmost = nullptr;
    for (const HWND window : WindowsInUse()) {
        if (window == active) return active;
        const bool titled = (GetWindowLongPtrW(window, GWL_STYLE) & WS_CAPTION) == WS_CAPTION;
        if (titled && topmost == nullptr) topmost = window;
    }
    return topmost;
}

class Win32MessageBoxes : public MessageBoxes {
public:
    explicit Win32MessageBoxes(std::string defaultTitle) : mDefaultTitle(std::move(defaultTitle)) {}

    BoxAnswer Show(const MessageBoxRequest& request) override {
        const HWND owner =
            request.owner != 0 ? reinterpret_cast<HWND>(request.owner) : WindowInUse();
        const Win32DisabledWindows others(owner);
        const auto [buttons, refusal] = kButtonSets[static_cast<std::size_t>(request.buttons)];
        const UINT icon = kIcons[static_cast<std::size_t>(request.icon)];
        const UINT modality = owner == nullptr ? MB_TASKMODAL : MB_APPLMODAL;
        const UINT preset = request.declinesByDefault ? MB_DEFBUTTON2 : MB_DEFBUTTON1;
        const std::wstring title = ToWide(request.title.empty() ? mDefaultTitle : request.title);
        switch (MessageBoxW(owner, ToWide(request.text).c_str(), title.c_str(),
                            icon | buttons | preset | modality)) {
            case IDYES:
                return BoxAnswer::Yes;
            case IDNO:
                return BoxAnswer::No;
            case IDOK:
                return BoxAnswer::Ok;
            default:
                return refusal;
        }
    }

    void Beep() override { MessageBeep(MB_OK); }  // a machine without sound is not an error

private:
    std::string mDefaultTitle;
};

}  // namespace

std::unique_ptr<MessageBoxes> MakeWin32MessageBoxes(std::string defaultTitle) {
    return std::make_unique<Win32MessageBoxes>(std::move(defaultTitle));
}

}  // namespace vantor
