// A platform with the real message queue and real windows, and everything else headless.
// Each pump is a millisecond of the headless clock, so the waits of a session are short.
#pragma once

#include "controls/Form.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Pictures.hpp"
#include "platform/win32/windows/Win32Peers.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {

struct RealWindows : ReportingPlatform {
    RealWindows() {
        queue.AddSource([this] { pump.PumpPending(); });
    }

    Win32MessagePump queue;
    Win32Peers windows{queue};
    Win32Pictures images{files};
    Platform real = With({.pump = &queue, .peers = &windows, .pictures = &images});
    WindowManager manager{windows, queue};
};

inline HWND WindowOf(const Form& form) {
    return reinterpret_cast<HWND>(form.WindowHandle());
}

}  // namespace vantor
