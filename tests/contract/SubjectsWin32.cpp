// The native subjects on Windows. The port under test is COM1 and its far end COM2: the two have
// to be wired to each other. Where there is no COM2 the tests that need a far end are skipped.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

#include "platform/win32/Win32Clock.hpp"
#include "platform/win32/Win32CodePage.hpp"
#include "platform/win32/Win32Files.hpp"
#include "platform/win32/Win32MessagePump.hpp"
#include "platform/win32/Win32Registry.hpp"
#include "platform/win32/Win32SerialPorts.hpp"
#include "platform/win32/Win32StringTable.hpp"
#include "platform/win32/Windows.hpp"
#include "support/RuntimeError.hpp"
#include "tests/contract/Subjects.hpp"

namespace vantor::contract {
namespace {

void RemoveTree(const std::wstring& folder) {
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = folder + L"\\" + name;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            RemoveTree(path);
        else
            DeleteFileW(path.c_str());
    } while (FindNextFileW(search, &entry) != 0);
    FindClose(search);
    RemoveDirectoryW(folder.c_str());  // what is left behind harms nobody
}

class HostFiles : public FilesSubject {
public:
    HostFiles() {
        std::array<wchar_t, MAX_PATH + 1> parent{};
        if (GetTempPathW(static_cast<DWORD>(parent.size()), parent.data()) == 0)
            throw std::runtime_error("no temporary folder");
        mFolder = parent.data() + (L"contract-" + std::to_wstring(GetCurrentProcessId()));
        if (CreateDirectoryW(mFolder.c_str(), nullptr) == 0)
            throw std::runtime_error("the folder is there already");
    }
    ~HostFiles() override { RemoveTree(mFolder); }
    Files& Get() override { return mFiles; }
    std::string Folder() const override { return ToUtf8(mFolder); }

private:
    std::wstring mFolder;
    Win32Files mFiles;
};

class SystemRegistry : public RegistrySubject {
public:
    SystemRegistry() { Clear(); }
    ~SystemRegistry() override { Clear(); }
    Registry& Get() override { return mRegistry; }
    std::string Path() const override { return "Software\\Contract Tests"; }
    // The system's registry is the same for all its clients; what has been stored is what it knows.
    void Restart() override { mRegistry = Win32Registry(); }

private:
    void Clear() const { RegDeleteTreeA(HKEY_CURRENT_USER, Path().c_str()); }

    Win32Registry mRegistry;
};

/// The language is that of the process; whoever starts it in another says so.
class Resources : public StringsSubject {
public:
    StringTable& Get() override { return mStrings; }
    Language Expected() const override {
        const char* const language = std::getenv("CONTRACT_LANGUAGE");
        return language != nullptr && std::string_view(language) == "Spanish" ? Language::Spanish
                                                                              : Language::English;
    }

private:
    Win32StringTable mStrings;
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
        constexpr int kQuietMs = 500;  // nothing is on its way any longer than that
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
    // A word to the wire itself, which answers with the same when a new terminal is in place.
    void HangUp() override {
        const std::string hangUp = "\x10~hang up~\x10";
        Send(hangUp);
        if (Receive(hangUp.size()) != hangUp) throw std::runtime_error("the wire did not hang up");
    }

private:
    std::unique_ptr<SerialPort> mPort;
};

class WiredPorts : public SerialSubject {
public:
    WiredPorts() {
        try {
            mFarEnd = std::make_unique<SecondPort>(mPorts);
        } catch (const RuntimeError& error) {
            if (!error.Is(ErrorNumber::DeviceUnavailable)) throw;
        }
    }
    SerialPorts& Get() override { return mPorts; }
    std::string PortName() const override { return "COM1"; }
    std::string MissingPortName() const override { return "COM31"; }
    WireEnd* FarEnd() override { return mFarEnd.get(); }
    MessagePump& Pump() override { return mPump; }
    void Wait() override { Sleep(1); }

private:
    Win32MessagePump mPump;
    Win32SerialPorts mPorts{mPump};
    std::unique_ptr<SecondPort> mFarEnd;
};

}  // namespace

Makers<ClockSubject> NativeClocks() {
    return {MakerOf<ClockSubject, Owning<Clock, Win32Clock>>("Win32")};
}

Makers<CodePageSubject> NativeCodePages() {
    return {MakerOf<CodePageSubject, Owning<CodePage, Win32CodePage>>("Win32")};
}

Makers<FilesSubject> NativeFileSystems() {
    return {MakerOf<FilesSubject, HostFiles>("Win32")};
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
