// The native platform on Windows.
#include <utility>

#include "platform/NativePlatform.hpp"
#include "platform/win32/services/Win32Clock.hpp"
#include "platform/win32/services/Win32CodePage.hpp"
#include "platform/win32/services/Win32Console.hpp"
#include "platform/win32/services/Win32FileVersions.hpp"
#include "platform/win32/services/Win32Files.hpp"
#include "platform/win32/services/Win32Folders.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Process.hpp"
#include "platform/win32/services/Win32Registry.hpp"
#include "platform/win32/services/Win32SerialPorts.hpp"
#include "platform/win32/services/Win32StringTable.hpp"

namespace vantor {

// argv was converted to the ANSI code page; the process queries the wide command line instead.
NativePlatform MakeNativePlatform(int, char**) {
    NativePlatform native;
    native.process = std::make_unique<Win32Process>();
    native.clock = std::make_unique<Win32Clock>();
    native.codePage = std::make_unique<Win32CodePage>();
    native.files = std::make_unique<Win32Files>();
    native.versions = std::make_unique<Win32FileVersions>();
    native.folders = std::make_unique<Win32Folders>();
    native.strings = std::make_unique<Win32StringTable>();
    native.console = std::make_unique<Win32Console>();
    auto pump = std::make_unique<Win32MessagePump>();
    native.registry = std::make_unique<Win32Registry>();
    native.ports = std::make_unique<Win32SerialPorts>(*pump);
    native.pump = std::move(pump);
    return native;
}

}  // namespace vantor
