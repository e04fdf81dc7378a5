#include "platform/win32/Win32InputWatch.hpp"

#include <utility>

namespace vantor {
namespace {

// EV_RXFLAG too: adapters forward a reply at once while a program waits for that event.
constexpr DWORD kEvents = EV_RXCHAR | EV_RXFLAG;

}  // namespace

// Where the system does not support this wait, the polling of the pump suffices.
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
    // Blocks until no callback runs.
    if (mRegistration != nullptr)
        static_cast<void>(UnregisterWaitEx(mRegistration, INVALID_HANDLE_VALUE));
    if (HasOverlappedIoCompleted(&mWait)) return;
    // A new mask ends the wait. It must complete before its OVERLAPPED is destroyed.
    static_cast<void>(SetCommMask(mDevice, kEvents));
    static_cast<void>(CancelIoEx(mDevice, &mWait));
    DWORD unused = 0;
    static_cast<void>(GetOverlappedResult(mDevice, &mWait, &unused, TRUE));
}

void Win32InputWatch::Arm() {
    constexpr ULONGLONG kLeastMs = 8;  // below the interval of the pump, whose next poll then arms
    const ULONGLONG now = GetTickCount64();
    if (!mUsable || !HasOverlappedIoCompleted(&mWait) || now - mArmedAt < kLeastMs) return;
    // A line without modem signals, as under a compatibility layer, may fail every wait at once.
    // Retrying all the time would use half a processor.
    DWORD unused = 0;
    mUsable = mArmedAt == 0 || GetOverlappedResult(mDevice, &mWait, &unused, FALSE) != 0;
    if (!mUsable) return;
    mArmedAt = now;
    // A wait that completes at once also sets the event.
    if (WaitCommEvent(mDevice, &mEvents, &mWait) == 0) mUsable = GetLastError() == ERROR_IO_PENDING;
}

void CALLBACK Win32InputWatch::OnEvent(void* watch, BOOLEAN) {
    static_cast<Win32InputWatch*>(watch)->mArrived();
}

}  // namespace vantor
