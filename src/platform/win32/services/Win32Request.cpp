#include "platform/win32/services/Win32Request.hpp"

namespace vantor {
namespace {

// Checks the status, not the event, which another waiter may have reset.
bool EndsWithin(const Win32Request& request, DWORD ms) {
    WaitForSingleObject(request.done.Get(), ms);
    return request.HasEnded();
}

}  // namespace

bool EndRequest(HANDLE device, std::unique_ptr<Win32Request>& request, DWORD patienceMs) {
    constexpr DWORD kCancelMs = 1000;  // working drivers take some milliseconds
    if (EndsWithin(*request, patienceMs)) return true;
    CancelIoEx(device, &request->overlapped);
    if (!EndsWithin(*request, kCancelMs)) static_cast<void>(request.release());
    return false;
}

}  // namespace vantor
