// The text terminal off Windows.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <utility>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixServices.hpp"

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
    while (!WriteAll(descriptor, bytes) && errno == EAGAIN) {
        pollfd room{descriptor, POLLOUT, 0};
        if (poll(&room, 1, -1) < 0 && errno != EINTR) return;
    }
}

struct HandledSignal {
    int number;
    void (*handler)(int);
    struct sigaction before {};
};

class PosixConsole : public Console {
public:
    PosixConsole() {
        if (pipe2(gWakeUp.data(), O_CLOEXEC | O_NONBLOCK) != 0) gWakeUp = {-1, -1};
        for (HandledSignal& signal : mSignals) {
            struct sigaction action {};
            sigemptyset(&action.sa_mask);
            action.sa_flags = SA_RESTART;  // an interrupt must not cut short a write to the line
            action.sa_handler = signal.handler;
            sigaction(signal.number, &action, &signal.before);  // fails for bad numbers only
        }
    }
    ~PosixConsole() override {
        for (const HandledSignal& signal : mSignals)
            sigaction(signal.number, &signal.before, nullptr);
        for (int& end : gWakeUp) PosixHandle(std::exchange(end, -1));
    }
    PosixConsole(const PosixConsole&) = delete;
    PosixConsole& operator=(const PosixConsole&) = delete;

    bool InputIsTerminal() const override { return isatty(STDIN_FILENO) == 1; }
    bool OutputIsTerminal() const override { return isatty(STDOUT_FILENO) == 1; }
    void Write(std::string_view utf8) override { WriteTo(STDOUT_FILENO, utf8); }
    void WriteError(std::string_view utf8) override { WriteTo(STDERR_FILENO, utf8); }

    bool ReaderGone() override {
        pollfd output{STDOUT_FILENO, 0, 0};
        // A terminal that has disappeared reports POLLHUP as well.
        return poll(&output, 1, 0) == 1 && output.revents == POLLERR;
    }

    unsigned Columns() const override {
        constexpr unsigned kUnknown = 80;
        winsize size{};
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUnknown;
        return size.ws_col;
    }

    void ClearRowsAbove(unsigned rows) override {
        Write("\r\x1B[" + std::to_string(rows) + "A\x1B[J");
    }

    std::optional<std::string> ReadLine() override {
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

    bool LineWaits() override {
        if (!InputIsTerminal()) return false;
        pollfd input{STDIN_FILENO, POLLIN, 0};  // readable from the end of a line on
        return mUnread.find('\n') != std::string::npos ||
               (poll(&input, 1, 0) == 1 && (input.revents & POLLIN) != 0);
    }

    bool TakeInterrupt() override {
        if (mTaken == gInterrupts) return false;
        ++mTaken;
        return true;
    }

private:
    /// True when input, or its end, can be read; false on an interrupt.
    static bool WaitForInput() {
        std::array<pollfd, 2> ends = {pollfd{STDIN_FILENO, POLLIN, 0},
                                      pollfd{gWakeUp[0], POLLIN, 0}};
        for (;;) {
            const int ready = poll(ends.data(), ends.size(), -1);
            if (ready < 0 && errno != EINTR) return true;  // the read reports the error
            if (ready < 0) continue;
            if (ends[1].revents != 0) return false;
            if (ends[0].revents != 0) return true;
        }
    }

    std::array<HandledSignal, 4> mSignals = {
        {{SIGINT, OnInterrupt}, {SIGTERM, OnInterrupt}, {SIGPIPE, SIG_IGN}, {SIGHUP, SIG_IGN}}};
    std::string mUnread;
    std::uint32_t mTaken = gInterrupts;
};

}  // namespace

std::unique_ptr<Console> MakePosixConsole() {
    return std::make_unique<PosixConsole>();
}

}  // namespace vantor
