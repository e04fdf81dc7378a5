#include "platform/win32/services/Win32SerialPorts.hpp"

#include <array>
#include <map>

#include "platform/win32/services/Win32SerialPort.hpp"
#include "support/errors/RuntimeError.hpp"

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

class SerialMap {
public:
    SerialMap() {
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0,
                          KEY_QUERY_VALUE, &mKey) != ERROR_SUCCESS)
            mKey = nullptr;  // the machine has never had a port
    }
    ~SerialMap() {
        if (mKey != nullptr) static_cast<void>(RegCloseKey(mKey));
    }
    SerialMap(const SerialMap&) = delete;
    SerialMap& operator=(const SerialMap&) = delete;

    /// Sets the device and the COM name of the entry `index`; false past the last one.
    bool Entry(DWORD index, std::wstring& device, std::wstring& name) const {
        if (mKey == nullptr) return false;
        std::array<wchar_t, 256> valueName{};
        std::array<wchar_t, 256> value{};  // its last NUL is never overwritten
        auto nameLength = static_cast<DWORD>(valueName.size());
        auto size = static_cast<DWORD>(sizeof value - sizeof value[0]);
        DWORD type = 0;
        if (RegEnumValueW(mKey, index, valueName.data(), &nameLength, nullptr, &type,
                          reinterpret_cast<BYTE*>(value.data()), &size) != ERROR_SUCCESS)
            return false;
        device = valueName.data();
        name = type == REG_SZ ? value.data() : L"";
        return true;
    }

private:
    HKEY mKey = nullptr;
};

}  // namespace

std::unique_ptr<SerialPort> Win32SerialPorts::Open(const std::string& name,
                                                   const LineSettings& line) {
    using enum PortOpenError::Reason;
    const unsigned number = ComNumber(ToWide(name));
    if (number == 0) throw PortOpenError(NoSuchPort, name);
    try {
        return std::make_unique<Win32SerialPort>(mPump, ComName(number), line);
    } catch (const RuntimeError& error) {
        // Ports have no permissions by user: access denied means in use.
        if (error.Is(ErrorNumber::PermissionDenied)) throw PortOpenError(InUse, name);
        if (error.Is(ErrorNumber::DeviceUnavailable)) throw PortOpenError(NoSuchPort, name);
        if (error.Is(ErrorNumber::InvalidCall)) throw PortOpenError(LineRefused, name);
        throw;
    }
}

// Drivers register their ports in the map; names assigned by hand or by redirection are only in
// the DOS device namespace.
std::vector<SerialPortInfo> Win32SerialPorts::List() const {
    std::map<unsigned, std::string> devices;
    const SerialMap map;
    std::wstring device;
    std::wstring name;
    for (DWORD index = 0; map.Entry(index, device, name); ++index)
        if (const unsigned number = ComNumber(name); number != 0) devices[number] = ToUtf8(device);
    for (unsigned number = 1; number <= kLastComNumber; ++number)
        if (std::string target = DeviceOf(ComName(number)); !target.empty())
            devices.emplace(number, std::move(target));
    std::vector<SerialPortInfo> ports;
    ports.reserve(devices.size());
    for (const auto& [number, where] : devices)
        ports.push_back({ToUtf8(ComName(number)), where, {}});
    return ports;
}

}  // namespace vantor
