// The Windows shell.
#pragma once

#include "platform/Shell.hpp"

namespace vantor {

class Win32Shell : public Shell {
public:
    std::int32_t Execute(const ShellRequest& request) override;
    std::int32_t Start(const ShellRequest& request, ShellProcess& process) override;
    bool IsActive(ShellProcess process) const override;
    void Release(ShellProcess process) override;
};

}  // namespace vantor
