// The native platform on POSIX.
#include <utility>

#include "platform/NativePlatform.hpp"
#include "platform/portable/CodePage1252.hpp"
#include "platform/portable/CompiledStrings.hpp"
#include "platform/portable/RegistryHive.hpp"
#include "platform/posix/PosixClock.hpp"
#include "platform/posix/PosixConsole.hpp"
#include "platform/posix/PosixFiles.hpp"
#include "platform/posix/PosixFolders.hpp"
#include "platform/posix/PosixMessagePump.hpp"
#include "platform/posix/PosixProcess.hpp"
#include "platform/posix/PosixRegistry.hpp"
#include "platform/posix/PosixSerialPorts.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

/// Without a home folder nothing is stored, and settings last as long as the process.
std::unique_ptr<Registry> RegistryOf(const Folders& folders) {
    std::unique_ptr<Registry> registry;
    if (!Ignoring(
            [&] { registry = std::make_unique<PosixRegistry>(DefaultRegistryFile(folders)); }))
        registry = std::make_unique<RegistryHive>();
    return registry;
}

}  // namespace

NativePlatform MakeNativePlatform(int argc, char** argv) {
    NativePlatform native;
    native.process = std::make_unique<PosixProcess>(argc, argv);
    native.clock = std::make_unique<PosixClock>();
    native.codePage = std::make_unique<CodePage1252>();
    native.files = std::make_unique<PosixFiles>();
    native.folders = std::make_unique<PosixFolders>();
    native.strings = std::make_unique<CompiledStrings>(LanguageOfEnvironment());
    native.console = std::make_unique<PosixConsole>();
    auto pump = std::make_unique<PosixMessagePump>(*native.clock);
    native.registry = RegistryOf(*native.folders);
    auto ports = std::make_unique<PosixSerialPorts>(*pump);
    native.portName = [&mapper = *ports](const std::string& port) {
        return port.find('/') == std::string::npos ? port : mapper.MapDevice(port);
    };
    native.pump = std::move(pump);
    native.ports = std::move(ports);
    return native;
}

}  // namespace vantor
