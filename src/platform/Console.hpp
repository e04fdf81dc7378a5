// The text terminal of a console program.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantor {

/// Standard input, output and error of this process, its interrupt key, and the system's requests
/// to end. A terminal that disappears does not end the process: output is lost and input has ended.
class Console {
public:
    virtual ~Console() = default;

    virtual bool InputIsTerminal() const = 0;
    virtual bool OutputIsTerminal() const = 0;

    /// Width of the output in columns; 80 when it is unknown.
    virtual unsigned Columns() const = 0;

    /// Writes UTF-8 text to standard output, unbuffered. Write errors are ignored.
    virtual void Write(std::string_view utf8) = 0;

    /// The same for standard error.
    virtual void WriteError(std::string_view utf8) = 0;

    /// True when standard output is a pipe that nobody reads any more. Always false for other
    /// outputs, so also for a terminal that has disappeared.
    virtual bool ReaderGone() { return false; }

    /// On a terminal: moves to the start of the row `rows` above and clears from there on.
    virtual void ClearRowsAbove(unsigned /*rows*/) {}

    /// Waits for a line from standard input and returns it without its terminator;
    /// empty at end of file, or when the interrupt key was pressed meanwhile.
    virtual std::optional<std::string> ReadLine() = 0;

    /// True when the Enter key was pressed on a terminal, on POSIX also its end-of-file key, so
    /// that `ReadLine` returns at once. Always false when the input is no terminal. Does not wait.
    virtual bool LineWaits() { return false; }

    /// True once for each interrupt since the last call: the user has pressed the interrupt key
    /// (Ctrl-C), or the system asks this process to end (SIGTERM; on Windows a closed console,
    /// log-off, shutdown). Neither has any other effect while this object exists. On Windows the
    /// handler blocks, so that the process can exit by itself before the system terminates it.
    virtual bool TakeInterrupt() = 0;

    /// As `Peers::HoldSystem`, for a program without windows. Does nothing where the system has no
    /// such request.
    virtual void HoldSystem(const std::string& /*reason*/) {}
};

}  // namespace vantor
