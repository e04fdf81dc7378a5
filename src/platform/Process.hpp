// The running process: arguments, program file, single instance, unhandled exceptions.
#pragma once

#include <string>
#include <vector>

namespace vantor {

class Process {
public:
    virtual ~Process() = default;

    /// The command-line arguments without the program name, UTF-8.
    virtual const std::vector<std::string>& Arguments() const = 0;

    /// Full path of the program's file (GetModuleFileNameW; /proc/self/exe).
    /// Raises RuntimeError 53 when the system does not report it.
    virtual std::string ExecutablePath() const = 0;

    /// True when another instance of the program `title` runs for this user.
    /// The first call holds a lock until this process ends (a named mutex; a locked file on POSIX).
    virtual bool AnotherInstanceRuns(const std::string& title) = 0;

    /// Installs the last-resort handler for unhandled system exceptions
    /// (SetUnhandledExceptionFilter). It reports the exception in a box titled `title` and ends
    /// the process. Call it once.
    virtual void InstallUnhandledExceptionFilter(const std::string& title) = 0;
};

}  // namespace vantor
