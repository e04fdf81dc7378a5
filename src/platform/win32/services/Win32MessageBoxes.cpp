#include "platform/win32/services/Win32MessageBoxes.hpp"

#include "platform/win32/services/Win32DisabledWindows.hpp"

namespace vantor {
namespace {

UINT IconFlag(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::Critical:
            return MB_ICONERROR;
        case BoxIcon::Question:
            return MB_ICONQUESTION;
        case BoxIcon::Exclamation:
            return MB_ICONWARNING;
        case BoxIcon::Information:
            return MB_ICONINFORMATION;
        case BoxIcon::None:
            break;
    }
    return 0;
}

UINT ButtonFlag(BoxButtons buttons) {
    switch (buttons) {
        case BoxButtons::YesNo:
            return MB_YESNO;
        case BoxButtons::YesNoCancel:
            return MB_YESNOCANCEL;
        case BoxButtons::Ok:
            break;
    }
    return MB_OK;
}

BoxAnswer Refusal(BoxButtons buttons) {
    switch (buttons) {
        case BoxButtons::YesNo:
            return BoxAnswer::No;
        case BoxButtons::YesNoCancel:
            return BoxAnswer::Cancel;
        case BoxButtons::Ok:
            break;
    }
    return BoxAnswer::Ok;
}

bool TakesInput(HWND window) {
    return IsWindowVisible(window) != 0 && IsWindowEnabled(window) != 0;
}

/// The active window; while another program is in the foreground, the topmost enabled one.
HWND WindowInUse() {
    HWND found = GetActiveWindow();
    if (found != nullptr && TakesInput(found)) return found;
    found = nullptr;
    const auto take = [](HWND window, LPARAM result) -> BOOL {
        const bool own = GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
        const bool titled = (GetWindowLongPtrW(window, GWL_STYLE) & WS_CAPTION) == WS_CAPTION;
        if (!own || !titled || !TakesInput(window)) return TRUE;
        *reinterpret_cast<HWND*>(result) = window;
        return FALSE;
    };
    // The result only tells whether the search was ended early.
    static_cast<void>(EnumWindows(take, reinterpret_cast<LPARAM>(&found)));
    return found;
}

}  // namespace

BoxAnswer Win32MessageBoxes::Show(const MessageBoxRequest& request) {
    const HWND owner = request.owner != 0 ? reinterpret_cast<HWND>(request.owner) : WindowInUse();
    const Win32DisabledWindows others(owner);
    const UINT modality = owner == nullptr ? MB_TASKMODAL : MB_APPLMODAL;
    const std::wstring title = ToWide(request.title.empty() ? mDefaultTitle : request.title);
    switch (MessageBoxW(owner, ToWide(request.text).c_str(), title.c_str(),
                        IconFlag(request.icon) | ButtonFlag(request.buttons) | modality)) {
        case IDYES:
            return BoxAnswer::Yes;
        case IDNO:
            return BoxAnswer::No;
        case IDCANCEL:
            return Refusal(request.buttons);
        case IDOK:
            return BoxAnswer::Ok;
        default:
            return Refusal(request.buttons);
    }
}

void Win32MessageBoxes::Beep() {
    static_cast<void>(MessageBeep(MB_OK));  // a machine without sound is not an error
}

}  // namespace vantor
