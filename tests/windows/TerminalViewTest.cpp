// The terminal's window: its size, what it paints, and the effect of mouse, wheel and keys on its
// control.
#include <cstdlib>
#include <initializer_list>
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
        for (int i = 10; i < 99; ++i)
            TerminalParser(screen).Write("line " + std::to_string(i) + "\r\n");
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

    /// Keys that are held down while it exists.
    struct Held {
        explicit Held(const std::vector<int>& held) {
            BYTE keys[256] = {};
            for (const int key : held) keys[key] = 0x80;
            SetKeyboardState(keys);
        }
        Held(std::initializer_list<int> held) : Held(std::vector<int>(held)) {}
        Held(const Held&) = delete;
        Held& operator=(const Held&) = delete;
        ~Held() {
            BYTE none[256] = {};
            SetKeyboardState(none);
        }
    };

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
    {
        const Held alt{VK_MENU};
        Send(WM_LBUTTONDOWN, MK_LBUTTON, At(0, 1));
        Send(WM_MOUSEMOVE, MK_LBUTTON, At(1, 3));
        Send(WM_LBUTTONUP, 0, At(1, 3));
    }
    EXPECT_EQ(terminal.SelectedText(), "ne\r\nhr");
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(0, 4));
    Send(WM_LBUTTONUP, 0, At(0, 4));
    Send(WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, At(1, 5));
    Send(WM_LBUTTONUP, 0, At(1, 5));
    EXPECT_EQ(terminal.SelectedText(), "two\r\nthree") << "from the click before";
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
                 {VK_HOME, {VK_SHIFT}, "\x1b[1;2H"},
                 {VK_END, {VK_CONTROL}, "\x1b[1;5F"},
                 {VK_DELETE, {}, "\x1b[3~"},
                 {VK_F2, {}, "\x1bOQ"},
                 {VK_F12, {}, "\x1b[24~"},
                 {VK_TAB, {}, "\t"},
                 {VK_TAB, {VK_SHIFT}, "\x1b[Z"},
                 {VK_RETURN, {}, "\r"},
                 {VK_RETURN, {VK_CONTROL}, "\n"},
                 {VK_ESCAPE, {}, "\x1b"},
                 {VK_BACK, {}, "\b"},
                 {VK_BACK, {VK_CONTROL}, "\x7f"},
                 {VK_SPACE, {}, " "},
                 {VK_SPACE, {VK_CONTROL}, std::string(1, '\0')},
                 {VK_ADD, {}, "+"},
                 {'A', {}, "a"},
                 {'V', {VK_CONTROL}, "\x16"},
                 {'V', {VK_CONTROL, VK_SHIFT}, "pasted"},
                 {'C', {VK_CONTROL, VK_SHIFT}, "", 0, "line"},
                 {VK_INSERT, {VK_SHIFT}, "pasted"},
                 {VK_INSERT, {VK_SHIFT, VK_CONTROL}, "\x1b[2;6~"},
                 {VK_INSERT, {}, "\x1b[2~"},
                 {VK_INSERT, {VK_CONTROL}, "", 0, "line"},
                 {VK_PAUSE, {}, ""},
                 {VK_PRIOR, {}, "\x1b[5~"},
                 {VK_PRIOR, {VK_SHIFT}, "", -page},
                 {VK_NEXT, {VK_SHIFT}, "", page},
                 {VK_UP, {VK_SHIFT, VK_CONTROL}, "", -1},
                 {VK_HOME, {VK_SHIFT, VK_CONTROL}, "", -page}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.key);
        wire.received.clear();
        platform.clipboard.Text("pasted");
        terminal.ScrollTo(page);
        terminal.Select({page, 0}, {page, 4});
        const Held keys(row.held);
        Type(row.key);
        for (int i = 0; i < 5; ++i) platform.queue.PumpPending();
        EXPECT_EQ(wire.received, row.sent);
        EXPECT_EQ(platform.clipboard.Text(), row.clipboard);
        const bool typed = !row.sent.empty() && row.sent != "pasted";
        EXPECT_EQ(terminal.SelectedText(), typed ? "" : "line");
        EXPECT_EQ(terminal.FirstShownLine(), row.sent.empty() ? page + row.scrolled : bottom);
    }
}

// As a Spanish or a German layout reports them: AltGr is Ctrl and Alt, and a dead key has
// no character of its own.
TEST_F(TerminalView, CharactersOfAltGrAndDeadKeysAreTyped) {
    terminal.PerformCommand(TerminalCommand::Open);
    const struct {
        std::vector<int> held;
        WPARAM key;
        std::wstring characters;
        std::string sent;
    } kRows[] = {{{VK_CONTROL, VK_MENU}, 'Q', L"@", "@"},
                 {{VK_CONTROL, VK_MENU}, 'E', L"\x20ac", "\x80"},
                 {{VK_CONTROL, VK_MENU}, '0', L"}", "}"},
                 {{VK_CONTROL, VK_MENU}, VK_OEM_PLUS, L"]", "]"},
                 {{VK_CONTROL, VK_MENU}, 'V', L"\xf6", "\xf6"},
                 {{}, 'E', L"\xe9", "\xe9"},
                 {{}, VK_SPACE, L"\xb4", "\xb4"},
                 {{}, VK_RETURN, L"\xb4\r", "\xb4\r"},
                 {{VK_CONTROL}, 'M', L"\r", "\r"}};
    for (const auto& row : kRows) {
        wire.received.clear();
        const Held keys(row.held);
        Send(WM_KEYDOWN, row.key);
        for (const wchar_t character : row.characters) Send(WM_CHAR, character);
        EXPECT_EQ(wire.received, row.sent) << row.key;
    }
}

TEST_F(TerminalView, ModesOfTheFarEndAndTheKeypadDecideWhatIsSent) {
    terminal.PerformCommand(TerminalCommand::Open);
    constexpr LPARAM kExtended = LPARAM{KF_EXTENDED} << 16;
    screen.modes.applicationCursorKeys = true;
    screen.modes.applicationKeypad = true;
    Send(WM_KEYDOWN, VK_UP, kExtended);
    Send(WM_KEYDOWN, VK_UP);  // 8, without NumLock
    Send(WM_KEYDOWN, VK_NUMPAD8);
    Send(WM_CHAR, '8');
    Send(WM_KEYDOWN, VK_RETURN, kExtended);
    Send(WM_CHAR, '\r');
    Send(WM_SYSKEYDOWN, VK_F10);
    Send(WM_SYSKEYUP, VK_F10);  // opens no menu, which would wait for the user
    EXPECT_EQ(wire.received, "\x1bOA\x1bOx\x1bOx\x1bOM\x1b[21~");
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

TEST_F(TerminalView, TheFontSizeFollowsWheelAndKeys) {
    for (int i = 0; i < 4; ++i) Send(WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, WHEEL_DELTA / 2));
    const int rows = screen.Rows();
    EXPECT_LT(rows, 24);
    const Held control{VK_CONTROL};
    Type(VK_OEM_MINUS);
    EXPECT_GT(screen.Rows(), rows);
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
