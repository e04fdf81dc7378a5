// A soak test of random input that detects crashes and hangs; it does not test single faults.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <random>
#include <string>

#include "tests/driver/Workbench.hpp"

namespace vantor::driver {
namespace {

class Monkey : public testing::Test, protected Workbench {
protected:
    void TearDown() override {
        if (HasFailure()) Ask("keep Monkey");
    }
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
};

void Monkey::PressAKey() {
    Key(OneOf(WordsOf(Below(5) == 0
                          ? "Alt+F Alt+T Alt+H Alt+A Alt+SPACE Alt+F4"
                          : "TAB RETURN ESCAPE SPACE UP DOWN LEFT RIGHT F10 A O Y N U F")));
}

void Monkey::ClickSomewhere() {
    const RECT area = app->Area();
    ClickAt({area.left + Below(std::max<int>(area.right - area.left, 1)),
             area.top + Below(std::max<int>(area.bottom - area.top, 1))});
}

void Monkey::MoveTheWindow() {
    PostMessageW(app->WindowHandle(), WM_SYSCOMMAND,
                 OneOf(std::to_array<WPARAM>({SC_MAXIMIZE, SC_MINIMIZE, SC_RESTORE, SC_RESTORE})),
                 0);
    SetWindowPos(app->WindowHandle(), nullptr, Below(300) - 50, Below(200) - 20, Below(900),
                 Below(700), SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
}

void Monkey::ActOn(HWND dialog) {
    if (Below(3) == 0) return PressAKey();
    if (Below(10) == 0) {
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    } else if (!App::IsFileDialog(dialog)) {
        const std::string text = App::TextIn(dialog);
        // The only expected error: the stop bits that the settings reject.
        const bool meant = text.find("frmConfigure.cboStopBits_Click") != std::string::npos;
        if ((text.starts_with("The following error") && !meant) || text.starts_with("Unhandled"))
            ADD_FAILURE() << text;
        PressIn(dialog, OneOf(std::to_array({IDOK, IDYES, IDYES, IDNO})));
    } else if (Below(4) == 0) {
        PressIn(dialog, IDCANCEL);
    } else {
        Fill(dialog, image);
    }
}

void Monkey::Act() {
    if (Below(150) == 0) app->Close();
    if (const HWND dialog = app->Dialog()) return ActOn(dialog);
    const int what = Below(60);
    if (IsWindowEnabled(app->WindowHandle()) == 0 || what < 9) return PressAKey();
    if (what < 15) return ClickSomewhere();
    if (what < 18) return MoveTheWindow();
    if (what < 19 && app->IsShown("cmdFlashAbort")) return app->Press("cmdFlashAbort");
    if (what < 21) return app->Choose("mnuHelpAbout");
    if (what < 23) return app->Choose("mnuToolsOptions");
    if (what > 40 || !app->IsShown("cmdFlash") || !app->IsEnabled("cmdFlash")) return;
    indicator.Start(OneOf(std::to_array(
        {"--think 20 --write 500", "--think 50", "", "--fault no-trav", "--fault no-sysload",
         "--fault nak@7x4", "--fault hangup@20", "--fault verify-failed", "--fault done@9"})));
    app->Press("cmdFlash");
}

/// The program has either ended normally or is running and responsive.
void Monkey::Check() {
    if (app->IsRunning()) {
        ASSERT_TRUE(app->Answers() || !app->IsRunning()) << "hangs";
        return;
    }
    ASSERT_EQ(app->Wait(), 0u) << "crashed";
    ForgetSettings();  // another port or speed would fail all later flashes
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
    std::cout << actions << " actions" << std::endl;
}

}  // namespace
}  // namespace vantor::driver
