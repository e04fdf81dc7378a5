// Handing documents, folders and addresses to the system's shell.
#pragma once

#include <cstdint>
#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

struct ShellRequest {
    NativeWindow owner = 0;
    std::string verb;  ///< empty: the default action
    std::string file;
    std::string parameters;
    std::string folder;
    std::int32_t show = 1;  ///< SW_... code
};

class Shell {
public:
    virtual ~Shell() = default;

    /// Opens `request.file` with what is registered for it (ShellExecuteW). Returns the shell's
    /// own result code; below 33 is a failure: 2 file not found, 3 path not found, 5 access
    /// denied, 31 no association.
    virtual std::int32_t Execute(const ShellRequest& request) = 0;
};

}  // namespace vantor
