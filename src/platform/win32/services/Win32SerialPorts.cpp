// The machine's serial ports: lists the present ones and opens one by name.
#include <array>
#include <map>

#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"

namespace vantor {
namespace {

constexpr unsigned kLastComNumber = 32;

std::wstring ComName(unsigned number) {
    return L"COM" + std::to_wstring(number);
}

/// The number of "com7"; 0 when it is not a port name.
unsigned ComNumber(const std::wstring& name) {
    for (unsigned number = 1; number <= kLastComNumber; ++number)
        if (CompareStringOrdinal(name.c_str(), -1, ComName(number).c_str(), -1, TRUE) == CSTR_EQUAL)
            return number;
    return 0;
}

/// The device behind the name; empty when there is none.
std::string DeviceOf(const std::wstring& name) {
    std::array<wchar_t, 1024> device{};
    const DWORD length =
        QueryDosDeviceW(name.c_str(), device.data(), static_cast<DWORD>(device.size()));
    return length == 0 ? std::string() : ToUtf8(device.data());  // the first of a list
}

/// Devices by COM number.
using Devices = std::map<unsigned, std::string>;

/// The ports that drivers have registered; none when the machine has never had a port.
Devices RegisteredDevices() {
    HKEY opened = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_QUERY_VALUE,
                  &opened);
    const Owned<HKEY, RegCloseKey> key(opened);
    Devices devices;
    for (DWORD index = 0; key; ++index) {
        std::array<wchar_t, 256> device{};
        std::array<wchar_t, 256> name{};  // its last NUL is never overwritten
        auto deviceLength = static_cast<DWORD>(device.size());
        auto size = static_cast<DWORD>(sizeof name - sizeof name[0]);
        DWORD type = 0;
        if (RegEnumValueW(key.get(), index, device.data(), &deviceLength, nullptr, &type,
                          reinterpret_cast<BYTE*>(name.data()), &size) != ERROR_SUCCESS)
            break;
        const unsigned number = type == REG_SZ ? ComNumber(name.data()) : 0;
        if (number != 0) devices[number] = ToUtf8(device.data());
    }
    return devices;
}

class Win32SerialPorts : public SerialPorts {
public:
    explicit Win32SerialPorts(Win32MessagePump& pump) : mPump(pump) {}

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override {
        const unsigned number = ComNumber(ToWide(name));
        if (number == 0) throw PortOpenError(PortOpenError::Reason::NoSuchPort, name);
        return OpenWin32SerialPort(mPump, ComName(number), line);
    }

    // Names assigned by hand or by redirection are only in the DOS device namespace.
    std::vector<SerialPortInfo> List() const override {
        Devices devices = RegisteredDevices();
        for (unsigned number = 1; number <= kLastComNumber; ++number)
            if (std::string target = DeviceOf(ComName(number)); !target.empty())
                devices.emplace(number, std::move(target));
        std::vector<SerialPortInfo> ports;
        for (const auto& [number, device] : devices)
            ports.push_back({ToUtf8(ComName(number)), device, {}});
        return ports;
    }

private:
    Win32MessagePump& mPump;
};

}  // namespace

std::unique_ptr<SerialPorts> MakeWin32SerialPorts(Win32MessagePump& pump) {
    return std::make_unique<Win32SerialPorts>(pump);
}

}  // namespace vantor
