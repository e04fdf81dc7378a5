// The machine's serial ports off Windows: which device a COM name means, and which are there.
#pragma once

#include <map>
#include <string>

#include "platform/SerialPort.hpp"
#include "platform/posix/PosixMessagePump.hpp"

namespace vantor {

/// COM1 to COM8 are the ports on the board (/dev/ttyS0 ...), COM9 to COM20 USB adapters
/// (/dev/ttyUSB0 ...), COM21 to COM32 USB modems (/dev/ttyACM0 ...).
class PosixSerialPorts : public SerialPorts {
public:
    using Devices = std::map<std::string, std::string>;  ///< COM name to device file

    /// `extra` adds to the table above or overrides it. `pump` must outlive the ports opened.
    /// `deviceClass` is where the system describes its terminals.
    explicit PosixSerialPorts(PosixMessagePump& pump, const Devices& extra = {},
                              std::string deviceClass = "/sys/class/tty");

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override;

    /// The COM name that means the device file `path`: the one it has, or a free one, which
    /// means it as long as this object lives. A COM name given as `path` is its own answer.
    /// Raises 68 when no name is free.
    std::string MapDevice(const std::string& path);

private:
    bool IsPresent(const std::string& name) const;
    std::string Description(const std::string& device) const;

    PosixMessagePump& mPump;
    std::string mDeviceClass;
    Devices mDevices;  // all names that mean something
    Devices mExtra;    // those of them that do not follow the table
};

}  // namespace vantor
