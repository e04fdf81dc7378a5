#include "tests/driver/Workbench.hpp"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "app/base/AppInfo.hpp"
#include "resources/Designs.hpp"
#include "tests/driver/Bitmap.hpp"
#include "tests/faults/Images.hpp"

namespace vantor::driver {
namespace {

std::filesystem::path PictureFolder() {
    return std::filesystem::path(Setting("APPDATA")) / "TSMR" / "CALDOR" / "cache";
}

}  // namespace

Workbench::Workbench() {
    std::ofstream(image, std::ios::binary) << ImageOf(60);
    ForgetSettings();
    app.emplace();
}

std::wstring Workbench::ProgramKey() {
    const AppInfo program;
    return ToWide("SOFTWARE\\" + program.companyName + "\\" + program.title);
}

void Workbench::ForgetSettings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, ProgramKey().c_str());
    std::filesystem::remove_all(PictureFolder());
}

void Workbench::CachePicture() {
    std::filesystem::create_directories(PictureFolder());
    std::ofstream(PictureFolder() / "a.bmp", std::ios::binary) << Bitmap(300, 200);
}

void Workbench::Restart() {
    app->Close();
    if (app->Wait() != 0) throw std::runtime_error("the program ends with an error");
    app.emplace();
}

void Workbench::StartFlash() const {
    app->Press("cmdFlash");
    app->ChooseFile(image);
    app->TakeBox(IDYES);
}

// --- monitor mode -------------------------------------------------------------------------------

Window Workbench::OpenMonitor() const {
    app->Choose("mnuToolsMonitor");
    const Window monitor = app->AwaitForm(kMonitorWindowDesign);
    Await("the terminal", [&] { return app->Focus() == monitor.Child("comMonitor"); });
    return monitor;
}

void Workbench::OpenPort(const Window& monitor) {
    const std::string closed = monitor.Panel("sbStatusBar", 0);
    monitor.Choose("mnuCommOpen");
    Await("the port", [&] { return monitor.Panel("sbStatusBar", 0) != closed; });
}

void Workbench::AwaitShown(const Window& monitor, const std::string& text) {
    Await("on the screen: " + text,
          [&] { return monitor.Text("comMonitor").find(text) != std::string::npos; });
}

void Workbench::Command(const Window& monitor, const std::string& keys) const {
    const HWND terminal = monitor.Child("comMonitor");
    PostMessageW(terminal, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(terminal), -1);
    Await("the menu", [this] { return app->Menu() != nullptr; });
    for (const char key : keys) {
        const HWND menu = app->Menu();
        app->KeyUntil(static_cast<WORD>(key), "the next menu", [&] { return app->Menu() != menu; });
    }
    Await("the end of the menu", [&] { return keys.empty() || !app->InMenu(); });
}

Window Workbench::SendFile(const Window& monitor, const std::string& bytes) const {
    const std::string path = FileOfRun("sent.txt");
    std::ofstream(path, std::ios::binary) << bytes;
    monitor.Choose("mnuCaptureSend");
    app->ChooseFile(path);
    return app->AwaitForm(kSendWindowDesign);
}

}  // namespace vantor::driver
