// The system clocks.
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"
// Requires the types of <windows.h>.
#include <timeapi.h>

namespace vantor {
namespace {

constexpr UINT kStepMs = 1;

class Win32Clock : public Clock {
public:
    // On failure the timer resolution is unchanged; only the pacing suffers.
    Win32Clock() { timeBeginPeriod(kStepMs); }
    ~Win32Clock() override { timeEndPeriod(kStepMs); }

    std::uint32_t Milliseconds() const override { return timeGetTime(); }
    void Sleep(std::uint32_t ms) override { ::Sleep(ms); }
    DateTime Now() const override {
        SYSTEMTIME now{};
        GetLocalTime(&now);
        return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
    }
};

}  // namespace

std::unique_ptr<Clock> MakeWin32Clock() {
    return std::make_unique<Win32Clock>();
}

}  // namespace vantor
