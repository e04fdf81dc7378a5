// One firmware update, from the selection of the image to the indicator's verdict: the boot
// monitor dialogue, streaming the lines, and the time limit of the final stage.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "flash/FirmwareImage.hpp"
#include "flash/FlashHost.hpp"
#include "flash/SerialLink.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/Platform.hpp"
#include "resources/texts/Str.hpp"
#include "support/CMMTimer.hpp"

namespace vantor {

class CHourglass;
class frmStatus;

/// How the last session ended, or what it is waiting for.
enum class FlashOutcome : std::uint8_t {
    None,      ///< no session yet, or not ended yet
    Declined,  ///< the warning was not answered Yes
    PortNotOpen,
    NotInBootMonitor,
    SystemLoadRefused,
    LineRefused,  ///< a line failed four times
    Aborted,
    NothingAccepted,  ///< all lines sent, none answered OK: still waiting
    AwaitingVerdict,
    Done,
    VerifyFailed,
    NoVerdict,  ///< 60 s without one
};

class FlashSession {
public:
    /// Time limit for writing flash memory and reporting the verdict.
    static constexpr std::uint32_t kVerdictTimeoutMs = 60000;

    /// Handles the host's events (abort button, timer, receive event). All outlive the session.
    FlashSession(FlashHost& host, const CAppSettings& settings, Platform& platform);
    ~FlashSession();
    FlashSession(const FlashSession&) = delete;
    FlashSession& operator=(const FlashSession&) = delete;

    /// Lets the user select an image and runs a session with it, pumping messages until it ends;
    /// then closes the port, and also the window if the user tried to close it.
    void doFlash();

    /// The streaming stage. On return the session has ended (mblnFlashing false), or the final
    /// stage is armed and ends by its events. A missing file ends the session silently.
    void FlashIndicator(const std::string& fileName);

    FlashOutcome Outcome() const { return mOutcome; }

private:
    enum class Line : std::uint8_t { Sent, Refused, EndWanted };

    void Dialogue(const std::string& fileName, CHourglass& hourglass);
    bool Confirmed();
    bool OpenLine(CHourglass& hourglass);
    bool Handshake(CHourglass& hourglass);
    void SpeedUp();
    SendResult Command(std::string_view command);
    /// True when all lines are sent and the verdict is outstanding.
    bool Stream(const std::string& fileName, const CMMTimer& stopwatch);
    Line SendLine(std::string_view line);
    void ShowProgress(std::int32_t index, std::int32_t last, const CMMTimer& stopwatch);
    void ScalePercentLong(std::int32_t value, std::int32_t total, std::int16_t& percent);
    void ArmFinalStage(CHourglass& hourglass);
    void EndStreaming();

    void cmdFlashAbort_Click();
    void mobjComm_Receive();
    void tmrFlashTimeout_Timer();
    void VerdictDone();
    void VerdictVerifyFailed();
    void CloseStatus();
    void ClearProgress();

    void Say(BoxIcon icon, const std::string& text, const std::string& title = {});
    std::string Text(Str text) const;

    FlashHost& mHost;
    FlashControls mControls;
    FlashFlags& mFlags;
    Platform& mPlatform;
    SerialLink mLink;
    FlashOutcome mOutcome = FlashOutcome::None;
    bool mLastAccepted = false;
    std::shared_ptr<frmStatus> mStatus;
    std::string mstrReply;  // text of the final stage, received in pieces
};

}  // namespace vantor
