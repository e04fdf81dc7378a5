// The options dialog as the user operates it, and the contents of the registry afterwards.
#include "tests/e2e/EndToEnd.hpp"
// Requires the types of <windows.h>.
#include <commctrl.h>

#include <array>
#include <map>
#include <string>

#include "resources/Designs.hpp"

namespace vantor::driver {
namespace {

using namespace std::string_literals;

const Box kAdvice = {
    "Tessmar Vantor Update",
    "It is recommended that a baud rate above 19200 be used for communications. Baud rates below "
    "38400 result in an increased download time.",
    "information"};
const Box kRefused = {
    "Tessmar Vantor Update",
    "The following error has occurred in procedure: \r\nfrmConfigure.cboStopBits_Click on line "
    "0\r\nError (-2147211502) Application-defined or object-defined error",
    "critical"};

class Options : public EndToEnd {
protected:
    using Values = std::map<std::string, std::string>;

    /// The values of one of the program's keys, byte for byte; for types but REG_SZ, the type.
    static Values Stored(const wchar_t* key) {
        HKEY open = nullptr;
        Values values;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, (ProgramKey() + L"\\" + key).c_str(), 0,
                          KEY_QUERY_VALUE, &open) != ERROR_SUCCESS)
            return values;
        std::array<char, 256> name{};
        std::array<char, 256> data{};
        DWORD nameLength = 0;
        DWORD size = 0;
        DWORD type = 0;
        for (DWORD i = 0; nameLength = name.size(), size = data.size(),
                   RegEnumValueA(open, i, name.data(), &nameLength, nullptr, &type,
                                 reinterpret_cast<BYTE*>(data.data()), &size) == ERROR_SUCCESS;
             ++i)
            values[name.data()] =
                std::string(data.data(), size) + (type == REG_SZ ? "" : std::to_string(type));
        RegCloseKey(open);
        return values;
    }
    static Values SettingsWith(const std::string& port, const std::string& speed) {
        return {{"AutoUnZip", "True\0"s}, {"PassiveFTP", "False\0"s},  {"Port", port + '\0'},
                {"Baud", speed + '\0'},   {"Parity", "N\0"s},          {"DataBits", "8\0"s},
                {"StopBits", "2\0"s},     {"EnableProxy", "False\0"s}, {"ProxyHostname", "\0"s},
                {"ProxtPort", "8080\0"s}, {"ProxyUsername", "\0"s},    {"ProxyPassword", "\0"s},
                {"ProxyType", "1\0"s}};
    }

    Window Open() const {
        app->Choose("mnuToolsOptions");
        const Window options = app->AwaitForm(kConfigureWindowDesign);
        Await("the keyboard", [&] { return app->Focus() == options.Child("tvwOptions"); });
        EXPECT_EQ(IsWindowEnabled(app->Main()), FALSE);
        return options;
    }
    void AwaitClosed(const Window& options) const {
        Await("the end", [&] { return !options.IsThere(); });
        Await("the main window", [this] { return IsWindowEnabled(app->Main()) != 0; });
        EXPECT_EQ(app->Dialog(), nullptr);
    }
    /// Moves the focus to a list with Tab.
    void GoTo(const Window& options, const char* list) const {
        for (int tabs = 0; tabs < 9 && app->Focus() != options.Child(list); ++tabs) {
            const HWND before = app->Focus();
            app->KeyUntil(VK_TAB, "the next control", [&] {
                const HWND focus = app->Focus();
                return focus != nullptr && focus != before;
            });
        }
        ASSERT_EQ(app->Focus(), options.Child(list));
    }
    static bool IsListOpen(const Window& options, const char* list) {
        return SendMessageW(options.Child(list), CB_GETDROPPEDSTATE, 0, 0) != 0;
    }
    void OpenList(const Window& options, const char* list) const {
        GoTo(options, list);
        app->KeyUntil(VK_F4, "the open list", [&] { return IsListOpen(options, list); });
    }
    void PickPort(const Window& options, WORD key, const std::string& port) const {
        GoTo(options, "cboPort");
        app->KeyUntil(key, port, [&] { return options.Text("cboPort") == port; });
    }
    void KeyToEnd(const Window& options, WORD key, bool withAlt = false) const {
        app->KeyUntil(
            key, "the end", [&] { return !options.IsThere(); }, withAlt);
        AwaitClosed(options);
    }

    static bool IsHeadingOpen(const Window& options) {
        const HWND tree = options.Child("tvwOptions");
        const LRESULT heading = SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0);
        const LRESULT state =
            SendMessageW(tree, TVM_GETITEMSTATE, static_cast<WPARAM>(heading), TVIS_EXPANDED);
        return (state & TVIS_EXPANDED) != 0;
    }
    /// The front panel at the position of the pages.
    static HWND Front(const Window& options) {
        RECT page{};
        GetWindowRect(options.Child("picDetails"), &page);
        return WindowFromPoint({page.right - 8, page.bottom - 8});
    }
    static void ExpectPage(const Window& options, const char* text, bool serial) {
        Await(text, [&] { return options.Text("picSelection") == text; });
        const HWND page = options.Child("picHolder", 0);
        Await("the page",
              [&] { return Front(options) == (serial ? page : options.Child("picDetails")); });
        EXPECT_EQ(IsWindowEnabled(page) != 0, serial);
    }
    void KeyToHeading(const Window& options) const {
        app->KeyUntil(VK_LEFT, "the heading",
                      [&] { return options.Text("picSelection") == "Communications"; });
        ExpectPage(options, "Communications", false);
    }
};

TEST_F(Options, OkApplyAndCancelDecideWhatIsStored) {
    Window options = Open();
    KeyToEnd(options, VK_RETURN);
    EXPECT_EQ(Stored(L"Settings"), Values{});

    options = Open();
    PickPort(options, VK_DOWN, "COM2");
    KeyToEnd(options, VK_ESCAPE);
    EXPECT_EQ(Stored(L"Settings"), Values{});

    options = Open();
    EXPECT_EQ(options.Text("cboPort"), "COM1");
    PickPort(options, VK_DOWN, "COM2");
    app->KeyUntil(
        'A', "the values", [] { return Stored(L"Settings") == SettingsWith("COM2 ", "38400 "); },
        true);
    PickPort(options, VK_UP, "COM1");
    options.Close();
    AwaitClosed(options);
    EXPECT_EQ(Stored(L"Settings"), SettingsWith("COM2 ", "38400 "));

    Restart();
    options = Open();
    EXPECT_EQ(options.Text("cboPort"), "COM2");
    PickPort(options, VK_UP, "COM1");
    KeyToEnd(options, 'O', true);
    EXPECT_EQ(Stored(L"Settings"), SettingsWith("COM1 ", "38400 "));
}

// In an open list the arrow keys do not select; only the item at closing counts.
TEST_F(Options, ASlowSpeedIsAdvisedAgainstOnceAndKept) {
    const Window options = Open();
    OpenList(options, "cboBaudRate");
    for (const WORD key : std::to_array<WORD>({VK_UP, VK_DOWN, VK_UP, VK_RETURN})) Key(key);
    EXPECT_EQ(app->TakeBox(), kAdvice);
    OpenList(options, "cboBaudRate");
    for (const WORD key : std::to_array<WORD>({VK_DOWN, VK_ESCAPE})) Key(key);
    Await("the choice of before", [&] {
        return options.Text("cboBaudRate") == "9600" && !IsListOpen(options, "cboBaudRate");
    });
    EXPECT_TRUE(options.IsThere()) << "the key was the list's";
    options.Press("cmdOK");
    AwaitClosed(options);
    EXPECT_EQ(Stored(L"Settings"), SettingsWith("COM1 ", "9600  "));
    EXPECT_EQ(OpenMonitor().Panel("sbStatusBar", 2), "9600,N,8,2");
}

TEST_F(Options, TheRefusedStopBitsAreReportedAndStayShown) {
    const Window options = Open();
    OpenList(options, "cboStopBits");
    app->KeyUntil(VK_RETURN, "the box", [this] { return app->Dialog() != nullptr; });
    EXPECT_EQ(app->TakeBox(), kRefused);
    EXPECT_EQ(options.Text("cboStopBits"), "2");
    options.Press("cmdOK");
    AwaitClosed(options);
    EXPECT_EQ(Stored(L"Settings"), Values{});
}

TEST_F(Options, TheTreeChangesThePageAndIsRememberedWithTheCorner) {
    Window options = Open();
    ExpectPage(options, "Settings", true);
    EXPECT_TRUE(IsHeadingOpen(options));
    KeyToHeading(options);
    const HWND tree = options.Child("tvwOptions");
    const auto line = static_cast<int>(SendMessageW(tree, TVM_GETITEMHEIGHT, 0, 0));
    ClickIn(tree, 70, line * 3 / 2);
    ExpectPage(options, "Settings", true);
    KeyToHeading(options);
    app->KeyUntil(VK_LEFT, "the closed heading", [&] { return !IsHeadingOpen(options); });
    SetWindowPos(options.WindowHandle(), nullptr, 60, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    RECT before{};
    GetWindowRect(options.WindowHandle(), &before);
    KeyToEnd(options, 'C', true);
    EXPECT_EQ(Stored(L"Positions\\NodeStates"), (Values{{"tvwOptions", "P1=False|C0=False|\0"s}}));

    Restart();
    options = Open();
    ExpectPage(options, "Settings", true);
    EXPECT_TRUE(IsHeadingOpen(options)) << "the selected node is hidden";
    RECT after{};
    GetWindowRect(options.WindowHandle(), &after);
    EXPECT_TRUE(EqualRect(&before, &after)) << after.left << ' ' << after.top;
}

}  // namespace
}  // namespace vantor::driver
