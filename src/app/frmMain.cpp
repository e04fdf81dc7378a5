#include "app/frmMain.hpp"

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "app/MainLayout.hpp"
#include "app/base/LoadResources.hpp"
#include "app/base/modSupport.hpp"
#include "dialogs/CShellExecute.hpp"
#include "dialogs/CVersionInfo.hpp"
#include "dialogs/frmAbout.hpp"
#include "dialogs/frmStatus.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/SerialPort.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/CFileDialog.hpp"
#include "support/CHourglass.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"

namespace vantor {

frmMain::frmMain(WindowManager& manager, Platform& platform)
    : Form(manager, kMainWindowDesign),
      mPlatform(platform),
      mFormPos(platform.registry, platform.codePage),
      mSettings(platform.registry, platform.codePage, platform.files),
      mSession(*this, mSettings,
               {.clock = platform.clock,
                .files = platform.files,
                .pump = platform.pump,
                .ports = platform.ports,
                .strings = platform.strings}) {
    cmdFlash.Click.Connect(
        [this] { Trapped("frmMain.cmdFlash_Click", [this] { mSession.doFlash(); }); });
    mnuFileFlash.Click.Connect(
        [this] { Trapped("frmMain.mnuFileFlash_Click", [this] { mSession.doFlash(); }); });
    mnuToolsOptions.Click.Connect([this] { mnuToolsOptions_Click(); });
    mnuToolsMonitor.Click.Connect([this] { mnuToolsMonitor_Click(); });
    mnuHelpAbout.Click.Connect([this] { mnuHelpAbout_Click(); });
    mnuToolsCurrentVersions.Click.Connect([this] { mnuToolsCurrentVersions_Click(); });
    picPicture.Click.Connect([this] { picPicture_Click(); });
    mnuFileExit.Click.Connect([this] { mnuFileExit_Click(); });
    lvwUpdates.Click.Connect([this] { lvwUpdates_Click(); });
    cmdFlashAbort.Click.Connect([this] { mSession.cmdFlashAbort_Click(); });
}

void frmMain::Form_Load() {
    Trapped("frmMain.Form_Load", [this] {
        mFormPos.Form = this;
        if (!mFormPos.RestoreForm(true)) mFormPos.CenterForm();
        // An unreadable stored value is reported once; the program continues with the others.
        Trapped("frmMain.LoadSettings", [this] { mSettings.Initialize(); });
        LoadResources();
        mPromotion.Choose();
        ShowFunction(MainPanel::Startup);
        SetButtonState(false);
        for (Control* each : std::initializer_list<Control*>{&picPicture, &lvwUpdates, &pbarStatus})
            each->Border(vantor::Border::Static);
    });
}

void frmMain::LoadResources() {
    Trapped("frmMain.LoadResources", [this] {
        TranslateForm(*this, mPlatform.strings);
        picPicture.ToolTip(mPlatform.strings.Text(Str::VisitWebSite));
    });
}

bool frmMain::Form_QueryUnload() {
    bool proceed = true;
    Trapped("frmMain.Form_QueryUnload", [&] {
        // A running session ends first and then closes the window.
        proceed = !mSession.RequestClose();
    });
    return proceed;
}

void frmMain::Form_Unload() {
    Trapped("frmMain.Form_Unload", [this] {
        mFormPos.SaveForm();
        const std::vector<std::shared_ptr<Form>> open = Manager().OpenForms();
        for (const std::shared_ptr<Form>& form : open)
            if (form.get() != this) form->Unload();
        Ignoring([this] {
            mPlatform.files.Delete(AddFinalSlash(mPlatform.folders.PersonalDocuments()) +
                                   "updates.txt");
        });
    });
}

void frmMain::Form_Resize() {
    Trapped("frmMain.Form_Resize", [this] {
        // A minimised window has no client area to lay out.
        if (State() == WindowState::Minimised) return;
        const MainLayout layout = LayoutMainWindow(InnerSize());
        picPicture.Place(layout.picture);
        for (PictureBox* panel : {&picStartup, &picUpdate, &picFlash}) panel->Place(layout.panel);
        lblLabels[0].Place(layout.welcome);
        cmdFlash.Place(layout.flash);
        lblLabels[1].Place(layout.updatesLabel);
        lvwUpdates.Place(layout.updates);
        lblUpdateStatus.Place(layout.updateStatus);
        cmdDetails.Place(layout.details);
        cmdDownload.Place(layout.download);
        cmdDownloadAll.Place(layout.downloadAll);
        lblLabels[2].Place(layout.flashLabels[0]);
        lblLabels[3].Place(layout.flashLabels[1]);
        lblStatus.Place(layout.status);
        lblElapsed.Place(layout.elapsed);
        pbarStatus.Place(layout.progress);
        lblWarning.Place(layout.warning);
        cmdFlashAbort.Place(layout.abort);
    });
}

void frmMain::mnuToolsOptions_Click() {
    Trapped("frmMain.mnuToolsOptions_Click", [this] {
        const auto options = std::make_shared<frmConfigure>(Manager(), mPlatform);
        options->Load();
        options->Initialize(mSettings, *this);
        options->Show(ShowMode::Modal, this);
        options->Unload();
    });
}

std::vector<std::string> frmMain::CommPorts() const {
    std::vector<std::string> names;
    Trapped("frmMain.CommPorts", [&] {
        for (const SerialPortInfo& port : mPlatform.ports.List()) names.push_back(port.name);
    });
    return names;
}

void frmMain::mnuToolsMonitor_Click() {
    Trapped("frmMain.mnuToolsMonitor_Click", [this] {
        const auto monitor = std::make_shared<frmMonitor>(Manager(), mPlatform, *this);
        monitor->Load();
        monitor->Initialize(mSettings);
        monitor->Show(ShowMode::Modeless, this);
    });
}

void frmMain::mnuHelpAbout_Click() {
    Trapped("frmMain.mnuHelpAbout_Click", [this] {
        const auto about = std::make_shared<frmAbout>(Manager(), mPlatform.strings);
        about->Load();
        about->CenterOn(*this);
        about->Show(ShowMode::Modal);
        about->Unload();
    });
}

void frmMain::mnuToolsCurrentVersions_Click() {
    Trapped("frmMain.mnuToolsCurrentVersions_Click", [this] {
        constexpr std::pair<Str, const char*> kPrograms[] = {
            {Str::CaldorVersion, "caldor.exe"},
            {Str::CaldorEditorVersion, "caldoredit.exe"},
            {Str::PellinVersion, "pellin.exe"},
            {Str::WebUpdateVersion, "tsupdate.exe"}};
        const std::string folder = AppPath(mPlatform.process);
        const StringTable& strings = mPlatform.strings;
        CVersionInfo info(mPlatform.versions, strings);
        std::string report;
        for (const auto& [label, file] : kPrograms)
            report += strings.Text(label) + " " + info.FileVersion(folder + file) + "\r\n";
        mPlatform.boxes.Show({.text = report,
                              .title = strings.Text(Str::InstalledVersionsTitle),
                              .icon = BoxIcon::Information,
                              .owner = WindowHandle()});
    });
}

void frmMain::picPicture_Click() {
    Trapped("frmMain.picPicture_Click", [this] {
        // Like the help key, this waits for the end of an update.
        if (!cmdFlash.Enabled()) return;
        const ImageLines index = mPromotion.Index();
        CHourglass hourglass(mPlatform.peers);
        hourglass.Value(true);
        const std::string address = mPromotion.Address(index);
        if (!address.empty()) CShellExecute(mPlatform.shell).LaunchURL(WindowHandle(), address);
    });
}

// The flash session's view ------------------------------------------------------------------

void frmMain::Begin() {
    ShowFunction(MainPanel::Flash);
    EnableButtons(false);
}

std::optional<std::string> frmMain::ChooseImage() {
    const StringTable& strings = mPlatform.strings;
    CFileDialog dialog(mPlatform.dialogs);
    dialog.DialogTitle = strings.Text(Str::ChooseImageTitle);
    dialog.DefaultExt = ".run";
    dialog.Filter = strings.Text(Str::ImageFiles) + " (*.run)|*.run|" +
                    strings.Text(Str::AllFiles) + " (*.*)|*.*";
    // Without a documents folder the dialog opens in the system default folder.
    Ignoring([&] {
        dialog.InitialDir =
            AddFinalSlash(mPlatform.folders.PersonalDocuments()) + "Caldor Downloads\\";
    });
    dialog.hWndParent = WindowHandle();
    if (!dialog.Show(true)) return std::nullopt;
    return dialog.FileName;
}

void frmMain::Busy(bool busy) {
    mPlatform.peers.SetMousePointer(busy ? MousePointer::Hourglass : MousePointer::Default);
}

bool frmMain::Confirm(const std::string& question) {
    return mPlatform.boxes.Show({.text = question,
                                 .icon = BoxIcon::Question,
                                 .buttons = BoxButtons::YesNo,
                                 .owner = WindowHandle()}) == BoxAnswer::Yes;
}

void frmMain::ShowLine(std::int32_t index, std::int32_t last, std::int16_t elapsedSeconds) {
    lblStatus.Caption(LineOf(mPlatform.strings, index, last));
    lblElapsed.Caption(TimeOfDay(elapsedSeconds));
}

void frmMain::OpenStatus(const std::string& message) {
    mStatus = std::make_shared<frmStatus>(Manager(), mPlatform.strings);
    mStatus->Load();
    mStatus->CenterOn(*this);
    mStatus->Message(message);
    mStatus->Show(ShowMode::Modeless, this);
}

void frmMain::CloseStatus() {
    if (mStatus) std::exchange(mStatus, nullptr)->Unload();
}

void frmMain::Report(BoxIcon icon, const std::string& text, const std::string& title) {
    mPlatform.boxes.Show({.text = text, .title = title, .icon = icon, .owner = WindowHandle()});
}

void frmMain::ClearProgress() {
    lblStatus.Caption("");
    pbarStatus.Value(0);
}

void frmMain::End() {
    EnableButtons(true);
    ShowFunction(MainPanel::Startup);
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
        if (lvwUpdates.SelectedRow() >= 0) SetButtonState(true);
    });
}

void frmMain::mnuFileExit_Click() {
    Trapped("frmMain.mnuFileExit_Click", [this] { Unload(); });
}

}  // namespace vantor
