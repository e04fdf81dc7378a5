// The main window: menus, the promotional picture, and three panels, one of them visible.
// Positions are computed from the window size, so the rows hold none.
#include <array>

#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr const char* kWelcomeInDesign =
    "Welcome to the Vantor update utility. Connect the indicator to this computer, place it into "
    "boot monitor mode and click below to begin.";

constexpr ControlStyle kPicture = {
    .clickable = true, .ground = Ground::Banner, .spokenName = Str::VisitWebSite};
constexpr ControlStyle kUpdates = {.spokenName = Str::AvailableUpdates};
constexpr ControlStyle kProgress = {.spokenName = Str::ProgressName};
constexpr ControlStyle kWelcome = {.points = 11, .centred = true};
constexpr ControlStyle kFlashButton = {.points = 12, .bold = true, .defaultButton = true};
constexpr ControlStyle kFigure = {.points = 14, .bold = true};
constexpr ControlStyle kFigureLabel = {.points = 12};
constexpr ControlStyle kWarning = {.points = 14, .bold = true};

constexpr std::array kControls = {
    ControlDesign{MenuItem, "mnuFile", -1, "", {}, "201 &File", ""},
    ControlDesign{MenuItem, "mnuFileFlash", -1, "mnuFile", {}, "203 &Update Indicator...", ""},
    ControlDesign{MenuItem, "mnuFileBar1", -1, "mnuFile", {}, "-", ""},
    ControlDesign{MenuItem, "mnuFileExit", -1, "mnuFile", {}, "205 E&xit", ""},
    ControlDesign{MenuItem, "mnuTools", -1, "", {}, "206 &Tools", ""},
    ControlDesign{MenuItem, "mnuToolsOptions", -1, "mnuTools", {}, "207 &Options...", ""},
    ControlDesign{MenuItem, "mnuToolsMonitor", -1, "mnuTools", {}, "208 &Monitor Mode...", ""},
    ControlDesign{
        MenuItem, "mnuToolsCurrentVersions", -1, "mnuTools", {}, "Show Current Version Info", ""},
    ControlDesign{MenuItem, "mnuHelp", -1, "", {}, "209 &Help", ""},
    ControlDesign{MenuItem, "mnuHelpAbout", -1, "mnuHelp", {}, "212 &About...", ""},

    ControlDesign{PictureBox, "picPicture", -1, "", {}, "", "", kPicture},

    ControlDesign{PictureBox, "picStartup", -1, "", {}, "", ""},
    ControlDesign{Label, "lblLabels", 0, "picStartup", {}, kWelcomeInDesign, "302", kWelcome},
    ControlDesign{CommandButton,
                  "cmdFlash",
                  -1,
                  "picStartup",
                  {2250, 1620, 2700, 600},
                  "Update Indicator",
                  "304",
                  kFlashButton},

    ControlDesign{PictureBox, "picUpdate", -1, "", {}, "", ""},
    ControlDesign{Label, "lblLabels", 1, "picUpdate", {}, "Available Updates", "305"},
    ControlDesign{ListView, "lvwUpdates", -1, "picUpdate", {}, "", "", kUpdates},
    ControlDesign{Label, "lblUpdateStatus", -1, "picUpdate", {}, "", ""},
    ControlDesign{CommandButton, "cmdDetails", -1, "picUpdate", {}, "View Details", "306"},
    ControlDesign{CommandButton,
                  "cmdDownload",
                  -1,
                  "picUpdate",
                  {4080, 2520, 1500, 375},
                  "Get Selected",
                  "307"},
    ControlDesign{CommandButton,
                  "cmdDownloadAll",
                  -1,
                  "picUpdate",
                  {5700, 2520, 1500, 375},
                  "Get All",
                  "308"},

    ControlDesign{PictureBox, "picFlash", -1, "", {}, "", ""},
    ControlDesign{Label, "lblLabels", 2, "picFlash", {}, "Sending:", "309", kFigureLabel},
    ControlDesign{Label, "lblStatus", -1, "picFlash", {}, "", "", kFigure},
    ControlDesign{Label, "lblLabels", 3, "picFlash", {}, "Elapsed Time:", "310", kFigureLabel},
    ControlDesign{Label, "lblElapsed", -1, "picFlash", {}, "", "", kFigure},
    ControlDesign{ProgressBar, "pbarStatus", -1, "picFlash", {}, "", "", kProgress},
    ControlDesign{Label, "lblWarning", -1, "picFlash", {}, "", "", kWarning},
    ControlDesign{CommandButton, "cmdFlashAbort", -1, "picFlash", {}, "&Abort", "311"},
};

}  // namespace

const FormDesign kMainWindowDesign = {
    "frmMain", "Tessmar Vantor Update Utility", "301", {0, 0, 8400, 6600}, kControls, {7560, 6000}};

}  // namespace vantor
