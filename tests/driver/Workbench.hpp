// Fixture for driver programs: the program running with fresh settings, an image of 60 data
// records, and an indicator to start on demand.
#pragma once

#include <filesystem>
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
    /// Of the pictures.
    static std::filesystem::path Cache();
    /// Deletes both.
    static void ForgetSettings();

    /// Presses the start button, chooses the image and answers the warning with Yes.
    void StartFlash() const;

    // Monitor mode.
    Window OpenMonitor() const;
    static void OpenPort(const Window& monitor);

    const std::string image = FileOfRun("image.run");
    Indicator indicator;
    std::optional<App> app;
};

}  // namespace vantor::driver
