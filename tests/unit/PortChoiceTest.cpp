// Tests by which names a port is found.
#include <gmock/gmock.h>

#include "console/PortChoice.hpp"
#include "platform/portable/CompiledStrings.hpp"

namespace vantor {
namespace {

SerialPortInfo Adapter(const char* name, const char* device, const char* serial, const char* byId) {
    SerialPortInfo port{name, device, "USB Serial"};
    port.usbId = "0403:6001";
    port.serialNumber = serial;
    port.otherNames = {byId};
    port.latencyMs = 16;
    return port;
}

TEST(PortChoice, AnAdapterIsFoundByItsSerialNumberAndItsNamesUnlessSeveralHaveIt) {
    const CompiledStrings strings(Language::English);
    const std::vector<SerialPortInfo> ports = {{"COM1", "/dev/ttyS0", "port"},
                                               Adapter("COM9", "/dev/ttyUSB0", "A50X", "usb-A"),
                                               Adapter("COM10", "/dev/ttyUSB1", "Q7", "usb-Q-if0"),
                                               Adapter("COM11", "/dev/ttyUSB2", "Q7", "usb-Q-if1")};
    const std::pair<const char*, const char*> rows[] = {
        {"COM31", "COM31"}, {"/dev/x", "/dev/x"},   {"a50x", "COM9"},
        {"usb-A", "COM9"},  {"usb-Q-if1", "COM11"}, {"Q8", nullptr}};
    for (const auto& [given, name] : rows)
        EXPECT_EQ(ChosenPort(ports, given, strings),
                  name == nullptr ? std::nullopt : std::optional<std::string>(name))
            << given;
    try {
        ChosenPort(ports, "Q7", strings);
        ADD_FAILURE() << "ambiguous";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Description(),
                  "More than one port has the serial number Q7: COM10 (usb-Q-if0), COM11 "
                  "(usb-Q-if1)");
    }
    EXPECT_THAT(
        PortTable(ports, strings),
        testing::HasSubstr("\nCOM9   /dev/ttyUSB0  0403:6001  A50X           16 ms    USB"));
}

}  // namespace
}  // namespace vantor
