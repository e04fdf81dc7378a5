// Opens documents, folders, programs and URLs with their registered programs.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Shell.hpp"
#include "support/FunctionRef.hpp"

namespace vantor {

/// Every launch returns -1 on success, else the shell's code, below 33 (see Shell). Launch failures
/// are not raised. `show` is one of the SW_... codes; 1 is a normal, activated window.
class CShellExecute {
public:
    /// `shell` must outlive this object.
    explicit CShellExecute(Shell& shell) : mShell(shell) {}
    /// Closes the handle of a started process, which keeps running.
    ~CShellExecute() { mShell.Release(mProcess); }
    CShellExecute(const CShellExecute&) = delete;
    CShellExecute& operator=(const CShellExecute&) = delete;

    std::int32_t LaunchURL(NativeWindow owner, const std::string& address, std::int32_t show = 1);
    std::int32_t Explore(NativeWindow owner, const std::string& folder, std::int32_t show = 1);
    std::int32_t LaunchFolder(NativeWindow owner, const std::string& folder, std::int32_t show = 1);
    std::int32_t LaunchEmail(NativeWindow owner, const std::string& recipient,
                             std::int32_t show = 1);
    /// Printing shows no window.
    std::int32_t PrintDocument(NativeWindow owner, const std::string& document);
    std::int32_t LaunchDocument(NativeWindow owner, const std::string& document,
                                const std::string& parameters, const std::string& folder,
                                std::int32_t show = 1);
    std::int32_t LaunchProgram(NativeWindow owner, const std::string& program,
                               const std::string& parameters, const std::string& folder,
                               std::int32_t show = 1);

    /// True while the process started by the last LaunchDocument or LaunchProgram runs.
    bool StillExecuting() const;

private:
    std::int32_t Launch(const char* member, const ShellRequest& request);
    std::int32_t Start(const char* member, const ShellRequest& request);
    std::int32_t Run(const char* member, FunctionRef<std::int32_t()> launch);

    Shell& mShell;
    ShellProcess mProcess = 0;
};

}  // namespace vantor
