#include "platform/win32/services/Win32Clock.hpp"

#include "platform/win32/services/Windows.hpp"
// Requires the types of <windows.h>.
#include <timeapi.h>

namespace vantor {
namespace {

constexpr UINT kStepMs = 1;

}  // namespace

// On failure the timer resolution is unchanged; only the pacing suffers.
Win32Clock::Win32Clock() {
    static_cast<void>(timeBeginPeriod(kStepMs));
}

Win32Clock::~Win32Clock() {
    static_cast<void>(timeEndPeriod(kStepMs));
}

std::uint32_t Win32Clock::Milliseconds() const {
    return timeGetTime();
}

void Win32Clock::Sleep(std::uint32_t ms) {
    ::Sleep(ms);
}

DateTime Win32Clock::Now() const {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

}  // namespace vantor
