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
    {MenuItem, "mnuFile", kSingle, "", {}, "201 &File", ""},
    {MenuItem, "mnuFileFlash", kSingle, "mnuFile", {}, "203 &Update Indicator...", ""},
    {MenuItem, "mnuFileBar1", kSingle, "mnuFile", {}, "-", ""},
    {MenuItem, "mnuFileExit", kSingle, "mnuFile", {}, "205 E&xit", ""},
    {MenuItem, "mnuTools", kSingle, "", {}, "206 &Tools", ""},
    {MenuItem, "mnuToolsOptions", kSingle, "mnuTools", {}, "207 &Options...", ""},
    {MenuItem, "mnuToolsMonitor", kSingle, "mnuTools", {}, "208 &Monitor Mode...", ""},
    {MenuItem, "mnuToolsCurrentVersions", kSingle, "mnuTools", {}, "Show Current Version Info", ""},
    {MenuItem, "mnuHelp", kSingle, "", {}, "209 &Help", ""},
    {MenuItem, "mnuHelpAbout", kSingle, "mnuHelp", {}, "212 &About...", ""},

    {PictureBox, "picPicture", kSingle, "", {}, "", "", kPicture},

    {PictureBox, "picStartup", kSingle, "", {}, "", ""},
    {Label, "lblLabels", 0, "picStartup", {}, kWelcomeInDesign, "302", kWelcome},
    {CommandButton, "cmdFlash", kSingle, "picStartup", {}, "Update Indicator", "304", kFlashButton},

    {PictureBox, "picUpdate", kSingle, "", {}, "", ""},
    {Label, "lblLabels", 1, "picUpdate", {}, "Available Updates", "305"},
    {ListView, "lvwUpdates", kSingle, "picUpdate", {}, "", "", kUpdates},
    {Label, "lblUpdateStatus", kSingle, "picUpdate", {}, "", ""},
    {CommandButton, "cmdDetails", kSingle, "picUpdate", {}, "View Details", "306"},
    {CommandButton, "cmdDownload", kSingle, "picUpdate", {}, "Get Selected", "307"},
    {CommandButton, "cmdDownloadAll", kSingle, "picUpdate", {}, "Get All", "308"},

    {PictureBox, "picFlash", kSingle, "", {}, "", ""},
    {Label, "lblLabels", 2, "picFlash", {}, "Sending:", "309", kFigureLabel},
    {Label, "lblStatus", kSingle, "picFlash", {}, "", "", kLarge},
    {Label, "lblLabels", 3, "picFlash", {}, "Elapsed Time:", "310", kFigureLabel},
    {Label, "lblElapsed", kSingle, "picFlash", {}, "", "", kLarge},
    {ProgressBar, "pbarStatus", kSingle, "picFlash", {}, "", "", kProgress},
    {Label, "lblWarning", kSingle, "picFlash", {}, "", "", kLarge},
    {CommandButton, "cmdFlashAbort", kSingle, "picFlash", {}, "&Abort", "311"},
};

}  // namespace

const FormDesign kMainWindowDesign = {
    "frmMain", "Tessmar Vantor Update Utility", "301", {0, 0, 8400, 6600}, kControls, {7560, 6000}};

}  // namespace vantor
