// The Windows services that are used through their interface only. Each factory is defined in the
// source named after its service; the interface holds the contract.
#pragma once

#include <memory>
#include <string>

#include "platform/ChildProcesses.hpp"
#include "platform/Clipboard.hpp"
#include "platform/Clock.hpp"
#include "platform/CodePage.hpp"
#include "platform/CommonDialogs.hpp"
#include "platform/Console.hpp"
#include "platform/FileVersions.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/Machine.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/Process.hpp"
#include "platform/Registry.hpp"
#include "platform/SerialPort.hpp"
#include "platform/SharedFiles.hpp"
#include "platform/Shell.hpp"
#include "platform/StringTable.hpp"

namespace vantor {

class Win32MessagePump;

std::unique_ptr<Clipboard> MakeWin32Clipboard();

std::unique_ptr<ChildProcesses> MakeWin32ChildProcesses();
std::unique_ptr<Machine> MakeWin32Machine();
std::unique_ptr<SharedFiles> MakeWin32SharedFiles();

/// Sets the system timer resolution to 1 ms while it lives. The default of 15.6 ms is longer than
/// the pauses of the paced dialogue.
std::unique_ptr<Clock> MakeWin32Clock();

std::unique_ptr<CodePage> MakeWin32CodePage();
std::unique_ptr<CommonDialogs> MakeWin32CommonDialogs();

/// One object at a time: it owns the process's control events. Redirected output is plain UTF-8.
/// A last line of input without a terminator counts as a line.
std::unique_ptr<Console> MakeWin32Console();

std::unique_ptr<Files> MakeWin32Files();
std::unique_ptr<FileVersions> MakeWin32FileVersions();
std::unique_ptr<Folders> MakeWin32Folders();

/// `defaultTitle` is the title of boxes that have none of their own.
std::unique_ptr<MessageBoxes> MakeWin32MessageBoxes(std::string defaultTitle);

/// The single-instance lock is a named mutex of the user's session. Where no box can be shown, the
/// message about an unhandled exception goes to standard error.
std::unique_ptr<Process> MakeWin32Process();

std::unique_ptr<Registry> MakeWin32Registry();

/// `pump` must outlive the ports opened.
std::unique_ptr<SerialPorts> MakeWin32SerialPorts(Win32MessagePump& pump);

/// Opens the port `name` ("COM3") and raises PortOpenError like SerialPorts::Open. `pump` must
/// outlive it. One write is pending at a time; until it has ended `Write` accepts nothing. Closing
/// waits for it as long as its bytes take on the line, at most half a second, then discards the
/// rest. If the driver does not end a cancelled request, the port is given up within some seconds.
std::unique_ptr<SerialPort> OpenWin32SerialPort(Win32MessagePump& pump, const std::wstring& name,
                                                const LineSettings& line);

std::unique_ptr<Shell> MakeWin32Shell();
std::unique_ptr<StringTable> MakeWin32StringTable();

}  // namespace vantor
