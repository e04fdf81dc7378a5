// The system clocks.
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"
// Requires the types of <windows.h>.
#include <timeapi.h>

namespace vantor {
namespace {

constexpr UINT kStepMs = 1;
// A FILETIME counts 100 ns since 1 January 1601.
constexpr std::int64_t kTicksPerMs = 10'000;
constexpr std::int64_t kTicksBefore1970 = 116'444'736'000'000'000;

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
    std::int64_t LocalMilliseconds() const override {
        SYSTEMTIME now{};
        GetLocalTime(&now);
        FILETIME time{};
        SystemTimeToFileTime(&now, &time);
        const std::int64_t ticks =
            static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
        return (ticks - kTicksBefore1970) / kTicksPerMs;
    }
};

}  // namespace

std::unique_ptr<Clock> MakeWin32Clock() {
    return std::make_unique<Win32Clock>();
}

}  // namespace vantor
