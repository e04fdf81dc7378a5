// Windows that only receive messages.
#pragma once

#include "platform/win32/services/Win32Handle.hpp"

namespace vantor {

using OwnedWindow = Owned<HWND, DestroyWindow>;

/// Creates a window that is never shown, of the class `name`, which it registers for `procedure`.
/// `parent` is HWND_MESSAGE, or null for a top-level window. `object` becomes its GWLP_USERDATA
/// after the messages of the creation. Null when the window cannot be created.
inline OwnedWindow MakeHiddenWindow(const wchar_t* name, WNDPROC procedure, HWND parent,
                                    void* object) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = name;
    // Fails if an earlier window has registered the class; other failures show in the next call.
    RegisterClassW(&windowClass);
    OwnedWindow window(CreateWindowExW(0, name, L"", WS_OVERLAPPED, 0, 0, 0, 0, parent, nullptr,
                                       windowClass.hInstance, nullptr));
    if (window) SetWindowLongPtrW(window.get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(object));
    return window;
}

}  // namespace vantor
