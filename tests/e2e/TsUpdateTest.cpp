// tsupdate.exe as the user operates it, with the virtual indicator on COM1: every outcome of
// a flash, and the other functions of the windows.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "resources/Version.h"
#include "tests/driver/PictureCache.hpp"
#include "tests/e2e/EndToEnd.hpp"

namespace vantor::driver {
namespace {

const Box kWarning = {"Tessmar Vantor Update",
                      "Caution! Critial Operation!\r\n\r\nDuring the update, do not turn off the "
                      "indicator. Doing so may require Factory service. \r\n\r\nDo you wish to "
                      "proceed?",
                      "question",
                      {IDYES, IDNO}};
const Box kNoMonitor = {"Tessmar Vantor Update",
                        "Place indicator into boot monitor mode and try again.", "information"};
const Box kNoPort = {"Tessmar Vantor Update",
                     "Unable to open communications port. Check your settings and try again.",
                     "exclamation"};
const Box kSuccess = {
    "Flash Update Successful",
    "Program Download Complete. Check the indicator for additional progress messages.",
    "information"};
const Box kAborted = {"Update Aborted", "Flash Update Aborted. Cycle power on the indicator.",
                      "exclamation"};
const Box kFailure = {"Update Failure",
                      "Flash Update Failure. Cycle power on the indicator. Please try the update "
                      "again before calling technical support.",
                      "exclamation"};
const Box kVerifyFailed = {
    "Critical Error!",
    "Critical Flash Update Failure! \r\n\r\nIt is recommended that you return the indicator to "
    "Tessmar Instruments for repair.",
    "critical"};

class TsUpdate : public EndToEnd {
protected:
    /// The window in its idle state.
    void ExpectIdle() const {
        Await("the start panel alone", [this] {
            return app->IsShown("picStartup") && !app->IsShown("picFlash") &&
                   !app->IsShown("picUpdate") && app->IsEnabled("cmdFlash");
        });
        EXPECT_EQ(app->Dialog(), nullptr);
        EXPECT_EQ(app->OtherForm(), nullptr);
    }
    void AwaitFocus(const char* name) const {
        Await(std::string("the focus on ") + name,
              [&] { return app->Focus() == app->Child(name); });
    }
};

TEST_F(TsUpdate, AWholeFlashShowsEachStageAndLeavesTheIndicatorBooted) {
    indicator.Start("--think 50 --write 3000");
    ExpectIdle();
    app->Choose("mnuFileFlash");
    EXPECT_EQ(TextOf(app->AwaitFileDialog()), "Indicator Flash Image");
    EXPECT_TRUE(app->IsShown("picFlash"));
    EXPECT_FALSE(app->IsShown("picStartup"));
    EXPECT_FALSE(app->IsEnabled("cmdFlash"));
    app->ChooseFile(image);
    EXPECT_EQ(app->TakeBox(IDYES), kWarning);

    Await("the handshake", [this] { return app->Text("lblStatus") == "Initializing"; });
    AwaitLine(5);
    EXPECT_TRUE(app->IsEnabled("cmdFlashAbort"));
    EXPECT_TRUE(app->Text("lblStatus").ends_with(" of 60"));
    EXPECT_TRUE(app->Text("lblElapsed").starts_with("00:00:"));
    EXPECT_EQ(app->Text("lblWarning"), "");
    AwaitLine(51);
    EXPECT_FALSE(app->IsEnabled("cmdFlashAbort"));
    EXPECT_GT(app->Percent(), 80);

    const HWND status = AwaitOtherForm();
    EXPECT_EQ(TextOf(GetDlgItem(status, 1001)), "Updating Indicator");
    EXPECT_EQ(GetWindow(status, GW_OWNER), app->Main());
    EXPECT_EQ(app->Percent(), 100);
    EXPECT_FALSE(app->IsEnabled("cmdFlash"));

    EXPECT_EQ(App::Read(app->AwaitBox()), kSuccess);
    EXPECT_EQ(app->OtherForm(), nullptr);
    app->TakeBox();
    ExpectIdle();
    EXPECT_EQ(app->Text("lblStatus"), "");
    EXPECT_EQ(app->Percent(), 0);
    EXPECT_EQ(indicator.Wait(), 0) << indicator.Complaints();
}

TEST_F(TsUpdate, ACancelledDialogAndTheAnswerNoLeaveTheIndicatorAlone) {
    indicator.Start("");
    app->Press("cmdFlash");
    PressIn(app->AwaitFileDialog(), IDCANCEL);
    ExpectIdle();
    AskForFlash();
    EXPECT_EQ(app->TakeBox(IDNO), kWarning);
    ExpectIdle();
    indicator.Stop();
    EXPECT_EQ(Content("indicator.log"), "");
}

TEST_F(TsUpdate, APortThatIsHeldOrVanishesIsToldOnceAndWorksAgainWhenItIsBack) {
    indicator.Start("");
    const Window monitor = OpenMonitor();
    OpenPort(monitor);
    StartFlash();
    EXPECT_EQ(app->TakeBox(), kNoPort);
    monitor.Close();
    Await("its end", [&monitor] { return !monitor.IsThere(); });
    ExpectIdle();

    const struct {
        const char* fault;
        const char* stage;
        Box box;
    } kRows[] = {{"no-trav=silent", "Initializing", kNoMonitor},
                 {"silent@6", "Line 6 of 60", kFailure}};
    for (const auto& row : kRows) {
        indicator.Start(std::string("--fault ") + row.fault);
        StartFlash();
        Await(row.stage, [&] { return app->Text("lblStatus") == row.stage; });
        indicator.Stop();
        EXPECT_EQ(app->TakeBox(), row.box);
        ExpectIdle();
        indicator.Start("");
        StartFlash();
        EXPECT_EQ(app->TakeBox(), kSuccess);
        EXPECT_EQ(indicator.Wait(), 0) << indicator.Complaints();
    }
}

struct Ending {
    const char* name;
    const char* indicator;  // its options; null: no indicator
    Box box;
};

void PrintTo(const Ending& ending, std::ostream* stream) {
    *stream << ending.name;
}

class EveryEnding : public TsUpdate, public testing::WithParamInterface<Ending> {};

TEST_P(EveryEnding, SaysWhatHappenedAndLeavesTheWindowUsable) {
    if (GetParam().indicator) indicator.Start(GetParam().indicator);
    StartFlash();
    EXPECT_EQ(app->TakeBox(), GetParam().box);
    ExpectIdle();
    if (GetParam().indicator == nullptr) return;
    EXPECT_EQ(indicator.Wait(), GetParam().box == kSuccess ? 0 : 1) << indicator.Complaints();
}

INSTANTIATE_TEST_SUITE_P(
    TsUpdate, EveryEnding,
    testing::Values(
        Ending{"PortMissing", nullptr, kNoPort},
        Ending{"NotInBootMonitor", "--fault no-trav", kNoMonitor},
        Ending{"SystemLoadRefused", "--fault no-sysload",
               Box{"Tessmar Vantor Update", "Unable to initiate System Load.", "exclamation"}},
        Ending{"DoneInSpiteOfALot",
               "--fault nak@3x3 --fault noise@5 --fault split@7 --fault late=300@9", kSuccess},
        Ending{"LineRefusedFourTimes", "--fault nak@7x4", kFailure},
        Ending{"PortLost", "--fault hangup@7", kFailure},
        Ending{"VerifyFailed", "--fault verify-failed", kVerifyFailed},
        Ending{"NoVerdict", "--fault no-verdict", kFailure}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(TsUpdate, TheAbortButtonAndItsKeyEndTheStreamBeforeTheNextLine) {
    for (const bool byKey : {false, true}) {
        indicator.Start("--think 100");
        StartFlash();
        AwaitLine(5);
        if (byKey)
            app->KeyUntil(
                'A', "the abort", [this] { return app->Dialog() != nullptr; }, true);
        else
            app->Press("cmdFlashAbort");
        EXPECT_EQ(App::Read(app->AwaitBox()), kAborted);
        EXPECT_EQ(app->Text("lblStatus"), "Update Aborted");
        EXPECT_LT(app->Percent(), 50);
        app->TakeBox();
        ExpectIdle();
    }
}

TEST_F(TsUpdate, AClosedWindowEndsTheProgramWithTheWordsOfItsStage) {
    const struct {
        const char* indicator;
        std::function<bool()> stage;
        std::optional<Box> words;
    } kRows[] = {
        {"--fault no-trav=silent", [this] { return app->Text("lblStatus") == "Initializing"; }, {}},
        {"--think 100", [this] { return app->Line() >= 5; }, kAborted},
        {"--write 3000", [this] { return app->OtherForm() != nullptr; }, kSuccess}};
    for (const auto& [options, stage, words] : kRows) {
        indicator.Start(options);
        StartFlash();
        Await("the stage", stage);
        app->Close();
        if (words) {
            EXPECT_EQ(app->TakeBox(), *words);
        }
        EXPECT_EQ(app->Wait(), 0u);
        app.emplace();
    }
}

TEST_F(TsUpdate, AMenuHeldOpenPausesTheStreamAndDoesNotBreakIt) {
    constexpr ULONGLONG kHeldMs = 25'000;  // longer than the reply time-out
    indicator.Start("--think 50");
    StartFlash();
    AwaitLine(5);
    app->OpenMenu('F');
    const ULONGLONG start = GetTickCount64();
    const int line = app->Line();
    Await("the time", [start] { return GetTickCount64() - start > kHeldMs; });
    EXPECT_TRUE(app->InMenu());
    EXPECT_LE(app->Line(), line + 1);
    app->KeyUntil('U', "the end of the menu", [this] { return !app->InMenu(); });
    AwaitLine(51);  // the entry is greyed and has started nothing
    EXPECT_EQ(app->Dialog(), nullptr);
    EXPECT_EQ(app->TakeBox(), kSuccess);
    EXPECT_EQ(indicator.Wait(), 0) << indicator.Complaints();
}

TEST_F(TsUpdate, MinimisedWhileItSendsItShowsTheLastStageOnTheScreen) {
    indicator.Start("--think 20 --write 3000");
    StartFlash();
    AwaitLine(5);
    PostMessageW(app->Main(), WM_SYSCOMMAND, SC_MINIMIZE, 0);
    Await("the small window", [this] { return IsIconic(app->Main()) != 0; });
    RECT place{};
    GetWindowRect(AwaitOtherForm(), &place);
    RECT screen{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    RECT seen{};
    IntersectRect(&seen, &place, &screen);
    EXPECT_TRUE(EqualRect(&seen, &place)) << place.left << ' ' << place.top;
    EXPECT_EQ(app->TakeBox(), kSuccess);
}

// A process without a window would keep every later one from starting.
TEST_F(TsUpdate, ACloseDuringTheErrorBoxOfTheStartUpEndsTheProgram) {
    app->Close();
    EXPECT_EQ(app->Wait(), 0u);
    const std::wstring key = ProgramKey() + L"\\Settings";
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"AutoUnZip", REG_SZ, L"maybe", 12);
    app.emplace();
    EXPECT_EQ(App::Read(app->AwaitBox()).icon, "critical");
    app->Close();
    app->TakeBox();
    EXPECT_EQ(app->Wait(), 0u);
    ForgetSettings();
    app.emplace();
    ExpectIdle();
}

TEST_F(TsUpdate, ASecondStartEndsSilentlyBesideTheFirst) {
    EXPECT_EQ(App::RunBeside(), 0u);
    ExpectIdle();
    app->Close();
    EXPECT_EQ(app->Wait(), 0u);
}

TEST_F(TsUpdate, TheWindowComesBackWhereItWasAndMaximisedToo) {
    const RECT wanted = {40, 30, 40 + 610, 30 + 470};
    SetWindowPos(app->Main(), nullptr, wanted.left, wanted.top, wanted.right - wanted.left,
                 wanted.bottom - wanted.top, SWP_NOZORDER | SWP_NOACTIVATE);
    Restart();
    RECT found{};
    GetWindowRect(app->Main(), &found);
    EXPECT_TRUE(EqualRect(&found, &wanted)) << found.left << ' ' << found.top;
    PostMessageW(app->Main(), WM_SYSCOMMAND, SC_MAXIMIZE, 0);
    Await("the large window", [this] { return IsZoomed(app->Main()) != 0; });
    Restart();
    EXPECT_TRUE(IsZoomed(app->Main()));
}

TEST_F(TsUpdate, TheKeyboardAloneIsEnough) {
    indicator.Start("--think 20");
    AwaitFocus("cmdFlash");
    for (const char* name : {"picPicture", "cmdFlash"})
        app->KeyUntil(VK_TAB, name, [&] { return app->Focus() == app->Child(name); });
    const auto dialog = [this] { return app->Dialog() != nullptr; };
    app->KeyUntil(VK_RETURN, "the file dialog", dialog);
    app->AwaitFileDialog();
    app->KeyUntil(VK_ESCAPE, "its end", [&] { return !dialog(); });
    ExpectIdle();
    AwaitFocus("cmdFlash");

    for (const WORD key : {WORD{VK_ESCAPE}, WORD{VK_RETURN}}) {
        app->OpenMenu('H');
        app->KeyUntil('A', "the About window", [this] { return app->OtherForm() != nullptr; });
        const HWND about = app->OtherForm();
        EXPECT_EQ(TextOf(about), "Tessmar Vantor Update");
        EXPECT_EQ(TextOf(GetDlgItem(about, 1002)), "Version " VANTOR_WRITTEN_VERSION);
        EXPECT_FALSE(IsWindowEnabled(app->Main()));
        Await("the keyboard", [about] { return GetForegroundWindow() == about; });
        app->KeyUntil(key, "its end", [this] { return app->OtherForm() == nullptr; });
        AwaitFocus("cmdFlash");
    }

    app->OpenMenu('F');
    app->KeyUntil('U', "the file dialog", dialog);
    app->ChooseFile(image);
    const HWND warning = app->AwaitBox();
    app->KeyUntil(VK_RETURN, "its end", [warning] { return IsWindow(warning) == 0; });
    AwaitFocus("cmdFlashAbort");
    Await("success", [this] { return app->Dialog() && App::Read(app->Dialog()) == kSuccess; });
    app->KeyUntil(VK_RETURN, "its end", [&] { return !dialog(); });
    ExpectIdle();
    AwaitFocus("cmdFlash");

    app->OpenMenu('F');
    app->KeyUntil('X', "the end of the program", [this] { return !app->IsRunning(); });
    EXPECT_EQ(app->Wait(), 0u);
}

using Spanish = EndToEnd;

TEST_F(Spanish, CaptionsAndTheWarning) {
    EXPECT_EQ(TextOf(app->Main()), "Utilidad de actualización Tessmar Vantor");
    EXPECT_EQ(app->Text("cmdFlash"), "Actualizar indicador");
    EXPECT_EQ(app->Text("lblLabels", 3), "Tiempo transcurrido:");
    AskForFlash();
    EXPECT_EQ(app->TakeBox(IDNO).text,
              "¡Precaución! ¡Operación crítica!\r\n\r\nNo apague el indicador durante la "
              "actualización. Si lo hace, el indicador podría requerir servicio técnico de "
              "fábrica. \r\n\r\n¿Desea continuar?");
}

}  // namespace
}  // namespace vantor::driver

int main(int argc, char** argv) {
    if (vantor::driver::OpensAnAddress(argc, argv)) return 0;
    testing::InitGoogleTest(&argc, argv);
    vantor::driver::EnterDesktop();
    return RUN_ALL_TESTS();
}
