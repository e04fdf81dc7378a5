// The main window: menus, the promotional picture, and three panels of which one shows.
#include <array>

#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr const char* kWelcomeInDesign =
    "Welcome to the Vantor update utility. Connect the indicator to this computer, place it into "
    "boot monitor mode and click below to begin.";

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

    ControlDesign{PictureBox, "picPicture", -1, "", {120, 120, 7200, 1350}, "", ""},

    ControlDesign{PictureBox, "picStartup", -1, "", {120, 1590, 7200, 3000}, "", ""},
    ControlDesign{
        Label, "lblLabels", 0, "picStartup", {300, 360, 6600, 960}, kWelcomeInDesign, "302"},
    ControlDesign{CommandButton,
                  "cmdFlash",
                  -1,
                  "picStartup",
                  {2250, 1620, 2700, 600},
                  "Update Indicator",
                  "304"},

    ControlDesign{PictureBox, "picUpdate", -1, "", {120, 1590, 7200, 3000}, "", ""},
    ControlDesign{
        Label, "lblLabels", 1, "picUpdate", {0, 0, 3600, 240}, "Available Updates", "305"},
    ControlDesign{ListView, "lvwUpdates", -1, "picUpdate", {0, 270, 7200, 1830}, "", ""},
    ControlDesign{Label, "lblUpdateStatus", -1, "picUpdate", {0, 2160, 7200, 240}, "", ""},
    ControlDesign{
        CommandButton, "cmdDetails", -1, "picUpdate", {0, 2520, 1500, 375}, "View Details", "306"},
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

    ControlDesign{PictureBox, "picFlash", -1, "", {120, 1590, 7200, 3000}, "", ""},
    ControlDesign{Label, "lblLabels", 2, "picFlash", {0, 0, 1800, 300}, "Sending:", "309"},
    ControlDesign{Label, "lblStatus", -1, "picFlash", {1860, 0, 5340, 300}, "", ""},
    ControlDesign{Label, "lblLabels", 3, "picFlash", {0, 390, 1800, 300}, "Elapsed Time:", "310"},
    ControlDesign{Label, "lblElapsed", -1, "picFlash", {1860, 390, 5340, 300}, "", ""},
    ControlDesign{ProgressBar, "pbarStatus", -1, "picFlash", {0, 840, 7200, 360}, "", ""},
    ControlDesign{Label, "lblWarning", -1, "picFlash", {0, 1350, 7200, 960}, "", ""},
    ControlDesign{
        CommandButton, "cmdFlashAbort", -1, "picFlash", {5700, 2520, 1500, 375}, "&Abort", "311"},

    ControlDesign{Timer, "tmrFlashTimeout", -1, "", {}, "", ""},
    ControlDesign{SerialControl, "mobjComm", -1, "", {}, "", ""},
};

}  // namespace

const FormDesign kMainWindowDesign = {
    "frmMain", "Tessmar Vantor Update Utility", "301", {0, 0, 7560, 5400}, kControls};

}  // namespace vantor
