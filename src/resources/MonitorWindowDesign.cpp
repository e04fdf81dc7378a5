// The monitor window: a terminal above a status bar. The position of the terminal is computed
// from the window size.
#include "resources/Designs.hpp"

namespace vantor {
namespace {

using enum ControlKind;

constexpr ControlStyle kScreen = {
    .points = 10, .face = "Terminal", .spokenName = Str::TerminalName};

constexpr ControlDesign kControls[] = {
    {Terminal, "comMonitor", -1, "", {}, "", "", kScreen},
    {StatusBar, "sbStatusBar", -1, "", {0, 0, 0, 345}, "", ""},
    {MenuItem, "mnuFile", -1, "", {}, "801 &File", ""},
    {MenuItem, "mnuFileExit", -1, "mnuFile", {}, "802 E&xit", ""},
    {MenuItem, "mnuComm", -1, "", {}, "803 Communications", ""},
    {MenuItem, "mnuCommOpen", -1, "mnuComm", {}, "804 &Open Port", ""},
    {MenuItem, "mnuCommClose", -1, "mnuComm", {}, "805 &Close Port", ""},
    {MenuItem, "mnuCapture", -1, "", {}, "806 Ca&pture", ""},
    {MenuItem, "mnuCaptureStart", -1, "mnuCapture", {}, "807 &Start Capture...", ""},
    {MenuItem, "mnuCaptureEnd", -1, "mnuCapture", {}, "808 &End Capture", ""},
    {MenuItem, "mnuCaptureBar1", -1, "mnuCapture", {}, "-", ""},
    {MenuItem, "mnuCaptureSend", -1, "mnuCapture", {}, "809 Send &Text File...", ""},
};

}  // namespace

const FormDesign kMonitorWindowDesign = {"frmMonitor",        "810",     "810",
                                         {0, 0, 10200, 7200}, kControls, {4500, 3000}};

}  // namespace vantor
