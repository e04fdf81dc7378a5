// A platform with the real message queue and real windows, and everything else headless.
// Each pump is a millisecond of the headless clock, so the waits of a session are short.
#pragma once

#include <gtest/gtest.h>

#include "controls/Form.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Pictures.hpp"
#include "platform/win32/windows/Win32Peers.hpp"
#include "tests/driver/App.hpp"
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

class OnRealWindows : public testing::Test {
protected:
    static HWND ChildOf(const Form& form, const char* name) {
        return driver::Window(WindowOf(form), form.Design()).Child(name);
    }
    /// Posts a message, so that it passes through the message loop like user input.
    void Post(HWND window, UINT message, WPARAM first, LPARAM second = 0) {
        PostMessageW(window, message, first, second);
        platform.queue.PumpPending();
    }
    void Type(WPARAM key) { Post(GetFocus(), WM_KEYDOWN, key); }
    /// The colour of a pixel of `window`, once that is painted.
    static COLORREF Pixel(HWND window, int x, int y) {
        UpdateWindow(window);
        const HDC target = GetDC(window);
        const COLORREF colour = GetPixel(target, x, y);
        ReleaseDC(window, target);
        return colour;
    }

    RealWindows platform;
};

}  // namespace vantor
