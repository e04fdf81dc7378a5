// Log-off and shutdown as a console program hears of them. One that uses windows is told through a
// top-level window alone: its console handler is not called for these two.
#pragma once

#include <string>

#include "platform/win32/Win32Handle.hpp"

namespace vantor {

/// Listens with a hidden window on a thread of its own. Where the system gives neither, it hears
/// nothing.
class Win32EndOfSession {
public:
    /// How long the system is kept waiting at most: the final phase of a flash, and a reserve.
    static constexpr DWORD kLongestHoldMs = 90000;

    /// `ending` is called on the other thread when the user's session ends, which waits from then
    /// on until this object is destroyed. It must not raise.
    explicit Win32EndOfSession(void (*ending)());
    ~Win32EndOfSession();
    Win32EndOfSession(const Win32EndOfSession&) = delete;
    Win32EndOfSession& operator=(const Win32EndOfSession&) = delete;

    /// While `reason` is not empty the system is asked not to end the session, and shows it to the
    /// user, who may insist.
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
    Win32Handle mLeave;    // set when the thread shall end
    Win32Handle mThread;
};

}  // namespace vantor
