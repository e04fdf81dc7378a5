// The services of the system on POSIX, which are known by their interfaces only.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/ChildProcesses.hpp"
#include "platform/Clock.hpp"
#include "platform/Console.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/Machine.hpp"
#include "platform/Process.hpp"
#include "platform/Registry.hpp"
#include "platform/SerialPort.hpp"
#include "platform/SharedFiles.hpp"

namespace vantor {

class PosixMessagePump;

std::unique_ptr<ChildProcesses> MakePosixChildProcesses();
std::unique_ptr<Machine> MakePosixMachine();
std::unique_ptr<SharedFiles> MakePosixSharedFiles();

std::unique_ptr<Clock> MakePosixClock();

/// One object at a time: it owns the terminal signals of the process. It takes over SIGINT and
/// SIGTERM, and ignores SIGHUP and SIGPIPE: a connection that drops, or a reader of our output that
/// goes away, must not end a running update. A last line without a terminator counts as a line.
std::unique_ptr<Console> MakePosixConsole();

/// "\" in a path means "/" here, and only here; names cannot contain it.
std::unique_ptr<Files> MakePosixFiles();

/// The user's folders by the XDG conventions, with "/" and no trailing one. Creates none.
std::unique_ptr<Folders> MakePosixFolders();

/// Takes the arguments of `main`; the first one is the program name.
/// The lock of an instance is a locked file in the user's run-time folder. When no such file can be
/// created, no other instance runs. The handler of exceptions writes its message to standard error;
/// then the default action of the signal follows, a core dump included.
std::unique_ptr<Process> MakePosixProcess(int argumentCount, const char* const* arguments);

/// The registry in `file`, in the registry editor's export format (version 4, without comments),
/// shared by all programs of the user. The file is checked for changes whenever a key is opened;
/// queries use the copy in memory. Every change applies to the current contents of the file, is on
/// disk when its call returns, and is atomic. Concurrent writers wait for each other for up to a
/// few seconds. A symbolic link in the file's place is followed. A file that cannot be read
/// completely raises UnreadableStore.
std::unique_ptr<Registry> MakePosixRegistry(const std::string& file);

/// Opens the device file `device`. `pump` must outlive the port. Raises RuntimeError: 68 no such
/// port, 70 in use or not permitted, 5 line refused. Closing can block until the driver has sent
/// what it still buffers: POSIX has no way to leave those bytes to the driver without discarding
/// them.
std::unique_ptr<SerialPort> OpenPosixSerialPort(PosixMessagePump& pump, const std::string& device,
                                                const LineSettings& line);

/// COM1 to COM8 are the on-board ports (/dev/ttyS0 ...), COM9 to COM20 USB adapters (/dev/ttyUSB0
/// ...), COM21 to COM32 USB modems (/dev/ttyACM0 ...). `extra`, COM names to device files, adds to
/// this table or overrides it. `pump` must outlive the opened ports. `root` is the folder that
/// holds /dev and /sys.
std::unique_ptr<SerialPorts> MakePosixSerialPorts(
    PosixMessagePump& pump, const std::map<std::string, std::string>& extra = {},
    const std::string& root = {});

}  // namespace vantor
