#include "platform/win32/Win32InputWatch.hpp"

#include <utility>

#include "support/Traps.hpp"

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
    mUsable = RegisterWaitForSingleObject(&mRegistration, mEvent.Get(), OnEvent, this, INFINITE,
                                          WT_EXECUTEDEFAULT) != 0;
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
    constexpr ULONGLONG kLeastMs = 8;  // under the pump's interval, whose next poll then arms
    const ULONGLONG now = GetTickCount64();
    if (!mUsable || !HasOverlappedIoCompleted(&mWait) || now - mArmedAt < kLeastMs) return;
    // A line without modem signals, as under a compatibility layer, may end every wait at once
    // and in failure. Trying again and again would cost half a processor.
    DWORD unused = 0;
    mUsable = mArmedAt == 0 || GetOverlappedResult(mDevice, &mWait, &unused, FALSE) != 0;
    if (!mUsable) return;
    mArmedAt = now;
    // A wait that ends at once sets the event like any other.
    if (WaitCommEvent(mDevice, &mEvents, &mWait) == 0) mUsable = GetLastError() == ERROR_IO_PENDING;
}

void CALLBACK Win32InputWatch::OnEvent(void* watch, BOOLEAN) {
    // The error handler belongs to the main thread. Without this wake-up the next poll finds out.
    Ignoring([watch] { static_cast<Win32InputWatch*>(watch)->mArrived(); });
}

}  // namespace vantor
