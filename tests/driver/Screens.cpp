// Takes screenshots of all stages of the program in the language DRIVE_LANGUAGE. A stage that does
// not appear is reported and makes the exit status 1; the other parts still run.
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include "resources/Designs.hpp"
#include "tests/driver/PictureCache.hpp"
#include "tests/driver/Workbench.hpp"

namespace vantor::driver {
namespace {

class Screens : Workbench {
public:
    void OfAFlash();
    void OfTheOtherBoxes();
    void OfThePictureAndTheMenus();
    void OfMonitorMode();
    void OfTheOptions();

private:
    /// Takes a screenshot of the area of `window` and `above`.
    static void Show(const std::string& stage, HWND window, HWND above = nullptr) {
        RECT area{};
        RECT other{};
        GetWindowRect(window, &area);
        if (above != nullptr && GetWindowRect(above, &other) != 0) UnionRect(&area, &area, &other);
        RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
        Ask("show " + stage + "-" + Setting("DRIVE_LANGUAGE") + " " +
            std::to_string(area.right - area.left) + "x" + std::to_string(area.bottom - area.top) +
            "+" + std::to_string(area.left) + "+" + std::to_string(area.top));
    }
    void ShowBox(const std::string& stage) const {
        const HWND box = app->AwaitBox();
        App::Read(box);  // waits until the box is painted
        Show(stage, app->Main(), box);
    }
};

void Screens::OfAFlash() {
    indicator.Start("--think 50 --write 3000");
    const HWND window = app->Main();
    Show("start", window);
    app->Choose("mnuHelpAbout");
    const HWND about = AwaitOtherForm();
    Show("about", about);
    PostMessageW(about, WM_CLOSE, 0, 0);
    Await("its end", [this] { return app->OtherForm() == nullptr; });
    app->Choose("mnuToolsCurrentVersions");
    ShowBox("versions");
    app->TakeBox();
    app->Press("cmdFlash");
    Show("dialog", app->AwaitFileDialog(), window);
    app->ChooseFile(image);
    ShowBox("warning");
    app->TakeBox(IDYES);
    Await("the middle", [this] { return app->Percent() >= 50; });
    Show("streaming", window);
    Show("verdict", window, AwaitOtherForm());
    ShowBox("success");
}

void Screens::OfTheOtherBoxes() {
    constexpr std::pair<const char*, const char*> kStages[] = {
        {"no-port", nullptr},
        {"not-in-monitor", "--fault no-trav"},
        {"load-refused", "--fault no-sysload"},
        {"failure", "--fault nak@0x4"},
        {"verify-failed", "--fault verify-failed"},
        {"aborted", "--think 100"}};
    for (const auto& [stage, faults] : kStages) {
        if (faults != nullptr) indicator.Start(faults);
        StartFlash();
        if (stage == std::string("aborted")) {
            Await("the stream", [this] { return app->Percent() > 0; });
            app->Press("cmdFlashAbort");
        }
        ShowBox(stage);
        app->TakeBox();
    }
}

void Screens::OfThePictureAndTheMenus() {
    const PictureCache cache;
    cache.Draw("a.jpg", "jpg", 300, 200);
    Restart();
    const HWND window = app->Main();
    Show("picture", window);
    Await("the focus", [this] { return app->Focus() == app->Child("cmdFlash"); });
    Key(VK_TAB);
    Await("the picture", [this] { return app->Focus() == app->Child("picPicture"); });
    Show("picture-focus", window);
    PostMessageW(window, WM_SYSCOMMAND, SC_KEYMENU, 0);
    Await("the menu bar", [this] { return app->InMenu(); });
    Key(VK_DOWN);
    for (const char* menu : {"file", "tools", "help"}) {
        const HWND before = app->Menu();
        Await("the menu", [this] { return app->Menu() != nullptr; });
        Show(std::string("menu-") + menu, window, app->Menu());
        Key(VK_RIGHT);
        Await("the next menu", [&] { return app->Menu() != before; });
    }
    Key(VK_ESCAPE);
    Key(VK_ESCAPE);
    Await("the end of the menu", [this] { return !app->InMenu(); });
    // No user action shows this panel yet.
    ShowWindow(app->Child("picStartup"), SW_HIDE);
    ShowWindow(app->Child("picUpdate"), SW_SHOW);
    Show("updates", window);
}

void Screens::OfMonitorMode() {
    indicator.Start("--terminal");
    const Window monitor = OpenMonitor();
    Show("monitor-empty", monitor.WindowHandle());
    OpenPort(monitor);
    Show("monitor-connected", monitor.WindowHandle());
    std::string lines;
    for (int i = 0; i < 100; ++i) lines += "help\r\ngross\r\n";
    const Window progress = SendFile(monitor, lines);
    AwaitSent(progress, 20);
    Show("monitor-sending", monitor.WindowHandle(), progress.WindowHandle());
    progress.Press("cmdCancel");
    Await("the end", [&] { return !progress.IsThere(); });
    Show("monitor-page", monitor.WindowHandle());
    Command(monitor, Setting("DRIVE_LANGUAGE") == "es" ? 'F' : 'S');
    Show("monitor-settings", monitor.WindowHandle(),
         app->AwaitForm(kPortSettingsWindowDesign).WindowHandle());
}

void Screens::OfTheOptions() {
    app->Choose("mnuToolsOptions");
    const Window options = app->AwaitForm(kConfigureWindowDesign);
    const HWND tree = options.Child("tvwOptions");
    Await("the focus", [&] { return app->Focus() == tree; });
    Show("options", options.WindowHandle());
    const std::string page = options.Text("picSelection");
    Key(VK_LEFT);
    Await("the heading", [&] { return options.Text("picSelection") != page; });
    Show("options-heading", options.WindowHandle());
    Key(VK_RIGHT);
    Await("the page", [&] { return options.Text("picSelection") == page; });
    Key(VK_TAB);
    Key(VK_TAB);
    Await("the speed", [&] { return app->Focus() == options.Child("cboBaudRate"); });
    Key(VK_UP);
    App::Read(app->AwaitBox());
    Show("options-advice", options.WindowHandle(), app->AwaitBox());
}

/// Runs one part on a new program instance; true if all its stages appeared.
bool Take(const std::string& part, void (Screens::*take)()) {
    std::optional<Screens> screens;
    try {
        screens.emplace();
        ((*screens).*take)();
        return true;
    } catch (const std::exception& error) {
        std::cerr << "No pictures " << part << ": " << error.what() << std::endl;
        Ask("keep screens");
        return false;
    }
}

bool TakeAll() {
    constexpr std::pair<const char*, void (Screens::*)()> kParts[] = {
        {"of a flash", &Screens::OfAFlash},
        {"of the other boxes", &Screens::OfTheOtherBoxes},
        {"of the picture and the menus", &Screens::OfThePictureAndTheMenus},
        {"of monitor mode", &Screens::OfMonitorMode},
        {"of the options", &Screens::OfTheOptions}};
    bool all = true;
    for (const auto& [part, take] : kParts) all = Take(part, take) && all;
    return all;
}

}  // namespace
}  // namespace vantor::driver

int main(int argc, char** argv) {
    if (vantor::driver::OpensAnAddress(argc, argv)) return 0;
    vantor::driver::EnterDesktop();
    return vantor::driver::TakeAll() ? 0 : 1;
}
