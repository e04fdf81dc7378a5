#include "tests/driver/Steps.hpp"

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/win32/services/Win32Services.hpp"
#include "resources/Designs.hpp"
#include "tests/driver/Bitmap.hpp"
#include "tests/driver/Workbench.hpp"

#include <commctrl.h>

namespace vantor::driver {
namespace {

constexpr unsigned kSoonMs = 3000;

const std::map<std::string, const FormDesign*> kDesigns = {
    {"main", &kMainWindowDesign},         {"about", &kAboutWindowDesign},
    {"options", &kConfigureWindowDesign}, {"status", &kStatusWindowDesign},
    {"monitor", &kMonitorWindowDesign},   {"settings", &kPortSettingsWindowDesign},
    {"send", &kSendWindowDesign},         {"terminal-settings", &kTerminalSettingsWindowDesign},
    {"find", &kFindWindowDesign},         {"send-bytes", &kSendBytesWindowDesign}};

void MustBeZero(DWORD status) {
    if (status != 0) throw std::runtime_error("ends with an error");
}

int Number(const std::string& word) {
    return std::stoi(word);
}

Words From(const Words& words, std::size_t at) {
    return {words.begin() + static_cast<std::ptrdiff_t>(at), words.end()};
}

/// A program, and the window that the steps are about.
struct Steps : Workbench {
    Window Now() const { return form ? *form : *app; }
    HWND Child(const std::string& name) const { return Now().Child(name.c_str()); }
    std::string Text(const std::string& name) const { return TextOf(Child(name)); }

    void Perform(const Words& words);
    /// A condition; "no" before it inverts it.
    bool Holds(const Words& words);
    void AwaitThat(const Words& words);

    void Open(const Window& window) { form = window; }
    void PlaceAt(int left, int top, int width, int height) const {
        SetWindowPos(app->WindowHandle(), nullptr, left, top, width, height,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    void Command(const std::string& keys) const;
    void ClickUntil(const std::string& name, const Words& condition);
    void DoubleClick(POINT at);
    void System(WPARAM command) const {
        PostMessageW(app->WindowHandle(), WM_SYSCOMMAND, command, 0);
    }
    std::string Stored(const std::string& name) const;
    void Show(const Words& words);

    std::optional<Window> form;  ///< other than the main window
    std::string remembered;
    HWND menuBefore = nullptr;  ///< the open one when keys were last pressed
};

using Condition = bool (*)(Steps&, const Words&);

const std::map<std::string, Condition>& Conditions() {
    using S = Steps;
    using W = const Words;
    static const std::map<std::string, Condition> kConditions = {
        {"dialog", [](S& s, W&) { return s.app->Dialog() != nullptr; }},
        {"file-dialog", [](S& s, W&) { return App::IsFileDialog(s.app->Dialog()); }},
        {"box", [](S& s, W&) { return s.app->Box() != nullptr; }},
        {"box-says",
         [](S& s, W& w) { return App::TextIn(s.app->Box()).find(w[1]) != std::string::npos; }},
        {"dialog-title", [](S& s, W& w) { return TextOf(s.app->Dialog()) == w[1]; }},
        {"title", [](S& s, W& w) { return TextOf(s.Now().WindowHandle()) == w[1]; }},
        {"open", [](S& s, W& w) { return !s.app->Forms(*kDesigns.at(w[1])).empty(); }},
        {"gone", [](S& s, W&) { return !s.Now().IsThere(); }},
        {"running", [](S& s, W&) { return s.app->IsRunning(); }},
        {"keyboard", [](S& s, W&) { return GetForegroundWindow() == s.Now().WindowHandle(); }},
        {"focus", [](S& s, W& w) { return s.app->Focus() == s.Child(w[1]); }},
        {"text", [](S& s, W& w) { return s.Text(w[1]).starts_with(w.at(2)); }},
        {"changed", [](S& s, W& w) { return s.Text(w[1]) != s.remembered; }},
        {"enabled", [](S& s, W& w) { return IsWindowEnabled(s.Child(w[1])) != 0; }},
        {"panel", [](S& s, W& w) { return s.Now().Panel("sbStatusBar", Number(w[1])) == w.at(2); }},
        {"shown", [](S& s, W& w) { return s.Text("comMonitor").find(w[1]) != std::string::npos; }},
        {"idle",
         [](S& s, W&) {
             return s.app->IsShown("picStartup") && !s.app->IsShown("picFlash") &&
                    s.app->IsEnabled("cmdFlash") && s.app->Dialog() == nullptr;
         }},
        {"percent",
         [](S& s, W& w) {
             return Send(s.app->Child("pbarStatus"), PBM_GETPOS, 0, 0) >= Number(w[1]);
         }},
        {"menu", [](S& s, W&) { return s.app->InMenu(); }},
        {"next-menu",
         [](S& s, W&) { return s.app->Menu() != nullptr && s.app->Menu() != s.menuBefore; }},
        {"large", [](S& s, W&) { return IsZoomed(s.app->WindowHandle()) != 0; }},
        {"small", [](S& s, W&) { return IsIconic(s.app->WindowHandle()) != 0; }},
        {"place",
         [](S& s, W& w) {
             const RECT at = s.Now().Area();
             return at.left == Number(w[1]) && at.top == Number(w.at(2)) &&
                    at.right == at.left + Number(w.at(3)) && at.bottom == at.top + Number(w.at(4));
         }},
        {"owned",
         [](S& s, W&) {
             return GetWindow(s.Now().WindowHandle(), GW_OWNER) == s.app->WindowHandle();
         }},
        {"on-screen",
         [](S& s, W&) {
             RECT screen{};
             RECT seen{};
             SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
             const RECT place = s.Now().Area();
             return IntersectRect(&seen, &place, &screen) != 0 && EqualRect(&seen, &place) != 0;
         }},
        {"under",
         [](S& s, W& w) {
             return WindowFromPoint({Number(w[1]), Number(w.at(2))}) == s.Child(w.at(3));
         }},
        {"file", [](S&, W& w) { return std::filesystem::exists(FileOfRun(w[1].c_str())); }},
        {"content",
         [](S&, W& w) { return Content(w[1].c_str()).find(w.at(2)) != std::string::npos; }},
        {"clipboard",
         [](S&, W& w) { return MakeWin32Clipboard()->Text().find(w[1]) != std::string::npos; }},
        {"passed", [](S&, W& w) { return Indicator::Passed('>') == w[1]; }},
        {"stored", [](S& s, W& w) { return s.Stored(w[1]) == w.at(2); }},
    };
    return kConditions;
}

using Action = void (*)(Steps&, const Words&);

const std::map<std::string, Action>& Actions() {
    using S = Steps;
    using W = const Words;
    static const std::map<std::string, Action> kActions = {
        {"await", [](S& s, W& w) { s.AwaitThat(From(w, 1)); }},
        {"is",
         [](S& s, W& w) {
             if (!s.Holds(From(w, 1))) throw std::runtime_error("does not hold");
         }},
        {"starts", [](S& s, W&) { s.app.emplace(); }},
        {"ends", [](S& s, W&) { MustBeZero(s.app->Wait()); }},
        {"second-ends",
         [](S&, W&) { MustBeZero(WaitForEnd(StartProgram(Setting("DRIVE_PROGRAM")).Get())); }},
        {"main", [](S& s, W&) { s.form.reset(); }},
        {"form", [](S& s, W& w) { s.Open(s.app->AwaitForm(*kDesigns.at(w[1]))); }},
        {"closes", [](S& s, W&) { s.Now().Close(); }},
        {"chooses", [](S& s, W& w) { s.Now().Choose(w[1].c_str()); }},
        {"presses", [](S& s, W& w) { s.Now().Press(w[1].c_str()); }},
        {"keys",
         [](S& s, W& w) {
             s.menuBefore = s.app->Menu();
             for (const std::string& key : From(w, 1)) Key(key);
         }},
        {"key",
         [](S& s, W& w) {
             s.app->KeyUntil(w.at(1), w.back(), [&] { return s.Holds(From(w, 3)); });
         }},
        {"click", [](S& s, W& w) { s.ClickUntil(w[1], From(w, 3)); }},
        {"click-at",
         [](S&, W& w) {
             ClickAt({Number(w[1]), Number(w.at(2))});
         }},
        {"double-click",
         [](S& s, W& w) {
             s.DoubleClick({Number(w[1]), Number(w.at(2))});
         }},
        {"input-taken", [](S& s, W&) { s.app->AwaitInputTaken(); }},
        {"minimises", [](S& s, W&) { s.System(SC_MINIMIZE); }},
        {"maximises", [](S& s, W&) { s.System(SC_MAXIMIZE); }},
        {"restores", [](S& s, W&) { s.System(SC_RESTORE); }},
        {"menu-bar", [](S& s, W&) { s.System(SC_KEYMENU); }},
        {"moves",
         [](S& s, W& w) {
             s.PlaceAt(Number(w[1]), Number(w.at(2)), Number(w.at(3)), Number(w.at(4)));
         }},
        {"file", [](S& s, W& w) { s.app->ChooseFile(FileOfRun(w[1].c_str())); }},
        {"box",
         [](S& s, W& w) {
             const std::string text = s.app->TakeBox(w[1] == "Yes"  ? IDYES
                                                     : w[1] == "No" ? IDNO
                                                                    : IDOK);
             if (w.size() > 2 && text.find(w[2]) == std::string::npos)
                 throw std::runtime_error("the box says: " + text);
         }},
        {"flashes", [](S& s, W&) { s.StartFlash(); }},
        {"indicator",
         [](S& s, W& w) {
             std::string options;
             for (const std::string& option : From(w, 1)) options += option + " ";
             s.indicator.Start(options);
         }},
        {"indicator-ends",
         [](S& s, W&) {
             if (s.indicator.Wait() != 0) throw std::runtime_error(s.indicator.Complaints());
         }},
        {"vanishes", [](S& s, W&) { s.indicator.Stop(); }},
        {"opens-monitor", [](S& s, W&) { s.Open(s.OpenMonitor()); }},
        {"opens-port", [](S& s, W&) { s.OpenPort(s.Now()); }},
        {"command",  // its keys in English, and in Spanish
         [](S& s, W& w) { s.Command(Setting("DRIVE_LANGUAGE") == "es" ? w.back() : w.at(1)); }},
        {"sends",
         [](S& s, W& w) {
             std::string lines;
             for (int i = Number(w[1]); i > 0; --i) lines += w.at(2);
             std::ofstream(FileOfRun("sent.txt"), std::ios::binary) << lines;
             s.Now().Choose("mnuCaptureSend");
             s.app->ChooseFile(FileOfRun("sent.txt"));
             s.Open(s.app->AwaitForm(kSendWindowDesign));
         }},
        {"copies", [](S&, W& w) { MakeWin32Clipboard()->Text(w[1]); }},
        {"stores",
         [](S& s, W& w) {
             const std::wstring value = ToWide(w.at(2));
             RegSetKeyValueW(HKEY_CURRENT_USER, (s.ProgramKey() + L"\\Settings").c_str(),
                             ToWide(w[1]).c_str(), REG_SZ, value.c_str(),
                             static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
         }},
        {"picture",  // in the cache, without an index of addresses
         [](S&, W&) {
             std::filesystem::create_directories(Workbench::Cache());
             std::ofstream(Workbench::Cache() / "a.bmp", std::ios::binary) << Bitmap(300, 200);
         }},
        {"remembers", [](S& s, W& w) { s.remembered = s.Text(w[1]); }},
        {"hides", [](S& s, W& w) { ShowWindow(s.Child(w[1]), SW_HIDE); }},
        {"unhides", [](S& s, W& w) { ShowWindow(s.Child(w[1]), SW_SHOW); }},
        {"show", [](S& s, W& w) { s.Show(w); }},
    };
    return kActions;
}

void Steps::Perform(const Words& words) {
    Actions().at(words.at(0))(*this, words);
}

bool Steps::Holds(const Words& words) {
    if (words.at(0) == "no") return !Holds(From(words, 1));
    return Conditions().at(words[0])(*this, words);
}

void Steps::AwaitThat(const Words& words) {
    Await(words.back(), [&] { return Holds(words); });
}

// Opens the context menu and presses the keys of an entry, which lead through its submenus. Without
// keys the menu stays open.
void Steps::Command(const std::string& keys) const {
    const HWND terminal = Child("comMonitor");
    PostMessageW(terminal, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(terminal), -1);
    Await("the menu", [this] { return app->Menu() != nullptr; });
    for (const char key : keys) {
        const HWND open = app->Menu();
        app->KeyUntil({key}, "the next menu", [&] { return app->Menu() != open; });
    }
    Await("the end of the menu", [&] { return keys.empty() || !app->InMenu(); });
}

void Steps::ClickUntil(const std::string& name, const Words& condition) {
    Await(name, [&] {
        RECT area{};
        GetWindowRect(Child(name), &area);
        ClickAt({(area.left + area.right) / 2, (area.top + area.bottom) / 2});
        return Comes([&] { return Holds(condition); }, kSoonMs);
    });
}

// A display that is slow to show a new window puts it back to its first place.
void Steps::DoubleClick(POINT at) {
    Await("the large window", [&] {
        PlaceAt(100, 100, 640, 480);
        app->AwaitInputTaken();
        ClickAt(at, 2);
        return Comes([&] { return Holds({"large"}); }, kSoonMs);
    });
}

std::string Steps::Stored(const std::string& name) const {
    wchar_t data[64] = {};
    DWORD size = sizeof data;
    RegGetValueW(HKEY_CURRENT_USER, (ProgramKey() + L"\\Settings").c_str(), ToWide(name).c_str(),
                 RRF_RT_REG_SZ, nullptr, data, &size);
    return ToUtf8(data);
}

// show STAGE [WINDOW]: the window, with another one and with the menu or dialog that is open
void Steps::Show(const Words& words) {
    constexpr DWORD kDrawnMs = 100;  // drawn pixels reach the display with a delay
    const HWND menu = app->Menu();
    std::vector<HWND> windows = {Now().WindowHandle(), menu != nullptr ? menu : app->Dialog()};
    if (words.size() > 2)
        windows.push_back(words[2] == "main"
                              ? app->WindowHandle()
                              : app->AwaitForm(*kDesigns.at(words[2])).WindowHandle());
    RECT all{};
    for (const HWND window : windows) {
        RECT area{};
        if (window == nullptr || GetWindowRect(window, &area) == 0) continue;
        UnionRect(&all, &all, &area);
        RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
    }
    Sleep(kDrawnMs);
    Ask("show " + words.at(1) + "-" + Setting("DRIVE_LANGUAGE") + " " +
        std::to_string(all.right - all.left) + "x" + std::to_string(all.bottom - all.top) + "+" +
        std::to_string(all.left) + "+" + std::to_string(all.top));
}

}  // namespace

void RunSteps(const std::string& name, const Words& lines) {
    Steps steps;
    for (const std::string& line : lines) {
        try {
            steps.Perform(WordsOf(line));
        } catch (const std::exception& error) {
            Ask("keep " + name);
            throw std::runtime_error(line + ": " + error.what());
        }
    }
}

}  // namespace vantor::driver
