// Entry point of the Windows program: creates the platform, starts the application, runs the pump.
#include "app/base/AppInfo.hpp"
#include "app/modStartup.hpp"
#include "platform/NativePlatform.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"
#include "platform/win32/services/Win32Pictures.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/windows/Win32Peers.hpp"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    using namespace vantor;
    const NativePlatform native = MakeNativePlatform(0, nullptr);
    auto& pump = static_cast<Win32MessagePump&>(*native.pump);
    const auto boxes = MakeWin32MessageBoxes(AppInfo{}.title);
    const auto clipboard = MakeWin32Clipboard();
    const auto dialogs = MakeWin32CommonDialogs();
    const auto shell = MakeWin32Shell();
    Win32Pictures pictures(*native.files);
    Win32Peers peers(pump);
    Platform platform{.clipboard = *clipboard,
                      .clock = *native.clock,
                      .codePage = *native.codePage,
                      .dialogs = *dialogs,
                      .files = *native.files,
                      .versions = *native.versions,
                      .folders = *native.folders,
                      .boxes = *boxes,
                      .pump = pump,
                      .peers = peers,
                      .pictures = pictures,
                      .process = *native.process,
                      .registry = *native.registry,
                      .ports = *native.ports,
                      .shell = *shell,
                      .strings = *native.strings};
    modStartup startup(platform);
    if (startup.Main()) pump.Run();
    return 0;
}
