// The names of this computer and its user on Windows.
#include <array>

#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"

namespace vantor {
namespace {

class Win32Machine : public Machine {
public:
    std::string HostName() const override {
        std::array<wchar_t, 256> name{};
        auto size = static_cast<DWORD>(name.size());
        if (GetComputerNameExW(ComputerNameDnsHostname, name.data(), &size) == 0) return {};
        return ToUtf8(name.data());
    }

    std::string UserName() const override {
        std::array<wchar_t, 257> name{};
        auto size = static_cast<DWORD>(name.size());
        if (GetUserNameW(name.data(), &size) == 0) return {};
        return ToUtf8(name.data());
    }

    int UtcOffsetMinutes() const override {
        TIME_ZONE_INFORMATION zone{};
        const DWORD season = GetTimeZoneInformation(&zone);
        LONG bias = zone.Bias;
        if (season == TIME_ZONE_ID_STANDARD) bias += zone.StandardBias;
        if (season == TIME_ZONE_ID_DAYLIGHT) bias += zone.DaylightBias;
        return static_cast<int>(-bias);
    }
};

}  // namespace

std::unique_ptr<Machine> MakeWin32Machine() {
    return std::make_unique<Win32Machine>();
}

}  // namespace vantor
