// One firmware update, from the selection of the image to the indicator's verdict: the boot
// monitor dialogue, streaming the lines, and the time limit of the final stage.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "flash/FirmwareImage.hpp"
#include "flash/FlashView.hpp"
#include "flash/SerialControl.hpp"
#include "flash/SerialLink.hpp"
#include "resources/texts/Str.hpp"
#include "support/CMMTimer.hpp"
#include "support/Timer.hpp"

namespace vantor {

class Files;
class StringTable;

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

    /// All of these outlive the session.
    struct Services {
        Clock& clock;
        const Files& files;
        MessagePump& pump;
        SerialPorts& ports;
        const StringTable& strings;
    };

    /// `view` and `settings` outlive the session.
    FlashSession(FlashView& view, const CAppSettings& settings, const Services& services);
    FlashSession(const FlashSession&) = delete;
    FlashSession& operator=(const FlashSession&) = delete;

    /// What is asked before anything is sent.
    static std::string Question(const StringTable& strings);

    /// Lets the user select an image and runs a session with it, pumping messages until it ends;
    /// then closes the port, and also the view if the user tried to close it.
    void doFlash();

    /// The streaming stage. On return the session has ended (mblnFlashing false), or the final
    /// stage is armed and ends by its events. A missing file ends the session silently.
    void FlashIndicator(const std::string& fileName);

    /// The user has pressed the abort button.
    void cmdFlashAbort_Click();

    FlashOutcome Outcome() const { return mOutcome; }
    bool Flashing() const { return mFlags.mblnFlashing; }
    /// The user wants to close the view. During a session this asks the session to end and then
    /// to close the view, and returns true; else it does nothing.
    bool RequestClose();
    bool CloseRequested() const { return mFlags.mblnCloseRequested; }
    FlashFlags& Flags() { return mFlags; }
    const SerialControl& Port() const { return mobjComm; }
    /// True while the time limit of the final stage runs.
    bool AwaitsVerdict() const { return tmrFlashTimeout.Enabled(); }

private:
    enum class LineResult : std::uint8_t { Sent, Refused, EndWanted };

    void Dialogue(const std::string& fileName);
    bool Confirmed();
    bool OpenPort();
    bool Handshake();
    void SpeedUp();
    SendResult Command(std::string_view command);
    /// True when all lines are sent and the verdict is outstanding.
    bool Stream(const std::string& fileName, const CMMTimer& stopwatch);
    LineResult SendLine(std::string_view line);
    void ShowProgress(std::int32_t index, std::int32_t last, const CMMTimer& stopwatch);
    void ScalePercentLong(std::int32_t value, std::int32_t total, std::int16_t& percent);
    void ArmFinalStage();
    void EndStreaming();

    void mobjComm_Receive();
    void tmrFlashTimeout_Timer();
    void VerdictDone();
    void VerdictVerifyFailed();

    /// Reports a failed handshake, without the wait cursor.
    void Fail(FlashOutcome outcome, BoxIcon icon, Str text);
    /// Does nothing once the view has gone.
    void Report(BoxIcon icon, const std::string& text, const std::string& title = {});
    std::string Text(Str text) const;

    FlashView& mView;
    Services mServices;
    FlashFlags mFlags;
    SerialControl mobjComm;
    Timer tmrFlashTimeout;
    SerialLink mLink;
    FlashOutcome mOutcome = FlashOutcome::None;
    bool mLastAccepted = false;
    std::string mstrReply;  // text of the final stage, received in pieces
};

}  // namespace vantor
