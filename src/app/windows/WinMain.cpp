// Entry point of the Windows program: creates the platform, starts the application, runs the pump.
#include "app/base/AppInfo.hpp"
#include "app/modStartup.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Pictures.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/windows/Win32Peers.hpp"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    using namespace vantor;
    const auto process = MakeWin32Process();
    const auto clock = MakeWin32Clock();
    const auto codePage = MakeWin32CodePage();
    const auto files = MakeWin32Files();
    const auto versions = MakeWin32FileVersions();
    const auto folders = MakeWin32Folders();
    const auto strings = MakeWin32StringTable();
    Win32MessagePump pump;
    const auto registry = MakeWin32Registry();
    const auto ports = MakeWin32SerialPorts(pump);
    const auto boxes = MakeWin32MessageBoxes(AppInfo{}.title);
    const auto clipboard = MakeWin32Clipboard();
    const auto dialogs = MakeWin32CommonDialogs();
    const auto shell = MakeWin32Shell();
    Win32Pictures pictures(*files);
    Win32Peers peers(pump);
    Platform platform{.clipboard = *clipboard,
                      .clock = *clock,
                      .codePage = *codePage,
                      .dialogs = *dialogs,
                      .files = *files,
                      .versions = *versions,
                      .folders = *folders,
                      .boxes = *boxes,
                      .pump = pump,
                      .peers = peers,
                      .pictures = pictures,
                      .process = *process,
                      .registry = *registry,
                      .ports = *ports,
                      .shell = *shell,
                      .strings = *strings};
    modStartup startup(platform);
    if (startup.Main()) pump.Run();
    return 0;
}
