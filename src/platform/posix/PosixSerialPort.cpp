// One open serial port on POSIX: raw termios, non-blocking. It does not handle names and lists of
// ports.
#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>

#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include "platform/posix/PosixAnySpeed.hpp"
#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

struct Speed {
    std::uint32_t bitsPerSecond;
    speed_t code;
};

constexpr std::array kSpeeds = {
    Speed{50, B50},         Speed{75, B75},         Speed{110, B110},       Speed{134, B134},
    Speed{150, B150},       Speed{200, B200},       Speed{300, B300},       Speed{600, B600},
    Speed{1200, B1200},     Speed{1800, B1800},     Speed{2400, B2400},     Speed{4800, B4800},
    Speed{9600, B9600},     Speed{19200, B19200},   Speed{38400, B38400},   Speed{57600, B57600},
    Speed{115200, B115200}, Speed{230400, B230400}, Speed{460800, B460800}, Speed{921600, B921600}};

/// The code of a standard speed.
std::optional<speed_t> SpeedCode(std::uint32_t bitsPerSecond) {
    for (const Speed& speed : kSpeeds)
        if (speed.bitsPerSecond == bitsPerSecond) return speed.code;
    return std::nullopt;
}

[[noreturn]] void RaiseOpenError(int systemError) {
    const bool refused = systemError == EACCES || systemError == EPERM || systemError == EBUSY ||
                         systemError == EWOULDBLOCK;
    throw RuntimeError(refused ? ErrorNumber::PermissionDenied : ErrorNumber::DeviceUnavailable);
}

tcflag_t FrameFlags(const LineSettings& line) {
    if (line.dataBits != 7 && line.dataBits != 8) throw RuntimeError(ErrorNumber::InvalidCall);
    if (line.stopBits != 1 && line.stopBits != 2) throw RuntimeError(ErrorNumber::InvalidCall);
    tcflag_t flags = line.dataBits == 7 ? CS7 : CS8;
    if (line.stopBits == 2) flags |= CSTOPB;
    if (line.parity != Parity::None) flags |= PARENB;
    if (line.parity == Parity::Odd) flags |= PARODD;
    return flags;
}

constexpr auto kRtsCts = static_cast<tcflag_t>(CRTSCTS);

void SetFlowControl(FlowControl flowControl, termios& settings) {
    if (flowControl == FlowControl::Hardware) settings.c_cflag |= kRtsCts;
    if (flowControl != FlowControl::Software) return;
    settings.c_iflag |= IXON | IXOFF;
    settings.c_cc[VSTART] = 0x11;
    settings.c_cc[VSTOP] = 0x13;
}

// A pseudo-terminal carries characters, not bits: it always has 8 data bits and no parity,
// whatever is requested. This is no reason to refuse it.
bool IsPseudoTerminal(int descriptor) {
    constexpr unsigned kFirstMajor = 136;
    constexpr unsigned kLastMajor = 143;
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return false;
    const unsigned number = major(status.st_rdev);
    return number >= kFirstMajor && number <= kLastMajor;
}

class PosixSerialPort : public SerialPort {
public:
    PosixSerialPort(PosixMessagePump& pump, const std::string& device, const LineSettings& line)
        : mPump(pump), mRtsIsOurs(line.flowControl != FlowControl::Hardware) {
        constexpr int kFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
        mDevice = PosixHandle(Uninterrupted([&] { return open(device.c_str(), kFlags); }));
        if (!mDevice.IsOpen()) RaiseOpenError(errno);
        if (isatty(mDevice.Get()) != 1) throw RuntimeError(ErrorNumber::DeviceUnavailable);
        // flock comes before any change to a line that may be in use; unlike TIOCEXCL it also
        // keeps out root. TIOCEXCL keeps out programs that do not use flock. It comes last:
        // a port that is refused must not stay exclusive.
        if (Uninterrupted([&] { return flock(mDevice.Get(), LOCK_EX | LOCK_NB); }) != 0)
            RaiseOpenError(errno);
        SetLine(line);
        RaiseModemLines();
        if (ioctl(mDevice.Get(), TIOCEXCL) != 0) RaiseOpenError(errno);
        // Reading makes the driver deliver what it still buffers, so that all of it is discarded.
        TakeInput();
        mInput.clear();
        tcflush(mDevice.Get(), TCIFLUSH);  // a lost device shows later
        mErrorsBefore = CountErrors();
        mPump.Watch(mDevice.Get());
    }

    ~PosixSerialPort() override {
        StopNotifying();
        mPump.Unwatch(mDevice.Get());
        if (mBreaks) ioctl(mDevice.Get(), TIOCCBRK);
        // TIOCEXCL persists while another program has the device open, such as the other side of
        // a pseudo-terminal; the next open would fail.
        ioctl(mDevice.Get(), TIOCNXCL);
    }

    PosixSerialPort(const PosixSerialPort&) = delete;
    PosixSerialPort& operator=(const PosixSerialPort&) = delete;

    std::size_t Read(std::span<char> into) override {
        if (InputCount() == 0) return 0;
        const std::size_t count = mInput.copy(into.data(), into.size());
        mInput.erase(0, count);
        return count;
    }

    std::size_t Write(std::string_view bytes) override {
        if (mGone) RaiseGone();
        if (bytes.empty()) return 0;
        const ssize_t count =
            Uninterrupted([&] { return write(mDevice.Get(), bytes.data(), bytes.size()); });
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno == EAGAIN) return 0;
        RaiseGone();
    }

    std::size_t InputCount() override {
        TakeInput();
        if (mGone && mInput.empty()) RaiseGone();
        return mInput.size();
    }

    std::size_t OutputCount() override {
        TakeInput();
        if (mGone) RaiseGone();
        int count = 0;
        if (ioctl(mDevice.Get(), TIOCOUTQ, &count) == 0) return static_cast<std::size_t>(count);
        if (errno == ENOTTY || errno == EINVAL) return 0;  // the driver does not report this count
        RaiseGone();
    }

    void DiscardInput() override {
        mInput.clear();
        TakeInput();
        if (mGone || (!mInput.empty() && tcflush(mDevice.Get(), TCIFLUSH) != 0)) RaiseGone();
        mInput.clear();
    }

    void NotifyOnInput(std::function<void()> notify) override {
        StopNotifying();
        mNotify = std::move(notify);
        if (mNotify) mSource = mPump.AddSource([this] { PollInput(); });
    }

    // TIOCSBRK waits until the output is sent, for ever when flow control holds it: what is left is
    // discarded.
    void Break(bool on) override {
        if (on && OutputCount() > 0) tcflush(mDevice.Get(), TCOFLUSH);
        Control(on ? TIOCSBRK : TIOCCBRK);
        mBreaks = on;
    }

    void Dtr(bool asserted) override {
        const int line = TIOCM_DTR;
        Control(asserted ? TIOCMBIS : TIOCMBIC, &line);
    }

    void Rts(bool asserted) override {
        const int line = mRtsIsOurs ? TIOCM_RTS : 0;
        Control(asserted ? TIOCMBIS : TIOCMBIC, &line);
    }

    std::optional<ModemLines> Lines() override {
        int lines = 0;
        if (!Control(TIOCMGET, &lines)) return std::nullopt;
        const auto isOn = [lines](int line) { return (lines & line) != 0; };
        return ModemLines{.cts = isOn(TIOCM_CTS),
                          .dsr = isOn(TIOCM_DSR),
                          .dcd = isOn(TIOCM_CD),
                          .ri = isOn(TIOCM_RI)};
    }

    LineErrors Errors() override {
        TakeInput();
        if (mGone) RaiseGone();
        const LineErrors now = CountErrors();
        return {.framing = now.framing - mErrorsBefore.framing,
                .parity = now.parity - mErrorsBefore.parity,
                .overrun = now.overrun - mErrorsBefore.overrun};
    }

private:
    /// A request that not every device supports. False when it fails, which alone does not mean
    /// that the device is lost: drivers report an unsupported request by various errors.
    template <typename... Argument>
    bool Control(unsigned long request, Argument... argument) {
        const int result =
            Uninterrupted([&] { return ioctl(mDevice.Get(), request, argument...); });
        TakeInput();
        if (mGone) RaiseGone();
        return result == 0;
    }

    /// Since the driver was loaded; zeros when it does not count.
    LineErrors CountErrors() const {
        serial_icounter_struct counts{};
        if (ioctl(mDevice.Get(), TIOCGICOUNT, &counts) != 0) return {};
        const auto number = [](int count) { return static_cast<std::uint32_t>(count); };
        return {.framing = number(counts.frame),
                .parity = number(counts.parity),
                .overrun = std::uint64_t{number(counts.overrun)} + number(counts.buf_overrun)};
    }

    void SetLine(const LineSettings& line) const {
        const int descriptor = mDevice.Get();
        const std::optional<speed_t> speed = SpeedCode(line.bitsPerSecond);
        termios wanted{};
        if (tcgetattr(descriptor, &wanted) != 0) RaiseOpenError(errno);
        cfmakeraw(&wanted);
        wanted.c_iflag = IGNBRK;  // a break is no byte: an indicator is switched off
        const tcflag_t frameBits = CSIZE | CSTOPB | PARENB | PARODD;
        wanted.c_cflag &= ~(frameBits | kRtsCts);
        SetFlowControl(line.flowControl, wanted);
        wanted.c_cflag |= FrameFlags(line) | CLOCAL | CREAD | HUPCL;
        wanted.c_cc[VMIN] = 1;  // with 0, "no input" and "device lost" are indistinguishable
        wanted.c_cc[VTIME] = 0;
        if (speed && (cfsetispeed(&wanted, *speed) != 0 || cfsetospeed(&wanted, *speed) != 0))
            throw RuntimeError(ErrorNumber::InvalidCall);
        if (tcsetattr(descriptor, TCSANOW, &wanted) != 0 ||
            (!speed && !SetAnySpeed(descriptor, line.bitsPerSecond)))
            throw RuntimeError(ErrorNumber::InvalidCall);

        // tcsetattr succeeds when any part of the request did, so the settings are read back.
        termios got{};
        if (tcgetattr(descriptor, &got) != 0) RaiseOpenError(errno);
        const bool frameHolds = (got.c_cflag & frameBits) == (wanted.c_cflag & frameBits);
        const bool speedHolds = !speed || cfgetospeed(&got) == *speed;
        const bool flowHolds = (~got.c_cflag & wanted.c_cflag & kRtsCts) == 0;
        if (!speedHolds || !flowHolds || (!frameHolds && !IsPseudoTerminal(descriptor)))
            throw RuntimeError(ErrorNumber::InvalidCall);
    }

    void RaiseModemLines() const {
        const int lines = TIOCM_DTR | TIOCM_RTS;
        if (ioctl(mDevice.Get(), TIOCMBIS, &lines) == 0) return;
        // Pseudo-terminals and three-wire adapters do not have these lines.
        if (errno != ENOTTY && errno != EINVAL) RaiseOpenError(errno);
    }

    /// A single system call checks for and reads input, because wait loops call this. A lost device
    /// shows as end of file or an error, after everything that it sent has been read.
    void TakeInput() {
        constexpr std::size_t kQueue = 4096;  // as the driver's, which keeps the rest
        if (mGone || mInput.size() >= kQueue) return;
        std::array<char, kQueue> chunk;
        const ssize_t count = Uninterrupted(
            [&] { return read(mDevice.Get(), chunk.data(), kQueue - mInput.size()); });
        if (count > 0) mInput.append(chunk.data(), static_cast<std::size_t>(count));
        mGone = count == 0 || (count < 0 && errno != EAGAIN);
    }

    [[noreturn]] void RaiseGone() {
        mGone = true;
        throw RuntimeError(ErrorNumber::DeviceIO);
    }

    void StopNotifying() {
        if (mSource != 0) mPump.RemoveSource(std::exchange(mSource, 0));
        mNotify = nullptr;
    }

    // The callback may destroy this port: a copy is called, and no member is used after it.
    void PollInput() {
        TakeInput();
        if (mInput.empty() && !mGone) return;
        const std::function<void()> notify = mNotify;
        if (mInput.empty()) StopNotifying();
        notify();
    }

    PosixMessagePump& mPump;
    PosixHandle mDevice;
    std::function<void()> mNotify;
    SourceId mSource = 0;
    std::string mInput;  // read from the device, but not yet by the caller
    bool mGone = false;
    bool mRtsIsOurs;
    bool mBreaks = false;
    LineErrors mErrorsBefore;  // counted before this port was opened
};

}  // namespace

std::unique_ptr<SerialPort> OpenPosixSerialPort(PosixMessagePump& pump, const std::string& device,
                                                const LineSettings& line) {
    return std::make_unique<PosixSerialPort>(pump, device, line);
}

}  // namespace vantor
