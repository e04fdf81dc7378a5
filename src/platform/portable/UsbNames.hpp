// Names of USB serial adapters in the instance identifiers of Windows.
#pragma once

#include <string_view>

#include "platform/SerialPort.hpp"

namespace vantor {

/// Sets vendor, product and serial number of `port` from an instance identifier such as
/// "USB\\VID_0403&PID_6001\\A50X" or "FTDIBUS\\VID_0403+PID_6001+A50XA\\0000". Without both numbers
/// `port` is unchanged; a serial number that Windows has made up is not taken.
void TakeUsbNames(std::string_view instance, SerialPortInfo& port);

}  // namespace vantor
