#include "flash/FlashSession.hpp"

#include <cmath>
#include <memory>

#include "app/base/modSupport.hpp"
#include "platform/Files.hpp"
#include "platform/MessagePump.hpp"
#include "platform/StringTable.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"
#include "support/text/Text.hpp"

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

}  // namespace

FlashSession::FlashSession(FlashView& view, const CAppSettings& settings, const Services& services)
    : mView(view),
      mServices(services),
      mobjComm(services.ports, [this] { return mView.KeepAlive(); }),
      tmrFlashTimeout(services.pump, kVerdictTimeoutMs,
                      [this] {
                          const std::shared_ptr<void> alive = mView.KeepAlive();
                          tmrFlashTimeout_Timer();
                      }),
      mLink(view, mobjComm, mFlags, settings, services.clock, services.pump) {
    mobjComm.Receive.Connect([this] { mobjComm_Receive(); });
}

// Choosing the image -----------------------------------------------------------------------

void FlashSession::doFlash() {
    const auto run = [this] {
        mView.Begin();
        const std::optional<std::string> fileName = mView.ChooseImage();
        if (!fileName) return;
        mView.HoldSystem(Text(Str::UpdatingIndicator));
        FlashIndicator(*fileName);
        while (mFlags.mblnFlashing && !mView.Gone()) {
            DoEventsNice(mServices.pump);
            // No line was accepted, so only the user can end this wait.
            if (mOutcome == FlashOutcome::NothingAccepted && mFlags.mblnCloseRequested)
                mFlags.mblnFlashing = false;
        }
    };
    // Also after an error: close the port and re-enable the window.
    const auto restore = [this] {
        mView.HoldSystem({});
        mobjComm.Close();
        tmrFlashTimeout.Enabled(false);
        mView.CloseStatus();
        mView.End();
        if (mFlags.mblnCloseRequested) mView.Exit();
    };
    Trapped("frmMain.doFlash", run, restore);
}

// Streaming stage --------------------------------------------------------------------------

void FlashSession::FlashIndicator(const std::string& fileName) {
    mOutcome = FlashOutcome::None;
    bool begun = false;
    Trapped(
        "frmMain.FlashIndicator",
        [&] {
            if (!mServices.files.Exists(fileName)) return;
            begun = true;
            Dialogue(fileName);
        },
        [&] {
            if (!begun) return;
            mView.Busy(false);
            EndStreaming();
        });
}

void FlashSession::Dialogue(const std::string& fileName) {
    mFlags.mblnAbortFlash = false;
    mLastAccepted = false;
    mLink.SetupCommPortFlash();
    if (!Confirmed()) return;
    mView.Busy(true);
    if (!OpenPort()) return;
    CMMTimer stopwatch(mServices.clock);
    stopwatch.StartTimer();
    mView.ShowStage(Text(Str::Initializing));
    mView.AllowAbort(true);
    if (!Handshake()) return;
    // After a close behind the last line, a verdict must not follow the report of the abort.
    if (Stream(fileName, stopwatch) && !mLink.EndWanted()) ArmFinalStage();
}

std::string FlashSession::Question(const StringTable& strings) {
    return strings.Text(Str::CriticalOperation) + kParagraph + strings.Text(Str::DoNotTurnOff) +
           " " + kParagraph + strings.Text(Str::ProceedQuestion);
}

bool FlashSession::Confirmed() {
    if (mView.Confirm(Question(mServices.strings)) && !mView.Gone()) return true;
    mOutcome = FlashOutcome::Declined;
    return false;
}

bool FlashSession::OpenPort() {
    mobjComm.Open();
    if (mobjComm.IsOpen()) return true;
    Fail(FlashOutcome::PortNotOpen, BoxIcon::Exclamation, Str::PortNotOpened);
    return false;
}

bool FlashSession::Handshake() {
    // The blanks wake the monitor; it does not reply to them.
    for (int i = 0; i < 2; ++i) Ignoring([this] { mLink.RawSend(" \r"); });
    if (Command("TRAV") != SendResult::SendOK) {
        Fail(FlashOutcome::NotInBootMonitor, BoxIcon::Information, Str::NotInBootMonitor);
        return false;
    }
    // If the monitor cannot change its speed, the configured speed is used.
    if (Command("BAUD 115200") == SendResult::SendOK && !mView.Gone()) SpeedUp();
    if (Command("SYSLOAD") != SendResult::SendOK) {
        Fail(FlashOutcome::SystemLoadRefused, BoxIcon::Exclamation, Str::SystemLoadRefused);
        return false;
    }
    return true;
}

void FlashSession::SpeedUp() {
    mobjComm.Close();
    mobjComm.settings = mLink.SettingsAt("115200");
    mobjComm.Open();
    mLink.Wait(4000);
}

SendResult FlashSession::Command(std::string_view command) {
    std::string text(command);
    SendResult result = SendResult::SendFailed;
    mLink.SendData(text, false, result);
    return result;
}

bool FlashSession::Stream(const std::string& fileName, const CMMTimer& stopwatch) {
    const ImageLines lines = FileToStringArray(fileName, mServices.files);
    mFlags.mblnFlashing = true;
    const auto last = static_cast<std::int32_t>(lines.UBound());
    for (std::int32_t i = 0; i <= last; ++i) {
        const std::string_view line = lines[static_cast<std::size_t>(i)];
        if (!TrimBlanks(line).empty()) {
            ShowProgress(i, last, stopwatch);
            const LineResult sent = SendLine(line);
            if (sent == LineResult::EndWanted) return false;
            if (sent == LineResult::Refused) {
                mOutcome = FlashOutcome::LineRefused;
                Report(BoxIcon::Exclamation, Text(Str::FlashFailure),
                       Text(Str::UpdateFailureTitle));
                return false;
            }
        }
        // Pumps messages for the abort button and close requests.
        mServices.pump.PumpPending();
    }
    if (!mLastAccepted) mOutcome = FlashOutcome::NothingAccepted;
    return mLastAccepted;
}

FlashSession::LineResult FlashSession::SendLine(std::string_view line) {
    SendResult result = SendResult::SendFailed;
    for (int attempt = 1; attempt <= kMostSends && result == SendResult::SendFailed; ++attempt) {
        if (mLink.EndWanted()) return LineResult::EndWanted;
        std::string text = std::string(line) + "\r\n";
        mLink.SendData(text, false, result);
    }
    if (result == SendResult::SendFailed) return LineResult::Refused;
    if (result == SendResult::SendOK)
        mLastAccepted = true;
    else
        // A verdict in reply to a line is ignored: the verdict belongs to the final stage.
        mView.Beep();
    return LineResult::Sent;
}

void FlashSession::ShowProgress(std::int32_t index, std::int32_t last, const CMMTimer& stopwatch) {
    mView.ShowLine(index, last, ToInt16(stopwatch.ElapsedTime()));
    std::int16_t percent = 0;
    ScalePercentLong(index, last, percent);
    mView.ShowPercent(percent);
    mView.AllowAbort(index < last - kLinesBeyondAbort);
    mView.ShowWarning(index == last ? kWritingFlash : "");
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

void FlashSession::ArmFinalStage() {
    // The verdict may already be in the buffer; its message box then opens inside this function.
    mView.Busy(false);
    mView.ShowWarning("");
    mstrReply.clear();
    mView.OpenStatus(Text(Str::UpdatingIndicator));
    mobjComm.ReceiveThreshold(1);
    if (!mFlags.mblnFlashing) return;
    tmrFlashTimeout.Enabled(true);
    // Last, because only a completely armed stage can end the session. Set earlier, an error above
    // would leave mblnFlashing set for good, and the window could not be closed.
    mOutcome = FlashOutcome::AwaitingVerdict;
}

void FlashSession::EndStreaming() {
    if (mLink.EndWanted()) {
        mView.ShowAborted(Text(Str::UpdateAborted));
        mOutcome = FlashOutcome::Aborted;
        Report(BoxIcon::Exclamation, Text(Str::FlashAborted), Text(Str::UpdateAborted));
    }
    const bool goesOn =
        mOutcome == FlashOutcome::AwaitingVerdict || mOutcome == FlashOutcome::NothingAccepted;
    if (!goesOn) mFlags.mblnFlashing = false;
}

void FlashSession::cmdFlashAbort_Click() {
    Trapped("frmMain.cmdFlashAbort_Click", [this] { mFlags.mblnAbortFlash = true; });
}

bool FlashSession::RequestClose() {
    if (!mFlags.mblnFlashing) return false;
    mFlags.mblnCloseRequested = true;
    return true;
}

// Final stage ------------------------------------------------------------------------------

void FlashSession::mobjComm_Receive() {
    Trapped("frmMain.mobjComm_Receive", [this] {
        mstrReply += mobjComm.Input();
        if (mstrReply.find("DONE") != std::string::npos)
            VerdictDone();
        else if (mstrReply.find("VERIFY FAILED") != std::string::npos)
            VerdictVerifyFailed();
    });
}

void FlashSession::VerdictDone() {
    mstrReply.clear();
    mView.CloseStatus();
    tmrFlashTimeout.Enabled(false);
    mOutcome = FlashOutcome::Done;
    mFlags.mblnFlashing = false;
    mobjComm.Output("BOOT\r");
    while (mobjComm.OutBufferCount() >= 1 && !mView.Gone()) DoEventsNice(mServices.pump);
    mobjComm.Close();
    Report(BoxIcon::Information, Text(Str::DownloadComplete), Text(Str::FlashSuccessful));
    mView.ClearProgress();
    mobjComm.ReceiveThreshold(0);
}

void FlashSession::VerdictVerifyFailed() {
    mstrReply.clear();
    mView.CloseStatus();
    tmrFlashTimeout.Enabled(false);
    mOutcome = FlashOutcome::VerifyFailed;
    Report(BoxIcon::Critical,
           Text(Str::CriticalFlashFailure) + " " + kParagraph + Text(Str::ReturnForRepair),
           Text(Str::CriticalErrorTitle));
    mobjComm.Close();
    mFlags.mblnFlashing = false;
    mView.ClearProgress();
    mstrReply.clear();
    mobjComm.ReceiveThreshold(0);
}

void FlashSession::tmrFlashTimeout_Timer() {
    Ignoring([this] { mView.CloseStatus(); });
    Ignoring([this] { tmrFlashTimeout.Enabled(false); });
    Ignoring([this] { mobjComm.Close(); });
    mOutcome = FlashOutcome::NoVerdict;
    mFlags.mblnFlashing = false;
    Ignoring([this] { mView.ClearProgress(); });
    Ignoring([this] {
        Report(BoxIcon::Exclamation, Text(Str::FlashFailure), Text(Str::UpdateFailureTitle));
    });
}

void FlashSession::Fail(FlashOutcome outcome, BoxIcon icon, Str text) {
    mView.Busy(false);
    mOutcome = outcome;
    Report(icon, Text(text));
}

void FlashSession::Report(BoxIcon icon, const std::string& text, const std::string& title) {
    if (!mView.Gone()) mView.Report(icon, text, title);
}

std::string FlashSession::Text(Str text) const {
    return mServices.strings.Text(text);
}

}  // namespace vantor
