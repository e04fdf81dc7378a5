// The running program itself: its arguments, its file, its instances, its last resort.
#pragma once

#include <string>
#include <vector>

namespace vantor {

class Process {
public:
    virtual ~Process() = default;

    /// The arguments behind the program's name, UTF-8.
    virtual const std::vector<std::string>& Arguments() const = 0;

    /// Full path of the program's file (GetModuleFileNameW; /proc/self/exe).
    /// Raises RuntimeError 53 when the system does not tell.
    virtual std::string ExecutablePath() const = 0;

    /// True when another instance of the program named `title` runs for this user. The first
    /// call claims the place until this process ends (a named mutex; a locked file off Windows).
    virtual bool AnotherInstanceRuns(const std::string& title) = 0;

    /// Installs the handler of last resort for unhandled exceptions of the system
    /// (SetUnhandledExceptionFilter): it tells the user in a box, titled `title`, what happened
    /// and ends the process. To be called once.
    virtual void InstallUnhandledExceptionFilter(const std::string& title) = 0;
};

}  // namespace vantor
