#include "platform/win32/windows/Win32ChildControl.hpp"

#include <utility>

namespace vantor {

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

Win32ChildControl::Win32ChildControl(const ChildSource& source, const NativeKind& native)
    : mContext(source.context),
      mControl(source.control),
      mStyle(source.style),
      mNative(native),
      mShownCaption(mControl.Caption()) {
    ++mContext.held.windows;
}

void Win32ChildControl::Create(HWND parent, int id) {
    const RECT place = OuterPlace();
    const DWORD shown = mControl.Visible() ? WS_VISIBLE : 0;
    const DWORD usable = mControl.Enabled() ? 0 : WS_DISABLED;
    const HFONT font = mContext.Font(mStyle.points, mStyle.bold);
    mWindow = Made(CreateWindowExW(
        mNative.extendedStyle, mNative.windowClass, ToWide(mShownCaption).c_str(),
        WS_CHILD | mNative.style | shown | usable, place.left, place.top, place.right - place.left,
        place.bottom - place.top, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
        mContext.Instance(), nullptr));
    Send(WM_SETFONT, reinterpret_cast<WPARAM>(font));
    Created();
    Follow(Property::Border);
    FollowValue();
}

void Win32ChildControl::Follow(Property property) {
    if (property == Property::Caption) FollowCaption();
    if (property == Property::Enabled) EnableWindow(mWindow, mControl.Enabled() ? TRUE : FALSE);
    if (property == Property::Visible)
        ShowWindow(mWindow, mControl.Visible() ? SW_SHOWNA : SW_HIDE);
    if (property == Property::Place) FollowPlace();
    if (property == Property::Border) FollowBorder();
    if (property == Property::Value) FollowValue();
    if (property == Property::ZOrder) BringToFront();
    if (property == Property::SpokenName) {
        // The windows of these controls do not display their text.
        const std::wstring name = ToWide(mControl.SpokenName());
        SetWindowTextW(mWindow, name.c_str());
        mContext.spokenTexts.SetName(mWindow, name);
    }
    if (property == Property::Repaint) {
        CatchUp();
        RedrawWindow(mWindow, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    }
}

bool Win32ChildControl::FollowLater(Property property) {
    const bool later = mNative.deferred == property;
    mLate = mLate || later;
    return later;
}

void Win32ChildControl::CatchUp() {
    if (!std::exchange(mLate, false)) return;
    FollowCaption();
    FollowValue();
}

// The caption mostly stays the same, and under some compatibility layers each call
// is a cross-process call.
void Win32ChildControl::FollowCaption() {
    if (mShownCaption == mControl.Caption()) return;
    mShownCaption = mControl.Caption();
    SetWindowTextW(mWindow, ToWide(mShownCaption).c_str());
}

void Win32ChildControl::FollowPlace() {
    const RECT place = OuterPlace();
    SetWindowPos(mWindow, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    // Otherwise centred and wrapped text stays drawn for the old size.
    InvalidateRect(mWindow, nullptr, TRUE);
}

void Win32ChildControl::ForgetSpokenName() {
    if (!mControl.SpokenName().empty()) mContext.spokenTexts.Forget(mWindow);
}

void Win32ChildControl::FollowBorder() {
    const LONG_PTR before = GetWindowLongPtrW(mWindow, GWL_EXSTYLE);
    LONG_PTR style = before & ~static_cast<LONG_PTR>(WS_EX_STATICEDGE | WS_EX_CLIENTEDGE);
    if (mControl.Border() == Border::Static) style |= WS_EX_STATICEDGE;
    if (mControl.Border() == Border::Sunken) style |= WS_EX_CLIENTEDGE;
    if (style == before) return;
    SetWindowLongPtrW(mWindow, GWL_EXSTYLE, style);
    SetWindowPos(mWindow, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

// Raised only above overlapping windows, because the z-order is also the tab order.
void Win32ChildControl::BringToFront() {
    RECT own{};
    if (GetWindowRect(mWindow, &own) == 0) return;
    for (HWND each = GetWindow(mWindow, GW_HWNDFIRST); each != nullptr && each != mWindow;
         each = GetWindow(each, GW_HWNDNEXT)) {
        RECT other{};
        RECT shared{};
        if (GetWindowRect(each, &other) == 0 || IntersectRect(&shared, &own, &other) == 0) continue;
        const HWND before = GetWindow(each, GW_HWNDPREV);
        SetWindowPos(mWindow, before == nullptr ? HWND_TOP : before, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        return;
    }
}

SIZE Win32ChildControl::TextExtent(const std::wstring& text, const std::string& face) const {
    const HFONT font = mContext.Font(mStyle.points, mStyle.bold, face);
    const HDC target = GetDC(mWindow);
    SIZE size{};
    {
        const Win32Selected selected(target, font);
        GetTextExtentPoint32W(target, text.c_str(), static_cast<int>(text.size()), &size);
    }
    ReleaseDC(mWindow, target);
    return size;
}

}  // namespace vantor
