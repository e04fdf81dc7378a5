// Another program, started by a test: what it writes, what it is told, how it ends.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace vantor {

/// A child process whose output is collected in memory. Ended when destroyed.
class Child {
public:
    enum class Output : bool { Pipes, Terminal };

    /// Starts `arguments[0]`. With Output::Terminal its three streams are one pseudo-terminal,
    /// and what it writes there is all in `Out`.
    explicit Child(const std::vector<std::string>& arguments, Output output = Output::Pipes);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Waits up to 100 s for `text` in what it has written (both streams). False when it ended
    /// or the time passed without it.
    bool WaitFor(const std::string& text);
    /// Waits up to 100 s for its end and returns its exit status; -1 when it does not end.
    int Wait();
    void Signal(int number) const;
    /// Types `text` on its terminal.
    void Type(const std::string& text) const;
    /// Takes its terminal away, as a connection that drops does.
    void HangUp();

    const std::string& Out() const { return mOut; }
    const std::string& Err() const { return mErr; }

private:
    /// Collects output for a moment. False once both streams have ended.
    bool Collect();

    pid_t mPid = -1;
    int mOutEnd = -1;
    int mErrEnd = -1;
    std::string mOut;
    std::string mErr;
};

}  // namespace vantor
