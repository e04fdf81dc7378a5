// The names of this computer and its user, and its time zone.
#pragma once

#include <string>

namespace vantor {

class Machine {
public:
    virtual ~Machine() = default;

    /// Empty when the system does not tell.
    virtual std::string HostName() const = 0;
    virtual std::string UserName() const = 0;

    /// Minutes by which local time is ahead of UTC now.
    virtual int UtcOffsetMinutes() const = 0;
};

}  // namespace vantor
