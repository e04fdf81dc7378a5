// The monitor window: a terminal above a status bar. The position of the terminal is computed
// from the window size.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kScreen = {
    .points = 10, .face = "Terminal", .spokenName = Str::TerminalName};

constexpr ControlDesign kControls[] = {
    {Terminal, "comMonitor", kSingle, "", {}, "", "", kScreen},
    {StatusBar, "sbStatusBar", kSingle, "", {0, 0, 0, 345}, "", ""},
    {MenuItem, "mnuFile", kSingle, "", {}, "801 &File", ""},
    {MenuItem, "mnuFileExit", kSingle, "mnuFile", {}, "802 E&xit", ""},
    {MenuItem, "mnuComm", kSingle, "", {}, "803 Communications", ""},
    {MenuItem, "mnuCommOpen", kSingle, "mnuComm", {}, "804 &Open Port", ""},
    {MenuItem, "mnuCommClose", kSingle, "mnuComm", {}, "805 &Close Port", ""},
    {MenuItem, "mnuCapture", kSingle, "", {}, "806 Ca&pture", ""},
    {MenuItem, "mnuCaptureStart", kSingle, "mnuCapture", {}, "807 &Start Capture...", ""},
    {MenuItem, "mnuCaptureEnd", kSingle, "mnuCapture", {}, "808 &End Capture", ""},
    {MenuItem, "mnuCaptureBar1", kSingle, "mnuCapture", {}, "-", ""},
    {MenuItem, "mnuCaptureSend", kSingle, "mnuCapture", {}, "809 Send &Text File...", ""},
};

}  // namespace

const FormDesign kMonitorWindowDesign = {"frmMonitor",        "810",     "810",
                                         {0, 0, 10200, 7200}, kControls, {4500, 3000}};

}  // namespace vantor
