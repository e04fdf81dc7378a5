// The names of this computer and its user on POSIX.
#include <pwd.h>
#include <time.h>
#include <unistd.h>

#include <array>

#include "platform/posix/PosixServices.hpp"

namespace vantor {
namespace {

class PosixMachine : public Machine {
public:
    std::string HostName() const override {
        std::array<char, 256> name{};  // its last NUL is never overwritten
        return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
    }

    std::string UserName() const override {
        const passwd* const user = getpwuid(geteuid());
        return user == nullptr ? "" : user->pw_name;
    }

    int UtcOffsetMinutes() const override {
        constexpr long kSecondsPerMinute = 60;
        const time_t now = time(nullptr);
        tm local{};
        if (localtime_r(&now, &local) == nullptr) return 0;
        return static_cast<int>(local.tm_gmtoff / kSecondsPerMinute);
    }
};

}  // namespace

std::unique_ptr<Machine> MakePosixMachine() {
    return std::make_unique<PosixMachine>();
}

}  // namespace vantor
