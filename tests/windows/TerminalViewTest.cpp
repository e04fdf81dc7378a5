// The terminal's window: what it paints, and the effect of mouse, wheel and keys on its control.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "monitor/frmMonitor.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "platform/win32/terminal/Win32TerminalPaint.hpp"
#include "platform/win32/windows/Win32ChildControl.hpp"
#include "tests/unit/Wire.hpp"
#include "tests/windows/RealWindows.hpp"

namespace vantor {
namespace {

class TerminalView : public testing::Test, public MonitorOwner {
protected:
    TerminalView() {
        platform.ports.Plug("COM1", wire);
        monitor->Show();
        view = GetDlgItem(WindowOf(*monitor), kFirstChildId);
        for (int i = 10; i < 99; ++i) {
            screen.Print("line " + std::to_string(i));
            screen.CarriageReturn();
            screen.LineFeed();
        }
        terminal.Refresh();
        RECT client{};
        GetClientRect(view, &client);
        width = static_cast<int>(client.right) / screen.Columns();
        height = static_cast<int>(client.bottom) / screen.Rows();
    }
    ~TerminalView() override { monitor->Unload(); }

    LPARAM At(int row, int column) const {
        return MAKELPARAM(column * width + width / 4, row * height + height / 2);
    }
    void Send(UINT message, WPARAM first, LPARAM second = 0) const {
        SendMessageW(view, message, first, second);
    }

    RealWindows platform;
    Wire wire;
    std::shared_ptr<frmMonitor> monitor =
        std::make_shared<frmMonitor>(platform.manager, platform.real, *this);
    TerminalControl& terminal = monitor->comMonitor;
    TerminalScreen& screen = terminal.Screen();
    HWND view = nullptr;
    int width = 0;
    int height = 0;

private:
    bool CloseIsWaiting() const override { return false; }
    void ResumeClose() override {}
    bool FlashIsRunning() const override { return false; }
};

TEST_F(TerminalView, ADragMarksTextWhichCtrlCCopiesInsteadOfBeingSent) {
    terminal.PerformCommand(TerminalCommand::Open);
    terminal.ScrollTo(0);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(1, 5));
    Send(WM_MOUSEMOVE, MK_LBUTTON, At(2, 6));
    Send(WM_LBUTTONUP, 0, At(2, 6));
    Send(WM_MOUSEMOVE, 0, At(4, 0));
    EXPECT_EQ(terminal.SelectedText(), "11\r\nline 1");
    Send(WM_CHAR, 3);
    EXPECT_EQ(platform.clipboard.Text(), "11\r\nline 1");
    EXPECT_EQ(wire.received, "");
    Send(WM_CHAR, 3);  // nothing is selected any more
    platform.queue.PumpPending();
    EXPECT_EQ(wire.received, "\x03");
}

TEST_F(TerminalView, TheTwoHalvesOfACharacterAreOne) {
    terminal.PerformCommand(TerminalCommand::Open);
    Send(WM_CHAR, 0xD83D);
    EXPECT_EQ(platform.boxes.beeps, 0) << "half a character";
    Send(WM_CHAR, 0xDE00);
    EXPECT_EQ(platform.boxes.beeps, 1) << "the code page has it not";
    Send(WM_CHAR, 'a');
    EXPECT_EQ(wire.received, "a");
}

TEST_F(TerminalView, NewTextIsAnnouncedNowAndThen) {
    static int announced;
    announced = 0;
    const HWINEVENTHOOK hook = SetWinEventHook(
        EVENT_OBJECT_LIVEREGIONCHANGED, EVENT_OBJECT_LIVEREGIONCHANGED, nullptr,
        [](HWINEVENTHOOK, DWORD, HWND, LONG, LONG, DWORD, DWORD) { ++announced; },
        GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
    ASSERT_NE(hook, nullptr);
    terminal.PerformCommand(TerminalCommand::Open);
    int written = 0;
    for (const ULONGLONG start = GetTickCount64(); announced < 2; ++written) {
        wire.sent = "x";
        platform.queue.PumpPending();
        ASSERT_LT(GetTickCount64() - start, 30'000u);
    }
    EXPECT_GT(written, 4);
    UnhookWinEvent(hook);
}

TEST_F(TerminalView, LettersShowWhereOnlyOneColourWasChosen) {
    const auto difference = [](COLORREF a, COLORREF b) {
        return std::abs(GetRValue(a) - GetRValue(b)) + std::abs(GetGValue(a) - GetGValue(b)) +
               std::abs(GetBValue(a) - GetBValue(b));
    };
    for (std::uint8_t colour = 0; colour < kDefaultColour; ++colour) {
        for (const Cell& cell : {Cell{'x', colour}, Cell{'x', kDefaultColour, colour},
                                 Cell{'x', colour, kDefaultColour, kReversed}}) {
            const CellColours colours = ColoursOf(cell);
            EXPECT_GT(difference(colours.ink, colours.ground), 100) << int{colour};
        }
    }
    EXPECT_EQ(ColoursOf(Cell{'x', 1}).ink, RGB(170, 0, 0)) << "as it was chosen";
}

TEST_F(TerminalView, ABoxOfTheMonitorDisablesEveryOtherWindow) {
    const auto other = std::make_shared<frmMonitor>(platform.manager, platform.real, *this);
    other->Show();
    static HWND watched;
    static int enabledMeanwhile;
    watched = WindowOf(*other);
    enabledMeanwhile = -1;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) {
        const HWND box = FindWindowW(L"#32770", L"Vantor box");
        if (box == nullptr) return;
        enabledMeanwhile = IsWindowEnabled(watched);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    });
    MakeWin32MessageBoxes("Vantor box")->Show({.text = "?", .owner = monitor->WindowHandle()});
    KillTimer(nullptr, timer);
    EXPECT_EQ(enabledMeanwhile, 0);
    EXPECT_NE(IsWindowEnabled(watched), 0);
    EXPECT_NE(IsWindowEnabled(WindowOf(*monitor)), 0);
    other->Unload();
}

TEST_F(TerminalView, WheelAndScrollBarShowWhatHasLeftTheScreen) {
    const std::int64_t bottom = screen.TopLine();
    for (int i = 0; i < 3; ++i) Send(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2));
    EXPECT_EQ(terminal.FirstShownLine(), bottom - 3);
    Send(WM_VSCROLL, SB_TOP);
    std::wstring text(200, L'\0');
    GetWindowTextW(view, text.data(), static_cast<int>(text.size()));
    EXPECT_TRUE(text.starts_with(L"line 10\r\nline 11\r\n"));
    Send(WM_VSCROLL, SB_BOTTOM);
    EXPECT_EQ(terminal.FirstShownLine(), bottom);
}

TEST_F(TerminalView, ACharacterThatArrivesHasItsRowPaintedAlone) {
    terminal.PerformCommand(TerminalCommand::Open);
    terminal.LocalEcho = true;
    UpdateWindow(view);
    terminal.Key("x");
    RECT dirty{};
    GetUpdateRect(view, &dirty, FALSE);
    EXPECT_EQ(dirty.top, screen.Cursor().row * height);
    EXPECT_EQ(dirty.bottom - dirty.top, height);
}

}  // namespace
}  // namespace vantor
