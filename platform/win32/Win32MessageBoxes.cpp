#include "platform/win32/Win32MessageBoxes.hpp"

#include "platform/win32/Windows.hpp"

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

}  // namespace

BoxAnswer Win32MessageBoxes::Show(const MessageBoxRequest& request) {
    // Without an owner window, the box must still disable the program's other windows.
    const HWND owner = reinterpret_cast<HWND>(request.owner);
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
