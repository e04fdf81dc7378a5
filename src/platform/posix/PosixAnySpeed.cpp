// Speeds of a serial line for which POSIX has no code. A source of its own: the kernel's header of
// terminals cannot be combined with <termios.h>.
#include "platform/posix/PosixAnySpeed.hpp"

#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace vantor {

bool SetAnySpeed(int descriptor, std::uint32_t bitsPerSecond) {
    if (bitsPerSecond == 0) return false;  // would hang up
    termios2 settings{};
    if (ioctl(descriptor, TCGETS2, &settings) != 0) return false;
    constexpr tcflag_t kBothSpeeds = CBAUD | (static_cast<tcflag_t>(CBAUD) << IBSHIFT);
    settings.c_cflag = (settings.c_cflag & ~kBothSpeeds) | BOTHER;  // no input speed: the same
    settings.c_ispeed = bitsPerSecond;
    settings.c_ospeed = bitsPerSecond;
    if (ioctl(descriptor, TCSETS2, &settings) != 0 || ioctl(descriptor, TCGETS2, &settings) != 0)
        return false;
    // A driver that cannot divide its clock to this speed sets the nearest one, or keeps the old.
    constexpr std::uint64_t kPercent = 2;
    const std::uint64_t wanted = bitsPerSecond;
    const std::uint64_t got = settings.c_ospeed;
    return (got > wanted ? got - wanted : wanted - got) * 100 <= wanted * kPercent;
}

}  // namespace vantor
