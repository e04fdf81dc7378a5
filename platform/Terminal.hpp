// The text terminal of a console program.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantor {

/// Standard input, output and error of this process, and its interrupt key.
class Terminal {
public:
    virtual ~Terminal() = default;

    virtual bool InputIsTerminal() const = 0;
    virtual bool OutputIsTerminal() const = 0;

    /// Width of the output in columns; 80 when it is unknown.
    virtual unsigned Columns() const = 0;

    /// Writes UTF-8 text to standard output, unbuffered. Write errors are ignored.
    virtual void Write(std::string_view utf8) = 0;

    /// The same for standard error.
    virtual void WriteError(std::string_view utf8) = 0;

    /// Waits for a line from standard input and returns it without its terminator;
    /// empty at end of file, or when the interrupt key was pressed meanwhile.
    virtual std::optional<std::string> ReadLine() = 0;

    /// True once per press of the interrupt key (Ctrl-C) since the last call.
    /// The key has no other effect once this object is constructed.
    virtual bool TakeInterrupt() = 0;
};

}  // namespace vantor
