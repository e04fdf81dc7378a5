// Waits in the background until a serial line reports received bytes, so that no polling is needed.
// Reports may be spurious; it does not count or read bytes.
#pragma once

#include <functional>
#include <memory>

#include "platform/win32/services/Win32Request.hpp"

namespace vantor {

/// All but the callback runs on the thread that created it.
class Win32InputWatch {
public:
    /// `device` must outlive the watch, which owns its event mask. `arrived` runs on a system
    /// thread and must not access the watch.
    Win32InputWatch(HANDLE device, std::function<void()> arrived);
    ~Win32InputWatch();
    Win32InputWatch(const Win32InputWatch&) = delete;
    Win32InputWatch& operator=(const Win32InputWatch&) = delete;

    /// Waits for the next report: one `arrived`, then none until armed again. Does nothing while
    /// a wait is pending, when the device is lost, and within some milliseconds of the last call,
    /// so that continuous input does not cause continuous reports.
    void Arm();

private:
    static void CALLBACK OnEvent(void* watch, BOOLEAN timedOut);

    HANDLE mDevice;
    std::function<void()> mArrived;
    std::unique_ptr<Win32Request> mWait;
    HANDLE mRegistration = nullptr;
    ULONGLONG mArmedAt = 0;
    bool mUsable = false;
};

}  // namespace vantor
