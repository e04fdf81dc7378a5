#include "platform/win32/services/Win32InputWatch.hpp"

#include <utility>

#include "support/Traps.hpp"

namespace vantor {
namespace {

// EV_RXFLAG too: adapters forward a reply at once while a program waits for that event.
constexpr DWORD kEvents = EV_RXCHAR | EV_RXFLAG;

}  // namespace

// Where the system does not support this wait, the polling of the pump suffices.
Win32InputWatch::Win32InputWatch(HANDLE device, std::function<void()> arrived)
    : mDevice(device), mArrived(std::move(arrived)), mWait(std::make_unique<Win32Request>(true)) {
    if (!mWait->done.IsOpen() || SetCommMask(mDevice, kEvents) == 0) return;
    mUsable = RegisterWaitForSingleObject(&mRegistration, mWait->done.Get(), OnEvent, this,
                                          INFINITE, WT_EXECUTEDEFAULT) != 0;
}

Win32InputWatch::~Win32InputWatch() {
    // Blocks until no callback runs.
    if (mRegistration != nullptr)
        static_cast<void>(UnregisterWaitEx(mRegistration, INVALID_HANDLE_VALUE));
    if (mWait->HasEnded()) return;
    // A new mask ends the wait.
    static_cast<void>(SetCommMask(mDevice, kEvents));
    static_cast<void>(EndRequest(mDevice, mWait, 0));
}

void Win32InputWatch::Arm() {
    constexpr ULONGLONG kLeastMs = 8;  // below the interval of the pump, whose next poll then arms
    const ULONGLONG now = GetTickCount64();
    if (!mUsable || !mWait->HasEnded() || now - mArmedAt < kLeastMs) return;
    // On a line without modem signals, as under a compatibility layer, every wait may fail at
    // once. Retrying in a loop would use half a processor.
    DWORD unused = 0;
    mUsable =
        mArmedAt == 0 || GetOverlappedResult(mDevice, &mWait->overlapped, &unused, FALSE) != 0;
    if (!mUsable) return;
    mArmedAt = now;
    // A wait that ends at once sets the event like any other.
    if (WaitCommEvent(mDevice, &mWait->events, mWait->Fresh()) == 0)
        mUsable = GetLastError() == ERROR_IO_PENDING;
}

void CALLBACK Win32InputWatch::OnEvent(void* watch, BOOLEAN) {
    // The error handler belongs to the main thread. Without this wake-up the next poll finds out.
    Ignoring([watch] { static_cast<Win32InputWatch*>(watch)->mArrived(); });
}

}  // namespace vantor
