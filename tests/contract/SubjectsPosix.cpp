// The native subjects on POSIX. The far end of a line is the master side of a pseudo-terminal.
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>

#include <array>
#include <stdexcept>

#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "tests/contract/Subjects.hpp"

namespace vantor::contract {
namespace {

/// The service that `make` returns, as a type for the subjects that own one.
template <typename Service, std::unique_ptr<Service> (*make)()>
struct Made {
    operator Service&() const { return *service; }
    std::unique_ptr<Service> service = make();
};

class FileRegistry : public RegistrySubject {
public:
    Registry& Get() override { return *mRegistry; }
    std::string Path() const override { return "Software\\Contract"; }
    void Restart() override { mRegistry = Opened(); }

private:
    // The folder does not exist yet, as in a new home directory.
    std::unique_ptr<Registry> Opened() const {
        return MakePosixRegistry(mFolder / "new/registry.reg");
    }

    TemporaryFolder mFolder;
    std::unique_ptr<Registry> mRegistry = Opened();
};

class PolledPumpOfTheSystem : public PumpSubject {
public:
    MessagePump& Get() override { return mPump; }

private:
    const std::unique_ptr<Clock> mClock = MakePosixClock();
    PosixMessagePump mPump{*mClock};
};

class PseudoTerminal : public WireEnd {
public:
    PseudoTerminal() : mMaster(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        const int master = mMaster.Get();
        if (grantpt(master) != 0 || unlockpt(master) != 0 ||
            ptsname_r(master, mDevice.data(), mDevice.size()) != 0)
            throw std::runtime_error("no pseudo-terminal");
    }

    std::string Device() const { return mDevice.data(); }

    void Send(std::string_view bytes) override {
        if (write(mMaster.Get(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("the pseudo-terminal took only a part");
    }

    std::string Receive(std::size_t count) override {
        constexpr int kQuietMs = 200;  // longer than any byte takes to arrive
        std::string bytes(count, '\0');
        std::size_t length = 0;
        pollfd master{mMaster.Get(), POLLIN, 0};
        while (length < count && poll(&master, 1, kQuietMs) == 1) {
            const ssize_t got = read(mMaster.Get(), bytes.data() + length, count - length);
            if (got <= 0) break;
            length += static_cast<std::size_t>(got);
        }
        bytes.resize(length);
        return bytes;
    }

    void HangUp() override { PosixHandle(std::move(mMaster)); }

private:
    PosixHandle mMaster;
    std::array<char, 64> mDevice{};
};

class PseudoTerminalLine : public SerialSubject {
public:
    SerialPorts& Get() override { return *mPorts; }
    std::string PortName() const override { return "COM5"; }
    std::string MissingPortName() const override { return "COM6"; }
    WireEnd* FarEnd() override { return &mTerminal; }
    MessagePump& Pump() override { return mPump; }
    void Wait() override { mClock->Sleep(1); }

private:
    const std::unique_ptr<Clock> mClock = MakePosixClock();
    PosixMessagePump mPump{*mClock};
    PseudoTerminal mTerminal;
    const std::unique_ptr<SerialPorts> mPorts =
        MakePosixSerialPorts(mPump, {{"COM5", mTerminal.Device()}, {"COM6", "/dev/null"}});
};

}  // namespace

Makers<ClockSubject> NativeClocks() {
    return {MakerOf<ClockSubject, Owning<Clock, Made<Clock, MakePosixClock>>>("Posix")};
}

Makers<FilesSubject> NativeFileSystems() {
    return {MakerOf<FilesSubject, HostFiles<Made<Files, MakePosixFiles>>>("Posix")};
}

Makers<PumpSubject> NativePumps() {
    return {MakerOf<PumpSubject, PolledPumpOfTheSystem>("Posix")};
}

Makers<RegistrySubject> NativeRegistries() {
    return {MakerOf<RegistrySubject, FileRegistry>("PosixFile")};
}

Makers<SerialSubject> NativeSerialLines() {
    return {MakerOf<SerialSubject, PseudoTerminalLine>("PseudoTerminal")};
}

// POSIX uses the portable implementations of these two services.
Makers<CodePageSubject> NativeCodePages() {
    return {};
}

Makers<StringsSubject> NativeStringTables() {
    return {};
}

}  // namespace vantor::contract
