// Log-off and shutdown for a console program. Windows reports them to a process that loads user32
// only through a top-level window; the console control handler is not called.
#pragma once

#include <string>

#include "platform/win32/services/Win32Handle.hpp"

namespace vantor {

/// A hidden window on its own thread. If either cannot be created, log-off is not detected.
class Win32EndOfSession {
public:
    /// Longest time to block log-off and shutdown: the final stage of a flash and a margin.
    static constexpr DWORD kLongestHoldMs = 90000;

    /// `ending` is called on the window's thread on WM_ENDSESSION, which then blocks until this
    /// object is destroyed. It must not throw.
    explicit Win32EndOfSession(void (*ending)());
    ~Win32EndOfSession();
    Win32EndOfSession(const Win32EndOfSession&) = delete;
    Win32EndOfSession& operator=(const Win32EndOfSession&) = delete;

    /// While `reason` is not empty, WM_QUERYENDSESSION is refused with it as the block reason. The
    /// user can still force the end of the session.
    void Refuse(std::wstring reason);

private:
    static DWORD WINAPI Run(void* self) noexcept;
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first,
                                      LPARAM second) noexcept;
    void Listen() const;
    bool MayEnd(HWND window);
    void Hold() const;

    void (*mEnding)();
    SRWLOCK mLock = SRWLOCK_INIT;
    std::wstring mReason;  // under the lock
    Win32Handle mLeave;    // set to end the thread
    Win32Handle mThread;
};

}  // namespace vantor
