// The platform on POSIX. The far end of a line is the master side of a pseudo-terminal.
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>

#include <array>
#include <stdexcept>

#include "platform/portable/CodePage1252.hpp"
#include "platform/posix/PosixHandle.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "tests/contract/Contract.hpp"

namespace vantor::contract {
namespace {

class PseudoTerminal : public WireEnd {
public:
    PseudoTerminal() : mMaster(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        if (grantpt(mMaster.Get()) != 0 || unlockpt(mMaster.Get()) != 0)
            throw std::runtime_error("no pseudo-terminal");
    }

    std::string Device() const { return ptsname(mMaster.Get()); }

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
        return bytes.substr(0, length);
    }
    void HangUp() override { PosixHandle(std::move(mMaster)); }

private:
    PosixHandle mMaster;
};

}  // namespace

void MakeNative(Subject& subject) {
    auto terminal = std::make_unique<PseudoTerminal>();
    subject.clock = MakePosixClock();
    auto pump = std::make_unique<PosixMessagePump>(*subject.clock);
    subject.codePage = std::make_unique<CodePage1252>();
    subject.strings = std::make_unique<CompiledStrings>(Language::English);
    subject.files = MakePosixFiles();
    // The folder does not exist yet, as in a new home directory.
    subject.restarted = [file = subject.host / "new/registry.reg"](Registry&) {
        return MakePosixRegistry(file);
    };
    subject.registry = MakePosixRegistry(subject.host / "new/registry.reg");
    subject.ports = MakePosixSerialPorts(
        *pump, {{subject.portName, terminal->Device()}, {"COM31", "/dev/null"}});
    subject.pump = std::move(pump);
    subject.farEnd = std::move(terminal);
}

}  // namespace vantor::contract
