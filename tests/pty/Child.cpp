#include "tests/pty/Child.hpp"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <system_error>
#include <utility>

namespace vantor {
namespace {

void Must(bool ok, const char* what) {
    if (!ok) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

Child::Child(std::vector<std::string> arguments, Output output) {
    const bool pipes = output != Output::Terminal;
    std::array<int, 2> out{};
    std::array<int, 2> err{};
    if (pipes)
        Must(pipe2(out.data(), O_CLOEXEC) == 0 && pipe2(err.data(), O_CLOEXEC) == 0, "pipe2");
    mPid = pipes ? fork() : forkpty(&mEnds[0], nullptr, nullptr, nullptr);
    Must(mPid >= 0, "fork");
    if (mPid == 0) {
        if (pipes) {
            dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
            dup2(out[1], STDOUT_FILENO);
            dup2(err[1], STDERR_FILENO);
            if (output == Output::None) close_range(STDIN_FILENO, STDERR_FILENO, 0);
        }
        std::vector<char*> argv;
        for (std::string& argument : arguments) argv.push_back(argument.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    if (!pipes) return;
    close(out[1]);
    close(err[1]);
    mEnds = {out[0], err[0]};
}

Child::~Child() {
    if (mPid > 0) {
        kill(mPid, SIGKILL);
        waitpid(mPid, nullptr, 0);
    }
    for (const int end : mEnds)
        if (end >= 0) close(end);
}

/// Collects output until `done`, the end of both streams, or a time-out; returns `done`.
bool Child::Until(const std::function<bool()>& done) {
    const auto now = [] { return std::chrono::steady_clock::now(); };
    const auto deadline = now() + std::chrono::seconds(100);
    while (!done() && mEnds != std::array{-1, -1} && now() < deadline) {
        std::array<pollfd, 2> ends = {{{mEnds[0], POLLIN, 0}, {mEnds[1], POLLIN, 0}}};
        poll(ends.data(), ends.size(), 50);
        for (std::size_t i = 0; i < ends.size(); ++i) {
            if (ends[i].revents == 0) continue;
            std::array<char, 4096> chunk;
            const ssize_t count = read(mEnds[i], chunk.data(), chunk.size());
            if (count > 0)
                mTexts[i].append(chunk.data(), static_cast<std::size_t>(count));
            else
                close(std::exchange(mEnds[i], -1));
        }
    }
    return done();
}

bool Child::WaitFor(const std::string& text) {
    return Until([&] {
        return Out().find(text) != std::string::npos || Err().find(text) != std::string::npos;
    });
}

int Child::Wait() {
    if (!Until([this] { return mEnds == std::array{-1, -1}; })) return -1;
    int status = 0;
    Must(waitpid(std::exchange(mPid, -1), &status, 0) > 0, "waitpid");
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void Child::Signal(int number) const {
    Must(kill(mPid, number) == 0, "kill");
}

void Child::Type(const std::string& text) const {
    Must(write(mEnds[0], text.data(), text.size()) == static_cast<ssize_t>(text.size()), "write");
}

void Child::HangUp() {
    Must(close(std::exchange(mEnds[0], -1)) == 0, "close");
}

}  // namespace vantor
