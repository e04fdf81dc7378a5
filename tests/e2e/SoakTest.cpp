// Not tests of single faults: pictures of all stages, and a soak of random input that looks for a
// crash or a hang.
#include <gtest/gtest.h>

#include <iostream>
#include <random>
#include <string>
#include <utility>

#include "tests/e2e/MonitorBench.hpp"
#include "tests/e2e/Pictures.hpp"

namespace vantor::e2e {
namespace {

class Screens : public MonitorBench {
protected:
    /// What the user sees of `window` and `above` it.
    static void Show(const std::string& stage, HWND window, HWND above = nullptr) {
        RECT area{};
        RECT other{};
        GetWindowRect(window, &area);
        if (above != nullptr && GetWindowRect(above, &other) != 0) UnionRect(&area, &area, &other);
        RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
        Ask("show " + stage + "-" + Setting("E2E_LANGUAGE") + " " +
            std::to_string(area.right - area.left) + "x" + std::to_string(area.bottom - area.top) +
            "+" + std::to_string(area.left) + "+" + std::to_string(area.top));
    }
    void ShowBox(const std::string& stage) const {
        const HWND box = app->AwaitBox();
        App::Read(box);  // waits until it is drawn
        Show(stage, app->Main(), box);
    }
};

TEST_F(Screens, OfAllStages) {
    indicator.Start("--think 50 --write 3000");
    const HWND window = app->Main();
    Show("start", window);
    app->Choose("mnuHelpAbout");
    Await("the About box", [this] { return app->OtherForm() != nullptr; });
    Show("about", app->OtherForm());
    PostMessageW(app->OtherForm(), WM_CLOSE, 0, 0);
    Await("its end", [this] { return app->OtherForm() == nullptr; });
    app->Press("cmdFlash");
    Show("dialog", app->AwaitFileDialog(), window);
    app->ChooseFile(image);
    ShowBox("warning");
    app->TakeBox(IDYES);
    Await("the middle", [this] { return app->Percent() >= 50; });
    Show("streaming", window);
    Await("the status window", [this] { return app->OtherForm() != nullptr; });
    Show("verdict", window, app->OtherForm());
    ShowBox("success");
}

TEST_F(Screens, OfTheOtherBoxes) {
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

TEST_F(Screens, OfThePictureTheMenusAndTheVersions) {
    const PictureCache cache;
    cache.Draw("a.jpg", "jpg", 300, 200);
    Restart();
    const HWND window = app->Main();
    Show("picture", window);
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
    app->Choose("mnuToolsCurrentVersions");
    ShowBox("versions");
    app->TakeBox();
    // Nothing that a user does leads there yet.
    ShowWindow(app->Child("picStartup"), SW_HIDE);
    ShowWindow(app->Child("picUpdate"), SW_SHOW);
    Show("updates", window);
}

TEST_F(Screens, OfMonitorMode) {
    indicator.Start("--terminal");
    const Window monitor = OpenMonitor();
    Show("monitor-empty", monitor.Handle());
    OpenPort(monitor);
    Show("monitor-connected", monitor.Handle());
    std::string lines;
    for (int i = 0; i < 100; ++i) lines += "help\r\ngross\r\n";
    const Window progress = SendFile(monitor, lines);
    AwaitSent(progress, 20);
    Show("monitor-sending", monitor.Handle(), progress.Handle());
    progress.Press("cmdCancel");
    Await("the end", [&] { return !progress.IsThere(); });
    Show("monitor-page", monitor.Handle());
    Command(monitor, Setting("E2E_LANGUAGE") == "es" ? 'F' : 'S');
    Show("monitor-settings", monitor.Handle(), app->AwaitForm(kPortSettingsWindowDesign).Handle());
}

TEST_F(Screens, OfTheOptions) {
    app->Choose("mnuToolsOptions");
    const Window options = app->AwaitForm(kConfigureWindowDesign);
    const HWND tree = options.Child("tvwOptions");
    Await("the focus", [&] { return app->Focus() == tree; });
    Show("options", options.Handle());
    Key(VK_LEFT);
    const std::string heading =
        Setting("E2E_LANGUAGE") == "es" ? "Comunicaciones" : "Communications";
    Await("the heading", [&] { return options.Text("picSelection") == heading; });
    Show("options-heading", options.Handle());
    Key(VK_RIGHT);
    Await("the page", [&] { return options.Text("picSelection") != heading; });
    Key(VK_TAB);
    Key(VK_TAB);
    Await("the speed", [&] { return app->Focus() == options.Child("cboBaudRate"); });
    Key(VK_UP);
    App::Read(app->AwaitBox());
    Show("options-advice", options.Handle(), app->AwaitBox());
}

class Monkey : public Bench {
protected:
    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); }
    template <class Choices>
    auto OneOf(const Choices& choices) {
        return *(std::begin(choices) + Below(static_cast<int>(std::size(choices))));
    }

    void Act();
    void ActOn(HWND dialog);
    void PressAKey();
    void ClickSomewhere();
    void MoveTheWindow();
    void Check();

    std::mt19937 random;
    int ends = 0;
    int flashes = 0;
    int successes = 0;
    HWND lastSuccess = nullptr;
};

void Monkey::PressAKey() {
    static constexpr WORD kKeys[] = {VK_TAB,  VK_RETURN, VK_ESCAPE, VK_SPACE, VK_UP,
                                     VK_DOWN, VK_LEFT,   VK_RIGHT,  VK_F10,   'A',
                                     'O',     'Y',       'N',       'U',      'F'};
    if (Below(5) == 0)
        Key(OneOf(std::to_array<WORD>({'F', 'T', 'H', 'A', VK_SPACE, VK_F4})), true);
    else
        Key(OneOf(kKeys));
}

void Monkey::ClickSomewhere() {
    RECT area{};
    GetWindowRect(app->Main(), &area);
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    INPUT inputs[3] = {};
    for (INPUT& input : inputs) input.type = INPUT_MOUSE;
    inputs[0].mi.dx = (area.left + Below(std::max<int>(area.right - area.left, 1))) * 65535 / width;
    inputs[0].mi.dy = (area.top + Below(std::max<int>(area.bottom - area.top, 1))) * 65535 / height;
    inputs[0].mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    inputs[2].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    SendInput(3, inputs, sizeof(INPUT));
}

void Monkey::MoveTheWindow() {
    PostMessageW(app->Main(), WM_SYSCOMMAND,
                 OneOf(std::to_array<WPARAM>({SC_MAXIMIZE, SC_MINIMIZE, SC_RESTORE, SC_RESTORE})),
                 0);
    SetWindowPos(app->Main(), nullptr, Below(300) - 50, Below(200) - 20, Below(900), Below(700),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
}

void Monkey::ActOn(HWND dialog) {
    if (Below(3) == 0) return PressAKey();
    if (Below(10) == 0) {
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    } else if (!App::IsFileDialog(dialog)) {
        const std::string text = App::TextIn(dialog);
        // The one error that is meant to be: the stop bits that the settings refuse.
        const bool meant = text.find("frmConfigure.cboStopBits_Click") != std::string::npos;
        if ((text.starts_with("The following error") && !meant) || text.starts_with("Unhandled"))
            ADD_FAILURE() << text;
        if (TextOf(dialog) == "Flash Update Successful" && dialog != lastSuccess) ++successes;
        lastSuccess = dialog;
        PressIn(dialog, OneOf(std::to_array({IDOK, IDYES, IDYES, IDNO})));
    } else if (Below(4) == 0) {
        PressIn(dialog, IDCANCEL);
    } else {
        App::Fill(dialog, image);
    }
}

void Monkey::Act() {
    if (Below(150) == 0) app->Close();
    if (const HWND dialog = app->Dialog()) return ActOn(dialog);
    const int what = Below(60);
    if (IsWindowEnabled(app->Main()) == 0 || what < 9) return PressAKey();
    if (what < 15) return ClickSomewhere();
    if (what < 18) return MoveTheWindow();
    if (what < 19 && app->IsShown("cmdFlashAbort")) return app->Press("cmdFlashAbort");
    if (what < 21) return app->Choose("mnuHelpAbout");
    if (what < 23) return app->Choose("mnuToolsOptions");
    if (what > 40 || !app->IsShown("cmdFlash") || !app->IsEnabled("cmdFlash")) return;
    ++flashes;
    indicator.Start(OneOf(std::to_array(
        {"--think 20 --write 500", "--think 50", "", "--fault no-trav", "--fault no-sysload",
         "--fault nak@7x4", "--fault hangup@20", "--fault verify-failed", "--fault done@9"})));
    app->Press("cmdFlash");
}

/// A program that has ended has done so of its own will, and one that runs answers.
void Monkey::Check() {
    if (app->IsRunning()) {
        ASSERT_TRUE(app->Answers() || !app->IsRunning()) << "hangs";
        return;
    }
    ASSERT_EQ(app->Wait(), 0u) << "crashed";
    ++ends;
    ForgetSettings();  // another port or speed would end all flashes from here on
    app.emplace();
}

TEST_F(Monkey, NeitherCrashesNorHangsTheProgram) {
    const std::string wanted = Setting("E2E_SEED");
    const unsigned seed = wanted.empty() ? std::random_device()() : std::stoul(wanted);
    std::cout << "E2E_SEED=" << seed << std::endl;
    random.seed(seed);
    const ULONGLONG end = GetTickCount64() + std::stoull("0" + Setting("E2E_SECONDS")) * 1000;
    int actions = 0;
    for (; GetTickCount64() < end && !HasFailure(); ++actions) {
        Act();
        Sleep(static_cast<DWORD>(Below(300)));
        Check();
    }
    std::cout << actions << " actions, " << flashes << " flashes, " << successes << " successes, "
              << ends << " ends" << std::endl;
}

}  // namespace
}  // namespace vantor::e2e
