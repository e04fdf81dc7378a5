// The main window: menus, the promotional picture, and three panels, one of them visible.
// Positions are computed from the window size, so the rows hold none.
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
constexpr ControlStyle kLarge = {.points = 14, .bold = true};
constexpr ControlStyle kFigureLabel = {.points = 12};

constexpr ControlDesign kControls[] = {
    {MenuItem, "mnuFile", -1, "", {}, "201 &File", ""},
    {MenuItem, "mnuFileFlash", -1, "mnuFile", {}, "203 &Update Indicator...", ""},
    {MenuItem, "mnuFileBar1", -1, "mnuFile", {}, "-", ""},
    {MenuItem, "mnuFileExit", -1, "mnuFile", {}, "205 E&xit", ""},
    {MenuItem, "mnuTools", -1, "", {}, "206 &Tools", ""},
    {MenuItem, "mnuToolsOptions", -1, "mnuTools", {}, "207 &Options...", ""},
    {MenuItem, "mnuToolsMonitor", -1, "mnuTools", {}, "208 &Monitor Mode...", ""},
    {MenuItem, "mnuToolsCurrentVersions", -1, "mnuTools", {}, "Show Current Version Info", ""},
    {MenuItem, "mnuHelp", -1, "", {}, "209 &Help", ""},
    {MenuItem, "mnuHelpAbout", -1, "mnuHelp", {}, "212 &About...", ""},

    {PictureBox, "picPicture", -1, "", {}, "", "", kPicture},

    {PictureBox, "picStartup", -1, "", {}, "", ""},
    {Label, "lblLabels", 0, "picStartup", {}, kWelcomeInDesign, "302", kWelcome},
    {CommandButton, "cmdFlash", -1, "picStartup", {}, "Update Indicator", "304", kFlashButton},

    {PictureBox, "picUpdate", -1, "", {}, "", ""},
    {Label, "lblLabels", 1, "picUpdate", {}, "Available Updates", "305"},
    {ListView, "lvwUpdates", -1, "picUpdate", {}, "", "", kUpdates},
    {Label, "lblUpdateStatus", -1, "picUpdate", {}, "", ""},
    {CommandButton, "cmdDetails", -1, "picUpdate", {}, "View Details", "306"},
    {CommandButton, "cmdDownload", -1, "picUpdate", {}, "Get Selected", "307"},
    {CommandButton, "cmdDownloadAll", -1, "picUpdate", {}, "Get All", "308"},

    {PictureBox, "picFlash", -1, "", {}, "", ""},
    {Label, "lblLabels", 2, "picFlash", {}, "Sending:", "309", kFigureLabel},
    {Label, "lblStatus", -1, "picFlash", {}, "", "", kLarge},
    {Label, "lblLabels", 3, "picFlash", {}, "Elapsed Time:", "310", kFigureLabel},
    {Label, "lblElapsed", -1, "picFlash", {}, "", "", kLarge},
    {ProgressBar, "pbarStatus", -1, "picFlash", {}, "", "", kProgress},
    {Label, "lblWarning", -1, "picFlash", {}, "", "", kLarge},
    {CommandButton, "cmdFlashAbort", -1, "picFlash", {}, "&Abort", "311"},
};

}  // namespace

const FormDesign kMainWindowDesign = {
    "frmMain", "Tessmar Vantor Update Utility", "301", {0, 0, 8400, 6600}, kControls, {7560, 6000}};

}  // namespace vantor
