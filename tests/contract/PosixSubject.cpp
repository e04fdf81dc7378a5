// The platform on POSIX. The far end of a line is the master side of a pseudo-terminal.
#include <fcntl.h>
#include <stdlib.h>

#include <algorithm>
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
    std::string Receive() override {
        std::array<char, 4096> some{};
        const ssize_t count = read(mMaster.Get(), some.data(), some.size());
        return {some.data(), static_cast<std::size_t>(std::max<ssize_t>(0, count))};
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

ProcessServices MakeProcessServices() {
    setenv("TZ", "IST-5:30", 1);  // a time zone whose sign and minutes count
    return {MakePosixProcess(0, nullptr), MakePosixChildProcesses(), MakePosixSharedFiles(),
            MakePosixClock(), MakePosixMachine()};
}

}  // namespace vantor::contract
