#include "app/frmMain.hpp"

#include <string>
#include <vector>

#include "app/base/LoadResources.hpp"
#include "app/base/modSupport.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/Traps.hpp"

namespace vantor {

frmMain::frmMain(Desktop& desktop, Platform& platform)
    : Form(desktop, kMainWindowDesign),
      tmrFlashTimeout(*this, "tmrFlashTimeout", platform.pump, FlashSession::kVerdictTimeoutMs),
      mobjComm(*this, "mobjComm", platform.ports),
      mPlatform(platform),
      mSettings(platform.registry, platform.codePage, platform.files),
      mSession(*this, mSettings, platform) {
    cmdFlash.Click.Handle(
        [this] { Trapped("frmMain.cmdFlash_Click", [this] { mSession.doFlash(); }); });
    mnuFileFlash.Click.Handle(
        [this] { Trapped("frmMain.mnuFileFlash_Click", [this] { mSession.doFlash(); }); });
    mnuFileExit.Click.Handle([this] { mnuFileExit_Click(); });
    lvwUpdates.Click.Handle([this] { lvwUpdates_Click(); });
}

FlashControls frmMain::SessionControls() {
    return {.lblStatus = lblStatus,
            .lblElapsed = lblElapsed,
            .lblWarning = lblWarning,
            .pbarStatus = pbarStatus,
            .cmdFlashAbort = cmdFlashAbort,
            .tmrFlashTimeout = tmrFlashTimeout,
            .mobjComm = mobjComm};
}

void frmMain::Form_Load() {
    Trapped("frmMain.Form_Load", [this] {
        LoadSettings();
        LoadResources();
        ShowFunction(MainPanel::Startup);
        SetButtonState(false);
        lvwUpdates.columns = {"Filename", "File Size", "File Date", "Description"};
    });
}

// A stored value that cannot be read is told once; the program goes on with the rest.
void frmMain::LoadSettings() {
    Trapped("frmMain.LoadSettings", [this] { mSettings.Initialize(); });
}

void frmMain::LoadResources() {
    Trapped("frmMain.LoadResources", [this] {
        TranslateForm(*this, mPlatform.strings);
        picPicture.ToolTip(mPlatform.strings.LoadResString(314));
    });
}

bool frmMain::Form_QueryUnload() {
    bool proceed = true;
    Trapped("frmMain.Form_QueryUnload", [&] {
        if (!mFlags.mblnFlashing) return;
        // The session ends itself first; it then closes the window.
        mFlags.mblnCloseRequested = true;
        proceed = false;
    });
    return proceed;
}

void frmMain::Form_Unload() {
    Trapped("frmMain.Form_Unload", [this] {
        UnloadOthers();
        Ignoring([this] { DeleteUpdateList(); });
    });
}

void frmMain::UnloadOthers() {
    const std::vector<std::shared_ptr<Form>> open = GetDesktop().OpenForms();
    for (const std::shared_ptr<Form>& form : open)
        if (form.get() != this) form->Unload();
}

void frmMain::DeleteUpdateList() {
    mPlatform.files.Delete(AddFinalSlash(mPlatform.folders.PersonalDocuments()) + "updates.txt");
}

void frmMain::ShowFunction(MainPanel panel) {
    Trapped("frmMain.ShowFunction", [&] {
        picStartup.Visible(panel == MainPanel::Startup);
        picUpdate.Visible(panel == MainPanel::Update);
        picFlash.Visible(panel == MainPanel::Flash);
    });
}

void frmMain::EnableButtons(bool enabled) {
    Trapped("frmMain.EnableButtons", [&] {
        mnuFileFlash.Enabled(enabled);
        mnuToolsOptions.Enabled(enabled);
        mnuToolsMonitor.Enabled(enabled);
        cmdFlash.Enabled(enabled);
    });
}

void frmMain::SetButtonState(bool enabled) {
    Trapped("frmMain.SetButtonState", [&] {
        cmdDetails.Enabled(enabled);
        cmdDownload.Enabled(enabled);
        cmdDownloadAll.Enabled(enabled);
    });
}

void frmMain::lvwUpdates_Click() {
    Trapped("frmMain.lvwUpdates_Click", [this] {
        if (lvwUpdates.selectedRow >= 0) SetButtonState(true);
    });
}

void frmMain::mnuFileExit_Click() {
    Trapped("frmMain.mnuFileExit_Click", [this] { Unload(); });
}

}  // namespace vantor
