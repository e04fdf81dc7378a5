// Owners of the system objects that the windows use.
#pragma once

#include <memory>
#include <type_traits>

#include "platform/win32/services/Windows.hpp"

namespace vantor {

/// System objects that the peers hold now, for leak detection.
struct HeldObjects {
    int windows = 0;
    int menus = 0;
    int fonts = 0;
};

/// Frees a system object and removes it from the count `held`, if given.
struct Win32Deleter {
    int* held = nullptr;

    template <typename Handle>
    void operator()(Handle handle) const {
        Free(handle);
        if (held != nullptr) --*held;
    }

private:
    static void Free(HMENU menu) { DestroyMenu(menu); }
    static void Free(HFONT font) { DeleteObject(font); }
    static void Free(HDC memoryContext) { DeleteDC(memoryContext); }
};

template <typename Handle>
using Win32Object = std::unique_ptr<std::remove_pointer_t<Handle>, Win32Deleter>;

/// Takes over `handle`, the result of a system call, and counts it in `held` while it exists.
/// Raises RuntimeError 7 when it is null.
template <typename Handle>
Win32Object<Handle> Hold(Handle handle, int& held) {
    Made(handle);
    ++held;
    return {handle, Win32Deleter{&held}};
}

/// Selects an object into a device context until the end of the scope.
class Win32Selected {
public:
    Win32Selected(HDC target, HGDIOBJ object)
        : mTarget(target), mBefore(SelectObject(target, object)) {}
    ~Win32Selected() { SelectObject(mTarget, mBefore); }
    Win32Selected(const Win32Selected&) = delete;
    Win32Selected& operator=(const Win32Selected&) = delete;

private:
    HDC mTarget;
    HGDIOBJ mBefore;
};

}  // namespace vantor
