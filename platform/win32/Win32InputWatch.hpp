// Waits in the background until a serial line reports bytes, so that nobody has to look for them.
// Reports may come for nothing; it counts and reads no bytes itself.
#pragma once

#include <functional>
#include <memory>

#include "platform/win32/Win32Request.hpp"

namespace vantor {

/// Everything but the callback happens on the thread that made it.
class Win32InputWatch {
public:
    /// `device` outlives the watch; its event mask is the watch's. `arrived` is called on a
    /// thread of the system's and must not touch the watch.
    Win32InputWatch(HANDLE device, std::function<void()> arrived);
    ~Win32InputWatch();
    Win32InputWatch(const Win32InputWatch&) = delete;
    Win32InputWatch& operator=(const Win32InputWatch&) = delete;

    /// Waits for the next report: one `arrived`, then silence until armed again. Does nothing
    /// while a wait is on its way, when the device has gone, and within some milliseconds of the
    /// last time, so that a stream of bytes becomes no stream of reports.
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
