// One overlapped request to a device, with all the memory that the driver works in. Issuing it is
// its user's business.
#pragma once

#include <memory>
#include <string>

#include "platform/win32/services/Win32Handle.hpp"

namespace vantor {

struct Win32Request {
    /// One with an automatic reset is for a single waiter in a loop. `done` is not open when the
    /// system has no event to give.
    explicit Win32Request(bool automaticReset);
    Win32Request(const Win32Request&) = delete;
    Win32Request& operator=(const Win32Request&) = delete;

    /// The structure to issue the next request with. The last one must have ended.
    OVERLAPPED* Fresh();
    bool HasEnded() const { return HasOverlappedIoCompleted(&overlapped); }

    OVERLAPPED overlapped{};
    Win32Handle done;
    std::string bytes;  ///< of a read or write
    DWORD events = 0;   ///< of a WaitCommEvent
};

/// Gives `request`, issued on `device`, `patienceMs` to end, then cancels it and gives the driver
/// one second more. True when it ended without that.
/// A driver that does not end even a cancelled request keeps its memory for good: `request` is then
/// null and the object leaked, because the driver may still write to it.
bool EndRequest(HANDLE device, std::unique_ptr<Win32Request>& request, DWORD patienceMs);

}  // namespace vantor
