// The system clocks on Windows.
#pragma once

#include "platform/Clock.hpp"

namespace vantor {

/// Sets the system timer resolution to 1 ms while it lives. The default of 15.6 ms is longer than
/// the pauses of the paced dialogue.
class Win32Clock : public Clock {
public:
    Win32Clock();
    ~Win32Clock() override;
    Win32Clock(const Win32Clock&) = delete;
    Win32Clock& operator=(const Win32Clock&) = delete;

    std::uint32_t Milliseconds() const override;
    void Sleep(std::uint32_t ms) override;
    DateTime Now() const override;
};

}  // namespace vantor
