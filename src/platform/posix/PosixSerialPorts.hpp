// The machine's serial ports on POSIX: maps COM names to devices and lists the present ones.
#pragma once

#include <map>
#include <string>

#include "platform/SerialPort.hpp"
#include "platform/posix/PosixMessagePump.hpp"

namespace vantor {

/// COM1 to COM8 are the on-board ports (/dev/ttyS0 ...), COM9 to COM20 USB adapters (/dev/ttyUSB0
/// ...), COM21 to COM32 USB modems (/dev/ttyACM0 ...).
class PosixSerialPorts : public SerialPorts {
public:
    using Devices = std::map<std::string, std::string>;  ///< COM name to device file

    /// `extra` adds to the table above or overrides it. `pump` must outlive the opened ports.
    /// `deviceClass` is the sysfs folder of the terminals.
    explicit PosixSerialPorts(PosixMessagePump& pump, const Devices& extra = {},
                              std::string deviceClass = "/sys/class/tty");

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override;

    /// The COM name of the device file `path`: its existing one, or a free one, reserved as long as
    /// this object lives. Returns a COM name unchanged. Raises 68 when no name is free.
    std::string MapDevice(const std::string& path);

private:
    bool IsPresent(const std::string& name) const;
    std::string Description(const std::string& device) const;

    PosixMessagePump& mPump;
    std::string mDeviceClass;
    Devices mDevices;  // all assigned names
    Devices mExtra;    // those that deviate from the table
};

}  // namespace vantor
