// Behaviour of a port beyond its contract: what its driver is asked for, exclusive use,
// permissions. A pseudo-terminal has no modem lines and error counters, so their requests are
// answered here.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <linux/serial.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "support/LineSettings.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

struct Driver {
    bool replaced = false;
    int output = 0;
    std::string signals;
    int modemLines = 0;
    serial_icounter_struct errors{};

    void Note(const int* lines, const char* change) {
        if ((*lines & TIOCM_DTR) != 0) signals.append("DTR ").append(change);
        if ((*lines & TIOCM_RTS) != 0) signals.append("RTS ").append(change);
    }
    bool Answers(unsigned long request, void* argument) {
        if (request == TIOCSBRK) signals += "break on; ";
        if (request == TIOCCBRK) signals += "break off; ";
        if (request == TIOCMBIS) Note(static_cast<int*>(argument), "on; ");
        if (request == TIOCMBIC) Note(static_cast<int*>(argument), "off; ");
        if (request == TIOCOUTQ) *static_cast<int*>(argument) = output;
        if (request == TIOCMGET) *static_cast<int*>(argument) = modemLines;
        if (request == TIOCGICOUNT) *static_cast<serial_icounter_struct*>(argument) = errors;
        constexpr unsigned long kKnown[] = {TIOCSBRK, TIOCCBRK, TIOCMBIS,   TIOCMBIC,
                                            TIOCOUTQ, TIOCMGET, TIOCGICOUNT};
        return std::ranges::find(kKnown, request) != std::end(kKnown);
    }
} gDriver;

}  // namespace
}  // namespace vantor

// These precede those of the C library in the whole test program.

extern "C" int tcflush(int descriptor, int queue) noexcept {
    if (queue == TCOFLUSH) vantor::gDriver.signals += "output discarded; ";
    return static_cast<int>(syscall(SYS_ioctl, descriptor, TCFLSH, queue));
}

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (vantor::gDriver.replaced && vantor::gDriver.Answers(request, argument)) return 0;
    return static_cast<int>(syscall(SYS_ioctl, descriptor, request, argument));
}

namespace vantor {
namespace {

// In <asm/termbits.h>, which conflicts with <termios.h>.
struct termios2 {
    tcflag_t c_iflag, c_oflag, c_cflag, c_lflag;
    cc_t c_line;
    cc_t c_cc[19];
    speed_t c_ispeed, c_ospeed;
};

/// A pseudo-terminal, and the port on it.
struct Line {
    Line() {
        EXPECT_EQ(grantpt(master.Get()) + unlockpt(master.Get()), 0);
        gDriver.replaced = true;
    }
    ~Line() {
        port.reset();
        gDriver = {};
    }
    void Open(const std::string& settings = "9600,N,8,1") {
        LineSettings line = ParseLineSettings(settings);
        line.flowControl = flowControl;
        port = MakePosixSerialPorts(pump, {{"COM5", Device()}})->Open("COM5", line);
    }
    std::string Device() const { return ptsname(master.Get()); }

    const std::unique_ptr<Clock> clock = MakePosixClock();
    PosixMessagePump pump{*clock};
    const PosixHandle master{posix_openpt(O_RDWR | O_NOCTTY)};
    FlowControl flowControl = FlowControl::None;
    std::unique_ptr<SerialPort> port;
    std::string out;
};

const Verbs<Line> kVerbs = {
    {"hardware", [](Line& l, Argument) { l.flowControl = FlowControl::Hardware; }},
    {"software", [](Line& l, Argument) { l.flowControl = FlowControl::Software; }},
    {"open", [](Line& l, Argument settings) { l.Open(settings); }},
    {"close", [](Line& l, Argument) { l.port.reset(); }},
    {"dtr", [](Line& l, Argument on) { l.port->Dtr(on == "on"); }},
    {"rts", [](Line& l, Argument on) { l.port->Rts(on == "on"); }},
    {"break", [](Line& l, Argument on) { l.port->Break(on == "on"); }},
    {"asked", [](Line& l, Argument) { l.out += gDriver.signals; }},
    {"output", [](Line&, Argument bytes) { gDriver.output = std::stoi(bytes); }},
    {"modem",
     [](Line& l, Argument bits) {
         gDriver.modemLines = std::stoi(bits, nullptr, 16);
         const ModemLines lines = l.port->Lines().value();
         l.out += Row(lines.cts, lines.dsr, lines.dcd, lines.ri, "| ");
     }},
    {"count",
     [](Line&, Argument count) {
         gDriver.errors.frame = std::stoi(count);
         gDriver.errors.parity = 2 * gDriver.errors.frame;
         gDriver.errors.overrun = 3 * gDriver.errors.frame;
         gDriver.errors.buf_overrun = 4 * gDriver.errors.frame;
     }},
    {"errors",
     [](Line& l, Argument) {
         const LineErrors errors = l.port->Errors();
         l.out += Row(errors.framing, errors.parity, errors.overrun);
     }},
    {"settings",
     [](Line& l, Argument) {
         termios2 got{};
         EXPECT_EQ(ioctl(l.master.Get(), TCGETS2, &got), 0);
         const auto has = [&got](tcflag_t flag) { return (got.c_iflag & flag) != 0; };
         l.out += Row(got.c_ispeed, got.c_ospeed, has(IXON), has(IXOFF), has(IXANY),
                      (got.c_cflag & CRTSCTS) != 0, +got.c_cc[VSTART], +got.c_cc[VSTOP]);
     }},
};

TEST(PosixPort, AsksItsDriverAsTheTableSays) {
    ExpectTable("posix/port", kVerbs);
}

class PosixPorts : public testing::Test, protected Line {};

// A read makes the driver deliver, so what the other side has written is available at once.
TEST_F(PosixPorts, InputIsCountedAndReadHoweverShortlyAfterTheLastCount) {
    Open();
    std::array<char, 8> bytes{};
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(port->InputCount(), 0u);
        ASSERT_EQ(write(master.Get(), "OK", 2), 2);
        ASSERT_EQ(port->InputCount(), 2u) << i;
        ASSERT_EQ(write(master.Get(), "\r\n", 2), 2);
        ASSERT_EQ(port->Read(bytes), 4u) << i;
    }
}

TEST_F(PosixPorts, OfAGroupIsToldWithTheGroup) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can make such a device";
    constexpr uid_t kNobody = 65534;
    const std::string device = Device();
    ASSERT_EQ(chown(device.c_str(), 0, getgrnam("dialout")->gr_gid), 0);
    for (const auto& [mode, group] : {std::pair{0660u, "dialout"}, std::pair{0600u, ""}}) {
        ASSERT_EQ(chmod(device.c_str(), mode) + seteuid(kNobody), 0);
        try {
            Open();
            ADD_FAILURE() << "opened";
        } catch (const PortOpenError& error) {
            EXPECT_EQ(error.Why(), PortOpenError::Reason::NotPermitted);
            EXPECT_EQ(error.Who(), group);
        }
        ASSERT_EQ(seteuid(0), 0);
    }
}

TEST_F(PosixPorts, OnceClosedIsNotMarkedAsTakenWhileOthersHoldTheDevice) {
    const PosixHandle other(open(Device().c_str(), O_RDWR | O_NOCTTY));
    const auto taken = [&other] {
        int answer = -1;
        return ioctl(other.Get(), TIOCGEXCL, &answer) == 0 ? answer : -1;
    };
    Open();
    EXPECT_EQ(taken(), 1);
    port.reset();
    EXPECT_EQ(taken(), 0);
}

}  // namespace
}  // namespace vantor
