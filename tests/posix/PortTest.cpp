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
#include <string>
#include <utility>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"

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

class PosixPort : public testing::Test {
protected:
    PosixPort() {
        EXPECT_EQ(grantpt(master.Get()) + unlockpt(master.Get()), 0);
        gDriver.replaced = true;
    }
    ~PosixPort() override { gDriver = {}; }
    std::unique_ptr<SerialPort> Open(const LineSettings& line) {
        return MakePosixSerialPorts(pump, {{"COM5", Device()}})->Open("COM5", line);
    }
    std::string Device() const { return ptsname(master.Get()); }

    const std::unique_ptr<Clock> clock = MakePosixClock();
    PosixMessagePump pump{*clock};
    const PosixHandle master{posix_openpt(O_RDWR | O_NOCTTY)};
};

TEST_F(PosixPort, SignalsAreSetAndABreakEndsWithThePort) {
    for (const auto& [flowControl, signals] :
         {std::pair{FlowControl::None, "DTR off; RTS off; DTR on; RTS on; break on; break off; "},
          std::pair{FlowControl::Hardware, "DTR off; DTR on; break on; break off; "}}) {
        auto port = Open({9600, Parity::None, 8, 1, flowControl});
        EXPECT_EQ(std::exchange(gDriver.signals, {}), "DTR on; RTS on; ");
        for (const bool on : {false, true}) {
            port->Dtr(on);
            port->Rts(on);
        }
        port->Break(true);
        port.reset();
        EXPECT_EQ(std::exchange(gDriver.signals, {}), signals);
    }
}

TEST_F(PosixPort, ModemLinesAndErrorsSinceTheOpenAreRead) {
    gDriver.errors.frame = gDriver.errors.parity = gDriver.errors.overrun = 100;
    const auto port = Open({});
    constexpr int kBits[] = {TIOCM_CTS, TIOCM_DSR, TIOCM_CD, TIOCM_RI};
    constexpr ModemLines kLines[] = {{.cts = true}, {.dsr = true}, {.dcd = true}, {.ri = true}};
    for (std::size_t i = 0; i < 4; ++i) {
        gDriver.modemLines = kBits[i];
        EXPECT_EQ(port->Lines(), kLines[i]) << i;
    }
    gDriver.errors.frame += 1;
    gDriver.errors.parity += 2;
    gDriver.errors.overrun += 3;
    gDriver.errors.buf_overrun += 4;
    EXPECT_EQ(port->Errors(), (LineErrors{.framing = 1, .parity = 2, .overrun = 7}));
}

// The request for a break waits for the output, for ever if flow control holds it.
TEST_F(PosixPort, ABreakDiscardsOutputThatWouldHoldItUp) {
    const auto port = Open({});
    for (const auto& [output, signals] :
         {std::pair{0, "break on; "}, std::pair{3, "output discarded; break on; "}}) {
        gDriver.output = output;
        gDriver.signals.clear();
        port->Break(true);
        EXPECT_EQ(gDriver.signals, signals);
    }
}

TEST_F(PosixPort, SpeedAndFlowControlAreThoseOfTheSettings) {
    using enum FlowControl;
    constexpr tcflag_t kXonXoff = IXON | IXOFF;
    constexpr auto kRtsCts = static_cast<tcflag_t>(CRTSCTS);
    const struct {
        LineSettings line;
        tcflag_t input, control;
    } kRows[] = {{{250000, Parity::None, 8, 1, None}, 0, 0},
                 {{12345, Parity::None, 8, 1, Hardware}, 0, kRtsCts},
                 {{4000000, Parity::None, 8, 1, Software}, kXonXoff, 0},
                 {{9600, Parity::None, 8, 1, Software}, kXonXoff, 0},
                 {{115200, Parity::None, 8, 1, None}, 0, 0}};
    for (const auto& [line, input, control] : kRows) {
        const auto port = Open(line);
        termios2 got{};
        ASSERT_EQ(ioctl(master.Get(), TCGETS2, &got), 0);
        EXPECT_EQ(got.c_ispeed, line.bitsPerSecond);
        EXPECT_EQ(got.c_ospeed, line.bitsPerSecond);
        EXPECT_EQ(got.c_iflag & (kXonXoff | IXANY), input) << line.bitsPerSecond;
        EXPECT_EQ(got.c_cflag & kRtsCts, control) << line.bitsPerSecond;
        if (input == 0) continue;
        EXPECT_EQ(got.c_cc[VSTART], 0x11);
        EXPECT_EQ(got.c_cc[VSTOP], 0x13);
    }
}

// A read makes the driver deliver, so what the other side has written is available at once.
TEST_F(PosixPort, InputIsCountedAndReadHoweverShortlyAfterTheLastCount) {
    const auto port = Open({});
    std::array<char, 8> bytes{};
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(port->InputCount(), 0u);
        ASSERT_EQ(write(master.Get(), "OK", 2), 2);
        ASSERT_EQ(port->InputCount(), 2u) << i;
        ASSERT_EQ(write(master.Get(), "\r\n", 2), 2);
        ASSERT_EQ(port->Read(bytes), 4u) << i;
    }
}

TEST_F(PosixPort, OfAGroupIsToldWithTheGroup) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can make such a device";
    constexpr uid_t kNobody = 65534;
    const std::string device = Device();
    ASSERT_EQ(chown(device.c_str(), 0, getgrnam("dialout")->gr_gid), 0);
    for (const auto& [mode, group] : {std::pair{0660u, "dialout"}, std::pair{0600u, ""}}) {
        ASSERT_EQ(chmod(device.c_str(), mode) + seteuid(kNobody), 0);
        try {
            Open({});
            ADD_FAILURE() << "opened";
        } catch (const PortOpenError& error) {
            EXPECT_EQ(error.Why(), PortOpenError::Reason::NotPermitted);
            EXPECT_EQ(error.Who(), group);
        }
        ASSERT_EQ(seteuid(0), 0);
    }
}

TEST_F(PosixPort, OnceClosedIsNotMarkedAsTakenWhileOthersHoldTheDevice) {
    const PosixHandle other(open(Device().c_str(), O_RDWR | O_NOCTTY));
    const auto taken = [&other] {
        int answer = -1;
        return ioctl(other.Get(), TIOCGEXCL, &answer) == 0 ? answer : -1;
    };
    auto port = Open({});
    EXPECT_EQ(taken(), 1);
    port.reset();
    EXPECT_EQ(taken(), 0);
}

}  // namespace
}  // namespace vantor
