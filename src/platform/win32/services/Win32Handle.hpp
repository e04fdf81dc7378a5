// Owns a Win32 handle and closes it. Not for registry keys or windows.
#pragma once

#include <utility>

#include "platform/win32/services/Windows.hpp"

namespace vantor {

/// Some calls report failure as null, others as INVALID_HANDLE_VALUE: neither is open.
class Win32Handle {
public:
    Win32Handle() = default;
    explicit Win32Handle(HANDLE handle) : mHandle(handle) {}
    Win32Handle(Win32Handle&& other) noexcept : mHandle(std::exchange(other.mHandle, nullptr)) {}
    Win32Handle& operator=(Win32Handle&& other) noexcept {
        std::swap(mHandle, other.mHandle);
        return *this;
    }
    // A failed close cannot be handled.
    ~Win32Handle() {
        if (IsOpen()) static_cast<void>(CloseHandle(mHandle));
    }

    bool IsOpen() const { return mHandle != nullptr && mHandle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return mHandle; }

private:
    HANDLE mHandle = nullptr;
};

}  // namespace vantor
