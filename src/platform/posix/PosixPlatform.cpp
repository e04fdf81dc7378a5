// The native platform on POSIX.
#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/NativePlatform.hpp"
#include "platform/portable/CodePage1252.hpp"
#include "platform/portable/CompiledStrings.hpp"
#include "platform/portable/RegistryHive.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixServices.hpp"
#include "platform/posix/PosixStreams.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

std::string_view Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

/// Without a home folder nothing is stored, and settings last as long as the process.
std::unique_ptr<Registry> RegistryOf(const Folders& folders) {
    std::string folder;
    if (!Ignoring([&] { folder = folders.ApplicationData(); }))
        return std::make_unique<RegistryHive>();
    return MakePosixRegistry(folder + "/tessmar-vantor-update/registry.reg");
}

}  // namespace

NativePlatform MakeNativePlatform(int argc, char** argv) {
    OpenStandardStreams();
    NativePlatform native;
    native.process = MakePosixProcess(argc, argv);
    native.clock = MakePosixClock();
    native.codePage = std::make_unique<CodePage1252>();
    native.files = MakePosixFiles();
    native.folders = MakePosixFolders();
    native.strings = std::make_unique<CompiledStrings>(
        LanguageOfLocale(Environment("LC_ALL"), Environment("LC_MESSAGES"), Environment("LANG")));
    native.console = MakePosixConsole();
    auto pump = std::make_unique<PosixMessagePump>(*native.clock);
    native.registry = RegistryOf(*native.folders);
    native.ports = MakePosixSerialPorts(*pump);
    native.pump = std::move(pump);
    native.sharedFiles = MakePosixSharedFiles();
    native.machine = MakePosixMachine();
    native.children = MakePosixChildProcesses();
    return native;
}

}  // namespace vantor
