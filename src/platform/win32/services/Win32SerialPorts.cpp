// The machine's serial ports: lists the present ones and opens one by name.
#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <utility>

#include "platform/portable/UsbNames.hpp"
#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Win32Services.hpp"
// Requires the types of <windows.h>.
#include <setupapi.h>

namespace vantor {
namespace {

constexpr unsigned kLastComNumber = 32;

std::wstring ComName(unsigned number) {
    return ToWide("COM" + std::to_string(number));
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

/// A property of a present device; empty when it has none.
std::string PropertyOf(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property) {
    std::array<wchar_t, 512> text{};  // its last NUL is never overwritten
    if (SetupDiGetDeviceRegistryPropertyW(
            devices, &device, property, nullptr, reinterpret_cast<BYTE*>(text.data()),
            static_cast<DWORD>(sizeof text - sizeof text[0]), nullptr) == 0)
        return {};
    return ToUtf8(text.data());
}

/// The name of the port and the latency timer of its driver, from the device's registry key.
void TakeParameters(HKEY key, SerialPortInfo& port) {
    std::array<wchar_t, 64> name{};
    DWORD size = sizeof name;
    if (RegGetValueW(key, nullptr, L"PortName", RRF_RT_REG_SZ, nullptr, name.data(), &size) ==
        ERROR_SUCCESS)
        port.name = ToUtf8(name.data());
    DWORD latency = 0;
    size = sizeof latency;
    if (RegGetValueW(key, nullptr, L"LatencyTimer", RRF_RT_REG_DWORD, nullptr, &latency, &size) ==
        ERROR_SUCCESS)
        port.latencyMs = latency;
}

/// What Windows knows of the present devices of the class of ports, by COM number.
std::map<unsigned, SerialPortInfo> DescribedPorts() {
    // GUID_DEVCLASS_PORTS; the header that declares it defines it in one source only.
    constexpr GUID kPorts = {
        0x4d36e978, 0xe325, 0x11ce, {0xbf, 0xc1, 0x08, 0x00, 0x2b, 0xe1, 0x03, 0x18}};
    std::map<unsigned, SerialPortInfo> ports;
    const HDEVINFO devices = SetupDiGetClassDevsW(&kPorts, nullptr, nullptr, DIGCF_PRESENT);
    if (devices == INVALID_HANDLE_VALUE) return ports;
    const Finally release([&] { SetupDiDestroyDeviceInfoList(devices); });
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD i = 0; SetupDiEnumDeviceInfo(devices, i, &device) != 0; ++i) {
        const HKEY opened =
            SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
        if (opened == INVALID_HANDLE_VALUE) continue;
        const Owned<HKEY, RegCloseKey> key(opened);
        SerialPortInfo port;
        TakeParameters(opened, port);
        port.description = PropertyOf(devices, device, SPDRP_DEVICEDESC);
        std::array<wchar_t, 512> instance{};
        if (SetupDiGetDeviceInstanceIdW(devices, &device, instance.data(),
                                        static_cast<DWORD>(instance.size()), nullptr) != 0)
            TakeUsbNames(ToUtf8(instance.data()), port);
        if (const unsigned number = ComNumber(ToWide(port.name)); number != 0)
            ports[number] = std::move(port);
    }
    return ports;
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
        std::map<unsigned, SerialPortInfo> described = DescribedPorts();
        std::vector<SerialPortInfo> ports;
        for (const auto& [number, device] : devices) {
            SerialPortInfo& port = described[number];
            port.name = ToUtf8(ComName(number));
            port.device = device;
            ports.push_back(std::move(port));
        }
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
