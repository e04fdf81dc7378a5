// Drives a running tsupdate.exe through Win32 only: windows, buttons, menus and keys. Does not use
// the program's classes. Functions that wait poll for a condition with a time-out (`Await`).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/win32/services/Win32Handle.hpp"
#include "platform/win32/services/Windows.hpp"
#include "tests/driver/Script.hpp"

namespace vantor {
struct FormDesign;
}

namespace vantor::driver {

/// Creates the desktop of this run; no other program of the Wine prefix uses it.
void EnterDesktop();

/// Starts a program on this desktop, in a job that is killed when the driver ends.
Win32Handle StartProgram(const std::string& path);

/// A message box: title, text, kind of icon ("question" and so on), and buttons.
struct Box {
    std::string title;
    std::string text;
    std::string icon;
    std::vector<int> buttons = {IDOK};

    bool operator==(const Box&) const = default;
};

/// Presses and releases a key by SendInput, for the foreground window.
void Key(WORD key, bool withAlt = false);

/// Moves the mouse to a point of the screen and clicks there, `times` in quick succession.
void ClickAt(POINT at, int times = 1);

/// Posts a press and a release of the left mouse button at a point of the client area of `window`.
/// Injected mouse input arrives late under Wine and looks like dragging.
void ClickIn(HWND window, int x, int y);

/// Reads the screen pixels in `at`, row by row, as 0xRRGGBB.
using Pixels = std::vector<std::uint32_t>;
Pixels OnScreen(const RECT& at);

/// The text of a window of another process.
std::string TextOf(HWND window);

/// Posts BM_CLICK to a dialog's button; does not wait.
void PressIn(HWND dialog, int button);

/// A top-level window other than the main window.
class Window {
public:
    Window(HWND handle, const FormDesign& design) : mHandle(handle), mDesign(&design) {}

    HWND WindowHandle() const { return mHandle; }
    bool IsThere() const { return IsWindow(mHandle) != 0; }
    HWND Child(const char* name, int index = -1) const;
    std::string Text(const char* name) const { return TextOf(Child(name)); }
    /// The text of panel `index` (from 0) of a status bar.
    std::string Panel(const char* bar, int index) const;

    void Press(const char* button) const;
    /// Posts the command of a menu item.
    void Choose(const char* item) const;
    void Close() const { static_cast<void>(PostMessageW(mHandle, WM_CLOSE, 0, 0)); }

private:
    HWND mHandle;
    const FormDesign* mDesign;
};

class App {
public:
    /// Starts the program and waits for its window, which is hidden behind an error box of the
    /// start-up.
    explicit App(const std::string& path = Setting("DRIVE_PROGRAM"));
    /// Terminates the process.
    ~App();
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    /// Starts a second instance and waits for its end; returns its exit status.
    static DWORD RunBeside();

    HWND Main() const { return mMain; }
    /// A control of the main window, by its name in the design; null when the window is gone.
    HWND Child(const char* name, int index = -1) const;
    std::string Text(const char* name, int index = -1) const { return TextOf(Child(name, index)); }
    bool IsEnabled(const char* name) const { return IsWindowEnabled(Child(name)) != 0; }
    bool IsShown(const char* name) const { return IsWindowVisible(Child(name)) != 0; }
    int Percent() const;
    /// The line being sent; -1 if none.
    int Line() const;

    void Press(const char* button) const;
    /// Posts the command of a menu item.
    void Choose(const char* item) const;
    void Close() const { static_cast<void>(PostMessageW(mMain, WM_CLOSE, 0, 0)); }

    /// The status or About window; null if none is open.
    HWND OtherForm() const;
    /// The windows made from `design`, topmost first.
    std::vector<Window> Forms(const FormDesign& design) const;
    /// Waits until `count` of them are open; returns the topmost.
    Window AwaitForm(const FormDesign& design, std::size_t count = 1) const;
    /// A message box or file dialog; null if none is open.
    HWND Dialog() const;
    static bool IsFileDialog(HWND dialog);
    /// Waits for the file dialog; returns it.
    HWND AwaitFileDialog() const;
    /// Waits for the file dialog, sets `path` as the file name and presses the default button.
    void ChooseFile(const std::string& path) const;
    static void Fill(HWND fileDialog, const std::string& path);
    /// Waits for a message box, reads it, presses `button` and waits until it is closed.
    Box TakeBox(int button = IDOK) const;
    /// Waits for a message box; returns its window.
    HWND AwaitBox() const;
    static Box Read(HWND box);
    static std::string TextIn(HWND box);

    bool InMenu() const;
    /// Waits until the program has processed all input injected so far.
    void AwaitInputTaken() const;
    /// Presses `key` and waits for `condition`. Presses it again when the program has processed
    /// all input and the condition is still false: the key was lost.
    void KeyUntil(WORD key, const std::string& what, const std::function<bool()>& condition,
                  bool withAlt = false) const;
    /// Waits until the main window has the keyboard, presses Alt and `key`, waits for the menu.
    void OpenMenu(WORD key) const;
    /// The open menu; null if none.
    HWND Menu() const;
    /// The control that gets the keys; null while no window of the program is in the foreground.
    HWND Focus() const;
    bool IsRunning() const;
    /// Waits for the process to end; returns its exit status.
    DWORD Wait() const;
    /// False if the main window does not process a message within 30 s.
    bool Answers() const;

private:
    std::vector<HWND> Windows(const wchar_t* windowClass, bool hiddenToo = false) const;

    Win32Handle mProcess;
    DWORD mId = 0;
    HWND mMain = nullptr;
};

}  // namespace vantor::driver
