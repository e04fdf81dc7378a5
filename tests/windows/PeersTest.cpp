// Leak checks of the real windows, and their replies to window messages.
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "app/frmMain.hpp"
#include "dialogs/frmAbout.hpp"
#include "monitor/frmMonitor.hpp"
#include "platform/win32/windows/Win32ChildControl.hpp"
#include "platform/win32/windows/Win32MenuBar.hpp"
#include "settings/frmConfigure.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "tests/driver/Bitmap.hpp"
#include "tests/faults/Images.hpp"
#include "tests/windows/RealWindows.hpp"
#include "tests/windows/Replaced.hpp"

#include <commctrl.h>
#include <oleacc.h>

namespace vantor {
namespace {

std::wstring gBlockReason;

}  // namespace

REPLACED(ShutdownBlockReasonCreate,
         [](HWND, const wchar_t* reason) -> BOOL { return gBlockReason = reason, TRUE; });
REPLACED(ShutdownBlockReasonDestroy, [](HWND) -> BOOL { return gBlockReason.clear(), TRUE; });

namespace {

BOOL CALLBACK CountWindow(HWND, LPARAM total) {
    ++*reinterpret_cast<int*>(total);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM total) {
    EnumChildWindows(window, CountWindow, total);
    return CountWindow(window, total);
}

/// Entries of a table of the system that `exists` accepts. Counted here because Wine's own counts
/// are always 0; it accepts an index as a handle.
template <class Handle, class Result>
int Count(UINT_PTR end, UINT_PTR step, Result (*exists)(Handle)) {
    int count = 0;
    for (UINT_PTR index = step; index < end; index += step)
        if (exists(reinterpret_cast<Handle>(index)) != 0) ++count;
    return count;
}

class Peers : public OnRealWindows {
protected:
    Peers() {
        const std::string cache = platform.folders.ApplicationData() + "/TSMR/CALDOR/cache/";
        platform.files.Add(cache + "dot.bmp", driver::Bitmap(40, 20));
        platform.files.Add(cache + "cache.txt", "1|2|dot.bmp|http://site/");
        platform.files.Add("m40.run", ImageOf(20));
        platform.ports.Plug("COM1", farEnd);
        window->Show();
    }
    ~Peers() override { window->Unload(); }

    void Flash(frmMain& form) {
        platform.dialogs.choices = {"m40.run"};
        form.cmdFlash.Press();
        ASSERT_EQ(form.Session().Outcome(), FlashOutcome::Done);
    }

    /// What the process holds, by the tables of the system.
    std::map<std::string, int> Held() const {
        int windows = 0;
        EnumThreadWindows(GetCurrentThreadId(), CountWithChildren,
                          reinterpret_cast<LPARAM>(&windows));
        const auto isOpen = +[](HANDLE handle) {
            DWORD flags = 0;
            return GetHandleInformation(handle, &flags);
        };
        return {{"windows", windows},
                {"menus", Count(
                              0x10000, 2, +[](HMENU menu) { return IsMenu(menu); })},
                {"graphics", Count(
                                 0x10000, 1, +[](HGDIOBJ each) { return GetObjectType(each); })},
                {"handles", Count(0x8000, 4, isOpen)},
                {"pictures", platform.images.Held()}};
    }

    VirtualIndicator indicator{IndicatorOptions{}};
    IndicatorFarEnd farEnd{indicator, platform.clock};
    std::shared_ptr<frmMain> window = std::make_shared<frmMain>(platform.manager, platform.real);
};

/// The accessible name of `window` (IAccessible::get_accName), as screen readers read it.
std::wstring ReadAloud(HWND window) {
    IAccessible* object = nullptr;
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT),
                                          __uuidof(IAccessible),
                                          reinterpret_cast<void**>(&object))))
        return {};
    VARIANT self{};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR name = nullptr;
    std::wstring text;
    if (object->get_accName(self, &name) == S_OK && name != nullptr) text = name;
    SysFreeString(name);
    object->Release();
    return text;
}

/// Requires a name for each control that the keyboard reaches, and for progress bars.
void ExpectNames(const Form& form) {
    const auto check = [](HWND child, LPARAM) -> BOOL {
        wchar_t kind[64] = {};
        GetClassNameW(child, kind, 64);
        const LONG_PTR style = GetWindowLongPtrW(child, GWL_STYLE);
        const bool reached = (style & WS_TABSTOP) != 0;
        if (!reached && std::wstring(kind) != PROGRESS_CLASSW) return TRUE;
        // Wine gives the text of an editable list, which may be empty, as its name.
        if (std::wstring(kind) == L"ComboBox" && (style & CBS_DROPDOWNLIST) == CBS_DROPDOWN)
            return TRUE;
        EXPECT_NE(ReadAloud(child), L"") << ToUtf8(kind) << ' ' << GetDlgCtrlID(child);
        return TRUE;
    };
    EnumChildWindows(WindowOf(form), check, 0);
}

TEST_F(Peers, GiveBackWhatWindowsAndFlashesTookAndHaveNamesToReadAloud) {
    std::set<std::string> names;
    const auto openAll = [&] {
        const auto main = std::make_shared<frmMain>(platform.manager, platform.real);
        main->Show();
        ExpectNames(*main);
        Flash(*main);
        platform.boxes.shown.clear();
        // WM_TIMER is delivered only when there is nothing left to paint.
        const TimerId timer = platform.queue.StartTimer(10, [&] {
            const std::shared_ptr<Form> form = platform.manager.OpenForms().back();
            if (form->Name() == "frmMain" || form->Name() == "frmMonitor") return;
            names.insert(form->Name());
            ExpectNames(*form);
            if (form->Name() == "frmSend") {  // a file name may contain "&"
                const HWND file = ChildOf(*form, "lblFilename");
                EXPECT_NE(GetWindowLongPtrW(file, GWL_STYLE) & SS_NOPREFIX, 0);
            }
            SendMessageW(WindowOf(*form), WM_CLOSE, 0, 0);
        });
        main->mnuHelpAbout.Press();
        main->mnuToolsOptions.Press();
        main->mnuToolsMonitor.Press();
        auto& monitor = dynamic_cast<frmMonitor&>(*platform.manager.OpenForms().back());
        ExpectNames(monitor);
        using enum TerminalCommand;
        for (const TerminalCommand command : {Settings, TerminalSettings, Find, SendBytes})
            monitor.comMonitor.Invoke(command);
        for (const auto& form : platform.manager.OpenForms()) {
            names.insert(form->Name());
            ExpectNames(*form);
        }
        monitor.mnuCommOpen.Press();
        platform.dialogs.choices = {"lines.txt"};
        monitor.mnuCaptureSend.Press();
        platform.queue.StopTimer(timer);
        main->Unload();
    };
    std::string lines;
    for (int i = 0; i < 2000; ++i) lines += "1\n";
    platform.files.Add("lines.txt", lines);
    for (int i = 0; i < 3; ++i) openAll();  // the system caches some objects
    const auto before = Held();
    for (int i = 0; i < 20; ++i) openAll();
    // The system gives some handles back later.
    for (const auto& [kind, count] : Held()) EXPECT_LE(count, before.at(kind)) << kind;
    EXPECT_EQ(Told(platform), Texts{});
    EXPECT_EQ(names, (std::set<std::string>{"frmAbout", "frmConfigure", "frmFind", "frmMain",
                                            "frmMonitor", "frmPortSettings", "frmSend",
                                            "frmSendBytes", "frmTerminalSettings"}));
}

// Some systems report the new selection during the collapse, and the collapse last.
TEST_F(Peers, OfTheOptionsOpenNothingAgainWhileAHeadingCloses) {
    const auto options = std::make_shared<frmConfigure>(platform.manager, platform.real);
    options->Load();
    options->Initialize(window->Settings(), *window);
    options->Show();
    const HWND tree = ChildOf(*options, "tvwOptions");
    const auto heading =
        reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0));
    const auto headingIs = [&](UINT state) {
        const auto item = reinterpret_cast<WPARAM>(heading);
        return (SendMessageW(tree, TVM_GETITEMSTATE, item, LPARAM{state}) & state) != 0;
    };
    ASSERT_TRUE(headingIs(TVIS_EXPANDED) && options->picHolder[0].Enabled());
    EXPECT_TRUE(headingIs(TVIS_BOLD));
    SendMessageW(tree, TVM_EXPAND, TVE_COLLAPSE, reinterpret_cast<LPARAM>(heading));
    for (const UINT code : {TVN_SELCHANGEDW, TVN_ITEMEXPANDEDW}) {
        NMTREEVIEWW told{};
        told.hdr = {tree, static_cast<UINT_PTR>(GetDlgCtrlID(tree)), code};
        told.itemNew.hItem = heading;
        SendMessageW(GetParent(tree), WM_NOTIFY, told.hdr.idFrom, reinterpret_cast<LPARAM>(&told));
        EXPECT_FALSE(headingIs(TVIS_EXPANDED));
    }
    EXPECT_FALSE(options->picHolder[0].Enabled());
    EXPECT_EQ(Pixel(ChildOf(*options, "picSelection"), 1, 1), GetSysColor(COLOR_ACTIVECAPTION));
    RECT page{};
    GetWindowRect(ChildOf(*options, "picDetails"), &page);
    MapWindowPoints(nullptr, WindowOf(*options), reinterpret_cast<POINT*>(&page), 2);
    EXPECT_EQ(ChildWindowFromPointEx(WindowOf(*options), {page.left + 8, page.bottom - 8},
                                     CWP_SKIPINVISIBLE),
              ChildOf(*options, "picDetails"))
        << "the page is still in front";
    TVHITTESTINFO button{};
    button.pt.y = 8;
    while ((button.flags & TVHT_ONITEMBUTTON) == 0 && ++button.pt.x < 40)
        SendMessageW(tree, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&button));
    const auto click = [&] {
        const LPARAM at = MAKELPARAM(button.pt.x, button.pt.y);
        SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, at);
        SendMessageW(tree, WM_LBUTTONUP, 0, at);
    };
    click();
    EXPECT_TRUE(headingIs(TVIS_EXPANDED));
    const LRESULT below =
        SendMessageW(tree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(heading));
    SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, below);
    EXPECT_TRUE(options->picHolder[0].Enabled());
    click();
    EXPECT_FALSE(headingIs(TVIS_EXPANDED) || options->picHolder[0].Enabled());
    options->cboPort.Items({"COM1", std::string(99, 'M'), "COM3"});
    EXPECT_GT(SendMessageW(ChildOf(*options, "cboPort"), CB_GETDROPPEDWIDTH, 0, 0), 99 * 8);
    options->Unload();
}

TEST_F(Peers, RefuseShutdownAndSleepAndHonourBothWhenIdle) {
    const auto mayEnd = [this] {
        return SendMessageW(WindowOf(*window), WM_QUERYENDSESSION, 0, 0) != 0;
    };
    // A single request without ES_CONTINUOUS leaves the state unchanged.
    const auto wake = [] { return SetThreadExecutionState(ES_SYSTEM_REQUIRED); };
    EXPECT_TRUE(mayEnd());
    int boxes = 0;
    platform.boxes.whileOpen = [&](const MessageBoxRequest& box) {
        ++boxes;
        EXPECT_FALSE(mayEnd()) << box.text;
        EXPECT_EQ(gBlockReason, L"Updating Indicator");
        EXPECT_EQ(wake(), ES_CONTINUOUS | ES_SYSTEM_REQUIRED) << box.text;
    };
    Flash(*window);
    EXPECT_EQ(boxes, 2);
    EXPECT_FALSE(window->Session().Flags().mblnCloseRequested ||
                 window->Session().Flags().mblnAbortFlash);
    EXPECT_TRUE(mayEnd());
    EXPECT_EQ(wake(), ES_CONTINUOUS);
    EXPECT_EQ(gBlockReason, L"");
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
    SendMessageW(WindowOf(*window), WM_ENDSESSION, FALSE, 0);
    EXPECT_FALSE(window->Gone()) << "another program has refused";
    SendMessageW(WindowOf(*window), WM_ENDSESSION, TRUE, 0);
    EXPECT_TRUE(window->Gone());
}

TEST_F(Peers, ThePictureIsClickedAsAButtonIs) {
    const HWND picture = ChildOf(*window, "picPicture");
    constexpr LPARAM kInside = MAKELPARAM(9, 9);
    constexpr LPARAM kBelow = MAKELPARAM(9, 3000);
    constexpr LPARAM kHeldDown = LPARAM{KF_REPEAT} << 16;
    struct Message {
        UINT number;
        WPARAM first;
        LPARAM second = 0;
    };
    const struct {
        const char* what;
        std::vector<Message> messages;
        std::size_t opened;
    } kRows[] = {
        {"the end of a double click on the title bar", {{WM_LBUTTONUP, 0, kInside}}, 0},
        {"a click", {{WM_LBUTTONDOWN, MK_LBUTTON, kInside}, {WM_LBUTTONUP, 0, kInside}}, 1},
        {"dragged away", {{WM_LBUTTONDOWN, MK_LBUTTON, kInside}, {WM_LBUTTONUP, 0, kBelow}}, 0},
        {"interrupted",
         {{WM_LBUTTONDOWN, MK_LBUTTON, kInside}, {WM_CANCELMODE, 0}, {WM_LBUTTONUP, 0, kInside}},
         0},
        {"Space", {{WM_KEYDOWN, VK_SPACE}, {WM_KEYDOWN, VK_SPACE, kHeldDown}}, 1},
        {"Enter", {{WM_KEYDOWN, VK_RETURN}, {WM_KEYDOWN, VK_RETURN, kHeldDown}}, 1}};
    for (const auto& row : kRows) {
        for (const Message& each : row.messages)
            Post(picture, each.number, each.first, each.second);
        EXPECT_EQ(platform.shell.asked.size(), row.opened) << row.what;
        platform.shell.asked.clear();
    }
    EXPECT_EQ(platform.dialogs.shown.size(), 0u) << "Enter pressed the default button";
}

TEST_F(Peers, TabLeadsToThePictureWhichShowsItAndNothingElseDoes) {
    const HWND picture = ChildOf(*window, "picPicture");
    const HWND button = ChildOf(*window, "cmdFlash");
    const auto edge = [picture](int at) { return Pixel(picture, at, at); };
    EXPECT_EQ(GetFocus(), button);
    EXPECT_NE(edge(0), GetSysColor(COLOR_WINDOWTEXT));
    Type(VK_TAB);
    EXPECT_EQ(GetFocus(), picture);
    EXPECT_EQ(edge(0), GetSysColor(COLOR_WINDOWTEXT));
    EXPECT_EQ(edge(1), GetSysColor(COLOR_WINDOW));
    Type(VK_TAB);
    EXPECT_EQ(GetFocus(), button);
    EXPECT_NE(edge(0), GetSysColor(COLOR_WINDOWTEXT));
    const HMENU menu = GetMenu(WindowOf(*window));
    constexpr UINT kFlashItem = Win32MenuBar::kFirstCommand + 1;
    wchar_t caption[64] = {};
    GetMenuStringW(menu, kFlashItem, caption, 64, MF_BYCOMMAND);
    EXPECT_STREQ(caption, L"&Update Indicator...") << "translated";
    const auto isGrey = [&] { return (GetMenuState(menu, kFlashItem, 0) & MF_GRAYED) != 0; };
    window->EnableButtons(false);
    EXPECT_TRUE(isGrey());
    EXPECT_EQ(GetFocus(), WindowOf(*window)) << "not to a picture, nor to a disabled button";
    window->EnableButtons(true);
    EXPECT_FALSE(isGrey());
    EXPECT_EQ(GetFocus(), button);
    window->ShowFunction(MainPanel::Flash);
    SetForegroundWindow(GetDesktopWindow());
    SetActiveWindow(nullptr);
    window->ShowFunction(MainPanel::Startup);
    SetActiveWindow(WindowOf(*window));
    EXPECT_EQ(GetFocus(), button) << "changed while another window had the keys";
}

TEST_F(Peers, TheWaitCursorIsThatOfEveryControlUntilItIsTakenBack) {
    const auto over = [this](const char* name) {
        const HWND child = ChildOf(*window, name);
        SendMessageW(child, WM_SETCURSOR, reinterpret_cast<WPARAM>(child),
                     MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        return GetCursor();
    };
    for (const auto pointer : {MousePointer::Hourglass, MousePointer::Default}) {
        const bool waits = pointer == MousePointer::Hourglass;
        const HCURSOR cursor = LoadCursorW(nullptr, waits ? IDC_WAIT : IDC_ARROW);
        platform.windows.SetMousePointer(pointer);
        EXPECT_EQ(GetCursor(), cursor);
        EXPECT_EQ(over("picPicture"), cursor);
        EXPECT_EQ(over("cmdFlash"), cursor);
    }
}

TEST_F(Peers, TheDesignDecidesFontAndBorder) {
    const auto fontOf = [this](const char* name) {
        LOGFONTW font{};
        const LRESULT used = SendMessageW(ChildOf(*window, name), WM_GETFONT, 0, 0);
        GetObjectW(reinterpret_cast<HFONT>(used), sizeof font, &font);
        return std::pair(font.lfHeight, font.lfWeight > FW_NORMAL);
    };
    EXPECT_EQ(fontOf("lblStatus"), (std::pair(LONG{-19}, true))) << "14 points";
    EXPECT_EQ(fontOf("lblUpdateStatus"), (std::pair(LONG{-12}, false)));
    EXPECT_NE(GetWindowLongPtrW(ChildOf(*window, "pbarStatus"), GWL_EXSTYLE) & WS_EX_STATICEDGE, 0);
}

TEST_F(Peers, ThePictureHasAToolTipThatChangesAndGoes) {
    HWND tips = nullptr;
    do tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr);
    while (tips != nullptr && GetWindow(tips, GW_OWNER) != WindowOf(*window));
    const auto shown = [&] {
        wchar_t text[200] = {};
        TTTOOLINFOW tool{};
        tool.cbSize = sizeof tool;
        tool.hwnd = WindowOf(*window);
        tool.uId = reinterpret_cast<UINT_PTR>(ChildOf(*window, "picPicture"));
        tool.lpszText = text;
        SendMessageW(tips, TTM_GETTEXTW, 200, reinterpret_cast<LPARAM>(&tool));
        return ToUtf8(text);
    };
    EXPECT_EQ(shown(), "Visit our World Wide Web site for more information.");
    window->picPicture.ToolTip("Another");
    EXPECT_EQ(shown(), "Another");
    window->picPicture.ToolTip("");
    EXPECT_EQ(shown(), "");
}

TEST_F(Peers, TheHelpKeyIsForTheWindowOfTheControl) {
    const Form* asked = nullptr;
    platform.manager.Help = [&](const Form& form) { asked = &form; };
    HELPINFO info{};
    SendMessageW(ChildOf(*window, "cmdFlash"), WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
    EXPECT_EQ(asked, window.get());
}

TEST_F(Peers, APictureIsShownWholeInTheMiddleAndUndistorted) {
    const COLORREF kRed = RGB(255, 0, 0);
    const COLORREF kBlue = RGB(0, 0, 255);
    const COLORREF kWhite = RGB(255, 255, 255);
    const COLORREF ground = GetSysColor(COLOR_BTNFACE);
    const HWND place = ChildOf(*window, "picPicture");
    RECT area{};
    GetClientRect(place, &area);
    const int middle = area.right / 2;
    const int half = area.bottom / 2;
    const struct {
        int width;
        int height;
        int reachesX;  // of the middle, to the right edge of the picture
        int reachesY;
    } kRows[] = {
        {20, 40, half / 2, half}, {40, 20, half * 2, half}, {400, 10, middle, middle / 40}};
    for (const auto& [width, height, x, y] : kRows) {
        SCOPED_TRACE(width);
        platform.files.Add("a.bmp", driver::Bitmap(width, height));
        window->picPicture.Loaded(platform.images.Load("a.bmp"));
        EXPECT_EQ(Pixel(place, middle - x + 4, half - y + 3), kRed);
        EXPECT_EQ(Pixel(place, middle + x - 4, half - y + 3), kBlue);
        EXPECT_EQ(Pixel(place, middle, half + y - 3), kWhite);
        const bool fillsHeight = y == half;
        EXPECT_EQ(
            Pixel(place, fillsHeight ? middle + x + 4 : middle, fillsHeight ? half : half - y - 4),
            ground);
    }
    window->picPicture.Loaded(nullptr);
    EXPECT_NE(Pixel(place, 4, 4), ground) << "the banner";
    using namespace std::string_literals;
    for (const std::string& bytes : {"Not a picture\r\n"s, "\xFF\xD8\xFF\xC0\0\x11\x08\0\x10\0"s}) {
        platform.files.Add("a.bmp", bytes);
        EXPECT_EQ(Raised([this] { platform.images.Load("a.bmp"); }).Number(), 481);
    }
}

TEST_F(Peers, AnErrorInWhatTheSystemCallsIsReportedAndGoesNoFurther) {
    const auto fail = [] { throw RuntimeError(ErrorNumber::Overflow); };
    window->cmdFlash.Click.Connect(fail);
    window->picPicture.Click.Connect(fail);
    SendMessageW(ChildOf(*window, "cmdFlash"), BM_CLICK, 0, 0);
    SendMessageW(ChildOf(*window, "picPicture"), WM_KEYDOWN, VK_SPACE, 0);
    const TimerId timer = platform.queue.StartTimer(10, fail);
    while (platform.boxes.shown.size() < 3) platform.queue.PumpPending();
    platform.queue.StopTimer(timer);
    EXPECT_EQ(Told(platform), (Texts{ReportBox("Win32FormWindow.OnFormMessage", "(6) Overflow"),
                                     ReportBox("Win32FormWindow.OnPanelMessage", "(6) Overflow"),
                                     ReportBox("Win32MessagePump.OnMessage", "(6) Overflow")}));
}

TEST_F(Peers, AButtonWhoseHandlerClosesTheWindowIsNotLookedAtAnyMore) {
    std::vector<std::string> others;
    window->cmdFlash.Click.Connect([&] {
        window->Unload();
        // Reuses freed memory, so that a use-after-free ends the test. The class of buttons adds
        // no members.
        for (int i = 0; i < 1000; ++i) others.emplace_back(sizeof(Win32ChildControl) - 1, '\xff');
    });
    SendMessageW(ChildOf(*window, "cmdFlash"), BM_CLICK, 0, 0);
    EXPECT_TRUE(window->Gone());
}

TEST_F(Peers, AChildThatCannotBeMadeIsAnErrorInTheWordsOfTheSystem) {
    Win32Context context;
    const HWND nowhere = reinterpret_cast<HWND>(INT_PTR{0x7ffe});
    const RuntimeError error = Raised([&] {
        MakeChild({context, window->lblStatus, {}}, nowhere, 1);
    });
    EXPECT_EQ(error.Number(), 7);
    EXPECT_NE(error.Description(), StandardDescription(7));
}

TEST_F(Peers, OfTheAboutWindowAreAnIconAndAButtonThatDoesNotLookChosen) {
    const auto about = std::make_shared<frmAbout>(platform.manager, platform.strings);
    about->Show();
    EXPECT_EQ(GetWindowLongPtrW(WindowOf(*about), GWL_STYLE) & WS_THICKFRAME, 0);
    EXPECT_NE(GetClassLongPtrW(WindowOf(*about), GCLP_HICON), 0u);
    EXPECT_NE(SendMessageW(ChildOf(*about, "imgLogo"), STM_GETICON, 0, 0), 0);
    EXPECT_EQ(GetWindowLongPtrW(ChildOf(*about, "cmdOK"), GWL_STYLE) & BS_TYPEMASK, BS_PUSHBUTTON);
    about->Unload();
}

}  // namespace
}  // namespace vantor
