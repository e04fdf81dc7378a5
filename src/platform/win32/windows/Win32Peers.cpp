#include "platform/win32/windows/Win32Peers.hpp"

#include <commctrl.h>

#include <algorithm>

#include "platform/win32/windows/Win32FormWindow.hpp"

namespace vantor {

Win32Peers::Win32Peers(Win32MessagePump& pump) : mPump(pump) {
    INITCOMMONCONTROLSEX wanted{};
    wanted.dwSize = sizeof wanted;
    wanted.dwICC = ICC_WIN95_CLASSES;
    // Without the classes, only the children that need them are missing.
    InitCommonControlsEx(&wanted);
    mPump.Filter([this](MSG& message) {
        return std::ranges::any_of(mContext.formWindows, [&message](HWND window) {
            return IsDialogMessageW(window, &message) != 0;
        });
    });
}

Win32Peers::~Win32Peers() {
    mPump.Filter({});
}

std::unique_ptr<FormPeer> Win32Peers::Draw(Form& form) {
    return MakeFormPeer(mContext, mPump, form);
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
    SetCursor(mContext.cursor != nullptr ? mContext.cursor : LoadCursorW(nullptr, IDC_ARROW));
}

void Win32Peers::HoldSystem(const std::string& reason) {
    mContext.reasonToStay = ToWide(reason);
    const bool hold = !reason.empty();
    // If this fails, the machine behaves as without the request, and the flash continues.
    SetThreadExecutionState(hold ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS);
    if (mContext.formWindows.empty()) return;
    hold ? ShutdownBlockReasonCreate(mContext.formWindows.front(), mContext.reasonToStay.c_str())
         : ShutdownBlockReasonDestroy(mContext.formWindows.front());
}

}  // namespace vantor
