// Other processes that this one starts: their output, their interrupt, their exit status.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace vantor {

/// A started process. Destroying the object does not end it.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    /// Appends to `output` what the process has written to standard output since the last call;
    /// does not block. False when that has ended and all of it was read.
    virtual bool Read(std::string& output) = 0;

    /// Reads no more: the process finds that nobody reads its output. `Read` returns false.
    virtual void CloseOutput() = 0;

    /// Passes on the interrupt key of this process. Does nothing on Windows, where the console
    /// sends the key to all its processes.
    virtual void Interrupt() = 0;

    /// Waits for the end; the exit status, or 128 and the signal that ended it.
    virtual int ExitStatus() = 0;
};

class ChildProcesses {
public:
    virtual ~ChildProcesses() = default;

    /// Starts the file `program` with `arguments`. It has no standard input, and its standard error
    /// is discarded. Raises RuntimeError 53 when it cannot be started.
    virtual std::unique_ptr<ChildProcess> Start(const std::string& program,
                                                const std::vector<std::string>& arguments) = 0;
};

}  // namespace vantor
