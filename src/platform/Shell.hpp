// Opens documents, folders and URLs with the system's shell.
#pragma once

#include <cstdint>
#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

struct ShellRequest {
    NativeWindow owner = 0;
    std::string verb{};  ///< empty: the default action
    std::string file{};
    std::string parameters{};
    std::string folder{};
    std::int32_t show = 1;  ///< SW_... code
};

/// Handle of a process that `Shell::Start` started; 0 is none.
using ShellProcess = std::uintptr_t;

/// Results from this value on mean success.
constexpr std::int32_t kFirstShellSuccess = 33;

/// Both launches return the shell's result code. Failures: 2 file not found (also for an empty
/// name), 3 path not found, 5 access denied, 31 no association.
class Shell {
public:
    virtual ~Shell() = default;

    /// Opens `request.file` with its registered program (ShellExecute).
    virtual std::int32_t Execute(const ShellRequest& request) = 0;

    /// As `Execute`, with environment variables expanded; `process` is set to the started process,
    /// or to 0 when a running program took the document (ShellExecuteEx).
    virtual std::int32_t Start(const ShellRequest& request, ShellProcess& process) = 0;

    /// True while `process` runs (GetExitCodeProcess).
    virtual bool IsActive(ShellProcess process) const = 0;

    /// Closes the handle of `process`, which keeps running (CloseHandle). 0 is ignored.
    virtual void Release(ShellProcess process) = 0;
};

}  // namespace vantor
