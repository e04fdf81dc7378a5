#include "tests/driver/Workbench.hpp"

#include <fstream>
#include <stdexcept>

#include "app/base/AppInfo.hpp"
#include "resources/Designs.hpp"
#include "simulator/SerialRecord.hpp"

namespace vantor::driver {
namespace {

/// 60 data records of two bytes each, and an end record.
std::string ShortImage() {
    std::string text;
    for (std::uint8_t i = 0; i < 60; ++i)
        text += SerialRecord{'1', i * 2U, {0xab, i}}.Format() + "\r\n";
    return text + SerialRecord{'9', 0, {}}.Format() + "\r\n";
}

}  // namespace

Workbench::Workbench() {
    std::ofstream(image, std::ios::binary) << ShortImage();
    ForgetSettings();
    app.emplace();
}

std::wstring Workbench::ProgramKey() {
    const AppInfo program;
    return ToWide("SOFTWARE\\" + program.companyName + "\\" + program.title);
}

void Workbench::ForgetSettings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, ProgramKey().c_str());
}

void Workbench::Restart() {
    app->Close();
    if (app->Wait() != 0) throw std::runtime_error("the program ends with an error");
    app.emplace();
}

void Workbench::AskForFlash() const {
    app->Press("cmdFlash");
    app->ChooseFile(image);
}

void Workbench::StartFlash() const {
    AskForFlash();
    app->TakeBox(IDYES);
}

void Workbench::AwaitLine(int line) const {
    Await("line " + std::to_string(line), [&] { return app->Line() >= line; });
}

HWND Workbench::AwaitOtherForm() const {
    Await("another window", [this] { return app->OtherForm() != nullptr; });
    return app->OtherForm();
}

// --- monitor mode -------------------------------------------------------------------------------

Window Workbench::OpenMonitor() const {
    app->Choose("mnuToolsMonitor");
    const Window monitor = app->AwaitForm(kMonitorWindowDesign);
    Await("the keyboard", [&] { return app->Focus() == monitor.Child("comMonitor"); });
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

void Workbench::Command(const Window& monitor, WORD key) const {
    const HWND terminal = monitor.Child("comMonitor");
    PostMessageW(terminal, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(terminal), -1);
    Await("the menu", [this] { return app->InMenu(); });
    app->KeyUntil(key, "the end of the menu", [this] { return !app->InMenu(); });
}

Window Workbench::SendFile(const Window& monitor, const std::string& bytes) const {
    const std::string path = FileOfRun("sent.txt");
    std::ofstream(path, std::ios::binary) << bytes;
    monitor.Choose("mnuCaptureSend");
    app->ChooseFile(path);
    return app->AwaitForm(kSendWindowDesign);
}

void Workbench::AwaitSent(const Window& progress, int line) {
    Await("line " + std::to_string(line), [&] {
        const std::string text = progress.Text("lblStatus");
        const std::size_t number = text.find_first_of("0123456789");
        return number != std::string::npos && std::stoi(text.substr(number)) >= line;
    });
}

}  // namespace vantor::driver
