// Fixture for driver programs: the program running with fresh settings, an image of 60 data
// records, and an indicator to start on demand.
#pragma once

#include <optional>
#include <string>

#include "tests/driver/App.hpp"
#include "tests/driver/Script.hpp"

namespace vantor::driver {

class Workbench {
public:
    Workbench();

    /// The program's key under HKEY_CURRENT_USER.
    static std::wstring ProgramKey();
    /// Deletes it, and the cached pictures.
    static void ForgetSettings();
    /// Puts a picture into the cache, without an index of addresses.
    static void CachePicture();

    /// Closes the program and starts it again.
    void Restart();

    /// Presses the start button, chooses the image and answers the warning with Yes.
    void StartFlash() const;

    // Monitor mode.
    Window OpenMonitor() const;
    static void OpenPort(const Window& monitor);
    static void AwaitShown(const Window& monitor, const std::string& text);
    /// Opens the context menu and presses the keys of an entry, which lead through its submenus.
    /// Without keys the menu stays open.
    void Command(const Window& monitor, const std::string& keys) const;
    /// Starts sending a file with these bytes; returns the progress window.
    Window SendFile(const Window& monitor, const std::string& bytes) const;

    const std::string image = FileOfRun("image.run");
    Indicator indicator;
    std::optional<App> app;
};

}  // namespace vantor::driver
