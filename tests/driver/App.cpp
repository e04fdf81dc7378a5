#include "tests/driver/App.hpp"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>

#include "resources/Designs.hpp"

namespace vantor::driver {
namespace {

constexpr ULONGLONG kPatienceMs = 100'000;
constexpr UINT kAnswerMs = 30'000;
constexpr int kFirstChild = 1000;
constexpr int kFirstCommand = 2000;
constexpr int kFileName = 1148;

#define NAMED(key) \
    { #key, VK_##key }
const std::map<std::string, int> kKeys = {
    NAMED(TAB),     NAMED(RETURN),  NAMED(ESCAPE),   NAMED(UP),       NAMED(DOWN),
    NAMED(LEFT),    NAMED(RIGHT),   NAMED(HOME),     NAMED(END),      NAMED(PRIOR),
    NAMED(NEXT),    NAMED(INSERT),  NAMED(DELETE),   NAMED(BACK),     NAMED(SPACE),
    NAMED(CLEAR),   NAMED(ADD),     NAMED(SUBTRACT), NAMED(MULTIPLY), NAMED(DIVIDE),
    NAMED(DECIMAL), NAMED(NUMPAD8), NAMED(OEM_PLUS), NAMED(PAUSE),    NAMED(CANCEL),
    NAMED(F2),      NAMED(F4),      NAMED(F10),      NAMED(F12)};

std::wstring& DesktopName() {
    static std::wstring name = ToWide("drive-" + Setting("DRIVE_RUN"));
    return name;
}

/// Control IDs follow the order of the design, counted separately for windows and menu items.
int Number(const FormDesign& design, const char* name, int index, bool menuItem) {
    int number = 0;
    for (const ControlDesign& row : design.controls) {
        if ((row.kind == ControlKind::MenuItem) != menuItem) continue;
        if (std::string(name) == row.name && index == row.index) return number;
        ++number;
    }
    throw std::runtime_error(std::string("no such control: ") + name);
}

/// A window does not carry the name of its design; the number of controls identifies it.
bool IsMadeFrom(HWND form, const FormDesign& design) {
    const auto count =
        static_cast<int>(std::ranges::count_if(design.controls, [](const ControlDesign& row) {
            return row.kind != ControlKind::MenuItem;
        }));
    return GetDlgItem(form, kFirstChild + count - 1) != nullptr &&
           GetDlgItem(form, kFirstChild + count) == nullptr;
}

/// The system kills the processes in this job when the driver ends, even by a crash.
HANDLE Job() {
    static const HANDLE job = [] {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

}  // namespace

// Wine reads the size of a desktop from the registry once, when it first creates its window.
void EnterDesktop(const std::wstring& name, const std::wstring& size) {
    constexpr const wchar_t* kSizes = L"Software\\Wine\\Explorer\\Desktops";
    RegSetKeyValueW(HKEY_CURRENT_USER, kSizes, name.c_str(), REG_SZ, size.c_str(),
                    static_cast<DWORD>((size.size() + 1) * sizeof(wchar_t)));
    const HDESK desktop = CreateDesktopW(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    if (desktop == nullptr || SetThreadDesktop(desktop) == 0)
        throw std::runtime_error("no desktop for this run");
    GetDesktopWindow();  // creates the desktop window
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kSizes, name.c_str());
}

void EnterDesktop() {
    SetProcessDPIAware();  // otherwise the system scales all coordinates
    EnterDesktop(DesktopName(), ToWide(Setting("DRIVE_DESKTOP")));
}

Win32Handle StartProgram(const std::string& path) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.lpDesktop = DesktopName().data();
    PROCESS_INFORMATION started{};
    if (CreateProcessW(ToWide(path).c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &started) == 0)
        throw std::runtime_error("does not start: " + path);
    AssignProcessToJobObject(Job(), started.hProcess);
    CloseHandle(started.hThread);
    return Win32Handle(started.hProcess);
}

DWORD WaitForEnd(HANDLE process) {
    DWORD status = 0;
    if (WaitForSingleObject(process, static_cast<DWORD>(kPatienceMs)) != WAIT_OBJECT_0)
        throw std::runtime_error("the program does not end");
    GetExitCodeProcess(process, &status);
    return status;
}

WORD KeyNamed(const std::string& name) {
    const auto key = kKeys.find(name);
    return static_cast<WORD>(key == kKeys.end() ? name.at(0) : key->second);
}

void Key(const std::string& name) {
    const bool withAlt = name.starts_with("Alt+");
    std::vector<INPUT> inputs;
    const auto add = [&inputs](WORD which, DWORD flags) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = which;
        input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(which, MAPVK_VK_TO_VSC));
        input.ki.dwFlags = flags;
        inputs.push_back(input);
    };
    if (withAlt) add(VK_MENU, 0);
    for (const DWORD flags : {DWORD{0}, DWORD{KEYEVENTF_KEYUP}})
        add(KeyNamed(withAlt ? name.substr(4) : name), flags);
    if (withAlt) add(VK_MENU, KEYEVENTF_KEYUP);
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

void ClickAt(POINT at, int times) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = at.x * 65535 / GetSystemMetrics(SM_CXSCREEN);
    input.mi.dy = at.y * 65535 / GetSystemMetrics(SM_CYSCREEN);
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    std::vector<INPUT> inputs = {input};
    input.mi = {};
    for (int i = 0; i < times; ++i)
        for (const DWORD flags : {DWORD{MOUSEEVENTF_LEFTDOWN}, DWORD{MOUSEEVENTF_LEFTUP}}) {
            input.mi.dwFlags = flags;
            inputs.push_back(input);
        }
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

LRESULT Send(HWND window, UINT message, WPARAM first, LPARAM second) {
    DWORD_PTR result = 0;
    SendMessageTimeoutW(window, message, first, second, SMTO_NORMAL, kAnswerMs, &result);
    return static_cast<LRESULT>(result);
}

std::string TextOf(HWND window) {
    std::array<wchar_t, 2048> text{};
    Send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return ToUtf8(text.data());
}

void PressIn(HWND dialog, int button) {
    PostMessageW(GetDlgItem(dialog, button), BM_CLICK, 0, 0);
}

void Fill(HWND fileDialog, const std::string& path) {
    HWND edit = GetDlgItem(fileDialog, kFileName);
    while (const HWND inner = GetWindow(edit, GW_CHILD)) edit = inner;
    const std::wstring wide = ToWide(path);
    Send(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(wide.c_str()));
    PressIn(fileDialog, IDOK);
}

// --- the program --------------------------------------------------------------------------------

App::App()
    : Window(nullptr, kMainWindowDesign),
      mProcess(StartProgram(Setting("DRIVE_PROGRAM"))),
      mId(GetProcessId(mProcess.Get())) {
    Await("the main window", [this] {
        const std::vector<HWND> forms = Windows(L"VantorForm", Dialog() != nullptr);
        if (!forms.empty()) mHandle = forms.front();
        return mHandle != nullptr || !IsRunning();
    });
}

App::~App() {
    TerminateProcess(mProcess.Get(), 99);
    WaitForSingleObject(mProcess.Get(), INFINITE);
}

std::vector<HWND> App::Windows(const wchar_t* windowClass, bool hiddenToo) const {
    std::vector<HWND> found;
    HWND window = nullptr;
    while ((window = FindWindowExW(nullptr, window, windowClass, nullptr)) != nullptr) {
        DWORD id = 0;
        GetWindowThreadProcessId(window, &id);
        if (id == mId && (hiddenToo || IsWindowVisible(window) != 0)) found.push_back(window);
    }
    return found;
}

std::vector<Window> App::Forms(const FormDesign& design) const {
    std::vector<Window> found;
    for (const HWND form : Windows(L"VantorForm"))
        if (form != mHandle && IsMadeFrom(form, design)) found.emplace_back(form, design);
    return found;
}

Window App::AwaitForm(const FormDesign& design) const {
    std::vector<Window> forms;
    Await(std::string("the window ") + design.name,
          [&] { return !(forms = Forms(design)).empty(); });
    return forms.front();
}

HWND App::First(const wchar_t* windowClass) const {
    const std::vector<HWND> windows = Windows(windowClass);
    return windows.empty() ? nullptr : windows.front();
}

bool App::IsFileDialog(HWND dialog) {
    return GetDlgItem(dialog, kFileName) != nullptr && IsWindowEnabled(dialog) != 0;
}

void App::ChooseFile(const std::string& path) const {
    Await("the file dialog", [this] { return IsFileDialog(Dialog()); });
    Fill(Dialog(), path);
}

HWND App::Box() const {
    const HWND dialog = Dialog();
    return GetDlgItem(dialog, kBoxText) == nullptr ? nullptr : dialog;
}

std::string App::TakeBox(int button) const {
    HWND box = nullptr;
    Await("a message box", [&] { return (box = Box()) != nullptr; });
    std::string text = TextIn(box);
    PressIn(box, button);
    Await("the box to close", [&] { return IsWindow(box) == 0; });
    return text;
}

// A window is painted when its queue holds no more input.
void App::AwaitInputTaken() const {
    RedrawWindow(mHandle, nullptr, nullptr, RDW_INVALIDATE);
    Await("the end of the input",
          [this] { return !IsRunning() || GetUpdateRect(mHandle, nullptr, FALSE) == 0; });
}

// When a window of the display server gets the focus or the mouse, Wine copies the state of the
// real keyboard, on which all keys are up. An injected Alt is lost when this happens between it
// and its key.
void App::KeyUntil(const std::string& key, const std::string& what,
                   const std::function<bool()>& condition) const {
    constexpr unsigned kLostAfterMs = 3'000;
    constexpr int kPresses = 10;
    for (int presses = 0; presses < kPresses; ++presses) {
        Key(key);
        if (Comes(condition, kLostAfterMs)) return;
        AwaitInputTaken();
    }
    Await(what, condition);
}

GUITHREADINFO App::Input() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(mHandle, nullptr), &info);
    return info;
}

HWND App::Focus() const {
    const GUITHREADINFO info = Input();
    return info.hwndActive == GetForegroundWindow() ? info.hwndFocus : nullptr;
}

bool App::IsRunning() const {
    return WaitForSingleObject(mProcess.Get(), 0) == WAIT_TIMEOUT;
}

bool App::Answers() const {
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(mHandle, WM_NULL, 0, 0, SMTO_NORMAL, kAnswerMs, &result) != 0 ||
           IsWindow(mHandle) == 0;
}

// --- all windows --------------------------------------------------------------------------------

RECT Window::Area() const {
    RECT area{};
    GetWindowRect(mHandle, &area);
    return area;
}

// The control may be a child of a panel.
HWND Window::Child(const char* name, int index) const {
    const int id = kFirstChild + Number(*mDesign, name, index, false);
    HWND found = GetDlgItem(mHandle, id);
    for (HWND panel = nullptr; found == nullptr;) {
        panel = FindWindowExW(mHandle, panel, L"VantorPanel", nullptr);
        if (panel == nullptr) break;
        found = GetDlgItem(panel, id);
    }
    return found;
}

void Window::Choose(const char* item) const {
    const int command = kFirstCommand + Number(*mDesign, item, -1, true);
    PostMessageW(mHandle, WM_COMMAND, static_cast<WPARAM>(command), 0);
}

// The system does not marshal SB_GETTEXTW across processes: the text goes into a buffer in the
// target process and is read from there.
std::string Window::Panel(const char* bar, int index) const {
    constexpr std::size_t kRoom = 256 * sizeof(wchar_t);
    DWORD id = 0;
    GetWindowThreadProcessId(mHandle, &id);
    const Win32Handle process(OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ, FALSE, id));
    void* const there = VirtualAllocEx(process.Get(), nullptr, kRoom, MEM_COMMIT, PAGE_READWRITE);
    std::array<wchar_t, 256> text{};
    Send(Child(bar), SB_GETTEXTW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(there));
    ReadProcessMemory(process.Get(), there, text.data(), kRoom, nullptr);
    VirtualFreeEx(process.Get(), there, 0, MEM_RELEASE);
    return ToUtf8(text.data());
}

}  // namespace vantor::driver
