// The running program off Windows: arguments, own file, single instance, last words.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/CompiledStrings.hpp"
#include "platform/Process.hpp"
#include "platform/posix/PosixHandle.hpp"

namespace vantor {

/// The interface language that this process's environment asks for.
Language LanguageOfEnvironment();

class PosixProcess : public Process {
public:
    /// Takes what `main` was given; the first argument is the program's name.
    PosixProcess(int argumentCount, const char* const* arguments);

    const std::vector<std::string>& Arguments() const override { return mArguments; }
    std::string ExecutablePath() const override;

    /// The place is a locked file in the user's run-time folder. When no such file can be made
    /// there is nobody to ask, and the answer is no.
    bool AnotherInstanceRuns(const std::string& title) override;

    /// Off Windows the last words go to standard error; then the system does what it always
    /// does with such a process, a core file included.
    void InstallUnhandledExceptionFilter(const std::string& title) override;

private:
    std::vector<std::string> mArguments;
    std::map<std::string, PosixHandle> mPlaces;  // by title, locked until this process ends
};

}  // namespace vantor
