// Monitor mode: a terminal on the indicator's port, for manual commands.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/base/CFormPos.hpp"
#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "monitor/TerminalOptionsStore.hpp"
#include "monitor/frmFind.hpp"
#include "platform/Platform.hpp"
#include "resources/texts/Str.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor {

class CAppSettings;
class CDelay;
class frmSend;
class frmSendBytes;

/// What the monitor window needs from the main window.
class MonitorOwner {
public:
    virtual ~MonitorOwner() = default;
    /// The user has asked the main window to close, and it is still open.
    virtual bool CloseIsWaiting() const = 0;
    /// Resumes that close.
    virtual void ResumeClose() = 0;
    /// An indicator is being updated.
    virtual bool FlashIsRunning() const = 0;
};

class frmMonitor : public Form {
public:
    /// `owner` must outlive the loaded window.
    frmMonitor(WindowManager& manager, Platform& platform, MonitorOwner& owner);

    /// Sets the port and the line parameters from `settings`, which must outlive the window.
    /// Does not open the port. Called after loading and before showing.
    void Initialize(const CAppSettings& settings);

    /// Each updates one panel of the status bar from the terminal.
    void UpdateStatus();
    void UpdatePort();
    void UpdateSettings();

    /// Sends the file line by line, at most one every 50 ms and only after the driver has accepted
    /// the previous one, pumping messages meanwhile. Splits at CR LF only and skips blank lines.
    /// Ends early when the send is cancelled, a window or the port is closed, the device is lost,
    /// or an update is started.
    void SendFile(const std::string& fileName);

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
    void FitTerminal();
    bool CoversAnother() const;
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
    void TellPortTrouble();
    void PerformOnTerminal(TerminalCommand command);
    int DesignedPoints() const;
    void TakeOptions(const TerminalOptions& options);
    void ShowTerminalSettings();
    void ShowFind();
    Str Search(const frmFind::Request& request);
    void ShowSendBytes();
    void AskAndSaveScrollback();
    enum class FileUse : std::uint8_t { Capture, Send, Scrollback };
    static Str TitleOf(FileUse use);
    std::string AskForFile(FileUse use);
    std::string GetFile(const std::string& fileName);
    void SendLines(const std::string& text, frmSend& progress);
    bool FileExists(const std::string& fileName) const;
    void AwaitDriver(CDelay& delay, const frmSend& progress);
    bool MustStop(const frmSend& progress) const;
    std::string Text(Str text) const;

    Platform& mPlatform;
    MonitorOwner& mOwner;
    CFormPos mobjFormPos;
    TerminalOptionsStore mOptionsStore;
    TerminalOptions mOptions;
    const CAppSettings* mobjSettings = nullptr;
    std::vector<std::shared_ptr<frmSend>> mProgress;  // of the running transmissions
    std::shared_ptr<frmFind> mFind;                   // while it is open
    std::shared_ptr<frmSendBytes> mSendBytes;         // while it is open
    std::vector<std::string> mFindHistory;            // the last one first
    std::vector<std::string> mBytesHistory;
    bool mblnPortOpen = false;  // as shown in the status bar
};

}  // namespace vantor
