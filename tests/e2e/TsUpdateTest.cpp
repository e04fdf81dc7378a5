// tsupdate.exe as the user operates it, with the virtual indicator on COM1: what needs the real
// program with real windows, registry and port. The traces state its texts and reactions.
#include <algorithm>
#include <filesystem>
#include <map>
#include <string>

#include "platform/win32/services/Win32Services.hpp"
#include "resources/Designs.hpp"
#include "tests/e2e/EndToEnd.hpp"

namespace vantor::driver {
namespace {

const std::string kDone =
    "Program Download Complete. Check the indicator for additional progress messages.";
const std::string kAborted = "Flash Update Aborted. Cycle power on the indicator.";
const std::string kFailure =
    "Flash Update Failure. Cycle power on the indicator. Please try the update again before "
    "calling technical support.";

class TsUpdate : public EndToEnd {
protected:
    /// The main window in its idle state.
    void ExpectIdle() const {
        Await("the start panel alone", [this] {
            return app->IsShown("picStartup") && !app->IsShown("picFlash") &&
                   app->IsEnabled("cmdFlash");
        });
        EXPECT_EQ(app->Dialog(), nullptr);
    }
    void ExpectDone() {
        EXPECT_EQ(app->TakeBox(), kDone);
        EXPECT_EQ(indicator.Wait(), 0) << indicator.Complaints();
        ExpectIdle();
    }
    void ExpectEnd() {
        EXPECT_EQ(app->Wait(), 0u);
        app.emplace();
    }
    bool HasDialog() const { return app->Dialog() != nullptr; }
    void System(WPARAM command) const {
        PostMessageW(app->WindowHandle(), WM_SYSCOMMAND, command, 0);
    }
};

TEST_F(TsUpdate, AWholeFlashLeavesTheIndicatorBootedAndShowsItsLastStageOfASmallWindow) {
    indicator.Start("--think 20 --write 2000");
    ExpectIdle();
    app->Choose("mnuFileFlash");
    EXPECT_EQ(TextOf(app->AwaitFileDialog()), "Indicator Flash Image");
    EXPECT_FALSE(app->IsEnabled("cmdFlash"));
    app->ChooseFile(image);
    EXPECT_TRUE(app->TakeBox(IDYES).starts_with("Caution! Critial Operation!\r\n\r\n"));
    AwaitLine(5);
    EXPECT_TRUE(app->IsEnabled("cmdFlashAbort"));
    EXPECT_TRUE(app->Text("lblElapsed").starts_with("00:00:"));
    System(SC_MINIMIZE);
    Await("the small window", [this] { return IsIconic(app->WindowHandle()) != 0; });
    const Window status = app->AwaitForm(kStatusWindowDesign);
    EXPECT_EQ(status.Text("lblMessage"), "Updating Indicator");
    EXPECT_EQ(GetWindow(status.WindowHandle(), GW_OWNER), app->WindowHandle());
    EXPECT_EQ(app->Percent(), 100);
    EXPECT_FALSE(app->IsEnabled("cmdFlashAbort"));
    RECT screen{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    const RECT place = status.Area();
    RECT seen{};
    IntersectRect(&seen, &place, &screen);
    EXPECT_TRUE(EqualRect(&seen, &place)) << place.left << ' ' << place.top;
    ExpectDone();
    EXPECT_FALSE(status.IsThere());
    EXPECT_EQ(app->Percent(), 0);
}

TEST_F(TsUpdate, APortThatVanishesIsToldOnceAndWorksAgainWhenItIsBack) {
    indicator.Start("--fault silent@6");
    StartFlash();
    AwaitLine(6);
    indicator.Stop();
    EXPECT_EQ(app->TakeBox(), kFailure);
    ExpectIdle();
    indicator.Start("");
    StartFlash();
    ExpectDone();
}

TEST_F(TsUpdate, MouseAndKeysAbortTheStreamAndTheCloseKeyEndsTheProgram) {
    const auto click = [this] {
        RECT area{};
        GetWindowRect(app->Child("cmdFlashAbort"), &area);
        ClickAt({(area.left + area.right) / 2, (area.top + area.bottom) / 2});
        return Comes([this] { return HasDialog(); }, 3000);
    };
    const auto press = [this](WORD key) {
        app->KeyUntil(
            key, "the box", [this] { return HasDialog(); }, true);
    };
    for (const WORD key : {WORD{0}, WORD{'A'}, WORD{VK_F4}}) {
        indicator.Start("--think 100");
        StartFlash();
        AwaitLine(5);
        key == 0 ? Await("the box", click) : press(key);
        EXPECT_LT(app->Percent(), 90);
        EXPECT_EQ(app->TakeBox(), kAborted);
        key == VK_F4 ? ExpectEnd() : ExpectIdle();
    }
}

// A process without a window would keep every later one from starting.
TEST_F(TsUpdate, ACloseDuringTheErrorBoxOfTheStartUpEndsTheProgram) {
    app->Close();
    EXPECT_EQ(app->Wait(), 0u);
    const std::wstring key = ProgramKey() + L"\\Settings";
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"AutoUnZip", REG_SZ, L"maybe", 12);
    app.emplace();
    app->AwaitBox();
    app->Close();
    app->TakeBox();
    ExpectEnd();
    app->TakeBox();
}

TEST_F(TsUpdate, TheWindowComesBackWhereItWasAndMaximisedTooAndASecondOneEndsSilently) {
    const RECT wanted = {40, 30, 40 + 610, 30 + 470};
    SetWindowPos(app->WindowHandle(), nullptr, wanted.left, wanted.top, 610, 470,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    const Win32Handle second = StartProgram(Setting("DRIVE_PROGRAM"));
    EXPECT_EQ(WaitForEnd(second.Get()), 0u);
    ExpectIdle();
    Restart();
    const RECT found = app->Area();
    EXPECT_TRUE(EqualRect(&found, &wanted)) << found.left << ' ' << found.top;
    System(SC_MAXIMIZE);
    Await("the large window", [this] { return IsZoomed(app->WindowHandle()) != 0; });
    Restart();
    EXPECT_TRUE(IsZoomed(app->WindowHandle()));
}

// The second release of the button hits the picture, which has no address: a click is an error.
TEST_F(TsUpdate, ADoubleClickOnTheTitleBarOnlyMakesTheWindowLarge) {
    CachePicture();
    Restart();
    const POINT at = {300, 112};
    // A display that is slow to show the new window puts it back to its first place.
    Await("the large window", [&] {
        SetWindowPos(app->WindowHandle(), nullptr, 100, 100, 640, 480,
                     SWP_NOZORDER | SWP_NOACTIVATE);
        app->AwaitInputTaken();
        ClickAt(at, 2);
        return Comes([this] { return IsZoomed(app->WindowHandle()) != 0; }, 3000);
    });
    Await("the picture under the mouse",
          [&] { return WindowFromPoint(at) == app->Child("picPicture"); });
    app->AwaitInputTaken();
    EXPECT_FALSE(HasDialog());
    ClickAt(at);
    EXPECT_NE(app->TakeBox().find("frmMain.picPicture_Click"), std::string::npos);
}

TEST_F(TsUpdate, WhatIsTypedPastedAndSentGoesOutAndWhatComesIsShownCapturedAndCopied) {
    indicator.Start("--terminal");
    const Window monitor = OpenMonitor();
    monitor.Choose("mnuCaptureStart");
    app->ChooseFile(FileOfRun("capture.txt"));
    Await("the capture", [] { return std::filesystem::exists(FileOfRun("capture.txt")); });
    OpenPort(monitor);
    EXPECT_EQ(monitor.Panel("sbStatusBar", 0), "Connected");
    EXPECT_EQ(monitor.Panel("sbStatusBar", 2), "38400,N,8,2");
    for (const WORD key : {WORD{'G'}, WORD{'X'}, WORD{VK_BACK}, WORD{'R'}, WORD{'O'}, WORD{'S'},
                           WORD{'S'}, WORD{VK_RETURN}})
        Key(key);
    AwaitShown(monitor, "gross\r\n    125.40 kg G\r\n");
    const auto clipboard = MakeWin32Clipboard();
    clipboard->Text("\r\nID=B\u00e1scula\r\n");
    Command(monitor, 'P');
    AwaitShown(monitor, "ID=B\u00e1scula\r\nOK\r\n");
    const Window progress = SendFile(monitor, "id\r\n\r\n   \r\nversion\r\n");
    AwaitShown(monitor, "id\r\nB\u00e1scula\r\nversion\r\nM40 V2.05");
    progress.AwaitGone();
    EXPECT_EQ(Indicator::Passed('>'), "gx\\x08ross\\r\\rID=B\\xE1scula\\rid\\rversion\\r");
    Command(monitor, 'A');
    Command(monitor, 'Y');
    Await("the copy", [&] { return clipboard->Text().find("M40 V2.05") != std::string::npos; });
    monitor.Choose("mnuCaptureEnd");
    Await("the capture",
          [] { return Content("capture.txt").find("version\r\nM40 V2.05") != std::string::npos; });
    std::string lines;
    for (int i = 0; i < 1000; ++i) lines += "id\r\n";
    SendFile(monitor, lines);
    app->Close();
    EXPECT_EQ(app->Wait(), 0u);
}

TEST_F(TsUpdate, OptionsChosenByKeyboardAreStoredAndUsed) {
    app->AwaitFocus(*app, "cmdFlash");
    app->OpenMenu('T');
    app->KeyUntil('O', "the window", [&] { return !app->Forms(kConfigureWindowDesign).empty(); });
    const Window options = app->AwaitForm(kConfigureWindowDesign);
    app->AwaitFocus(options, "tvwOptions");
    const auto pick = [&](const char* list, const char* item, WORD key) {
        app->KeyUntil(VK_TAB, list, [&] { return app->Focus() == options.Child(list); });
        app->KeyUntil(key, item, [&] { return options.Text(list) == item; });
    };
    pick("cboPort", "COM2", VK_DOWN);
    pick("cboBaudRate", "9600", VK_UP);
    EXPECT_TRUE(app->TakeBox().starts_with("It is recommended that a baud rate above 19200"));
    app->KeyUntil(
        'O', "the end", [&] { return !options.IsThere(); }, true);
    const std::map<std::wstring, std::wstring> kStored = {
        {L"Port", L"COM2 "}, {L"Baud", L"9600  "}, {L"StopBits", L"2"}, {L"ProxyType", L"1"}};
    for (const auto& [name, value] : kStored) {
        wchar_t data[64] = {};
        DWORD size = sizeof data;
        RegGetValueW(HKEY_CURRENT_USER, (ProgramKey() + L"\\Settings").c_str(), name.c_str(),
                     RRF_RT_REG_SZ, nullptr, data, &size);
        EXPECT_EQ(data, value);
    }
    Restart();
    const Window monitor = OpenMonitor();
    EXPECT_EQ(monitor.Panel("sbStatusBar", 1), "COM2");
    EXPECT_EQ(monitor.Panel("sbStatusBar", 2), "9600,N,8,2");
}

TEST_F(TsUpdate, TheKeyboardAloneIsEnough) {
    indicator.Start("--think 20");
    app->AwaitFocus(*app, "cmdFlash");
    for (const char* name : {"picPicture", "cmdFlash"})
        app->KeyUntil(VK_TAB, name, [&] { return app->Focus() == app->Child(name); });
    app->KeyUntil(VK_RETURN, "the file dialog", [this] { return HasDialog(); });
    app->AwaitFileDialog();
    app->KeyUntil(VK_ESCAPE, "its end", [this] { return !HasDialog(); });
    ExpectIdle();
    app->AwaitFocus(*app, "cmdFlash");

    for (const WORD key : {WORD{VK_ESCAPE}, WORD{VK_RETURN}}) {
        app->OpenMenu('H');
        app->KeyUntil('A', "the window", [&] { return !app->Forms(kAboutWindowDesign).empty(); });
        const Window about = app->AwaitForm(kAboutWindowDesign);
        Await("the keyboard", [&] { return GetForegroundWindow() == about.WindowHandle(); });
        app->KeyUntil(key, "its end", [&] { return !about.IsThere(); });
        app->AwaitFocus(*app, "cmdFlash");
    }

    app->OpenMenu('F');
    app->KeyUntil('U', "the file dialog", [this] { return HasDialog(); });
    app->ChooseFile(image);
    const HWND warning = app->AwaitBox();
    app->KeyUntil(VK_RETURN, "its end", [warning] { return IsWindow(warning) == 0; });
    app->AwaitFocus(*app, "cmdFlashAbort");
    EXPECT_EQ(App::TextIn(app->AwaitBox()), kDone);
    app->KeyUntil(VK_RETURN, "its end", [this] { return !HasDialog(); });
    ExpectIdle();
    app->AwaitFocus(*app, "cmdFlash");

    app->OpenMenu('F');
    app->KeyUntil('X', "the end of the program", [this] { return !app->IsRunning(); });
    EXPECT_EQ(app->Wait(), 0u);
}

using Spanish = EndToEnd;

TEST_F(Spanish, CaptionsAndTheWarning) {
    EXPECT_EQ(TextOf(app->WindowHandle()), "Utilidad de actualización Tessmar Vantor");
    EXPECT_EQ(app->Text("cmdFlash"), "Actualizar indicador");
    AskForFlash();
    EXPECT_TRUE(app->TakeBox(IDNO).starts_with("¡Precaución! ¡Operación crítica!\r\n\r\n"));
}

}  // namespace
}  // namespace vantor::driver

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    vantor::driver::EnterDesktop();
    return RUN_ALL_TESTS();
}
