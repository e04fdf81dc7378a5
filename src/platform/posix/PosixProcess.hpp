// The running process on POSIX: arguments, program file, single instance, fatal signals.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Process.hpp"
#include "platform/portable/CompiledStrings.hpp"
#include "platform/posix/PosixHandle.hpp"

namespace vantor {

/// The interface language that the environment variables of this process select.
Language LanguageOfEnvironment();

class PosixProcess : public Process {
public:
    /// Takes the arguments of `main`; the first one is the program name.
    PosixProcess(int argumentCount, const char* const* arguments);

    const std::vector<std::string>& Arguments() const override { return mArguments; }
    std::string ExecutablePath() const override;

    /// The lock is a locked file in the user's run-time folder. When no such file can be created,
    /// the answer is false.
    bool AnotherInstanceRuns(const std::string& title) override;

    /// Writes the message to standard error; then the default action of the signal follows,
    /// a core dump included.
    void InstallUnhandledExceptionFilter(const std::string& title) override;

private:
    std::vector<std::string> mArguments;
    std::map<std::string, PosixHandle> mPlaces;  // by title, locked until this process ends
};

}  // namespace vantor
