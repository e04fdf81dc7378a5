// The machine's serial ports on Windows: lists the present ones and opens one by name.
#pragma once

#include "platform/SerialPort.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"

namespace vantor {

class Win32SerialPorts : public SerialPorts {
public:
    /// `pump` must outlive the ports opened.
    explicit Win32SerialPorts(Win32MessagePump& pump) : mPump(pump) {}

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override;

private:
    Win32MessagePump& mPump;
};

}  // namespace vantor
