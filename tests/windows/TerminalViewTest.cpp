// The terminal's window: what it paints, and the effect of mouse, wheel and keys on its control.
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "monitor/frmMonitor.hpp"
#include "platform/win32/terminal/Win32TerminalPaint.hpp"
#include "platform/win32/windows/Win32ChildControl.hpp"
#include "tests/unit/Wire.hpp"
#include "tests/windows/RealWindows.hpp"
#include "tests/windows/Replaced.hpp"

namespace vantor {
namespace {

bool gHighContrast = false;

}  // namespace

REPLACED(SystemParametersInfoW, [](UINT action, UINT number, void* value, UINT flags) -> BOOL {
    static const auto system =
        reinterpret_cast<decltype(&SystemParametersInfoW)>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"user32"), "SystemParametersInfoW")));
    if (action != SPI_GETHIGHCONTRAST) return system(action, number, value, flags);
    static_cast<HIGHCONTRASTW*>(value)->dwFlags = gHighContrast ? HCF_HIGHCONTRASTON : 0;
    return TRUE;
});

namespace {

class TerminalView : public OnRealWindows, public MonitorOwner {
protected:
    TerminalView() {
        platform.ports.Plug("COM1", wire);
        monitor->Show();
        view = GetDlgItem(WindowOf(*monitor), kFirstChildId);
        for (int i = 10; i < 99; ++i) {
            TerminalParser(screen).Write("line " + std::to_string(i) + "\r\n");
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

TEST_F(TerminalView, EveryKeyDoesItsWork) {
    terminal.PerformCommand(TerminalCommand::Open);
    platform.clipboard.Text("pasted");
    const std::int64_t bottom = screen.TopLine();
    const int page = screen.Rows() - 1;
    const struct {
        WPARAM key;
        std::vector<int> held;
        std::string sent;
        int scrolled = 0;
        std::string clipboard = "pasted";
    } kRows[] = {{VK_UP, {}, "\x1b[A"},
                 {VK_DOWN, {}, "\x1b[B"},
                 {VK_RIGHT, {}, "\x1b[C"},
                 {VK_LEFT, {}, "\x1b[D"},
                 {VK_TAB, {}, "\t"},
                 {VK_RETURN, {}, "\r"},
                 {VK_ESCAPE, {}, "\x1b"},
                 {VK_BACK, {}, "\b"},
                 {'A', {}, "a"},
                 {'V', {VK_CONTROL}, "\x16"},
                 {VK_INSERT, {VK_SHIFT}, "pasted"},
                 {VK_INSERT, {VK_SHIFT, VK_CONTROL}, ""},
                 {VK_INSERT, {}, ""},
                 {VK_INSERT, {VK_CONTROL}, "", 0, "line"},
                 {VK_PRIOR, {}, ""},
                 {VK_PRIOR, {VK_SHIFT}, "", -page},
                 {VK_NEXT, {VK_SHIFT}, "", page}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.key);
        wire.received.clear();
        platform.clipboard.Text("pasted");
        terminal.ScrollTo(page);
        terminal.Select({page, 0}, {page, 4});
        BYTE keys[256] = {};
        for (const int key : row.held) keys[key] = 0x80;
        SetKeyboardState(keys);
        Type(row.key);
        for (int i = 0; i < 5; ++i) platform.queue.PumpPending();
        EXPECT_EQ(wire.received, row.sent);
        EXPECT_EQ(platform.clipboard.Text(), row.clipboard);
        const bool typed = !row.sent.empty() && row.key != VK_INSERT;
        EXPECT_EQ(terminal.SelectedText(), typed ? "" : "line");
        EXPECT_EQ(terminal.FirstShownLine(), row.sent.empty() ? page + row.scrolled : bottom);
    }
    BYTE none[256] = {};
    SetKeyboardState(none);
}

TEST_F(TerminalView, AUserWhoChoseHighContrastSeesNoColoursOfTheFarEnd) {
    screen.MoveTo(0, 0);
    screen.pen.background = 1;
    screen.Print(U"  ");
    for (const bool chosen : {false, true}) {
        gHighContrast = chosen;
        terminal.Refresh();
        EXPECT_EQ(Pixel(view, width, height / 2),
                  chosen ? GetSysColor(COLOR_WINDOW) : RGB(170, 0, 0));
    }
    gHighContrast = false;
    const CellColours colours = ColoursOf(Cell{U'x', 1, 2, kReversed}, {.highContrast = true});
    EXPECT_EQ(colours.ink, GetSysColor(COLOR_WINDOW));
    EXPECT_EQ(colours.ground, GetSysColor(COLOR_WINDOWTEXT));
}

TEST_F(TerminalView, LettersShowWhereOnlyOneColourWasChosen) {
    const auto difference = [](COLORREF a, COLORREF b) {
        return std::abs(GetRValue(a) - GetRValue(b)) + std::abs(GetGValue(a) - GetGValue(b)) +
               std::abs(GetBValue(a) - GetBValue(b));
    };
    for (int colour = 0; colour < kDefaultColour; ++colour) {
        const auto chosen = static_cast<std::uint8_t>(colour);
        for (const Cell& cell : {Cell{U'x', chosen}, Cell{U'x', kDefaultColour, chosen},
                                 Cell{U'x', chosen, kDefaultColour, kReversed}}) {
            const CellColours colours = ColoursOf(cell);
            EXPECT_GT(difference(colours.ink, colours.ground), 100) << colour;
        }
    }
    EXPECT_EQ(ColoursOf(Cell{U'x', 1}).ink, RGB(170, 0, 0)) << "as it was chosen";
}

TEST_F(TerminalView, WheelAndScrollBarShowWhatHasLeftTheScreen) {
    const std::int64_t bottom = screen.TopLine();
    const int page = screen.Rows() - 1;
    for (int i = 0; i < 3; ++i) Send(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2));
    EXPECT_EQ(terminal.FirstShownLine(), bottom - 3);
    const std::pair<WPARAM, std::int64_t> kRows[] = {
        {SB_PAGEUP, bottom - 3 - page}, {SB_LINEUP, bottom - 4 - page}, {SB_PAGEDOWN, bottom - 4},
        {SB_LINEDOWN, bottom - 3},      {SB_TOP, screen.FirstLine()},   {SB_BOTTOM, bottom}};
    for (const auto& [request, first] : kRows) {
        Send(WM_VSCROLL, request);
        EXPECT_EQ(terminal.FirstShownLine(), first) << request;
    }
    terminal.ScrollTo(screen.FirstLine());
    EXPECT_TRUE(driver::TextOf(view).starts_with("line 10\r\nline 11\r\n"));
    UpdateWindow(view);
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    EXPECT_TRUE(GetScrollInfo(view, SB_VERT, &info));
    EXPECT_EQ(info.nPos, 0);
    EXPECT_EQ(info.nMax + 1, screen.EndLine() - screen.FirstLine());
    EXPECT_EQ(static_cast<int>(info.nPage), screen.Rows());
    terminal.ScrollTo(bottom);
    Send(WM_VSCROLL, SB_THUMBTRACK);
    EXPECT_EQ(terminal.FirstShownLine(), screen.FirstLine()) << "where the thumb is drawn";
}

TEST_F(TerminalView, AMouseAboveTheTextScrollsWhileItSelects) {
    POINT above = {5, -3};
    ClientToScreen(view, &above);
    SetCursorPos(static_cast<int>(above.x), static_cast<int>(above.y));
    const std::int64_t bottom = terminal.FirstShownLine();
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(1, 5));
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, -3));
    const ULONGLONG start = GetTickCount64();
    while (terminal.FirstShownLine() > bottom - 3 && GetTickCount64() - start < 30'000)
        platform.queue.PumpPending();
    EXPECT_EQ(terminal.FirstShownLine(), bottom - 3);
    Send(WM_LBUTTONUP, 0, At(0, 0));
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
