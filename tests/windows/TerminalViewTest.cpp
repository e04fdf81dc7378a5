// The terminal's window: its size, what it paints, and the effect of mouse, wheel and keys on its
// control.
#include <cstdlib>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "monitor/frmMonitor.hpp"
#include "platform/win32/terminal/Win32TerminalPaint.hpp"
#include "platform/win32/windows/Win32ChildControl.hpp"
#include "tests/unit/Table.hpp"
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
    if (action == SPI_GETWHEELSCROLLLINES) return *static_cast<UINT*>(value) = 2, TRUE;
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
        for (int i = 10; i < 99; ++i)
            TerminalParser(screen).Write("line " + std::to_string(i) + "\r\n");
        terminal.Refresh();
        RECT client{};
        GetClientRect(view, &client);
        width = static_cast<int>(client.right) / screen.Columns();
        height = static_cast<int>(client.bottom) / screen.Rows();
    }
    ~TerminalView() override {
        Hold({});
        monitor->Unload();
    }

    LPARAM At(int row, int column) const {
        return MAKELPARAM(column * width + width / 4, row * height + height / 2);
    }
    void Send(UINT message, WPARAM first, LPARAM second = 0) const {
        SendMessageW(view, message, first, second);
    }

    /// Holds these keys down and no others.
    static void Hold(const std::vector<int>& held) {
        BYTE keys[256] = {};
        for (const int key : held) keys[key] = 0x80;
        SetKeyboardState(keys);
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

TEST_F(TerminalView, TheFirstSizeIs80By24AndEachOtherIsShownWhileTheUserSizes) {
    EXPECT_EQ(screen.Columns(), 80);
    EXPECT_EQ(screen.Rows(), 24);
    RECT client{};
    GetClientRect(view, &client);
    const int x = static_cast<int>(client.right) / 2;
    const int edge = static_cast<int>(client.bottom) / 2 - height / 2;
    const COLORREF before = Pixel(view, x, edge);
    SendMessageW(WindowOf(*monitor), WM_SIZING, WMSZ_BOTTOM, reinterpret_cast<LPARAM>(&client));
    EXPECT_EQ(Pixel(view, x, edge), GetSysColor(COLOR_INFOBK));
    SendMessageW(WindowOf(*monitor), WM_EXITSIZEMOVE, 0, 0);
    EXPECT_EQ(Pixel(view, x, edge), before);
}

TEST_F(TerminalView, ADragMarksTextWhichCtrlCCopiesInsteadOfBeingSent) {
    terminal.PerformCommand(TerminalCommand::Open);
    terminal.ScrollTo(0);
    SetFocus(nullptr);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(1, 5));
    EXPECT_EQ(GetFocus(), view);
    Send(WM_MOUSEMOVE, MK_LBUTTON, At(2, 6));
    EXPECT_EQ(Pixel(view, 5 * width, height), GetSysColor(COLOR_HIGHLIGHT));
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

TEST_F(TerminalView, EachFurtherClickSelectsALargerPart) {
    screen.MoveTo(0, 0);
    TerminalParser(screen).Write("one two\r\nthree four");
    for (const char* const selected : {"", "two", "one two"}) {
        Send(WM_LBUTTONDOWN, MK_LBUTTON, At(0, 5));
        Send(WM_LBUTTONUP, 0, At(0, 5));
        EXPECT_EQ(terminal.SelectedText(), selected);
    }
    Send(WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, At(1, 2));
    Send(WM_LBUTTONUP, 0, At(1, 2));
    EXPECT_EQ(terminal.SelectedText(), "one two\r\nthree four") << "by line, as it was begun";
    Hold({VK_MENU});
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(0, 1));
    Send(WM_MOUSEMOVE, MK_LBUTTON, At(1, 3));
    Send(WM_LBUTTONUP, 0, At(1, 3));
    EXPECT_EQ(terminal.SelectedText(), "ne\r\nhr");
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

// The rows begin with a line of the scrollback on top, "line" selected in it and "pasted" in the
// clipboard.
TEST_F(TerminalView, EveryKeyDoesItsWork) {
    terminal.PerformCommand(TerminalCommand::Open);
    terminal.Options({.breakKey = true});
    Send(WM_SYSKEYDOWN, VK_F10);
    Send(WM_SYSKEYUP, VK_F10);  // opens no menu, which would wait for the user
    EXPECT_EQ(wire.received, "\x1b[21~");
    const int page = screen.Rows() - 1;
    ExpectTable("keys", [&](Words words) {
        wire.received.clear();
        platform.boxes.beeps = 0;
        platform.clipboard.Text("pasted");
        terminal.ScrollTo(page);
        terminal.Select({page, 0}, {page, 4});
        const auto takes = [&words](const std::string& word) {
            return std::erase(words, word) > 0;
        };
        const bool applicationModes = takes("keypad");
        screen.modes.applicationKeypad = screen.modes.applicationCursorKeys = applicationModes;
        const LPARAM flags = takes("extended") ? LPARAM{KF_EXTENDED} << 16 : 0;
        std::vector<int> held;
        if (takes("Shift")) held.push_back(VK_SHIFT);
        if (takes("Ctrl")) held.push_back(VK_CONTROL);
        if (takes("Alt")) held.push_back(VK_MENU);
        Hold(held);
        const WORD key = driver::KeyNamed(words.at(0));
        if (words.size() == 1) {  // the system makes the character
            Post(view, WM_KEYDOWN, key, flags);
        } else {
            Send(WM_KEYDOWN, key, flags);
            for (const wchar_t unit : ToWide(words[1])) Send(WM_CHAR, unit);
        }
        for (int i = 0; i < 5; ++i) platform.queue.PumpPending();
        const std::int64_t shown = terminal.FirstShownLine();
        return Row(
            shown == screen.TopLine() ? "end" : std::to_string(shown - page),
            terminal.SelectedText(), platform.clipboard.Text(),
            wire.received + std::string(static_cast<std::size_t>(platform.boxes.beeps), '\a'));
    });
}

TEST_F(TerminalView, LinesOfNeighbouringCellsJoin) {
    screen.MoveTo(0, 0);
    TerminalParser(screen).Write("\x1b(0lx\r\nxqq");
    terminal.Refresh();
    const auto isInk = [this](int x, int y) {
        return Pixel(view, x, y) == GetSysColor(COLOR_WINDOWTEXT);
    };
    const int middle = (width - 1) / 2;
    for (int y = height * 3 / 4; y < 2 * height; ++y) EXPECT_TRUE(isInk(middle, y)) << y;
    for (int x = width; x < 3 * width; ++x) EXPECT_TRUE(isInk(x, height + (height - 1) / 2)) << x;
    screen.MoveTo(2, 0);
    screen.Print(U"\u23BA\u23BB\u2500\u23BC\u23BD\u25C6\u2400\u258C");
    TerminalParser(screen).Write("\x1b[9m \x1b[0;4m ");
    terminal.Refresh();
    // The first row of ink in the middle, or anywhere, of a cell.
    const auto top = [&](int column, int from, int to) {
        for (int y = 0; y < height; ++y)
            for (int x = column * width + from; x < column * width + to; ++x)
                if (isInk(x, 2 * height + y)) return y;
        return height;
    };
    std::vector<int> tops;
    for (int column = 0; column < 10; ++column) tops.push_back(top(column, middle, middle + 1));
    EXPECT_TRUE(tops[0] == 0 && tops[1] < tops[2] && tops[2] < tops[3] && tops[3] < tops[4]);
    EXPECT_LT(tops[5], top(5, 0, 1)) << "a diamond";
    EXPECT_LT(top(6, 0, width), height) << "letters of a control character";
    EXPECT_TRUE(top(7, 0, 1) == 0 && top(7, width - 1, width) == height) << "the left half";
    EXPECT_EQ(tops[8], height / 2) << "struck out";
    EXPECT_EQ(tops[9], tops[4]) << "underlined";
}

TEST_F(TerminalView, ABoldLetterIsWiderAndAnItalicOneLeans) {
    screen.MoveTo(0, 0);
    TerminalParser(screen).Write("H\x1b[1mH\x1b[0;3mH");
    terminal.Refresh();
    // The columns of pixels of a cell that have ink.
    const auto inkAt = [&](int column, int y) {
        std::vector<int> found;
        for (int x = 0; x < width; ++x)
            if (Pixel(view, column * width + x, y) != GetSysColor(COLOR_WINDOW)) found.push_back(x);
        return found;
    };
    const int top = height / 4;
    const int bottom = height * 2 / 3;
    EXPECT_EQ(inkAt(0, top), inkAt(0, bottom));
    EXPECT_GT(inkAt(1, top).size(), inkAt(0, top).size());
    EXPECT_EQ(inkAt(1, top), inkAt(1, bottom));
    EXPECT_GT(inkAt(2, top), inkAt(2, bottom));
}

TEST_F(TerminalView, TheContextMenuShowsWhatIsPossibleAndChosen) {
    const TimerId timer = platform.queue.StartTimer(10, [&] {
        const HWND open = FindWindowW(L"#32768", nullptr);
        const auto menu = reinterpret_cast<HMENU>(SendMessageW(open, MN_GETHMENU, 0, 0));
        const auto has = [menu](TerminalCommand command, UINT flag) {
            return (GetMenuState(menu, static_cast<UINT>(command), MF_BYCOMMAND) & flag) != 0;
        };
        EXPECT_TRUE(has(TerminalCommand::Dtr, MF_GRAYED)) << "the port is closed";
        EXPECT_TRUE(has(TerminalCommand::ViewText, MF_CHECKED));
        EndMenu();
    });
    Send(WM_CONTEXTMENU, 0, -1);
    platform.queue.StopTimer(timer);
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
        terminal.Options({.darkScheme = true});
        terminal.Refresh();
        EXPECT_EQ(Pixel(view, 40 * width, height / 2),
                  chosen ? GetSysColor(COLOR_WINDOW) : RGB(16, 16, 16));
        terminal.Options({});
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
            for (const bool dark : {false, true}) {
                const CellColours colours = ColoursOf(cell, {.dark = dark});
                EXPECT_GT(difference(colours.ink, colours.ground), 100) << colour;
            }
        }
    }
    const Cell plain{U'x', 1};
    EXPECT_EQ(ColoursOf(plain).ink, RGB(170, 0, 0)) << "as it was chosen";
    EXPECT_NE(ColoursOf(Cell{U'x', 1, kDefaultColour, kFaint}).ink, ColoursOf(plain).ink);
    const CellColours concealed = ColoursOf(Cell{U'x', 1, kDefaultColour, kConcealed});
    EXPECT_EQ(concealed.ink, concealed.ground);
    std::set<COLORREF> grounds;
    for (const Mark mark : {Mark::None, Mark::Hit, Mark::CurrentHit, Mark::Selected})
        grounds.insert(ColoursOf(plain, {}, mark).ground);
    EXPECT_EQ(grounds.size(), 4u);
}

TEST_F(TerminalView, WheelAndScrollBarShowWhatHasLeftTheScreen) {
    const std::int64_t bottom = screen.TopLine();
    const int page = screen.Rows() - 1;
    for (int i = 0; i < 3; ++i) Send(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2));
    EXPECT_EQ(terminal.FirstShownLine(), bottom - 2);
    const std::pair<WPARAM, std::int64_t> kRows[] = {
        {SB_PAGEUP, bottom - 2 - page}, {SB_LINEUP, bottom - 3 - page}, {SB_PAGEDOWN, bottom - 3},
        {SB_LINEDOWN, bottom - 2},      {SB_TOP, screen.FirstLine()},   {SB_BOTTOM, bottom}};
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

TEST_F(TerminalView, TheFontSizeFollowsWheelAndKeys) {
    for (int i = 0; i < 4; ++i) Send(WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, WHEEL_DELTA / 2));
    const int rows = screen.Rows();
    EXPECT_LT(rows, 24);
    Hold({VK_CONTROL});
    Type(VK_OEM_MINUS);
    EXPECT_GT(screen.Rows(), rows);
    Type(VK_OEM_PLUS);
    EXPECT_EQ(screen.Rows(), rows);
    Type('0');
    EXPECT_EQ(screen.Rows(), 24);
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

TEST_F(TerminalView, ACharacterThatArrivesHasItsRowPaintedAloneAndTheCaretBehindIt) {
    terminal.PerformCommand(TerminalCommand::Open);
    terminal.LocalEcho = true;
    UpdateWindow(view);
    terminal.Key("x");
    RECT dirty{};
    GetUpdateRect(view, &dirty, FALSE);
    EXPECT_EQ(dirty.top, screen.Cursor().row * height);
    EXPECT_EQ(dirty.bottom - dirty.top, height);
    UpdateWindow(view);
    POINT caret{};
    GetCaretPos(&caret);
    EXPECT_EQ(caret.x, width);
    EXPECT_EQ(caret.y / height, screen.Cursor().row);
    SetFocus(nullptr);
    EXPECT_EQ(ShowCaret(view), 0) << "left behind";
}

}  // namespace
}  // namespace vantor
