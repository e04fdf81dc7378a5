#include "platform/portable/UsbNames.hpp"

#include <algorithm>
#include <cstddef>
#include <string>

namespace vantor {

void TakeUsbNames(std::string_view instance, SerialPortInfo& port) {
    constexpr std::size_t kDigits = 4;
    const std::size_t vendor = instance.find("VID_");
    const std::size_t product = instance.find("PID_");
    if (vendor == std::string_view::npos || product == std::string_view::npos) return;
    port.usbId = std::string(instance.substr(vendor + 4, kDigits)) + ":" +
                 std::string(instance.substr(product + 4, kDigits));
    std::string_view rest = instance.substr(std::min(product + 4 + kDigits, instance.size()));
    // A serial number that Windows has made up contains "&".
    if (rest.empty() || rest.find('&') != std::string_view::npos) return;
    rest.remove_prefix(1);
    port.serialNumber = rest.substr(0, rest.find('\\'));
}

}  // namespace vantor
