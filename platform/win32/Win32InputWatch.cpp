#include "platform/win32/Win32InputWatch.hpp"

#include <utility>

namespace vantor {
namespace {

// The event character too: adapters pass a reply on at once when somebody waits for it.
constexpr DWORD kEvents = EV_RXCHAR | EV_RXFLAG;

}  // namespace

// Where the system has no such wait to give, the pump's own polls do without it.
Win32InputWatch::Win32InputWatch(HANDLE device, std::function<void()> arrived)
    : mDevice(device),
      mArrived(std::move(arrived)),
      mEvent(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
    if (!mEvent.IsOpen() || SetCommMask(mDevice, kEvents) == 0) return;
    mWait.hEvent = mEvent.Get();
    if (RegisterWaitForSingleObject(&mRegistration, mEvent.Get(), OnEvent, this, INFINITE,
                                    WT_EXECUTEDEFAULT) == 0)
        mRegistration = nullptr;
}

Win32InputWatch::~Win32InputWatch() {
    // Returns when no callback runs any more.
    if (mRegistration != nullptr)
        static_cast<void>(UnregisterWaitEx(mRegistration, INVALID_HANDLE_VALUE));
    if (HasOverlappedIoCompleted(&mWait)) return;
    // A new mask ends the wait, and the system must be through with our memory before it goes.
    static_cast<void>(SetCommMask(mDevice, kEvents));
    static_cast<void>(CancelIoEx(mDevice, &mWait));
    DWORD unused = 0;
    static_cast<void>(GetOverlappedResult(mDevice, &mWait, &unused, TRUE));
}

void Win32InputWatch::Arm() {
    if (mRegistration == nullptr || !HasOverlappedIoCompleted(&mWait)) return;
    // A wait that ends at once sets the event like any other, one that fails never does.
    static_cast<void>(WaitCommEvent(mDevice, &mEvents, &mWait));
}

void CALLBACK Win32InputWatch::OnEvent(void* watch, BOOLEAN) {
    static_cast<Win32InputWatch*>(watch)->mArrived();
}

}  // namespace vantor
