// Takes screenshots of all stages of the program in the language DRIVE_LANGUAGE. A stage that does
// not appear is reported and makes the exit status 1; the other parts still run.
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>

#include "resources/Designs.hpp"
#include "tests/driver/Workbench.hpp"

namespace vantor::driver {
namespace {

class Screens : Workbench {
public:
    void OfAFlash();
    void OfTheOtherBoxes();
    void OfThePictureAndTheMenus();
    void OfMonitorMode();
    void OfTheTerminalMenu(const Window& monitor);
    void OfTheViews(const Window& monitor);
    void OfTheOptions();

private:
    /// Takes a screenshot of the area of `window` and `above`.
    static void Show(const std::string& stage, HWND window, HWND above = nullptr) {
        constexpr DWORD kDrawnMs = 100;  // drawn pixels reach the display with a delay
        RECT area{};
        RECT other{};
        GetWindowRect(window, &area);
        if (above != nullptr && GetWindowRect(above, &other) != 0) UnionRect(&area, &area, &other);
        for (const HWND each : {window, above})
            if (each != nullptr)
                RedrawWindow(each, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
        Sleep(kDrawnMs);
        Ask("show " + stage + "-" + Setting("DRIVE_LANGUAGE") + " " +
            std::to_string(area.right - area.left) + "x" + std::to_string(area.bottom - area.top) +
            "+" + std::to_string(area.left) + "+" + std::to_string(area.top));
    }
    static void Show(const std::string& stage, const Window& window, HWND above = nullptr) {
        Show(stage, window.WindowHandle(), above);
    }
    void ShowBox(const std::string& stage) const { Show(stage, *app, app->AwaitBox()); }
};

void Screens::OfAFlash() {
    indicator.Start("--think 50 --write 3000");
    Show("start", *app);
    app->Choose("mnuHelpAbout");
    const Window about = app->AwaitForm(kAboutWindowDesign);
    Show("about", about);
    about.Close();
    about.AwaitGone();
    app->Choose("mnuToolsCurrentVersions");
    ShowBox("versions");
    app->TakeBox();
    app->Press("cmdFlash");
    Show("dialog", app->AwaitFileDialog(), app->WindowHandle());
    app->ChooseFile(image);
    ShowBox("warning");
    app->TakeBox(IDYES);
    Await("the middle", [this] { return app->Percent() >= 50; });
    Show("streaming", *app);
    Show("verdict", *app, app->AwaitForm(kStatusWindowDesign).WindowHandle());
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
    CachePicture();
    Restart();
    Show("picture", *app);
    app->AwaitFocus(*app, "cmdFlash");
    Key(VK_TAB);
    app->AwaitFocus(*app, "picPicture");
    Show("picture-focus", *app);
    PostMessageW(app->WindowHandle(), WM_SYSCOMMAND, SC_KEYMENU, 0);
    Await("the menu bar", [this] { return app->InMenu(); });
    Key(VK_DOWN);
    for (const char* menu : {"file", "tools", "help"}) {
        const HWND before = app->Menu();
        Await("the menu", [this] { return app->Menu() != nullptr; });
        Show(std::string("menu-") + menu, *app, app->Menu());
        Key(VK_RIGHT);
        Await("the next menu", [&] { return app->Menu() != before; });
    }
    Key(VK_ESCAPE);
    Key(VK_ESCAPE);
    Await("the end of the menu", [this] { return !app->InMenu(); });
    // No user action shows this panel yet.
    ShowWindow(app->Child("picStartup"), SW_HIDE);
    ShowWindow(app->Child("picUpdate"), SW_SHOW);
    Show("updates", *app);
    ForgetSettings();
}

void Screens::OfMonitorMode() {
    indicator.Start("--terminal");
    const Window monitor = OpenMonitor();
    Show("monitor-empty", monitor);
    OpenPort(monitor);
    Show("monitor-connected", monitor);
    std::string lines;
    for (int i = 0; i < 100; ++i) lines += "help\r\ngross\r\n";
    const Window progress = SendFile(monitor, lines);
    AwaitShown(monitor, "gross");
    Show("monitor-sending", monitor, progress.WindowHandle());
    progress.Press("cmdCancel");
    progress.AwaitGone();
    Show("monitor-page", monitor);
    const bool spanish = Setting("DRIVE_LANGUAGE") == "es";
    const auto open = [&](const char* stage, WORD key, const FormDesign& design) {
        Command(monitor, key);
        const Window window = app->AwaitForm(design);
        // The settings are wider than the terminal.
        const bool alone = &design == &kTerminalSettingsWindowDesign;
        Show(stage, alone ? window : monitor, window.WindowHandle());
        window.Close();
        window.AwaitGone();
    };
    open("monitor-settings", spanish ? 'F' : 'S', kPortSettingsWindowDesign);
    open("terminal-settings", 'T', kTerminalSettingsWindowDesign);
    open("terminal-find", spanish ? 'U' : 'F', kFindWindowDesign);
    open("terminal-send", spanish ? 'E' : 'D', kSendBytesWindowDesign);
    OfTheTerminalMenu(monitor);
    OfTheViews(monitor);
}

void Screens::OfTheTerminalMenu(const Window& monitor) {
    const HWND terminal = monitor.Child("comMonitor");
    PostMessageW(terminal, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(terminal), -1);
    Await("the menu", [this] { return app->Menu() != nullptr; });
    Show("terminal-menu", monitor, app->Menu());
    const WORD line = Setting("DRIVE_LANGUAGE") == "es" ? 'L' : 'N';
    for (const auto& [name, key] : {std::pair("view", WORD{'V'}), {"line", line}}) {
        const HWND before = app->Menu();
        Key(key);
        Await("the submenu", [&] { return app->Menu() != before; });
        Show(std::string("terminal-menu-") + name, monitor, app->Menu());
        Key(VK_LEFT);
        Await("its end", [&] { return app->Menu() == before; });
    }
    Key(VK_ESCAPE);
    Await("the end of the menu", [this] { return !app->InMenu(); });
}

void Screens::OfTheViews(const Window& monitor) {
    const HWND terminal = monitor.Child("comMonitor");
    // Presses the keys of an entry of the context menu, which lead through its submenus.
    const auto choose = [&](std::string_view keys) {
        PostMessageW(terminal, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(terminal), -1);
        Await("the menu", [this] { return app->Menu() != nullptr; });
        for (const char key : keys) {
            const HWND menu = app->Menu();
            app->KeyUntil(static_cast<WORD>(key), "the next menu",
                          [&] { return app->Menu() != menu; });
        }
        Await("the end of the menu", [this] { return !app->InMenu(); });
    };
    const bool spanish = Setting("DRIVE_LANGUAGE") == "es";
    choose(spanish ? "VMH" : "VST");
    Show("terminal-stamps", monitor);
    choose("VC");
    Show("terminal-controls", monitor);
    choose(spanish ? "VMN" : "VSN");
    choose(spanish ? "VV" : "VH");
    Show("terminal-hex", monitor);
    choose(spanish ? "VE" : "VD");
    choose("VT");
    Show("terminal-dark", monitor);
}

void Screens::OfTheOptions() {
    app->Choose("mnuToolsOptions");
    const Window options = app->AwaitForm(kConfigureWindowDesign);
    app->AwaitFocus(options, "tvwOptions");
    Show("options", options);
    const std::string page = options.Text("picSelection");
    Key(VK_LEFT);
    Await("the heading", [&] { return options.Text("picSelection") != page; });
    Show("options-heading", options);
    Key(VK_RIGHT);
    Await("the page", [&] { return options.Text("picSelection") == page; });
    Key(VK_TAB);
    Key(VK_TAB);
    app->AwaitFocus(options, "cboBaudRate");
    Key(VK_UP);
    Show("options-advice", options, app->AwaitBox());
}

/// Runs each part on a new program instance; false if a stage did not appear.
bool TakeAll() {
    bool all = true;
    for (const auto part :
         {&Screens::OfAFlash, &Screens::OfTheOtherBoxes, &Screens::OfThePictureAndTheMenus,
          &Screens::OfMonitorMode, &Screens::OfTheOptions}) {
        try {
            Screens screens;
            (screens.*part)();
        } catch (const std::exception& error) {
            std::cerr << "A part of the pictures is missing: " << error.what() << std::endl;
            Ask("keep screens");
            all = false;
        }
    }
    return all;
}

}  // namespace
}  // namespace vantor::driver

int main() {
    vantor::driver::EnterDesktop();
    return vantor::driver::TakeAll() ? 0 : 1;
}
