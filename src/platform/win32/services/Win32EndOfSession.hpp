// Log-off and shutdown for a console program. Windows reports them to a process that loads user32
// only through a top-level window; the console control handler is not called.
#pragma once

#include <mutex>
#include <string>
#include <utility>

#include "platform/win32/services/Win32HiddenWindow.hpp"

namespace vantor {

/// A hidden window on its own thread. If either cannot be created, log-off is not detected.
class Win32EndOfSession {
public:
    /// Longest time to block log-off and shutdown: the final stage of a flash and a margin.
    static constexpr DWORD kLongestHoldMs = 90000;

    /// `ending` is called on the window's thread on WM_ENDSESSION, which then blocks until this
    /// object is destroyed. It must not throw.
    explicit Win32EndOfSession(void (*ending)()) : mEnding(ending) {
        if (mLeave.IsOpen()) mThread = Win32Handle(CreateThread(nullptr, 0, Run, this, 0, nullptr));
    }
    ~Win32EndOfSession() {
        if (!mThread.IsOpen()) return;
        SetEvent(mLeave.Get());
        WaitForSingleObject(mThread.Get(), INFINITE);
    }

    /// While `reason` is not empty, WM_QUERYENDSESSION is refused with it as the block reason. The
    /// user can still force the end of the session.
    void Refuse(std::wstring reason) {
        const std::lock_guard lock(mMutex);
        mReason = std::move(reason);
        // Only the window's thread can withdraw a reason that the system shows.
        if (mReason.empty() && mWindow != nullptr) PostMessageW(mWindow, kWithdraw, 0, 0);
    }

private:
    static constexpr UINT kWithdraw = WM_APP;

    static DWORD WINAPI Run(void* self) noexcept {
        // Top-level: message-only windows receive no broadcast messages.
        const auto window = MakeHiddenWindow(L"VantorEndOfSession", OnMessage, nullptr, self);
        if (window) static_cast<Win32EndOfSession*>(self)->Listen(window.get());
        return 0;
    }

    void Listen(HWND window) {
        {
            const std::lock_guard lock(mMutex);
            mWindow = window;
        }
        const HANDLE leave = mLeave.Get();
        while (MsgWaitForMultipleObjects(1, &leave, FALSE, INFINITE, QS_ALLINPUT) ==
               WAIT_OBJECT_0 + 1) {
            MSG message{};
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0)
                DispatchMessageW(&message);
        }
    }

    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam,
                                      LPARAM lParam) noexcept {
        auto* const self =
            reinterpret_cast<Win32EndOfSession*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self != nullptr && message == WM_QUERYENDSESSION) return self->MayEnd(window);
        if (self == nullptr || (message != WM_ENDSESSION && message != kWithdraw))
            return DefWindowProcW(window, message, wParam, lParam);
        ShutdownBlockReasonDestroy(window);  // fails when there is none
        const bool ends = message == WM_ENDSESSION && wParam != 0;
        if (ends) self->Hold();
        return 0;
    }

    BOOL MayEnd(HWND window) {
        const std::lock_guard lock(mMutex);
        if (mReason.empty()) return TRUE;
        ShutdownBlockReasonCreate(window, mReason.c_str());
        return FALSE;
    }

    void Hold() const {
        mEnding();
        WaitForSingleObject(mLeave.Get(), kLongestHoldMs);
    }

    void (*mEnding)();
    std::mutex mMutex;
    std::wstring mReason;                                             // under the mutex
    HWND mWindow = nullptr;                                           // under the mutex
    Win32Handle mLeave{CreateEventW(nullptr, TRUE, FALSE, nullptr)};  // set to end the thread
    Win32Handle mThread;
};

}  // namespace vantor
