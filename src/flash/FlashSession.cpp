#include "flash/FlashSession.hpp"

#include <cmath>
#include <optional>
#include <utility>

#include "app/base/modSupport.hpp"
#include "controls/Form.hpp"
#include "dialogs/frmStatus.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/MessagePump.hpp"
#include "platform/StringTable.hpp"
#include "support/CFileDialog.hpp"
#include "support/CHourglass.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

constexpr const char* kParagraph = "\r\n\r\n";
constexpr const char* kWritingFlash =
    "Writing firmware update to flash memory. This can take a few minutes. Do not disconnect "
    "power from the indicator during this update.";

/// From this many lines before the last one, a session cannot be aborted any more:
/// the indicator may already be writing.
constexpr std::int32_t kLinesBeyondAbort = 10;
constexpr int kMostSends = 4;

/// "00:04:07"
std::string TimeOfDay(std::int16_t seconds) {
    return TwoDigits(seconds / 3600) + ":" + TwoDigits(seconds / 60 % 60) + ":" +
           TwoDigits(seconds % 60);
}

}  // namespace

FlashSession::FlashSession(FlashHost& host, const CAppSettings& settings, Platform& platform)
    : mHost(host),
      mControls(host.SessionControls()),
      mFlags(host.Flags()),
      mPlatform(platform),
      mLink(host, settings, platform.clock, platform.pump) {
    mControls.cmdFlashAbort.Click.Connect([this] { cmdFlashAbort_Click(); });
    mControls.mobjComm.Receive.Connect([this] { mobjComm_Receive(); });
    mControls.tmrFlashTimeout.Tick.Connect([this] { tmrFlashTimeout_Timer(); });
}

FlashSession::~FlashSession() {
    mControls.cmdFlashAbort.Click.Connect({});
    mControls.mobjComm.Receive.Connect({});
    mControls.tmrFlashTimeout.Tick.Connect({});
}

// Choosing the image -----------------------------------------------------------------------

void FlashSession::doFlash() {
    const auto run = [this] {
        mHost.ShowFunction(MainPanel::Flash);
        mHost.EnableButtons(false);
        CFileDialog dialog(mPlatform.dialogs);
        dialog.DialogTitle = Text(Str::ChooseImageTitle);
        dialog.DefaultExt = ".run";
        dialog.Filter =
            Text(Str::ImageFiles) + " (*.run)|*.run|" + Text(Str::AllFiles) + " (*.*)|*.*";
        // Without a documents folder the dialog opens in the system default folder.
        Ignoring([&] {
            dialog.InitialDir =
                AddFinalSlash(mPlatform.folders.PersonalDocuments()) + "Caldor Downloads\\";
        });
        dialog.hWndParent = mHost.Window().WindowHandle();
        if (!dialog.Show(true)) return;
        mPlatform.peers.HoldSystem(Text(Str::UpdatingIndicator));
        FlashIndicator(dialog.FileName);
        while (mFlags.mblnFlashing && !mHost.Window().Gone()) {
            DoEventsNice(mPlatform.pump);
            // No line was accepted, so only the user can end this wait.
            if (mOutcome == FlashOutcome::NothingAccepted && mFlags.mblnCloseRequested)
                mFlags.mblnFlashing = false;
        }
    };
    // Also after an error: close the port and re-enable the window.
    const auto restore = [this] {
        mPlatform.peers.HoldSystem({});
        mControls.mobjComm.ClosePort();
        mControls.tmrFlashTimeout.Enabled(false);
        CloseStatus();
        mHost.EnableButtons(true);
        mHost.ShowFunction(MainPanel::Startup);
        if (mFlags.mblnCloseRequested) mHost.mnuFileExit_Click();
    };
    Trapped("frmMain.doFlash", run, restore);
}

// Streaming stage --------------------------------------------------------------------------

void FlashSession::FlashIndicator(const std::string& fileName) {
    mOutcome = FlashOutcome::None;
    std::optional<CHourglass> hourglass;
    Trapped(
        "frmMain.FlashIndicator",
        [&] {
            if (!mPlatform.files.Exists(fileName)) return;
            hourglass.emplace(mPlatform.peers);
            Dialogue(fileName, *hourglass);
        },
        [&] {
            if (!hourglass) return;
            hourglass.reset();
            EndStreaming();
        });
}

void FlashSession::Dialogue(const std::string& fileName, CHourglass& hourglass) {
    mFlags.mblnAbortFlash = false;
    mLastAccepted = false;
    mLink.SetupCommPortFlash();
    if (!Confirmed()) return;
    hourglass.Value(true);
    if (!OpenLine(hourglass)) return;
    CMMTimer stopwatch(mPlatform.clock);
    stopwatch.StartTimer();
    mControls.lblStatus.Caption(Text(Str::Initializing));
    mControls.cmdFlashAbort.Enabled(true);
    if (!Handshake(hourglass)) return;
    if (Stream(fileName, stopwatch)) ArmFinalStage(hourglass);
}

bool FlashSession::Confirmed() {
    const BoxAnswer answer = mPlatform.boxes.Show(
        {.text = Text(Str::CriticalOperation) + kParagraph + Text(Str::DoNotTurnOff) + " " +
                 kParagraph + Text(Str::ProceedQuestion),
         .title = {},
         .icon = BoxIcon::Question,
         .buttons = BoxButtons::YesNo,
         .owner = mHost.Window().WindowHandle()});
    if (answer == BoxAnswer::Yes && !mHost.Window().Gone()) return true;
    mOutcome = FlashOutcome::Declined;
    return false;
}

bool FlashSession::OpenLine(CHourglass& hourglass) {
    mControls.mobjComm.OpenPort();
    if (mControls.mobjComm.PortOpen()) return true;
    hourglass.Value(false);
    mOutcome = FlashOutcome::PortNotOpen;
    Say(BoxIcon::Exclamation, Text(Str::PortNotOpened));
    return false;
}

bool FlashSession::Handshake(CHourglass& hourglass) {
    // The blanks wake the monitor; it does not reply to them.
    for (int i = 0; i < 2; ++i) Ignoring([this] { mLink.RawSend(" \r"); });
    if (Command("TRAV") != SendResult::SendOK) {
        hourglass.Value(false);
        mOutcome = FlashOutcome::NotInBootMonitor;
        Say(BoxIcon::Information, Text(Str::NotInBootMonitor));
        return false;
    }
    // If the monitor cannot change its speed, the configured speed is used.
    if (Command("BAUD 115200") == SendResult::SendOK && !mHost.Window().Gone()) SpeedUp();
    if (Command("SYSLOAD") != SendResult::SendOK) {
        hourglass.Value(false);
        mOutcome = FlashOutcome::SystemLoadRefused;
        Say(BoxIcon::Exclamation, Text(Str::SystemLoadRefused));
        return false;
    }
    return true;
}

void FlashSession::SpeedUp() {
    mControls.mobjComm.ClosePort();
    mControls.mobjComm.Settings(mLink.SettingsAt("115200"));
    mControls.mobjComm.OpenPort();
    mLink.Wait(4000);
}

SendResult FlashSession::Command(std::string_view command) {
    std::string text(command);
    SendResult result = SendResult::SendFailed;
    mLink.SendData(text, false, result);
    return result;
}

bool FlashSession::Stream(const std::string& fileName, const CMMTimer& stopwatch) {
    const ImageLines lines = FileToStringArray(fileName, mPlatform.files);
    mFlags.mblnFlashing = true;
    const auto last = static_cast<std::int32_t>(lines.UBound());
    for (std::int32_t i = 0; i <= last; ++i) {
        const std::string_view line = lines[static_cast<std::size_t>(i)];
        if (!TrimBlanks(line).empty()) {
            ShowProgress(i, last, stopwatch);
            const Line sent = SendLine(line);
            if (sent == Line::EndWanted) return false;
            if (sent == Line::Refused) {
                mLastAccepted = false;
                mOutcome = FlashOutcome::LineRefused;
                Say(BoxIcon::Exclamation, Text(Str::FlashFailure), Text(Str::UpdateFailureTitle));
                return false;
            }
        }
        // Pumps messages for the abort button and close requests.
        mPlatform.pump.PumpPending();
    }
    if (!mLastAccepted) mOutcome = FlashOutcome::NothingAccepted;
    return mLastAccepted;
}

FlashSession::Line FlashSession::SendLine(std::string_view line) {
    SendResult result = SendResult::SendFailed;
    for (int attempt = 1; attempt <= kMostSends && result == SendResult::SendFailed; ++attempt) {
        if (mLink.EndWanted()) return Line::EndWanted;
        std::string text = std::string(line) + "\r\n";
        mLink.SendData(text, false, result);
    }
    if (result == SendResult::SendFailed) return Line::Refused;
    if (result == SendResult::SendOK)
        mLastAccepted = true;
    else
        // A verdict in reply to a line is ignored: the verdict belongs to the final stage.
        mPlatform.boxes.Beep();
    return Line::Sent;
}

void FlashSession::ShowProgress(std::int32_t index, std::int32_t last, const CMMTimer& stopwatch) {
    // Both numbers are indices, counted from 0.
    mControls.lblStatus.Caption(Text(Str::Line) + " " + std::to_string(index) + " " +
                                Text(Str::Of) + " " + std::to_string(last));
    mControls.lblElapsed.Caption(TimeOfDay(ToInt16(stopwatch.ElapsedTime())));
    std::int16_t percent = 0;
    ScalePercentLong(index, last, percent);
    mControls.pbarStatus.Value(percent);
    mControls.cmdFlashAbort.Enabled(index < last - kLinesBeyondAbort);
    mControls.lblWarning.Caption(index == last ? kWritingFlash : "");
}

// An image of one line has last index 0: the division by zero is reported, and the session
// continues with the old `percent`.
void FlashSession::ScalePercentLong(std::int32_t value, std::int32_t total, std::int16_t& percent) {
    Trapped("frmMain.ScalePercentLong", [&] {
        const std::int32_t scaled = CheckedMultiply(value, 100);
        if (total == 0) throw RuntimeError(ErrorNumber::DivisionByZero);
        percent = ToInt16(std::floor(static_cast<double>(scaled) / total));
    });
}

void FlashSession::ArmFinalStage(CHourglass& hourglass) {
    // The verdict may already be in the buffer; its message box then opens inside this function.
    hourglass.Value(false);
    mControls.lblWarning.Caption("");
    mstrReply.clear();
    mStatus = std::make_shared<frmStatus>(mHost.Window().Manager(), mPlatform.strings);
    mStatus->Load();
    mStatus->CenterOn(mHost.Window());
    mStatus->Message(Text(Str::UpdatingIndicator));
    mStatus->Show(ShowMode::Modeless, &mHost.Window());
    mControls.mobjComm.ReceiveThreshold(1);
    if (!mFlags.mblnFlashing) return;
    mControls.tmrFlashTimeout.Enabled(true);
    // Last, because only a completely armed stage can end the session. Set earlier, an error above
    // would leave mblnFlashing set for good, and the window could not be closed.
    mOutcome = FlashOutcome::AwaitingVerdict;
}

void FlashSession::EndStreaming() {
    if (mLink.EndWanted()) {
        mControls.lblStatus.Caption(Text(Str::UpdateAborted));
        mOutcome = FlashOutcome::Aborted;
        Say(BoxIcon::Exclamation, Text(Str::FlashAborted), Text(Str::UpdateAborted));
    }
    const bool goesOn =
        mOutcome == FlashOutcome::AwaitingVerdict || mOutcome == FlashOutcome::NothingAccepted;
    if (!goesOn) mFlags.mblnFlashing = false;
}

void FlashSession::cmdFlashAbort_Click() {
    Trapped("frmMain.cmdFlashAbort_Click", [this] { mFlags.mblnAbortFlash = true; });
}

// Final stage ------------------------------------------------------------------------------

void FlashSession::mobjComm_Receive() {
    Trapped("frmMain.mobjComm_Receive", [this] {
        mstrReply += mControls.mobjComm.Input();
        if (mstrReply.find("DONE") != std::string::npos)
            VerdictDone();
        else if (mstrReply.find("VERIFY FAILED") != std::string::npos)
            VerdictVerifyFailed();
    });
}

void FlashSession::VerdictDone() {
    SerialControl& comm = mControls.mobjComm;
    mstrReply.clear();
    CloseStatus();
    mControls.tmrFlashTimeout.Enabled(false);
    mOutcome = FlashOutcome::Done;
    mFlags.mblnFlashing = false;
    comm.Output("BOOT\r");
    while (comm.OutBufferCount() >= 1 && !mHost.Window().Gone()) DoEventsNice(mPlatform.pump);
    comm.ClosePort();
    Say(BoxIcon::Information, Text(Str::DownloadComplete), Text(Str::FlashSuccessful));
    ClearProgress();
    comm.ReceiveThreshold(0);
}

void FlashSession::VerdictVerifyFailed() {
    mstrReply.clear();
    CloseStatus();
    mControls.tmrFlashTimeout.Enabled(false);
    mOutcome = FlashOutcome::VerifyFailed;
    Say(BoxIcon::Critical,
        Text(Str::CriticalFlashFailure) + " " + kParagraph + Text(Str::ReturnForRepair),
        Text(Str::CriticalErrorTitle));
    mControls.mobjComm.ClosePort();
    mFlags.mblnFlashing = false;
    ClearProgress();
    mstrReply.clear();
    mControls.mobjComm.ReceiveThreshold(0);
}

void FlashSession::tmrFlashTimeout_Timer() {
    Ignoring([this] { CloseStatus(); });
    Ignoring([this] { mControls.tmrFlashTimeout.Enabled(false); });
    Ignoring([this] { mControls.mobjComm.ClosePort(); });
    mOutcome = FlashOutcome::NoVerdict;
    mFlags.mblnFlashing = false;
    Ignoring([this] { ClearProgress(); });
    Ignoring([this] {
        Say(BoxIcon::Exclamation, Text(Str::FlashFailure), Text(Str::UpdateFailureTitle));
    });
}

void FlashSession::CloseStatus() {
    if (mStatus) std::exchange(mStatus, nullptr)->Unload();
}

void FlashSession::ClearProgress() {
    mControls.lblStatus.Caption("");
    mControls.pbarStatus.Value(0);
}

// ------------------------------------------------------------------------------------------

// Shows nothing after the window has been unloaded.
void FlashSession::Say(BoxIcon icon, const std::string& text, const std::string& title) {
    const Form& window = mHost.Window();
    if (window.Gone()) return;
    mPlatform.boxes.Show(
        {.text = text, .title = title, .icon = icon, .owner = window.WindowHandle()});
}

std::string FlashSession::Text(Str text) const {
    return mPlatform.strings.Text(text);
}

}  // namespace vantor
