// The main window. Owns the settings, the serial control for flashing, and everything
// that the user starts.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/base/CFormPos.hpp"
#include "content/PromotionalPicture.hpp"
#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "flash/FlashSession.hpp"
#include "flash/FlashView.hpp"
#include "monitor/frmMonitor.hpp"
#include "platform/Platform.hpp"
#include "settings/CAppSettings.hpp"
#include "settings/frmConfigure.hpp"

namespace vantor {

class frmStatus;

/// The panels of the main window, of which one is visible.
enum class MainPanel : std::uint8_t { Startup, Update, Flash };

class frmMain : public Form, public FlashView, public MonitorOwner, public OptionsOwner {
public:
    frmMain(WindowManager& manager, Platform& platform);

    CAppSettings& Settings() { return mSettings; }
    FlashSession& Session() { return mSession; }

    // FlashView
    bool Gone() const override { return Form::Gone(); }
    std::shared_ptr<void> KeepAlive() override { return weak_from_this().lock(); }
    void Begin() override;
    std::optional<std::string> ChooseImage() override;
    void HoldSystem(const std::string& reason) override { mPlatform.peers.HoldSystem(reason); }
    void Busy(bool busy) override;
    bool Confirm(const std::string& question) override;
    void ShowStage(const std::string& name) override { lblStatus.Caption(name); }
    void AllowAbort(bool allowed) override { cmdFlashAbort.Enabled(allowed); }
    void ShowLine(std::int32_t index, std::int32_t last, std::int16_t elapsedSeconds) override;
    void ShowPercent(std::int16_t percent) override { pbarStatus.Value(percent); }
    void ShowWarning(const std::string& text) override { lblWarning.Caption(text); }
    void Beep() override { mPlatform.boxes.Beep(); }
    void OpenStatus(const std::string& message) override;
    void CloseStatus() override;
    void ShowAborted(const std::string& text) override { lblStatus.Caption(text); }
    void Report(BoxIcon icon, const std::string& text, const std::string& title) override;
    void ClearProgress() override;
    void End() override;
    void Exit() override { mnuFileExit_Click(); }

    /// Makes exactly one of the three panels visible.
    void ShowFunction(MainPanel panel);
    /// Enables the commands that must not run during a flash.
    void EnableButtons(bool enabled);
    /// Unloads the window, which ends the program.
    void mnuFileExit_Click();

    // MonitorOwner
    bool CloseIsWaiting() const override { return mSession.CloseRequested(); }
    void ResumeClose() override { mnuFileExit_Click(); }
    bool FlashIsRunning() const override { return mSession.Flashing(); }

    // OptionsOwner
    std::vector<std::string> CommPorts() const override;

    // The buttons of the update list. They have no actions.
    void SetButtonState(bool enabled);

    MenuItem mnuFile{*this, "mnuFile"};
    MenuItem mnuFileFlash{*this, "mnuFileFlash"};
    MenuItem mnuFileBar1{*this, "mnuFileBar1"};
    MenuItem mnuFileExit{*this, "mnuFileExit"};
    MenuItem mnuTools{*this, "mnuTools"};
    MenuItem mnuToolsOptions{*this, "mnuToolsOptions"};
    MenuItem mnuToolsMonitor{*this, "mnuToolsMonitor"};
    MenuItem mnuToolsCurrentVersions{*this, "mnuToolsCurrentVersions"};
    MenuItem mnuHelp{*this, "mnuHelp"};
    MenuItem mnuHelpAbout{*this, "mnuHelpAbout"};

    PictureBox picPicture{*this, "picPicture"};

    PictureBox picStartup{*this, "picStartup"};
    CommandButton cmdFlash{*this, "cmdFlash"};

    PictureBox picUpdate{*this, "picUpdate"};
    ListView lvwUpdates{*this, "lvwUpdates", {"Filename", "File Size", "File Date", "Description"}};
    Label lblUpdateStatus{*this, "lblUpdateStatus"};
    CommandButton cmdDetails{*this, "cmdDetails"};
    CommandButton cmdDownload{*this, "cmdDownload"};
    CommandButton cmdDownloadAll{*this, "cmdDownloadAll"};

    PictureBox picFlash{*this, "picFlash"};
    Label lblStatus{*this, "lblStatus"};
    Label lblElapsed{*this, "lblElapsed"};
    ProgressBar pbarStatus{*this, "pbarStatus"};
    Label lblWarning{*this, "lblWarning"};
    CommandButton cmdFlashAbort{*this, "cmdFlashAbort"};

    /// Welcome, "Available Updates", "Sending:", "Elapsed Time:".
    std::array<Label, 4> lblLabels{Label{*this, "lblLabels", 0}, Label{*this, "lblLabels", 1},
                                   Label{*this, "lblLabels", 2}, Label{*this, "lblLabels", 3}};

protected:
    void Form_Load() override;
    bool Form_QueryUnload() override;
    void Form_Resize() override;
    void Form_Unload() override;

private:
    void LoadResources();
    void mnuToolsOptions_Click();
    void mnuToolsMonitor_Click();
    void mnuHelpAbout_Click();
    void mnuToolsCurrentVersions_Click();
    void picPicture_Click();
    void lvwUpdates_Click();

    Platform& mPlatform;
    CFormPos mFormPos;
    CAppSettings mSettings;
    FlashSession mSession;
    std::shared_ptr<frmStatus> mStatus;  // while the indicator writes its flash memory
    PromotionalPicture mPromotion{picPicture, mPlatform};
};

}  // namespace vantor
