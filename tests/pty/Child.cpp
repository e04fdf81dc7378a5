#include "tests/pty/Child.hpp"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <system_error>
#include <utility>

namespace vantor {
namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr auto kPatience = std::chrono::seconds(100);

void Must(bool ok, const char* what) {
    if (!ok) throw std::system_error(errno, std::generic_category(), what);
}

[[noreturn]] void Exec(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
}

/// Appends the available output; closes `end` at end of file or on an error.
void Drain(int& end, std::string& text) {
    std::array<char, 4096> chunk;
    const ssize_t count = read(end, chunk.data(), chunk.size());
    if (count > 0) {
        text.append(chunk.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
        close(end);
        end = -1;
    }
}

}  // namespace

Child::Child(const std::vector<std::string>& arguments, Output output) {
    if (output == Output::Terminal) {
        mPid = forkpty(&mOutEnd, nullptr, nullptr, nullptr);
        Must(mPid >= 0, "forkpty");
        if (mPid == 0) Exec(arguments);
        return;
    }
    std::array<int, 2> out{};
    std::array<int, 2> err{};
    Must(pipe2(out.data(), O_CLOEXEC) == 0 && pipe2(err.data(), O_CLOEXEC) == 0, "pipe2");
    mPid = fork();
    Must(mPid >= 0, "fork");
    if (mPid == 0) {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        Exec(arguments);
    }
    close(out[1]);
    close(err[1]);
    mOutEnd = out[0];
    mErrEnd = err[0];
}

Child::~Child() {
    if (mPid > 0) {
        kill(mPid, SIGKILL);
        waitpid(mPid, nullptr, 0);
    }
    if (mOutEnd >= 0) close(mOutEnd);
    if (mErrEnd >= 0) close(mErrEnd);
}

bool Child::Collect() {
    std::array<pollfd, 2> ends = {{{mOutEnd, POLLIN, 0}, {mErrEnd, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), 50) > 0) {
        if (ends[0].revents != 0) Drain(mOutEnd, mOut);
        if (ends[1].revents != 0) Drain(mErrEnd, mErr);
    }
    return mOutEnd >= 0 || mErrEnd >= 0;
}

bool Child::WaitFor(const std::string& text) {
    const auto found = [&] {
        return mOut.find(text) != std::string::npos || mErr.find(text) != std::string::npos;
    };
    const auto deadline = SteadyClock::now() + kPatience;
    while (!found() && SteadyClock::now() < deadline)
        if (!Collect()) break;
    return found();
}

int Child::Wait() {
    const auto deadline = SteadyClock::now() + kPatience;
    while (SteadyClock::now() < deadline && Collect()) continue;
    if (mOutEnd >= 0 || mErrEnd >= 0) return -1;
    int status = 0;
    Must(waitpid(mPid, &status, 0) == mPid, "waitpid");
    mPid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void Child::Signal(int number) const {
    Must(kill(mPid, number) == 0, "kill");
}

void Child::Type(const std::string& text) const {
    Must(write(mOutEnd, text.data(), text.size()) == static_cast<ssize_t>(text.size()), "write");
}

void Child::HangUp() {
    Must(close(std::exchange(mOutEnd, -1)) == 0, "close");
}

}  // namespace vantor
