// The main window. Owns the settings, the serial control for flashing, and everything
// that the user starts.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "app/base/CFormPos.hpp"
#include "content/PromotionalPicture.hpp"
#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "controls/SerialControl.hpp"
#include "flash/FlashHost.hpp"
#include "flash/FlashSession.hpp"
#include "monitor/frmMonitor.hpp"
#include "platform/Platform.hpp"
#include "settings/CAppSettings.hpp"
#include "settings/frmConfigure.hpp"

namespace vantor {

class frmMain : public Form, public FlashHost, public MonitorOwner, public OptionsOwner {
public:
    frmMain(WindowManager& manager, Platform& platform);

    CAppSettings& Settings() { return mSettings; }
    FlashSession& Session() { return mSession; }

    // FlashHost
    Form& Window() override { return *this; }
    FlashControls SessionControls() override;
    FlashFlags& Flags() override { return mFlags; }
    /// Makes exactly one of the three panels visible.
    void ShowFunction(MainPanel panel) override;
    /// Enables the commands that must not run during a flash.
    void EnableButtons(bool enabled) override;
    /// Unloads the window, which ends the program.
    void mnuFileExit_Click() override;

    // MonitorOwner
    bool CloseIsWaiting() const override { return mFlags.mblnCloseRequested; }
    void ResumeClose() override { mnuFileExit_Click(); }
    bool FlashIsRunning() const override { return mFlags.mblnFlashing; }

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

    Timer tmrFlashTimeout;
    SerialControl mobjComm;

protected:
    void Form_Load() override;
    bool Form_QueryUnload() override;
    void Form_Resize() override;
    void Form_Unload() override;

private:
    void LoadResources();
    void LoadSettings();
    void RestorePosition();
    void Startup();
    void mnuToolsOptions_Click();
    void mnuToolsMonitor_Click();
    void mnuHelpAbout_Click();
    void mnuToolsCurrentVersions_Click();
    void picPicture_Click();
    void UnloadOthers();
    void DeleteUpdateList();
    void lvwUpdates_Click();

    Platform& mPlatform;
    CFormPos mFormPos;
    CAppSettings mSettings;
    FlashFlags mFlags;
    FlashSession mSession;
    PromotionalPicture mPromotion{picPicture, mPlatform};
};

}  // namespace vantor
