#include "monitor/frmMonitor.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "app/base/LoadResources.hpp"
#include "app/base/modSupport.hpp"
#include "monitor/frmPortSettings.hpp"
#include "monitor/frmSend.hpp"
#include "monitor/frmSendBytes.hpp"
#include "monitor/frmTerminalSettings.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "settings/CAppSettings.hpp"
#include "support/CDelay.hpp"
#include "support/CFileDialog.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

// OFN_OVERWRITEPROMPT and OFN_PATHMUSTEXIST, for both dialogs.
constexpr std::int32_t kFileDialogFlags = 2050;
constexpr std::int16_t kLineIntervalMs = 50;
constexpr std::int16_t kDriverPollMs = 10;
constexpr float kCascadeTwips = 375;  // about the height of a title bar

std::vector<std::string_view> SplitLines(std::string_view text) {
    constexpr std::string_view kLineEnd = "\r\n";
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = text.find(kLineEnd);
        lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + kLineEnd.size());
    }
}

}  // namespace

frmMonitor::frmMonitor(WindowManager& manager, Platform& platform, MonitorOwner& owner)
    : Form(manager, kMonitorWindowDesign),
      comMonitor(*this, "comMonitor", platform),
      mPlatform(platform),
      mOwner(owner),
      mobjFormPos(platform.registry, platform.codePage),
      mOptionsStore(platform.registry, platform.codePage) {
    comMonitor.Command.Connect(
        [this](TerminalCommand command, bool& handled) { comMonitor_Command(command, handled); });
    comMonitor.Reopened.Connect([this] { UpdateStatus(); });
    mnuFileExit.Click.Connect([this] { mnuFileExit_Click(); });
    mnuCommOpen.Click.Connect([this] { mnuCommOpen_Click(); });
    mnuCommClose.Click.Connect([this] { mnuCommClose_Click(); });
    mnuCaptureStart.Click.Connect([this] { mnuCaptureStart_Click(); });
    mnuCaptureEnd.Click.Connect([this] { mnuCaptureEnd_Click(); });
    // A second file can be sent during the transmission of the first.
    mnuCaptureSend.Click.Connect([this] { mnuCaptureSend_Click(); }, Nesting::Allowed);
}

std::string frmMonitor::Text(Str text) const {
    return mPlatform.strings.Text(text);
}

// --- lifetime --------------------------------------------------------------------------------

void frmMonitor::Form_Load() {
    Trapped("frmMonitor.Form_Load", [this] {
        mOptions = mOptionsStore.Load();
        comMonitor.Options(mOptions);  // the first size depends on the font size
        RestorePosition();
        LoadResources(*this, mPlatform.strings);
        ConfigureTerminal();
        UpdateStatus();
    });
}

void frmMonitor::RestorePosition() {
    mobjFormPos.Form = this;
    if (!mobjFormPos.RestoreForm(false)) {
        FitTerminal();
        mobjFormPos.CenterForm();
    }
    const Size screen = Manager().GetPeers().ScreenSize();
    while (CoversAnother()) {
        vantor::Place place = Place();
        place.left += kCascadeTwips;
        place.top += kCascadeTwips;
        if (place.left + place.width > screen.width || place.top + place.height > screen.height)
            return;
        Place(place);
    }
}

/// Makes room for exactly 80 x 24 cells: full-screen programs of the far end expect them.
void frmMonitor::FitTerminal() {
    constexpr int kColumns = 80;
    constexpr int kRows = 24;
    const Size wanted = comMonitor.SizeFor(kColumns, kRows);
    if (wanted == Size{}) return;
    vantor::Place place = Place();
    place.width += wanted.width - InnerSize().width;
    place.height += wanted.height + sbStatusBar.Place().height - InnerSize().height;
    const vantor::Place area = Manager().GetPeers().WorkArea(place);
    place.width = std::min(place.width, area.width);
    place.height = std::min(place.height, area.height);
    Place(place);
}

/// True when another monitor window would be hidden behind this one.
bool frmMonitor::CoversAnother() const {
    if (State() != WindowState::Normal) return false;
    return std::ranges::any_of(Manager().OpenForms(), [this](const auto& form) {
        return form.get() != this && form->Name() == Name() &&
               std::abs(form->Place().left - Place().left) < kCascadeTwips / 2 &&
               std::abs(form->Place().top - Place().top) < kCascadeTwips / 2;
    });
}

void frmMonitor::ConfigureTerminal() {
    using enum TerminalCommand;
    comMonitor.Handshake(0);
    comMonitor.Screen().modes.returnFeeds = false;
    comMonitor.LocalEcho = false;
    for (const TerminalCommand command : {Copy, SelectAll, Paste, Settings, Clear, Reset})
        comMonitor.OfferAlways(command);
    comMonitor.Options(mOptions);  // replaces the echo and the handling of CR set above
}

void frmMonitor::Initialize(const CAppSettings& settings) {
    Trapped("frmMonitor.Initialize", [&] {
        mobjSettings = &settings;
        comMonitor.Port().name = settings.CommPort();
        comMonitor.Port().settings = settings.BaudRate() + "," + settings.Parity() + "," +
                                     settings.DataBits() + "," + settings.StopBits();
        UpdatePort();
        UpdateSettings();
    });
}

void frmMonitor::Form_Resize() {
    Ignoring([this] {
        const float height = InnerSize().height - sbStatusBar.Place().height;
        // When the window is too small for the terminal, its old size is kept.
        if (height >= 0) comMonitor.Place({0, 0, InnerSize().width, height});
    });
}

bool frmMonitor::Form_QueryUnload() {
    Trapped("frmMonitor.Form_QueryUnload", [this] {
        if (comMonitor.PortOpen()) mnuCommClose_Click();
    });
    return true;
}

void frmMonitor::Form_Unload() {
    Trapped("frmMonitor.Form_Unload", [this] {
        mobjFormPos.SaveForm();
        comMonitor.CaptureFile("");
        comMonitor.PerformCommand(TerminalCommand::Close);  // a lost port is no longer waited for
        // Before this window closes: Windows destroys owned windows with their owner.
        if (mFind) mFind->Unload();
        if (mSendBytes) mSendBytes->Unload();
        const std::vector<std::shared_ptr<frmSend>> shown = mProgress;
        for (const std::shared_ptr<frmSend>& progress : shown) progress->Unload();
        if (mOwner.CloseIsWaiting()) mOwner.ResumeClose();
    });
}

// --- status bar ------------------------------------------------------------------------------

void frmMonitor::UpdateStatus() {
    Trapped("frmMonitor.UpdateStatus", [this] {
        const bool open = comMonitor.PortOpen();
        sbStatusBar.PanelText("status", Text(open ? Str::Connected : Str::Disconnected));
        mblnPortOpen = open;
        mnuCaptureSend.Enabled(mblnPortOpen);
    });
}

void frmMonitor::UpdatePort() {
    Trapped("frmMonitor.UpdatePort",
            [this] { sbStatusBar.PanelText("port", comMonitor.Port().name); });
}

void frmMonitor::UpdateSettings() {
    Trapped("frmMonitor.UpdateSettings",
            [this] { sbStatusBar.PanelText("settings", comMonitor.Port().settings); });
}

// --- menus and commands of the terminal ------------------------------------------------------

void frmMonitor::comMonitor_Command(TerminalCommand command, bool& handled) {
    Trapped("frmMonitor.comMonitor_Command", [&] {
        using enum TerminalCommand;
        const bool ofTheTerminal = command >= ViewText && command <= TerminalSettings;
        handled = ofTheTerminal || command == Open || command == Close || command == Settings;
        if (ofTheTerminal) return PerformOnTerminal(command);
        if (command == Open) mnuCommOpen_Click();
        if (command == Close) mnuCommClose_Click();
        if (command == Settings) mnuCommSettings_Click();
        if (!handled || Gone()) return;
        if (command == Settings) {
            UpdatePort();
            UpdateSettings();
        }
        UpdateStatus();  // also after the dialog, which reopens an open port and may fail
    });
}

void frmMonitor::mnuCommOpen_Click() {
    Trapped("frmMonitor.mnuCommOpen_Click", [this] {
        comMonitor.PerformCommand(TerminalCommand::Open);
        if (!comMonitor.PortOpen()) TellPortTrouble();
        if (!Gone()) UpdateStatus();
    });
}

void frmMonitor::mnuCommClose_Click() {
    Trapped("frmMonitor.mnuCommClose_Click", [this] {
        // Draining pasted text would block a running update.
        if (!mOwner.FlashIsRunning()) comMonitor.DrainOutput();
        comMonitor.PerformCommand(TerminalCommand::Close);
        UpdateStatus();
    });
}

void frmMonitor::mnuCommSettings_Click() {
    Trapped("frmMonitor.mnuCommSettings_Click", [this] {
        ShowPortSettings();
        if (Gone()) return;
        UpdatePort();
        TerminalOptions options = mOptions;
        options.flowControl = comMonitor.Port().flowControl;
        TakeOptions(options);
    });
}

void frmMonitor::ShowPortSettings() {
    const auto dialog = std::make_shared<frmPortSettings>(Manager(), mPlatform, comMonitor);
    dialog->Load();
    dialog->CenterOn(*this);
    dialog->Show(ShowMode::Modal, this);
    dialog->Unload();
    if (dialog->ReopenFailed() && !Gone()) TellPortTrouble();
}

void frmMonitor::TellPortTrouble() {
    mPlatform.boxes.Show({.text = Text(Str::PortNotOpened),
                          .title = "",
                          .icon = BoxIcon::Exclamation,
                          .owner = WindowHandle()});
}

// --- options and boxes of the terminal -------------------------------------------------------

/// The commands from ViewText to TerminalSettings.
void frmMonitor::PerformOnTerminal(TerminalCommand command) {
    using enum TerminalCommand;
    if (command == Find) return ShowFind();
    if (command == SendBytes) return ShowSendBytes();
    if (command == SaveScrollback) return AskAndSaveScrollback();
    if (command == TerminalSettings) return ShowTerminalSettings();
    TerminalOptions options = mOptions;
    if (ChooseOption(command, options, DesignedPoints())) TakeOptions(options);
}

/// The font size of the terminal in this window's design.
int frmMonitor::DesignedPoints() const {
    const auto row =
        std::ranges::find(Design().controls, ControlKind::Terminal, &ControlDesign::kind);
    return static_cast<int>(row->style.points);
}

void frmMonitor::TakeOptions(const TerminalOptions& options) {
    if (options == mOptions) return;
    const TerminalOptions before = std::exchange(mOptions, options);
    comMonitor.Options(mOptions);
    mOptionsStore.Save(before, mOptions);
}

void frmMonitor::ShowTerminalSettings() {
    const auto dialog =
        std::make_shared<frmTerminalSettings>(Manager(), mPlatform.strings, mOptions);
    dialog->Load();
    dialog->CenterOn(*this);
    dialog->Show(ShowMode::Modal, this);
    dialog->Unload();
    if (dialog->Chosen() && !Gone()) TakeOptions(*dialog->Chosen());
}

void frmMonitor::ShowFind() {
    if (!mFind) {
        mFind = std::make_shared<frmFind>(Manager(), mPlatform.strings, mFindHistory);
        mFind->Search.Connect(
            [this](const frmFind::Request& request, Str& result) { result = Search(request); });
        mFind->Closed.Connect([this] {
            mFind.reset();
            comMonitor.EndFind();
        });
        mFind->Load();
        mFind->CenterOn(*this);
    }
    mFind->Show(ShowMode::Modeless, this);
}

/// The text that tells the result; None for an ordinary hit.
Str frmMonitor::Search(const frmFind::Request& request) {
    const Found found = comMonitor.Find(
        request.text, {.matchCase = request.matchCase, .backwards = !request.forward});
    if (found == Found::Nothing) return Str::NotFound;
    return found == Found::HitAfterWrapping ? Str::FoundAfterWrapping : Str::None;
}

void frmMonitor::ShowSendBytes() {
    if (!mSendBytes) {
        mSendBytes =
            std::make_shared<frmSendBytes>(Manager(), mPlatform, comMonitor, mBytesHistory);
        mSendBytes->Closed.Connect([this] { mSendBytes.reset(); });
        mSendBytes->Load();
        mSendBytes->CenterOn(*this);
    }
    mSendBytes->Show(ShowMode::Modeless, this);
}

void frmMonitor::AskAndSaveScrollback() {
    const std::string fileName = AskForFile(FileUse::Scrollback);
    if (!fileName.empty()) comMonitor.SaveScrollback(fileName);
}

void frmMonitor::mnuFileExit_Click() {
    Trapped("frmMonitor.mnuFileExit_Click", [this] {
        if (mblnPortOpen) mnuCommClose_Click();
        Unload();
    });
}

// --- capture ---------------------------------------------------------------------------------

Str frmMonitor::TitleOf(FileUse use) {
    if (use == FileUse::Send) return Str::SendFileTitle;
    return use == FileUse::Capture ? Str::CaptureFileTitle : Str::SaveScrollbackTitle;
}

/// The file confirmed by the user; empty on cancel, and when the window was closed meanwhile.
std::string frmMonitor::AskForFile(FileUse use) {
    CFileDialog dialog(mPlatform.dialogs);
    dialog.DialogTitle = Text(TitleOf(use));
    dialog.DefaultExt = ".txt";
    dialog.Flags = kFileDialogFlags;
    dialog.Filter = Text(Str::TextFiles) + " (*.txt)|*.txt|" + Text(Str::AllFiles) + " (*.*)|*.*";
    dialog.hWndParent = WindowHandle();
    return dialog.Show(use == FileUse::Send) && !Gone() ? dialog.FileName : std::string();
}

void frmMonitor::mnuCaptureStart_Click() {
    Trapped("frmMonitor.mnuCaptureStart_Click", [this] {
        const std::string fileName = AskForFile(FileUse::Capture);
        if (!fileName.empty()) comMonitor.CaptureFile(fileName);
    });
}

void frmMonitor::mnuCaptureEnd_Click() {
    Trapped("frmMonitor.mnuCaptureEnd_Click", [this] { comMonitor.CaptureFile(""); });
}

// --- sending a file --------------------------------------------------------------------------

void frmMonitor::mnuCaptureSend_Click() {
    Trapped("frmMonitor.mnuCaptureSend_Click", [this] {
        // The send would run nested inside the update's message loop and block it. The menu entry
        // is enabled by the port state only.
        if (mOwner.FlashIsRunning()) return mPlatform.boxes.Beep();
        const std::string fileName = AskForFile(FileUse::Send);
        if (!fileName.empty()) SendFile(fileName);
    });
}

void frmMonitor::SendFile(const std::string& fileName) {
    const auto progress = std::make_shared<frmSend>(Manager(), mPlatform.strings);
    mProgress.push_back(progress);
    Trapped(
        "frmMonitor.SendFile",
        [&] {
            progress->Initialize(fileName);
            progress->CenterOn(*this);
            progress->Show(ShowMode::Modeless, this);
            if (!FileExists(fileName)) return;
            mPlatform.pump.PumpPending();
            if (Gone()) return;
            SendLines(GetFile(fileName), *progress);
        },
        [&] {
            progress->Unload();
            std::erase(mProgress, progress);
        });
}

/// Normal files only: hidden and system files count as missing.
bool frmMonitor::FileExists(const std::string& fileName) const {
    return !fileName.empty() &&
           !mPlatform.files
                .List(std::string(FolderOf(fileName)), std::string(FileNameOf(fileName)), {})
                .empty();
}

std::string frmMonitor::GetFile(const std::string& fileName) {
    std::string text;
    Boxed("GetFile", [&] { text = mPlatform.files.ReadAll(fileName); });
    return text;
}

void frmMonitor::SendLines(const std::string& text, frmSend& progress) {
    const std::vector<std::string_view> lines = SplitLines(text);
    const auto last = static_cast<std::int32_t>(lines.size() - 1);
    CDelay delay(mPlatform.clock, mPlatform.pump);
    delay.Waiting = [this](bool& cancel) { cancel = Gone() || !comMonitor.PortOpen(); };
    bool lost = false;
    if (Gone()) return;
    comMonitor.FollowOutput(true);
    comMonitor.EndLines = true;
    comMonitor.Screen().modes.autoWrap = true;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (TrimBlanks(lines[i]).empty()) continue;
        comMonitor.Output(lines[i]);
        delay.Delay(kLineIntervalMs);
        AwaitDriver(delay, progress);
        if (Gone()) return;
        lost = !comMonitor.PortOpen();
        if (lost) break;
        progress.status(LineOf(mPlatform.strings, static_cast<std::int32_t>(i), last));
        mPlatform.pump.PumpPending();
        if (Gone()) return;
        if (!MustStop(progress)) continue;
        comMonitor.DropPendingLines();
        break;
    }
    comMonitor.FollowOutput(false);
    if (lost) TellPortTrouble();
}

/// Keeps the progress in step with a slow line. Cancel could not stop lines already queued.
void frmMonitor::AwaitDriver(CDelay& delay, const frmSend& progress) {
    while (!Gone() && !comMonitor.FlushPending() && !MustStop(progress)) delay.Delay(kDriverPollMs);
}

/// An update started during a send runs nested inside it and is not delayed by it. If the send
/// resumes while the update waits for its verdict, the rest of the file is not sent.
bool frmMonitor::MustStop(const frmSend& progress) const {
    return progress.Cancelled() || mOwner.FlashIsRunning();
}

}  // namespace vantor
