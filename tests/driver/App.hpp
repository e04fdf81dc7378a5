// Drives a running tsupdate.exe through Win32 only: windows, buttons, menus and keys. Does not use
// the program's classes. Functions that wait poll for a condition with a time-out (`Await`).
#pragma once

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

/// Creates the desktop `name` of `size` pixels ("1024x768") and assigns this thread to it. Wine
/// draws it in one window of the display and manages frames and keyboard focus in it, so that no
/// window manager is needed.
void EnterDesktop(const std::wstring& name, const std::wstring& size);

/// The same, for the desktop of this run of the script.
void EnterDesktop();

/// Starts a program on this desktop, in a job that is killed when the driver ends.
Win32Handle StartProgram(const std::string& path);

/// Waits for a process to end; returns its exit status.
DWORD WaitForEnd(HANDLE process);

/// A key by the name of its constant without "VK_", or by its letter or digit.
WORD KeyNamed(const std::string& name);

/// Presses and releases "KEY" or "Alt+KEY" by SendInput, for the foreground window.
void Key(const std::string& name);

/// Moves the mouse to a point of the screen and clicks there, `times` in quick succession.
void ClickAt(POINT at, int times = 1);

/// Sends a message to a window of another process; 0 if it is not answered within 30 s.
LRESULT Send(HWND window, UINT message, WPARAM first, LPARAM second);

/// The text of a window of another process.
std::string TextOf(HWND window);

/// Posts BM_CLICK to a dialog's button; does not wait.
void PressIn(HWND dialog, int button);

/// Sets `path` as the file name of a file dialog and presses its default button.
void Fill(HWND fileDialog, const std::string& path);

/// A window of the program, made from `design`. Presses, choices and closes are posted.
class Window {
public:
    Window(HWND handle, const FormDesign& design) : mHandle(handle), mDesign(&design) {}

    HWND WindowHandle() const { return mHandle; }
    bool IsThere() const { return IsWindow(mHandle) != 0; }
    RECT Area() const;
    /// A control, by its name in the design; null when the window is gone.
    HWND Child(const char* name, int index = -1) const;
    std::string Text(const char* name, int index = -1) const { return TextOf(Child(name, index)); }
    bool IsEnabled(const char* name) const { return IsWindowEnabled(Child(name)) != 0; }
    bool IsShown(const char* name) const { return IsWindowVisible(Child(name)) != 0; }
    /// The text of panel `index` (from 0) of a status bar.
    std::string Panel(const char* bar, int index) const;

    void Press(const char* button) const { PostMessageW(Child(button), BM_CLICK, 0, 0); }
    void Choose(const char* item) const;
    void Close() const { PostMessageW(mHandle, WM_CLOSE, 0, 0); }

protected:
    HWND mHandle;
    const FormDesign* mDesign;
};

/// The program, and its main window.
class App : public Window {
public:
    /// Starts the program and waits for its window, which is hidden behind an error box of the
    /// start-up.
    App();
    /// Terminates the process.
    ~App();
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    /// The other windows made from `design`, topmost first.
    std::vector<Window> Forms(const FormDesign& design) const;
    /// Waits until one is open, and returns it.
    Window AwaitForm(const FormDesign& design) const;
    /// A message box or file dialog; null if none is open.
    HWND Dialog() const { return First(L"#32770"); }
    /// A file dialog that takes input.
    static bool IsFileDialog(HWND dialog);
    /// Waits for a file dialog, and chooses `path` in it.
    void ChooseFile(const std::string& path) const;
    /// A message box; null if none is open.
    HWND Box() const;
    static std::string TextIn(HWND box) { return TextOf(GetDlgItem(box, kBoxText)); }
    /// Waits for a message box, presses `button` and waits until it is closed; returns its text.
    std::string TakeBox(int button = IDOK) const;

    bool InMenu() const { return (Input().flags & GUI_INMENUMODE) != 0; }
    /// The open menu; null if none.
    HWND Menu() const { return First(L"#32768"); }
    /// Waits until the program has processed all input injected so far.
    void AwaitInputTaken() const;
    /// Presses `key` and waits for `condition`. Presses it again when the program has processed
    /// all input and the condition is still false: the key was lost.
    void KeyUntil(const std::string& key, const std::string& what,
                  const std::function<bool()>& condition) const;
    /// The control that gets the keys; null while no window of the program is in the foreground.
    HWND Focus() const;
    bool IsRunning() const;
    DWORD Wait() const { return WaitForEnd(mProcess.Get()); }
    /// False if the main window does not process a message within 30 s.
    bool Answers() const;

private:
    static constexpr int kBoxText = 0xffff;

    std::vector<HWND> Windows(const wchar_t* windowClass, bool hiddenToo = false) const;
    HWND First(const wchar_t* windowClass) const;
    GUITHREADINFO Input() const;

    Win32Handle mProcess;
    DWORD mId = 0;
};

}  // namespace vantor::driver
