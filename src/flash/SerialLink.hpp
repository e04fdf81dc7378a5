// The protocol of the indicator's boot monitor: configures the line, sends one command or image
// line, and collects the reply to it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantor {

class CAppSettings;
class Clock;
class FlashView;
class MessagePump;
class SerialControl;

/// The only channel from the handlers of the window to the running session.
struct FlashFlags {
    bool mblnFlashing = false;        ///< a session is in progress
    bool mblnAbortFlash = false;      ///< the user pressed the abort button
    bool mblnCloseRequested = false;  ///< the user tried to close the window during it
};

enum class SendResult : std::int32_t {
    SendOK = 0,            ///< the reply contains "OK"
    SendFailed = 1,        ///< "??", abort or close request, time-out, port not open
    SendDone = 2,          ///< "DONE"
    SendVerifyFailed = 3,  ///< "VERIFY FAILED"
};

/// The result of a reply: the first of "VERIFY FAILED", "DONE", "OK" and "??", in this order,
/// that it contains; empty while it contains none of them.
std::optional<SendResult> ReplyIn(std::string_view reply);

class SerialLink {
public:
    /// Time limit for a reply, counted from before the send.
    static constexpr std::int32_t kReplyTimeoutMs = 20000;
    /// Pause after each character of a paced send.
    static constexpr std::int16_t kPacedDelayMs = 50;

    /// All of these must outlive the link.
    SerialLink(const FlashView& view, SerialControl& comm, const FlashFlags& flags,
               const CAppSettings& settings, Clock& clock, MessagePump& pump);

    /// Prepares the closed control from the settings: port, line, no receive events.
    void SetupCommPortFlash();

    /// The settings string with `speed` in place of the configured one: "115200,N,8,2".
    std::string SettingsAt(std::string_view speed) const;

    /// Writes `text` at once when the port is open, and does nothing when it is not.
    /// Errors are raised with the source "Morvane.frmMain.RawSend".
    void RawSend(std::string_view text);

    /// Writes `text` byte by byte with a pause after each, without checking whether the port
    /// is open. Errors are raised with the source "Morvane.frmMain.DelayedSend".
    void DelayedSend(std::string_view text);

    /// Sends `text` and waits for the reply, pumping messages. `text` is changed in place: a
    /// CR LF at its end becomes CR, and a CR is added when there is none. After an abort or close
    /// request it sends nothing and fails. `result` is SendOK only for an "OK" reply, even after an
    /// error. The input buffer is empty afterwards.
    void SendData(std::string& text, bool paced, SendResult& result);

    /// True after an abort or close request, or once the view has gone.
    bool EndWanted() const;

    /// Waits, pumping messages; ends early when the view has gone.
    void Wait(std::int16_t ms);

private:
    SendResult AwaitReply(std::int32_t start);

    const FlashView& mView;
    SerialControl& mComm;
    const FlashFlags& mFlags;
    const CAppSettings& mSettings;
    Clock& mClock;
    MessagePump& mPump;
};

}  // namespace vantor
