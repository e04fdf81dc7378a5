#include "platform/win32/drawing/Win32SpokenNames.hpp"

#include <oleacc.h>

namespace vantor {
namespace {

constexpr DWORD kClient = static_cast<DWORD>(OBJID_CLIENT);

}  // namespace

Win32SpokenNames::Win32SpokenNames()
    : mPrepared(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

Win32SpokenNames::~Win32SpokenNames() {
    if (mService != nullptr) mService->Release();
    if (mPrepared) CoUninitialize();
}

void Win32SpokenNames::Set(HWND window, const std::wstring& name) {
    if (mService == nullptr &&
        FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IAccPropServices, reinterpret_cast<void**>(&mService))))
        return;
    mService->SetHwndPropStr(window, kClient, CHILDID_SELF, PROPID_ACC_NAME, name.c_str());
}

void Win32SpokenNames::Forget(HWND window) {
    if (mService == nullptr) return;
    MSAAPROPID name = PROPID_ACC_NAME;
    mService->ClearHwndProps(window, kClient, CHILDID_SELF, &name, 1);
}

}  // namespace vantor
