// Handing documents, folders and addresses to the system's shell.
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

/// A process that `Shell::Start` keeps open; 0 is none.
using ShellProcess = std::uintptr_t;

/// What a launch returns from here on means that the shell took it.
constexpr std::int32_t kFirstShellSuccess = 33;

/// Both launches return the shell's own result code. Failures: 2 file not found (also for an empty
/// one), 3 path not found, 5 access denied, 31 no association.
class Shell {
public:
    virtual ~Shell() = default;

    /// Opens `request.file` with what is registered for it (ShellExecute).
    virtual std::int32_t Execute(const ShellRequest& request) = 0;

    /// As `Execute`, with variables in the texts expanded; `process` becomes what was started,
    /// or 0 when the document went to a program that ran already (ShellExecuteEx).
    virtual std::int32_t Start(const ShellRequest& request, ShellProcess& process) = 0;

    /// True while `process` runs (GetExitCodeProcess).
    virtual bool IsActive(ShellProcess process) const = 0;

    /// Lets go of `process`, which goes on (CloseHandle). 0 is ignored.
    virtual void Release(ShellProcess process) = 0;
};

}  // namespace vantor
