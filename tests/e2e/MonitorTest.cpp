// Monitor mode as the user operates it, with an indicator in its running mode on COM1.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "platform/win32/services/Win32Services.hpp"
#include "resources/Designs.hpp"
#include "tests/e2e/EndToEnd.hpp"

namespace vantor::driver {
namespace {

const Box kNoPort = {"Tessmar Vantor Update",
                     "Unable to open communications port. Check your settings and try again.",
                     "exclamation"};

class Monitor : public EndToEnd {
protected:
    static void AwaitStatus(const Window& monitor, const char* status) {
        Await(status, [&] { return monitor.Panel("sbStatusBar", 0) == status; });
    }
};

TEST_F(Monitor, AMissingABusyAndALostPortAreReportedOnceEach) {
    const Window monitor = OpenMonitor();
    EXPECT_EQ(monitor.Panel("sbStatusBar", 1), "COM1");
    EXPECT_EQ(monitor.Panel("sbStatusBar", 2), "38400,N,8,2");
    const auto expectRefusal = [this](const Window& window) {
        window.Choose("mnuCommOpen");
        EXPECT_EQ(app->TakeBox(), kNoPort);
        AwaitStatus(window, "Disconnected");
        EXPECT_EQ(app->Dialog(), nullptr);
    };
    expectRefusal(monitor);
    indicator.Start("--terminal");
    OpenPort(monitor);
    AwaitStatus(monitor, "Connected");
    app->Choose("mnuToolsMonitor");
    expectRefusal(app->AwaitForm(kMonitorWindowDesign, 2));
    indicator.Stop();
    expectRefusal(monitor);
}

TEST_F(Monitor, WhatIsTypedAndPastedGoesOutAndTheEchoCanBeCopied) {
    indicator.Start("--terminal");
    const Window monitor = OpenMonitor();
    OpenPort(monitor);
    for (const WORD key : {WORD{'G'}, WORD{'X'}, WORD{VK_BACK}, WORD{'R'}, WORD{'O'}, WORD{'S'},
                           WORD{'S'}, WORD{VK_RETURN}, WORD{VK_TAB}, WORD{VK_ESCAPE}, WORD{VK_UP}})
        Key(key);
    AwaitShown(monitor, "gross\r\n    125.40 kg G\r\n[A");
    EXPECT_EQ(indicator.Passed('>'), "gx\bross\r\t\x1b\x1b[A");
    const auto clipboard = MakeWin32Clipboard();
    clipboard->Text("\r\nID=B\u00e1scula \u00f1\r\nid\n");
    Command(monitor, 'P');
    AwaitShown(monitor, "ID=B\u00e1scula \u00f1\r\nOK\r\nid\r\nB\u00e1scula \u00f1");
    Command(monitor, 'A');
    Command(monitor, 'Y');
    Await("the copy",
          [&] { return clipboard->Text().starts_with("gross\r\n    125.40 kg G\r\n"); });
}

TEST_F(Monitor, AFileIsSentLineByLineAndCapturedAsThePeerAnswers) {
    const std::string capture = FileOfRun("capture.txt");
    indicator.Start("--terminal");
    const Window monitor = OpenMonitor();
    monitor.Choose("mnuCaptureStart");
    EXPECT_EQ(TextOf(app->AwaitFileDialog()), "Capture Filename");
    app->ChooseFile(capture);
    Await("the capture", [&] { return std::ifstream(capture).is_open(); });
    OpenPort(monitor);
    SendFile(monitor, "help\r\n\r\n   \r\n  net \r\nID=B\xe1scula\r\nhelp\rhelp\r\nversion\r\n");
    AwaitShown(monitor, "M40 V2.05");
    Await("the end", [this] { return app->Forms(kSendWindowDesign).empty(); });
    EXPECT_EQ(indicator.Passed('>'), "help\r  net \rID=B\xe1scula\rhelp\rhelp\rversion\r");
    // Four pauses of 50 ms; on a busy machine the indicator may have received the first line late.
    EXPECT_GE(indicator.Span('>'), 120);
    monitor.Choose("mnuCaptureEnd");
    Await("the whole capture", [this] { return Content("capture.txt") == indicator.Passed('<'); });
    app->KeyUntil(VK_RETURN, "the answer",
                  [this] { return indicator.Passed('<') != Content("capture.txt"); });
    EXPECT_TRUE(indicator.Passed('<').starts_with(Content("capture.txt")));
}

TEST_F(Monitor, CancelAndTheTitleBarEndASendAfterTheLineInProgress) {
    std::string lines;
    for (int i = 0; i < 1000; ++i) lines += "id=" + std::to_string(i) + "\r\n";
    for (const bool byTitleBar : {false, true}) {
        indicator.Start("--terminal");
        const Window monitor = OpenMonitor();
        OpenPort(monitor);
        const Window progress = SendFile(monitor, lines);
        AwaitSent(progress, 5);
        EXPECT_TRUE(progress.Text("lblStatus").ends_with(" of 1000 "));
        EXPECT_EQ(progress.Text("lblFilename"), "sent.txt ");
        if (byTitleBar)
            progress.Close();
        else
            progress.Press("cmdCancel");
        Await("the end", [&] { return !progress.IsThere(); });
        monitor.Close();
        Await("the end", [&] { return !monitor.IsThere(); });
        const std::string sent = indicator.Passed('>');
        EXPECT_TRUE(sent.starts_with("id=0\rid=1\r"));
        EXPECT_TRUE(sent.ends_with("\r"));
        EXPECT_LT(sent.size(), lines.size() / 2);
    }
}

TEST_F(Monitor, ClosedWhileItSendsItFreesThePortAndComesBackWhereItWas) {
    indicator.Start("--terminal");
    const Window monitor = OpenMonitor();
    OpenPort(monitor);
    const RECT wanted = {70, 50, 70 + 500, 50 + 300};
    SetWindowPos(monitor.WindowHandle(), nullptr, wanted.left, wanted.top, 500, 300,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    std::string lines;
    for (int i = 0; i < 1000; ++i) lines += "id\r\n";
    const Window progress = SendFile(monitor, lines);
    monitor.Close();
    Await("the end", [&] { return !monitor.IsThere() && !progress.IsThere(); });
    EXPECT_EQ(app->Dialog(), nullptr);
    const Window again = OpenMonitor();
    RECT found{};
    GetWindowRect(again.WindowHandle(), &found);
    EXPECT_TRUE(EqualRect(&found, &wanted)) << found.left << ' ' << found.top;
    OpenPort(again);
    SendFile(again, lines);
    app->Close();
    EXPECT_EQ(app->Wait(), 0u);
}

TEST_F(Monitor, TheSettingsCommandShowsInBothPanels) {
    const Window monitor = OpenMonitor();
    Command(monitor, 'S');
    const Window settings = app->AwaitForm(kPortSettingsWindowDesign);
    EXPECT_EQ(IsWindowEnabled(monitor.WindowHandle()), FALSE);
    Await("the focus", [&] { return app->Focus() == settings.Child("cboPort"); });
    app->KeyUntil(VK_DOWN, "COM2", [&] { return settings.Text("cboPort") == "COM2"; });
    app->KeyUntil(VK_TAB, "the speed", [&] { return app->Focus() == settings.Child("cboSpeed"); });
    app->KeyUntil(VK_DOWN, "57600", [&] { return settings.Text("cboSpeed") == "57600"; });
    app->KeyUntil(VK_RETURN, "the end", [&] { return !settings.IsThere(); });
    Await("the port", [&] { return monitor.Panel("sbStatusBar", 1) == "COM2"; });
    Await("the line", [&] { return monitor.Panel("sbStatusBar", 2) == "57600,N,8,2"; });
    Await("the keyboard", [&] { return app->Focus() == monitor.Child("comMonitor"); });
}

}  // namespace
}  // namespace vantor::driver
