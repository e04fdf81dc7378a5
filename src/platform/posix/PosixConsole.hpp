// The text terminal off Windows. One object at a time: it owns the terminal signals of the process.
#pragma once

#include <signal.h>

#include <cstdint>
#include <string>

#include "platform/Console.hpp"

namespace vantor {

class PosixConsole : public Console {
public:
    /// Takes over SIGINT and SIGTERM, and ignores SIGHUP and SIGPIPE: a connection that drops, or a
    /// reader of our output that goes away, must not end a running update.
    PosixConsole();
    ~PosixConsole() override;
    PosixConsole(const PosixConsole&) = delete;
    PosixConsole& operator=(const PosixConsole&) = delete;

    bool InputIsTerminal() const override;
    bool OutputIsTerminal() const override;
    unsigned Columns() const override;
    void Write(std::string_view utf8) override;
    void WriteError(std::string_view utf8) override;

    /// A last line without a terminator counts as a line.
    std::optional<std::string> ReadLine() override;
    bool TakeInterrupt() override;

private:
    bool WaitForInput() const;

    struct sigaction mOldInterrupt {};
    struct sigaction mOldTerminate {};
    struct sigaction mOldHangUp {};
    struct sigaction mOldPipe {};
    std::string mUnread;
    std::uint32_t mTaken = 0;
};

}  // namespace vantor
