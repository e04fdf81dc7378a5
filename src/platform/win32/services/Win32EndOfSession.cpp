#include "platform/win32/services/Win32EndOfSession.hpp"

namespace vantor {
namespace {

constexpr wchar_t kClassName[] = L"VantorEndOfSession";

}  // namespace

Win32EndOfSession::Win32EndOfSession(void (*ending)())
    : mEnding(ending), mLeave(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    if (mLeave.IsOpen()) mThread = Win32Handle(CreateThread(nullptr, 0, Run, this, 0, nullptr));
}

Win32EndOfSession::~Win32EndOfSession() {
    if (!mThread.IsOpen()) return;
    static_cast<void>(SetEvent(mLeave.Get()));
    static_cast<void>(WaitForSingleObject(mThread.Get(), INFINITE));
}

void Win32EndOfSession::Refuse(std::wstring reason) {
    AcquireSRWLockExclusive(&mLock);
    mReason.swap(reason);
    ReleaseSRWLockExclusive(&mLock);
}

DWORD WINAPI Win32EndOfSession::Run(void* self) noexcept {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = OnMessage;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kClassName;
    // Fails if an earlier object has registered the class; other failures show in the next call.
    static_cast<void>(RegisterClassW(&windowClass));
    // Top-level, though never shown: message-only windows receive no broadcast messages.
    const HWND window = CreateWindowExW(0, kClassName, L"", WS_OVERLAPPED, 0, 0, 0, 0, nullptr,
                                        nullptr, windowClass.hInstance, nullptr);
    if (window == nullptr) return 0;
    static_cast<void>(SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self)));
    static_cast<const Win32EndOfSession*>(self)->Listen();
    static_cast<void>(DestroyWindow(window));
    return 0;
}

void Win32EndOfSession::Listen() const {
    const HANDLE leave = mLeave.Get();
    while (MsgWaitForMultipleObjects(1, &leave, FALSE, INFINITE, QS_ALLINPUT) ==
           WAIT_OBJECT_0 + 1) {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0)
            static_cast<void>(DispatchMessageW(&message));
    }
}

LRESULT CALLBACK Win32EndOfSession::OnMessage(HWND window, UINT message, WPARAM first,
                                              LPARAM second) noexcept {
    auto* const self =
        reinterpret_cast<Win32EndOfSession*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr && message == WM_QUERYENDSESSION)
        return self->MayEnd(window) ? TRUE : FALSE;
    if (self != nullptr && message == WM_ENDSESSION) {
        static_cast<void>(ShutdownBlockReasonDestroy(window));  // fails when there is none
        if (first != 0) self->Hold();
        return 0;
    }
    return DefWindowProcW(window, message, first, second);
}

bool Win32EndOfSession::MayEnd(HWND window) {
    AcquireSRWLockExclusive(&mLock);
    const bool may = mReason.empty();
    if (!may) static_cast<void>(ShutdownBlockReasonCreate(window, mReason.c_str()));
    ReleaseSRWLockExclusive(&mLock);
    return may;
}

void Win32EndOfSession::Hold() const {
    mEnding();
    static_cast<void>(WaitForSingleObject(mLeave.Get(), kLongestHoldMs));
}

}  // namespace vantor
