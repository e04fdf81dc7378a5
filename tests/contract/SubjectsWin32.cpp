// The native subjects on Windows. The port under test is COM1; its far end COM2 must be connected
// to it. Without COM2 the tests that need a far end are skipped.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/services/Windows.hpp"
#include "support/errors/RuntimeError.hpp"
#include "tests/contract/Subjects.hpp"

namespace vantor::contract {
namespace {

/// Stands for the class of the service that `make` creates.
template <auto make>
class MadeBy {
public:
    using Pointer = decltype(make());
    operator typename Pointer::element_type &() { return *mService; }

private:
    Pointer mService = make();
};

class SystemRegistry : public RegistrySubject {
public:
    SystemRegistry() { Clear(); }
    ~SystemRegistry() override { Clear(); }
    Registry& Get() override { return *mRegistry; }
    std::string Path() const override { return "Software\\Contract Tests"; }
    // All clients share the system registry, so a new object sees the stored data only.
    void Restart() override { mRegistry = MakeWin32Registry(); }

private:
    void Clear() const { RegDeleteTreeA(HKEY_CURRENT_USER, Path().c_str()); }

    std::unique_ptr<Registry> mRegistry = MakeWin32Registry();
};

/// The language is per process; CONTRACT_LANGUAGE names it when it is not English.
class Resources : public StringsSubject {
public:
    StringTable& Get() override { return *mStrings; }
    Language Expected() const override {
        const char* const language = std::getenv("CONTRACT_LANGUAGE");
        return language != nullptr && std::string_view(language) == "Spanish" ? Language::Spanish
                                                                              : Language::English;
    }

private:
    std::unique_ptr<StringTable> mStrings = MakeWin32StringTable();
};

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
    std::string Receive(std::size_t count) override {
        constexpr int kQuietMs = 500;  // longer than any byte takes to arrive
        std::string bytes;
        std::array<char, 4096> some{};
        for (int quiet = 0; bytes.size() < count && quiet < kQuietMs;) {
            const std::size_t most = std::min(some.size(), count - bytes.size());
            const std::size_t got = mPort->Read(std::span<char>(some).first(most));
            bytes.append(some.data(), got);
            quiet = got == 0 ? quiet + 1 : 0;
            if (got == 0) Sleep(1);
        }
        return bytes;
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

class WiredPorts : public SerialSubject {
public:
    WiredPorts() {
        try {
            mFarEnd = std::make_unique<SecondPort>(*mPorts);
        } catch (const RuntimeError& error) {
            if (!error.Is(ErrorNumber::DeviceUnavailable)) throw;
        }
    }
    SerialPorts& Get() override { return *mPorts; }
    std::string PortName() const override { return "COM1"; }
    std::string MissingPortName() const override { return "COM31"; }
    WireEnd* FarEnd() override { return mFarEnd.get(); }
    MessagePump& Pump() override { return mPump; }
    void Wait() override { Sleep(1); }

private:
    Win32MessagePump mPump;
    std::unique_ptr<SerialPorts> mPorts = MakeWin32SerialPorts(mPump);
    std::unique_ptr<SecondPort> mFarEnd;
};

}  // namespace

Makers<ClockSubject> NativeClocks() {
    return {MakerOf<ClockSubject, Owning<Clock, MadeBy<MakeWin32Clock>>>("Win32")};
}

Makers<CodePageSubject> NativeCodePages() {
    return {MakerOf<CodePageSubject, Owning<CodePage, MadeBy<MakeWin32CodePage>>>("Win32")};
}

Makers<FilesSubject> NativeFileSystems() {
    return {MakerOf<FilesSubject, HostFiles<MadeBy<MakeWin32Files>>>("Win32")};
}

Makers<PumpSubject> NativePumps() {
    return {MakerOf<PumpSubject, Owning<MessagePump, Win32MessagePump>>("Win32")};
}

Makers<RegistrySubject> NativeRegistries() {
    return {MakerOf<RegistrySubject, SystemRegistry>("Win32")};
}

Makers<StringsSubject> NativeStringTables() {
    return {MakerOf<StringsSubject, Resources>("Resources")};
}

Makers<SerialSubject> NativeSerialLines() {
    return {MakerOf<SerialSubject, WiredPorts>("WiredPorts")};
}

}  // namespace vantor::contract
