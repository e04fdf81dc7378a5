// The services of the system that a program is built for, created by its start-up file.
#pragma once

#include <memory>

#include "platform/ChildProcesses.hpp"
#include "platform/Clock.hpp"
#include "platform/CodePage.hpp"
#include "platform/Console.hpp"
#include "platform/FileVersions.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/Machine.hpp"
#include "platform/MessagePump.hpp"
#include "platform/Process.hpp"
#include "platform/Registry.hpp"
#include "platform/SerialPort.hpp"
#include "platform/SharedFiles.hpp"
#include "platform/StringTable.hpp"

namespace vantor {

/// Services that need no window, in construction order: later ones may use earlier ones.
struct NativePlatform {
    std::unique_ptr<Process> process;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<CodePage> codePage;
    std::unique_ptr<Files> files;
    std::unique_ptr<FileVersions> versions;  ///< null where no program shows versions (POSIX)
    std::unique_ptr<Folders> folders;
    std::unique_ptr<StringTable> strings;
    std::unique_ptr<Console> console;
    std::unique_ptr<MessagePump> pump;
    std::unique_ptr<Registry> registry;
    std::unique_ptr<SerialPorts> ports;
    std::unique_ptr<SharedFiles> sharedFiles;
    std::unique_ptr<Machine> machine;
    std::unique_ptr<ChildProcesses> children;
};

/// Creates them for this process. `argc` and `argv` are those of main.
NativePlatform MakeNativePlatform(int argc, char** argv);

}  // namespace vantor
