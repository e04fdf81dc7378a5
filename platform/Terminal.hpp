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

    /// Writes UTF-8 text to standard output at once. What cannot be written is lost.
    virtual void Write(std::string_view utf8) = 0;

    /// Likewise to standard error.
    virtual void WriteError(std::string_view utf8) = 0;

    /// Waits for a line from standard input, without its terminator; nothing at the end of the
    /// input, or when the interrupt key was pressed meanwhile.
    virtual std::optional<std::string> ReadLine() = 0;

    /// True once for each time that the user has pressed the interrupt key (Ctrl-C) since the
    /// last call. The key does nothing else from the construction of this object on.
    virtual bool TakeInterrupt() = 0;
};

}  // namespace vantor
