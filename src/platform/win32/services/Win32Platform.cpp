// The native platform on Windows.
#include <utility>

#include "platform/NativePlatform.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Services.hpp"

namespace vantor {

// argv was converted to the ANSI code page; the process queries the wide command line instead.
NativePlatform MakeNativePlatform(int, char**) {
    auto pump = std::make_unique<Win32MessagePump>();
    NativePlatform native{.process = MakeWin32Process(),
                          .clock = MakeWin32Clock(),
                          .codePage = MakeWin32CodePage(),
                          .files = MakeWin32Files(),
                          .versions = MakeWin32FileVersions(),
                          .folders = MakeWin32Folders(),
                          .strings = MakeWin32StringTable(),
                          .console = MakeWin32Console(),
                          .pump = nullptr,
                          .registry = MakeWin32Registry(),
                          .ports = MakeWin32SerialPorts(*pump),
                          .sharedFiles = MakeWin32SharedFiles(),
                          .machine = MakeWin32Machine(),
                          .children = MakeWin32ChildProcesses()};
    native.pump = std::move(pump);
    return native;
}

}  // namespace vantor
