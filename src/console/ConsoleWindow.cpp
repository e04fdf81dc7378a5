#include "console/ConsoleWindow.hpp"

#include <array>

#include "flash/FlashSession.hpp"

namespace vantor {
namespace {

constexpr ControlDesign Row(ControlKind kind, const char* name) {
    return {kind, name, -1, "", {}, "", ""};
}

constexpr std::array kControls = {
    Row(ControlKind::Label, "lblStatus"),
    Row(ControlKind::Label, "lblElapsed"),
    Row(ControlKind::Label, "lblWarning"),
    Row(ControlKind::ProgressBar, "pbarStatus"),
    Row(ControlKind::CommandButton, "cmdFlashAbort"),
    Row(ControlKind::Timer, "tmrFlashTimeout"),
    Row(ControlKind::SerialControl, "mobjComm"),
};

constexpr FormDesign kDesign = {"frmMain", "", "", {}, kControls};

}  // namespace

ConsoleWindow::ConsoleWindow(WindowManager& manager, Platform& platform)
    : Form(manager, kDesign),
      tmrFlashTimeout(*this, "tmrFlashTimeout", platform.pump, FlashSession::kVerdictTimeoutMs),
      mobjComm(*this, "mobjComm", platform.ports) {}

FlashControls ConsoleWindow::SessionControls() {
    return {.lblStatus = lblStatus,
            .lblElapsed = lblElapsed,
            .lblWarning = lblWarning,
            .pbarStatus = pbarStatus,
            .cmdFlashAbort = cmdFlashAbort,
            .tmrFlashTimeout = tmrFlashTimeout,
            .mobjComm = mobjComm};
}

}  // namespace vantor
