// The running process on Windows: arguments, program file, single instance, unhandled exceptions.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Process.hpp"
#include "platform/win32/services/Win32Handle.hpp"

namespace vantor {

class Win32Process : public Process {
public:
    Win32Process();

    const std::vector<std::string>& Arguments() const override { return mArguments; }
    std::string ExecutablePath() const override;

    /// The lock is a named mutex of the user's session.
    bool AnotherInstanceRuns(const std::string& title) override;

    /// Where no box can be shown, the message goes to standard error.
    void InstallUnhandledExceptionFilter(const std::string& title) override;

private:
    std::vector<std::string> mArguments;
    std::map<std::string, Win32Handle> mPlaces;  // by title, held until this process ends
};

}  // namespace vantor
