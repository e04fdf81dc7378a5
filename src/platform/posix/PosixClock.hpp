// The system clocks on POSIX.
#pragma once

#include "platform/Clock.hpp"

namespace vantor {

class PosixClock : public Clock {
public:
    std::uint32_t Milliseconds() const override;
    void Sleep(std::uint32_t ms) override;
    DateTime Now() const override;
};

}  // namespace vantor
