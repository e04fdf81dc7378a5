// The platform on Windows. The far end of COM1 is COM2, which must be connected to it. Without COM2
// the tests that need a far end are skipped.
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"
#include "tests/contract/Contract.hpp"

namespace vantor::contract {
namespace {

class SecondPort : public WireEnd {
public:
    explicit SecondPort(SerialPorts& ports)
        : mPort(ports.Open("COM2", {115200, Parity::None, 8, 2})) {}

    void Send(std::string_view bytes) override {
        while (!bytes.empty()) {
            const std::size_t accepted = mPort->Write(bytes);
            bytes.remove_prefix(accepted);
            if (accepted == 0) Sleep(1);
        }
    }
    std::string Receive() override {
        std::array<char, 4096> some{};
        return {some.data(), mPort->Read(some)};
    }
    // run_under_wine.sh replaces the line and both ports, then deletes the request file.
    void HangUp() override {
        const std::filesystem::path request(std::getenv("CONTRACT_PULL"));
        std::ofstream(request).close();
        while (std::filesystem::exists(request)) Sleep(10);
    }

private:
    std::unique_ptr<SerialPort> mPort;
};

}  // namespace

void MakeNative(Subject& subject) {
    subject.clock = MakeWin32Clock();
    subject.codePage = MakeWin32CodePage();
    subject.strings = MakeWin32StringTable();
    // The language is per process; CONTRACT_LANGUAGE names it when it is not English.
    if (std::getenv("CONTRACT_LANGUAGE") != nullptr) subject.language = Language::Spanish;
    subject.files = MakeWin32Files();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Contract Tests");
    subject.registry = MakeWin32Registry();
    // All clients share the system registry, so a new object sees the stored data only.
    subject.restarted = [](Registry&) { return MakeWin32Registry(); };
    auto pump = std::make_unique<Win32MessagePump>();
    subject.ports = MakeWin32SerialPorts(*pump);
    subject.pump = std::move(pump);
    const RuntimeError missing =
        Raised([&] { subject.farEnd = std::make_unique<SecondPort>(*subject.ports); });
    if (missing.Number() != 0 && !missing.Is(ErrorNumber::DeviceUnavailable)) throw missing;
}

ProcessServices MakeProcessServices() {
    return {MakeWin32Process(), MakeWin32ChildProcesses(), MakeWin32SharedFiles(), MakeWin32Clock(),
            MakeWin32Machine()};
}

}  // namespace vantor::contract
