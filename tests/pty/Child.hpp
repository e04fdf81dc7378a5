// A child process started by a test: its output, input, signals and exit status.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vantor {

/// A child process whose output is collected in memory. Killed by the destructor.
class Child {
public:
    enum class Output : std::uint8_t { Pipes, Terminal, None };

    /// Starts `arguments[0]`. With Output::Terminal its three standard streams are one
    /// pseudo-terminal, and `Out` has all output. With Output::None they are closed.
    explicit Child(std::vector<std::string> arguments, Output output = Output::Pipes);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Waits up to 100 s for `text` in the output of both streams. False when the process ends or
    /// the time-out expires without it.
    bool WaitFor(const std::string& text);
    /// Waits up to 100 s for the end; returns the exit status, 128 + signal number, -1 on time-out.
    int Wait();
    void Signal(int number) const;
    /// Writes `text` to its terminal as keyboard input.
    void Type(const std::string& text) const;
    /// Takes its terminal away, as a connection that drops does.
    void HangUp();

    const std::string& Out() const { return mTexts[0]; }
    const std::string& Err() const { return mTexts[1]; }

private:
    bool Until(const std::function<bool()>& done);

    pid_t mPid = -1;
    std::array<int, 2> mEnds = {-1, -1};  // of standard output and error; -1 at their end
    std::array<std::string, 2> mTexts;
};

}  // namespace vantor
