// The machine's serial ports on POSIX: maps COM names to devices and lists the present ones.
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>
#include <utility>

#include "platform/posix/PosixServices.hpp"
#include "support/errors/RuntimeError.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

using Devices = std::map<std::string, std::string>;  // COM name to device file

constexpr unsigned kLastComNumber = 32;
constexpr const char* kDeviceClass = "/sys/class/tty";  // the terminals in sysfs
constexpr const char* kNamesById = "/dev/serial/by-id";
constexpr const char* kOnBoard = "/dev/ttyS";

std::string ComName(unsigned number) {
    return "COM" + std::to_string(number);
}

std::string TableDevice(unsigned comNumber) {
    if (comNumber <= 8) return kOnBoard + std::to_string(comNumber - 1);
    if (comNumber <= 20) return "/dev/ttyUSB" + std::to_string(comNumber - 9);
    return "/dev/ttyACM" + std::to_string(comNumber - 21);
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

/// The group whose members may use `device`; empty when membership would not help.
std::string GroupWithAccess(const std::string& device) {
    constexpr mode_t kBoth = S_IRGRP | S_IWGRP;
    struct stat status {};
    if (stat(device.c_str(), &status) != 0 || (status.st_mode & kBoth) != kBoth) return {};
    const group* const owner = getgrgid(status.st_gid);
    return owner == nullptr ? std::string() : owner->gr_name;
}

/// True when the process described in `process` ("/proc/1234") has `device` open.
bool HasOpen(const fs::path& process, const fs::path& device) {
    std::error_code failed;  // the files of other users' processes are hidden
    for (fs::directory_iterator file(process / "fd", failed), end; !failed && file != end;
         file.increment(failed)) {
        std::error_code closed;  // closed meanwhile
        if (fs::read_symlink(file->path(), closed) == device) return true;
    }
    return false;
}

/// The processes that have `device` open, as "name (1234), name (56)"; empty when unknown.
std::string Holders(const std::string& device) {
    const fs::path wanted = Resolved(device);
    std::string holders;
    std::error_code failed;
    for (fs::directory_iterator process("/proc", failed), end; !failed && process != end;
         process.increment(failed)) {
        const std::string id = process->path().filename();
        if (id.find_first_not_of("0123456789") != std::string::npos) continue;
        if (!HasOpen(process->path(), wanted)) continue;
        if (!holders.empty()) holders += ", ";
        holders += FirstLine(process->path() / "comm") + " (" + id + ")";
    }
    return holders;
}

PortOpenError WhyRefused(const std::string& device) {
    if (faccessat(AT_FDCWD, device.c_str(), R_OK | W_OK, AT_EACCESS) != 0 && errno == EACCES)
        return {PortOpenError::Reason::NotPermitted, device, GroupWithAccess(device)};
    return {PortOpenError::Reason::InUse, device, Holders(device)};
}

/// The folder in sysfs of the USB device that `entry`, a function of it, belongs to; empty for a
/// port of another kind.
fs::path UsbDevice(const fs::path& entry) {
    constexpr int kLevels = 4;
    fs::path level = Resolved(entry);
    std::error_code failed;
    for (int i = 0; i < kLevels; ++i, level = level.parent_path())
        if (fs::exists(level / "idVendor", failed)) return level;
    return {};
}

/// The product name of a USB device, else the name of the driver.
std::string Description(const fs::path& entry, const fs::path& usb) {
    std::error_code failed;
    if (std::string product = usb.empty() ? "" : FirstLine(usb / "product"); !product.empty()) {
        const std::string maker = FirstLine(usb / "manufacturer");
        if (!maker.empty() && !product.starts_with(maker)) product.insert(0, maker + ' ');
        return product;
    }
    const fs::path driver = entry / "driver";
    return fs::exists(driver, failed) ? Resolved(driver).filename().string() : std::string();
}

/// The names in the folder `links` of `device`.
std::vector<std::string> NamesById(const std::string& links, const std::string& device) {
    std::vector<std::string> names;
    std::error_code failed;
    for (fs::directory_iterator link(links, failed), end; !failed && link != end;
         link.increment(failed))
        if (Resolved(link->path()) == Resolved(device)) names.push_back(link->path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

SerialPortInfo Described(const std::string& root, const std::string& name,
                         const std::string& device) {
    SerialPortInfo port{name, device, {}};
    const fs::path entry = fs::path(root + kDeviceClass) / Resolved(device).filename() / "device";
    std::error_code failed;
    if (!fs::exists(entry, failed)) return port;
    const fs::path usb = UsbDevice(entry);
    port.description = Description(entry, usb);
    if (usb.empty()) return port;
    port.usbId = FirstLine(usb / "idVendor") + ":" + FirstLine(usb / "idProduct");
    port.serialNumber = FirstLine(usb / "serial");
    port.otherNames = NamesById(root + kNamesById, device);
    // Only some drivers have such a timer.
    if (const auto latency = ParseInteger(FirstLine(entry / "latency_timer")); latency)
        port.latencyMs = static_cast<std::uint32_t>(*latency);
    return port;
}

class PosixSerialPorts : public SerialPorts {
public:
    PosixSerialPorts(PosixMessagePump& pump, const Devices& extra, std::string root)
        : mPump(pump), mRoot(std::move(root)) {
        for (unsigned number = 1; number <= kLastComNumber; ++number)
            mDevices[ComName(number)] = mRoot + TableDevice(number);
        for (const auto& [name, device] : extra) Add(UpperCase(name), device);
    }

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override {
        const auto device = mDevices.find(UpperCase(name));
        using enum PortOpenError::Reason;
        if (device == mDevices.end()) throw PortOpenError(NoSuchPort, name);
        try {
            return OpenPosixSerialPort(mPump, device->second, line);
        } catch (const RuntimeError& error) {
            if (error.Is(ErrorNumber::PermissionDenied)) throw WhyRefused(device->second);
            throw PortOpenError(error.Is(ErrorNumber::InvalidCall) ? LineRefused : NoSuchPort,
                                device->second);
        }
    }

    std::vector<SerialPortInfo> List() const override {
        std::vector<SerialPortInfo> ports;
        for (const auto& [name, device] : mDevices)
            if (IsPresent(name)) ports.push_back(Described(mRoot, name, device));
        std::sort(ports.begin(), ports.end(), InNumericOrder);
        return ports;
    }

    std::string NameOf(const std::string& port) override {
        if (port.find('/') == std::string::npos) return port;
        const fs::path wanted = Resolved(port);
        for (const auto& [name, device] : mDevices)
            if (device == port || Resolved(device) == wanted) return name;
        // From the end of the table: an adapter plugged in later gets a low number.
        for (unsigned number = kLastComNumber; number != 0; --number) {
            std::string name = ComName(number);
            if (mExtra.contains(name) || IsPresent(name)) continue;
            Add(name, port);
            return name;
        }
        throw RuntimeError(ErrorNumber::DeviceUnavailable);
    }

private:
    void Add(const std::string& name, const std::string& device) {
        mDevices[name] = device;
        mExtra.insert(name);
    }

    bool IsPresent(const std::string& name) const {
        const std::string& device = mDevices.at(name);
        std::error_code failed;  // an inaccessible entry counts as missing
        if (mExtra.contains(name)) return fs::is_character_file(device, failed);
        const fs::path entry = fs::path(mRoot + kDeviceClass) / fs::path(device).filename();
        if (!fs::exists(entry, failed)) return false;
        // The kernel keeps entries for on-board ports that do not exist; their type is 0.
        return !device.starts_with(mRoot + kOnBoard) || FirstLine(entry / "type") != "0";
    }

    PosixMessagePump& mPump;
    std::string mRoot;
    Devices mDevices;              // all assigned names
    std::set<std::string> mExtra;  // those that deviate from the table
};

}  // namespace

std::unique_ptr<SerialPorts> MakePosixSerialPorts(PosixMessagePump& pump,
                                                  const std::map<std::string, std::string>& extra,
                                                  const std::string& root) {
    return std::make_unique<PosixSerialPorts>(pump, extra, root);
}

}  // namespace vantor
