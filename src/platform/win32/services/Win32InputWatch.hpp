// Waits in the background until a serial line reports received bytes, so that no polling is needed.
// Reports may be spurious; it does not count or read bytes.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/win32/services/Win32Request.hpp"
#include "support/Traps.hpp"

namespace vantor {

/// All but the callback runs on the thread that created it.
class Win32InputWatch {
public:
    /// Of a line. EV_RXFLAG too: adapters forward a reply at once while a program waits for that
    /// event.
    static constexpr DWORD kEvents = EV_RXCHAR | EV_RXFLAG;

    /// `device` must outlive the watch, which owns its event mask. `arrived` runs on a system
    /// thread and must not access the watch. Where the system does not support this wait, the
    /// polling of the pump suffices.
    Win32InputWatch(HANDLE device, std::function<void()> arrived)
        : mDevice(device), mArrived(std::move(arrived)) {
        if (!mWait->done.IsOpen() || SetCommMask(mDevice, kEvents) == 0) return;
        mUsable = RegisterWaitForSingleObject(&mRegistration, mWait->done.Get(), OnEvent, this,
                                              INFINITE, WT_EXECUTEDEFAULT) != 0;
    }
    ~Win32InputWatch() {
        // Blocks until no callback runs.
        if (mRegistration != nullptr) UnregisterWaitEx(mRegistration, INVALID_HANDLE_VALUE);
        if (mWait->HasEnded()) return;
        SetCommMask(mDevice, kEvents);  // a new mask ends the wait
        EndRequest(mDevice, mWait, 0);
    }

    /// Waits for the next report: one `arrived`, then none until armed again. Does nothing while
    /// a wait is pending, when the device is lost, and within some milliseconds of the last call,
    /// so that continuous input does not cause continuous reports.
    void Arm() {
        constexpr ULONGLONG kLeastMs = 8;  // the tick count advances by 10 to 16 ms
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
        if (WaitCommEvent(mDevice, &mWait->events, mWait->Fresh()) != 0 ||
            GetLastError() == ERROR_IO_PENDING)
            return;
        // The system may leave the status of a wait that it refuses as "pending".
        mWait->overlapped = {};
        mUsable = false;
    }

private:
    static void CALLBACK OnEvent(void* watch, BOOLEAN /*timedOut*/) {
        // The error handler belongs to the main thread. Without this wake-up the next poll finds
        // out.
        Ignoring([watch] { static_cast<Win32InputWatch*>(watch)->mArrived(); });
    }

    HANDLE mDevice;
    std::function<void()> mArrived;
    std::unique_ptr<Win32Request> mWait = std::make_unique<Win32Request>();
    HANDLE mRegistration = nullptr;
    ULONGLONG mArmedAt = 0;
    bool mUsable = false;
};

}  // namespace vantor
