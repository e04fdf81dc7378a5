// The console of a Windows program, or its redirected output and input. One object at a time: it
// owns the process's control events.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Console.hpp"
#include "platform/win32/services/Win32EndOfSession.hpp"

namespace vantor {

class Win32Console : public Console {
public:
    Win32Console();
    ~Win32Console() override;
    Win32Console(const Win32Console&) = delete;
    Win32Console& operator=(const Win32Console&) = delete;

    bool InputIsTerminal() const override;
    bool OutputIsTerminal() const override;
    unsigned Columns() const override;

    /// Redirected output is plain UTF-8.
    void Write(std::string_view utf8) override;
    void WriteError(std::string_view utf8) override;

    /// A last line without a terminator counts as a line.
    std::optional<std::string> ReadLine() override;
    bool TakeInterrupt() override;
    void HoldSystem(const std::string& reason) override;

private:
    enum class Input { More, Ended, Interrupted };

    Input ReadMore();
    Input ReadFromConsole(HANDLE console);
    Input ReadFromStream(HANDLE stream);

    std::optional<Win32EndOfSession> mEndOfSession;  // from the first session on
    std::string mUnread;
    std::uint32_t mTaken = 0;
};

}  // namespace vantor
