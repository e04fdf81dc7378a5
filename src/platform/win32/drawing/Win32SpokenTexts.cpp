#include "platform/win32/drawing/Win32SpokenTexts.hpp"

#include <oleacc.h>

#include <array>

namespace vantor {
namespace {

constexpr DWORD kClient = static_cast<DWORD>(OBJID_CLIENT);

}  // namespace

Win32SpokenTexts::Win32SpokenTexts()
    : mPrepared(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

Win32SpokenTexts::~Win32SpokenTexts() {
    if (mService != nullptr) mService->Release();
    if (mPrepared) CoUninitialize();
}

void Win32SpokenTexts::SetName(HWND window, const std::wstring& name) {
    SetProperty(window, PROPID_ACC_NAME, name);
}

void Win32SpokenTexts::SetValue(HWND window, const std::wstring& value) {
    SetProperty(window, PROPID_ACC_VALUE, value);
}

void Win32SpokenTexts::SetProperty(HWND window, const GUID& property, const std::wstring& text) {
    if (mService == nullptr &&
        FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IAccPropServices, reinterpret_cast<void**>(&mService))))
        return;
    mService->SetHwndPropStr(window, kClient, CHILDID_SELF, property, text.c_str());
}

void Win32SpokenTexts::Forget(HWND window) {
    if (mService == nullptr) return;
    std::array<MSAAPROPID, 2> properties = {PROPID_ACC_NAME, PROPID_ACC_VALUE};
    mService->ClearHwndProps(window, kClient, CHILDID_SELF, properties.data(),
                             static_cast<int>(properties.size()));
}

}  // namespace vantor
