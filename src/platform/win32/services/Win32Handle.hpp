// Owners of system objects.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "platform/win32/services/Windows.hpp"

namespace vantor {

template <auto destroy>
struct Destroyer {
    // A failure cannot be handled.
    template <typename Object>
    void operator()(Object* object) const {
        destroy(object);
    }
};

/// Owns a system object whose null value means none: `Owned<HKEY, RegCloseKey>`.
template <typename Handle, auto destroy>
using Owned = std::unique_ptr<std::remove_pointer_t<Handle>, Destroyer<destroy>>;

struct Releaser {
    template <typename Interface>
    void operator()(Interface* object) const {
        object->Release();
    }
};

/// Owns a reference to a COM object.
template <typename Interface>
using ComPointer = std::unique_ptr<Interface, Releaser>;

/// Calls `action` at the end of its scope.
template <typename Action>
class Finally {
public:
    explicit Finally(Action action) : mAction(std::move(action)) {}
    ~Finally() { mAction(); }
    Finally(const Finally&) = delete;
    Finally& operator=(const Finally&) = delete;

private:
    Action mAction;
};

/// Owns a handle for CloseHandle. Some calls report failure as null, others as
/// INVALID_HANDLE_VALUE: neither is open.
class Win32Handle {
public:
    Win32Handle() = default;
    explicit Win32Handle(HANDLE handle)
        : mHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}

    bool IsOpen() const { return mHandle != nullptr; }
    HANDLE Get() const { return mHandle.get(); }

private:
    Owned<HANDLE, CloseHandle> mHandle;
};

}  // namespace vantor
