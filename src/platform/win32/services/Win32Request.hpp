// One overlapped request to a device, with all the memory that the driver accesses. The caller
// issues it.
#pragma once

#include <memory>
#include <string>

#include "platform/win32/services/Win32Handle.hpp"

namespace vantor {

struct Win32Request {
    Win32Request() = default;
    Win32Request(const Win32Request&) = delete;
    Win32Request& operator=(const Win32Request&) = delete;

    /// The structure for the next request. The previous one must have ended.
    OVERLAPPED* Fresh() {
        overlapped = {};
        overlapped.hEvent = done.Get();
        return &overlapped;
    }
    bool HasEnded() const { return HasOverlappedIoCompleted(&overlapped); }

    OVERLAPPED overlapped{};
    /// Not open when it cannot be created. Auto-reset: a registered wait would report a set event
    /// repeatedly.
    Win32Handle done{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    std::string bytes;  ///< of a read or write
    DWORD events = 0;   ///< of a WaitCommEvent
};

/// Waits up to `patienceMs` for the end of `request`, issued on `device`; then cancels it and waits
/// one second more. True when it ended without cancellation.
/// If even the cancelled request does not end, the object is leaked and `request` becomes null,
/// because the driver may still write to its memory.
bool EndRequest(HANDLE device, std::unique_ptr<Win32Request>& request, DWORD patienceMs);

}  // namespace vantor
