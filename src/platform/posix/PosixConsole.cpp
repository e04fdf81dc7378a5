#include "platform/posix/PosixConsole.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <utility>

#include "platform/posix/PosixHandle.hpp"

namespace vantor {
namespace {

// Shared with the signal handler. The pipe avoids losing a signal that arrives just before a wait.
std::atomic<std::uint32_t> gInterrupts = 0;
std::array<int, 2> gWakeUp = {-1, -1};

static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "a signal handler must not lock");

void OnInterrupt(int) {
    const int systemError = errno;
    gInterrupts.fetch_add(1);
    // A write to a full pipe fails, but the waiting side wakes anyway.
    if (write(gWakeUp[1], "!", 1) != 1) errno = systemError;
    errno = systemError;
}

void WriteTo(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            Uninterrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
            continue;
        }
        if (count == 0 || errno != EAGAIN) return;
        pollfd room{descriptor, POLLOUT, 0};
        if (poll(&room, 1, -1) < 0 && errno != EINTR) return;
    }
}

}  // namespace

PosixConsole::PosixConsole() {
    mTaken = gInterrupts;
    if (pipe2(gWakeUp.data(), O_CLOEXEC | O_NONBLOCK) != 0) gWakeUp = {-1, -1};
    struct sigaction action {};
    static_cast<void>(sigemptyset(&action.sa_mask));
    action.sa_flags = SA_RESTART;  // an interrupt must not cut short a write to the line
    action.sa_handler = OnInterrupt;
    // sigaction fails for bad numbers only.
    static_cast<void>(sigaction(SIGINT, &action, &mOldInterrupt));
    static_cast<void>(sigaction(SIGTERM, &action, &mOldTerminate));
    action.sa_handler = SIG_IGN;
    static_cast<void>(sigaction(SIGPIPE, &action, &mOldPipe));
    static_cast<void>(sigaction(SIGHUP, &action, &mOldHangUp));
}

PosixConsole::~PosixConsole() {
    static_cast<void>(sigaction(SIGINT, &mOldInterrupt, nullptr));
    static_cast<void>(sigaction(SIGTERM, &mOldTerminate, nullptr));
    static_cast<void>(sigaction(SIGHUP, &mOldHangUp, nullptr));
    static_cast<void>(sigaction(SIGPIPE, &mOldPipe, nullptr));
    for (int& end : gWakeUp) PosixHandle(std::exchange(end, -1));
}

bool PosixConsole::InputIsTerminal() const {
    return isatty(STDIN_FILENO) == 1;
}

bool PosixConsole::OutputIsTerminal() const {
    return isatty(STDOUT_FILENO) == 1;
}

unsigned PosixConsole::Columns() const {
    constexpr unsigned kUnknown = 80;
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUnknown;
    return size.ws_col;
}

void PosixConsole::Write(std::string_view utf8) {
    WriteTo(STDOUT_FILENO, utf8);
}

void PosixConsole::WriteError(std::string_view utf8) {
    WriteTo(STDERR_FILENO, utf8);
}

/// True when input, or its end, can be read; false on an interrupt.
bool PosixConsole::WaitForInput() const {
    std::array<pollfd, 2> ends = {pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{gWakeUp[0], POLLIN, 0}};
    for (;;) {
        const int ready = poll(ends.data(), ends.size(), -1);
        if (ready < 0 && errno != EINTR) return true;  // the read reports the error
        if (ready < 0) continue;
        if (ends[1].revents != 0) return false;
        if (ends[0].revents != 0) return true;
    }
}

std::optional<std::string> PosixConsole::ReadLine() {
    std::array<char, 4096> buffer{};
    // Interrupts from before this wait are for TakeInterrupt only.
    while (read(gWakeUp[0], buffer.data(), buffer.size()) > 0) continue;
    std::size_t end = mUnread.find('\n');
    while (end == std::string::npos) {
        if (!WaitForInput()) return std::nullopt;
        const ssize_t count =
            Uninterrupted([&] { return read(STDIN_FILENO, buffer.data(), buffer.size()); });
        if (count < 0 && errno == EAGAIN) continue;
        if (count <= 0) break;
        mUnread.append(buffer.data(), static_cast<std::size_t>(count));
        end = mUnread.find('\n', mUnread.size() - static_cast<std::size_t>(count));
    }
    if (end == std::string::npos && mUnread.empty()) return std::nullopt;
    std::string line = mUnread.substr(0, end);
    mUnread.erase(0, end == std::string::npos ? end : end + 1);
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

bool PosixConsole::TakeInterrupt() {
    if (mTaken == gInterrupts) return false;
    ++mTaken;
    return true;
}

}  // namespace vantor
