#include "platform/posix/PosixSerialPorts.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "platform/posix/PosixSerialPort.hpp"
#include "support/RuntimeError.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kLastComNumber = 32;

std::string ComName(unsigned number) {
    return "COM" + std::to_string(number);
}

std::string TableDevice(unsigned comNumber) {
    if (comNumber <= 8) return "/dev/ttyS" + std::to_string(comNumber - 1);
    if (comNumber <= 20) return "/dev/ttyUSB" + std::to_string(comNumber - 9);
    return "/dev/ttyACM" + std::to_string(comNumber - 21);
}

std::string UpperCase(std::string name) {
    for (char& c : name)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - ('a' - 'A'));
    return name;
}

/// "COM9" before "COM10".
bool InNumericOrder(const SerialPortInfo& a, const SerialPortInfo& b) {
    return std::pair(a.name.size(), a.name) < std::pair(b.name.size(), b.name);
}

/// The target of a symbolic link; `path` itself when there is none.
fs::path Resolved(const fs::path& path) {
    std::error_code failed;
    fs::path real = fs::canonical(path, failed);
    return failed ? path : real;
}

std::string FirstLine(const fs::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);  // stays empty when unreadable
    return line;
}

}  // namespace

PosixSerialPorts::PosixSerialPorts(PosixMessagePump& pump, const Devices& extra,
                                   std::string deviceClass)
    : mPump(pump), mDeviceClass(std::move(deviceClass)) {
    for (unsigned number = 1; number <= kLastComNumber; ++number)
        mDevices[ComName(number)] = TableDevice(number);
    for (const auto& [name, device] : extra) {
        mExtra[UpperCase(name)] = device;
        mDevices[UpperCase(name)] = device;
    }
}

std::unique_ptr<SerialPort> PosixSerialPorts::Open(const std::string& name,
                                                   const LineSettings& line) {
    const auto device = mDevices.find(UpperCase(name));
    if (device == mDevices.end()) throw RuntimeError(ErrorNumber::DeviceUnavailable);
    return std::make_unique<PosixSerialPort>(mPump, device->second, line);
}

bool PosixSerialPorts::IsPresent(const std::string& name) const {
    const std::string& device = mDevices.at(name);
    if (mExtra.contains(name)) {
        struct stat status {};
        return stat(device.c_str(), &status) == 0 && S_ISCHR(status.st_mode);
    }
    std::error_code failed;  // an inaccessible entry counts as missing
    const fs::path entry = fs::path(mDeviceClass) / fs::path(device).filename();
    if (!fs::exists(entry, failed)) return false;
    // The kernel keeps entries for on-board ports that do not exist; their type is 0.
    return !device.starts_with("/dev/ttyS") || FirstLine(entry / "type") != "0";
}

/// The product name of a USB device, else the name of the driver.
std::string PosixSerialPorts::Description(const std::string& device) const {
    const fs::path entry = fs::path(mDeviceClass) / Resolved(device).filename() / "device";
    std::error_code failed;
    if (!fs::exists(entry, failed)) return {};
    // The product name belongs to the USB device, some levels above its serial function.
    constexpr int kLevels = 4;
    fs::path level = Resolved(entry);
    for (int i = 0; i < kLevels; ++i, level = level.parent_path()) {
        std::string product = FirstLine(level / "product");
        if (product.empty()) continue;
        const std::string maker = FirstLine(level / "manufacturer");
        if (!maker.empty() && !product.starts_with(maker)) product.insert(0, maker + ' ');
        return product;
    }
    const fs::path driver = entry / "driver";
    return fs::exists(driver, failed) ? Resolved(driver).filename().string() : std::string();
}

std::vector<SerialPortInfo> PosixSerialPorts::List() const {
    std::vector<SerialPortInfo> ports;
    for (const auto& [name, device] : mDevices)
        if (IsPresent(name)) ports.push_back({name, device, Description(device)});
    std::sort(ports.begin(), ports.end(), InNumericOrder);
    return ports;
}

std::string PosixSerialPorts::MapDevice(const std::string& path) {
    if (mDevices.contains(UpperCase(path))) return UpperCase(path);
    const fs::path wanted = Resolved(path);
    for (const auto& [name, device] : mDevices)
        if (device == path || Resolved(device) == wanted) return name;
    // From the end of the table: an adapter plugged in later gets a low number.
    for (unsigned number = kLastComNumber; number != 0; --number) {
        std::string name = ComName(number);
        if (mExtra.contains(name) || IsPresent(name)) continue;
        mExtra[name] = path;
        mDevices[name] = path;
        return name;
    }
    throw RuntimeError(ErrorNumber::DeviceUnavailable);
}

}  // namespace vantor
