// What work with the program starts from: it runs with fresh settings, an image of 60 data records
// is there to be sent, and an indicator that is started as it is needed.
#pragma once

#include <optional>
#include <string>

#include "driver/App.hpp"
#include "driver/Script.hpp"

namespace vantor::driver {

class Workbench {
public:
    Workbench();

    /// The program's key below HKEY_CURRENT_USER.
    static std::wstring ProgramKey();
    static void ForgetSettings();

    /// Closes the program and starts it again.
    void Restart();

    /// Presses the start button and chooses the image.
    void AskForFlash() const;
    /// The same, and says Yes to the warning.
    void StartFlash() const;
    void AwaitLine(int line) const;
    /// Waits for the status window of the last phase, or the About box.
    HWND AwaitOtherForm() const;

    // Monitor mode.
    Window OpenMonitor() const;
    static void OpenPort(const Window& monitor);
    static void AwaitShown(const Window& monitor, const std::string& text);
    /// Presses `key` in the context menu.
    void Command(const Window& monitor, WORD key) const;
    /// Chooses a file with these bytes to send; its progress window.
    Window SendFile(const Window& monitor, const std::string& bytes) const;
    /// Waits until `line` of the file has been sent, as the progress window counts them.
    static void AwaitSent(const Window& progress, int line);

    const std::string image = FileOfRun("image.run");
    Indicator indicator;
    std::optional<App> app;
};

}  // namespace vantor::driver
