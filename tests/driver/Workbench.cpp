#include "tests/driver/Workbench.hpp"

#include <filesystem>
#include <fstream>

#include "app/base/AppInfo.hpp"
#include "resources/Designs.hpp"
#include "tests/faults/Images.hpp"

namespace vantor::driver {
Workbench::Workbench() {
    std::ofstream(image, std::ios::binary) << ImageOf(60);
    ForgetSettings();
    app.emplace();
}

std::filesystem::path Workbench::Cache() {
    return std::filesystem::path(Setting("APPDATA")) / "TSMR" / "CALDOR" / "cache";
}

std::wstring Workbench::ProgramKey() {
    const AppInfo program;
    return ToWide("SOFTWARE\\" + program.companyName + "\\" + program.title);
}

void Workbench::ForgetSettings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, ProgramKey().c_str());
    std::filesystem::remove_all(Cache());
}

void Workbench::StartFlash() const {
    app->Press("cmdFlash");
    app->ChooseFile(image);
    app->TakeBox(IDYES);
}

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

}  // namespace vantor::driver
