// Linux pseudo-terminal. inotify reports opens and closes of the slave: POLLHUP on the master shows
// that the slave is closed, but not that it was closed and reopened.
#include "simulator/m40sim/PseudoTerminal.hpp"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace vantor {

namespace {

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

constexpr std::array<std::pair<speed_t, std::uint32_t>, 15> kSpeeds{{
    {B300, 300},
    {B600, 600},
    {B1200, 1200},
    {B2400, 2400},
    {B4800, 4800},
    {B9600, 9600},
    {B19200, 19200},
    {B38400, 38400},
    {B57600, 57600},
    {B115200, 115200},
    {B230400, 230400},
    {B460800, 460800},
    {B500000, 500000},
    {B576000, 576000},
    {B921600, 921600},
}};

// Not every system configures a slave through its master. The slave keeps its settings when closed.
void MakeRaw(const std::string& path) {
    const int slave = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave < 0) Fail("The pseudo-terminal cannot be opened");
    termios settings{};
    tcgetattr(slave, &settings);
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    cfsetspeed(&settings, B38400);
    const int set = tcsetattr(slave, TCSANOW, &settings);
    close(slave);
    if (set != 0) Fail("The pseudo-terminal cannot be set up");
}

}  // namespace

PseudoTerminal::PseudoTerminal() {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGINT);
    sigprocmask(SIG_BLOCK, &blocked, &mWaitMask);

    mMaster = posix_openpt(O_RDWR | O_NOCTTY);
    if (mMaster < 0) Fail("No pseudo-terminal can be had");
    if (grantpt(mMaster) != 0 || unlockpt(mMaster) != 0) Fail("The pseudo-terminal stays locked");
    const char* const path = ptsname(mMaster);
    if (path == nullptr) Fail("The pseudo-terminal has no name");
    mPath = path;
    fcntl(mMaster, F_SETFL, fcntl(mMaster, F_GETFL) | O_NONBLOCK);
    fcntl(mMaster, F_SETFD, FD_CLOEXEC);
    MakeRaw(mPath);

    mEvents = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (mEvents < 0 || inotify_add_watch(mEvents, path, IN_OPEN | IN_CLOSE | IN_MODIFY) < 0) {
        Fail("The pseudo-terminal cannot be watched for opens");
    }
}

PseudoTerminal::~PseudoTerminal() {
    Close();
}

PseudoTerminal::State PseudoTerminal::Look() {
    State state{};
    short events = Gather(state);
    // Bytes may have arrived between the read and the close. Only an empty read that started
    // after POLLHUP proves that none are left.
    if ((events & POLLHUP) != 0 && state.bytes.empty() && !state.reopened) events = Gather(state);
    const bool hangup = (events & POLLHUP) != 0;
    state.hostOpen = !hangup || !state.bytes.empty() || state.reopened;
    mLookAgain = hangup && state.hostOpen;
    Divide(state);
    // With nothing left to read, the bytes of every IN_MODIFY so far have been read.
    if ((events & POLLIN) == 0) mWrote = false;
    return state;
}

// Reads bytes first, then events: IN_MODIFY arrives after its bytes but before the next IN_CLOSE,
// so the events tell whether the bytes were written before or after the close.
// Returns the poll events of the master afterwards: POLLIN, POLLHUP.
short PseudoTerminal::Gather(State& state) {
    std::array<char, 4096> some{};
    for (;;) {
        const ssize_t count = read(mMaster, some.data(), some.size());
        // EIO: the slave is closed and everything written before has been read.
        if (count <= 0) break;
        state.bytes.append(some.data(), static_cast<std::size_t>(count));
    }
    ReadEvents(state);
    pollfd look{mMaster, POLLIN, 0};
    // ppoll with the wait mask delivers a pending signal even while bytes keep streaming.
    const timespec now{};
    if (ppoll(&look, 1, &now, &mWaitMask) < 0) {
        if (errno != EINTR) Fail("The pseudo-terminal cannot be watched");
        look.revents = 0;
        if (poll(&look, 1, 0) < 0) Fail("The pseudo-terminal cannot be watched");
    }
    return look.revents;
}

void PseudoTerminal::ReadEvents(State& state) {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = read(mEvents, buffer.data(), buffer.size());
        if (count <= 0) return;
        inotify_event event{};
        for (std::size_t at = 0; at < static_cast<std::size_t>(count);
             at += sizeof event + event.len) {
            std::memcpy(&event, buffer.data() + at, sizeof event);
            TakeEvent(event.mask, state);
        }
    }
}

// IN_CLOSE arrives before POLLHUP is set, so a close alone is not acted on until an open follows.
void PseudoTerminal::TakeEvent(std::uint32_t mask, State& state) {
    if ((mask & IN_MODIFY) != 0) mWrote = true;
    if ((mask & IN_CLOSE) != 0) {
        mOpenCount = std::max(0, mOpenCount - 1);
        mWasEmptied = mOpenCount == 0;
    }
    if ((mask & IN_OPEN) != 0) {
        ++mOpenCount;
        if (!std::exchange(mWasEmptied, false)) return;
        state.reopened = true;
        mWroteBefore = std::exchange(mWrote, false);
    }
}

// Separates the bytes before a close from those after the next open. If a host wrote on both
// sides, the first line is what it wrote before: a host waits for a reply to every line except the
// last one of a session.
void PseudoTerminal::Divide(State& state) const {
    if (!state.reopened || !mWroteBefore) return;
    const std::size_t end = mWrote ? state.bytes.find('\r') : std::string::npos;
    const std::size_t count = end == std::string::npos ? state.bytes.size() : end + 1;
    state.bytesBefore = state.bytes.substr(0, count);
    state.bytes.erase(0, count);
}

void PseudoTerminal::Wait(std::optional<std::chrono::microseconds> atMost) const {
    if (mLookAgain) return;
    std::array<pollfd, 2> wait{{{mEvents, POLLIN, 0}, {mMaster, POLLIN, 0}}};
    if (poll(&wait[1], 1, 0) < 0) Fail("The pseudo-terminal cannot be waited for");
    if ((wait[1].revents & POLLIN) != 0) return;
    // Without a host POLLHUP is always set and would make ppoll return at once: watch inotify only.
    const nfds_t watched = (wait[1].revents & POLLHUP) != 0 ? 1 : 2;
    timespec limit{};
    if (atMost) {
        limit.tv_sec = static_cast<time_t>(atMost->count() / 1'000'000);
        limit.tv_nsec = static_cast<long>(atMost->count() % 1'000'000 * 1'000);
    }
    if (ppoll(wait.data(), watched, atMost ? &limit : nullptr, &mWaitMask) < 0 && errno != EINTR) {
        Fail("The pseudo-terminal cannot be waited for");
    }
}

void PseudoTerminal::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(mMaster, bytes.data(), bytes.size());
        if (count <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

LineSettings PseudoTerminal::Line() const {
    termios settings{};
    if (tcgetattr(mMaster, &settings) != 0) Fail("The line parameters cannot be read");
    LineSettings line;
    const speed_t speed = cfgetospeed(&settings);
    const auto* const known = std::find_if(kSpeeds.begin(), kSpeeds.end(),
                                           [&](const auto& entry) { return entry.first == speed; });
    line.bitsPerSecond = known == kSpeeds.end() ? 0 : known->second;
    line.stopBits = (settings.c_cflag & CSTOPB) != 0 ? 2 : 1;
    line.dataBits = (settings.c_cflag & CSIZE) == CS7 ? 7 : 8;
    if ((settings.c_cflag & PARENB) != 0) {
        line.parity = (settings.c_cflag & PARODD) != 0 ? Parity::Odd : Parity::Even;
    }
    return line;
}

void PseudoTerminal::Close() {
    for (int* const descriptor : {&mMaster, &mEvents}) {
        if (*descriptor >= 0) close(*descriptor);
        *descriptor = -1;
    }
}

}  // namespace vantor
