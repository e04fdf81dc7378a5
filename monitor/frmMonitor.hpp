// Monitor mode: a terminal on the indicator's port, for manual commands.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/base/CFormPos.hpp"
#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "controls/TerminalControl.hpp"
#include "platform/Platform.hpp"

namespace vantor {

class CAppSettings;
class CDelay;
class frmSend;

/// What the monitor window needs from the main window when it unloads.
class MonitorOwner {
public:
    virtual ~MonitorOwner() = default;
    /// The user has asked the main window to close, and it is still open.
    virtual bool CloseIsWaiting() const = 0;
    /// Resumes that close.
    virtual void ResumeClose() = 0;
};

class frmMonitor : public Form {
public:
    /// `owner` must outlive the loaded window.
    frmMonitor(Desktop& desktop, Platform& platform, MonitorOwner& owner);

    /// Takes the port and the line parameters from `settings`, which must outlive the window.
    /// Does not open the port. Called after loading and before showing.
    void Initialize(const CAppSettings& settings);

    /// Each updates one panel of the status bar from the terminal.
    void UpdateStatus();
    void UpdatePort();
    void UpdateSettings();

    /// Sends the file line by line, one every 50 ms, while the windows stay responsive.
    /// Splits at CR LF only and skips blank lines. Returns true when at least one line was sent and
    /// the user did not cancel; false when a window was closed meanwhile.
    bool SendFile(const std::string& fileName);

    TerminalControl comMonitor;
    StatusBar sbStatusBar{*this, "sbStatusBar", {"status", "port", "settings"}};
    MenuItem mnuFile{*this, "mnuFile"};
    MenuItem mnuFileExit{*this, "mnuFileExit"};
    MenuItem mnuComm{*this, "mnuComm"};
    MenuItem mnuCommOpen{*this, "mnuCommOpen"};
    MenuItem mnuCommClose{*this, "mnuCommClose"};
    MenuItem mnuCapture{*this, "mnuCapture"};
    MenuItem mnuCaptureStart{*this, "mnuCaptureStart"};
    MenuItem mnuCaptureEnd{*this, "mnuCaptureEnd"};
    MenuItem mnuCaptureBar1{*this, "mnuCaptureBar1"};
    MenuItem mnuCaptureSend{*this, "mnuCaptureSend"};

protected:
    void Form_Load() override;
    bool Form_QueryUnload() override;
    void Form_Unload() override;
    void Form_Resize() override;

private:
    void RestorePosition();
    void UnloadProgress();
    void ConfigureTerminal();
    void comMonitor_Command(TerminalCommand command, bool& handled);
    void mnuFileExit_Click();
    void mnuCommOpen_Click();
    void mnuCommClose_Click();
    void mnuCommSettings_Click();
    void mnuCaptureStart_Click();
    void mnuCaptureEnd_Click();
    void mnuCaptureSend_Click();
    void ShowPortSettings();
    std::string AskForFile(std::int32_t title, bool openDialog);
    std::string GetFile(const std::string& fileName);
    bool SendLines(const std::string& text, frmSend& progress);
    std::string Text(std::int32_t id) const;

    Platform& mPlatform;
    MonitorOwner& mOwner;
    CFormPos mobjFormPos;
    const CAppSettings* mobjSettings = nullptr;
    std::vector<std::shared_ptr<frmSend>> mProgress;  // of the running transmissions
    bool mblnPortOpen = false;                        // as shown in the status bar
};

}  // namespace vantor
