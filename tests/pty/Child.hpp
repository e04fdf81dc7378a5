// A child process started by a test: its output, input, signals and exit status.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vantor {

/// A child process whose output is collected in memory. Killed by the destructor.
class Child {
public:
    enum class Output : std::uint8_t { Pipes, Terminal, None };

    /// Starts `arguments[0]`. With Output::Terminal its three standard streams are one
    /// pseudo-terminal, and `Out` has all output. With Output::None they are closed.
    explicit Child(std::vector<std::string> arguments, Output output = Output::Pipes) {
        const bool pipes = output != Output::Terminal;
        std::array<int, 2> out{};
        std::array<int, 2> err{};
        if (pipes) Must(pipe2(out.data(), O_CLOEXEC) + pipe2(err.data(), O_CLOEXEC) == 0);
        mPid = pipes ? fork() : forkpty(&mEnds[0], nullptr, nullptr, nullptr);
        Must(mPid >= 0);
        if (mPid == 0) {
            if (pipes) {
                dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
                dup2(out[1], STDOUT_FILENO);
                dup2(err[1], STDERR_FILENO);
                if (output == Output::None) close_range(STDIN_FILENO, STDERR_FILENO, 0);
            }
            std::vector<char*> argv;
            argv.reserve(arguments.size() + 1);
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
    ~Child() {
        if (mPid > 0) {
            kill(mPid, SIGKILL);
            waitpid(mPid, nullptr, 0);
        }
        for (const int end : mEnds)
            if (end >= 0) close(end);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Waits up to 100 s for `text` in the output of both streams. False when the process ends or
    /// the time-out expires without it.
    bool WaitFor(const std::string& text) {
        return Until([&] {
            return Out().find(text) != std::string::npos || Err().find(text) != std::string::npos;
        });
    }
    /// Waits up to 100 s for the end; returns the exit status, 128 + signal number, -1 on time-out.
    int Wait() {
        if (!Until([this] { return mEnds == std::array{-1, -1}; })) return -1;
        int status = 0;
        Must(waitpid(std::exchange(mPid, -1), &status, 0) > 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    void Signal(int number) const { Must(kill(mPid, number) == 0); }
    /// Writes `text` to its terminal as keyboard input.
    void Type(const std::string& text) const {
        Must(write(mEnds[0], text.data(), text.size()) == static_cast<ssize_t>(text.size()));
    }
    /// Takes its terminal away, as a connection that drops does.
    void HangUp() { Must(close(std::exchange(mEnds[0], -1)) == 0); }

    const std::string& Out() const { return mTexts[0]; }
    const std::string& Err() const { return mTexts[1]; }

private:
    static void Must(bool ok) {
        if (!ok) throw std::system_error(errno, std::generic_category());
    }

    /// Collects output until `done`, the end of both streams, or a time-out; returns `done`.
    bool Until(const std::function<bool()>& done) {
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

    pid_t mPid = -1;
    std::array<int, 2> mEnds = {-1, -1};  // of standard output and error; -1 at their end
    std::array<std::string, 2> mTexts;
};

}  // namespace vantor
