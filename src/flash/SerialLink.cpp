#include "flash/SerialLink.hpp"

#include <array>
#include <utility>

#include "app/base/modSupport.hpp"
#include "flash/FlashView.hpp"
#include "flash/SerialControl.hpp"
#include "platform/Clock.hpp"
#include "settings/CAppSettings.hpp"
#include "support/CDelay.hpp"
#include "support/Conversions.hpp"
#include "support/Traps.hpp"

namespace vantor {

std::optional<SendResult> ReplyIn(std::string_view reply) {
    constexpr std::array<std::pair<std::string_view, SendResult>, 4> kWords = {{
        {"VERIFY FAILED", SendResult::SendVerifyFailed},
        {"DONE", SendResult::SendDone},
        {"OK", SendResult::SendOK},
        {"??", SendResult::SendFailed},
    }};
    for (const auto& [word, result] : kWords)
        if (reply.find(word) != std::string_view::npos) return result;
    return std::nullopt;
}

SerialLink::SerialLink(const FlashView& view, SerialControl& comm, const FlashFlags& flags,
                       const CAppSettings& settings, Clock& clock, MessagePump& pump)
    : mView(view), mComm(comm), mFlags(flags), mSettings(settings), mClock(clock), mPump(pump) {}

void SerialLink::SetupCommPortFlash() {
    Trapped("frmMain.SetupCommPortFlash", [this] {
        // An open control is always raw, without echo or flow control. The only state that an
        // earlier session can leave is the receive threshold.
        mComm.ReceiveThreshold(0);
        mComm.name = mSettings.CommPort();
        mComm.settings = SettingsAt(mSettings.BaudRate());
    });
}

std::string SerialLink::SettingsAt(std::string_view speed) const {
    return std::string(speed) + "," + mSettings.Parity() + "," + mSettings.DataBits() + "," +
           mSettings.StopBits();
}

void SerialLink::RawSend(std::string_view text) {
    Raising("Morvane.frmMain.RawSend", [&] {
        if (mComm.IsOpen()) mComm.Output(text);
    });
}

void SerialLink::DelayedSend(std::string_view text) {
    Raising("Morvane.frmMain.DelayedSend", [&] {
        for (const char byte : text) {
            mComm.Output({&byte, 1});
            Wait(kPacedDelayMs);
        }
    });
}

void SerialLink::SendData(std::string& text, bool paced, SendResult& result) {
    result = SendResult::SendFailed;
    Trapped(
        "frmMain.SendData",
        [&] {
            if (text.ends_with("\r\n")) text.pop_back();
            if (!text.ends_with('\r')) text += '\r';
            // After an abort or close request a command would start a stage that nobody completes.
            if (!mComm.IsOpen() || EndWanted()) return;
            const std::int32_t start = mClock.Ticks();
            if (paced)
                DelayedSend(text);
            else
                RawSend(text);
            result = AwaitReply(start);
        },
        [this] { mComm.ClearInput(); });
}

SendResult SerialLink::AwaitReply(std::int32_t start) {
    const std::int32_t limit = CheckedAdd(start, kReplyTimeoutMs);
    std::string reply;
    bool late = false;
    for (;;) {
        if (mComm.InBufferCount() > 0) {
            reply += mComm.Input();
            if (const auto result = ReplyIn(reply)) return *result;
        }
        if (late || EndWanted() || !mComm.IsOpen()) return SendResult::SendFailed;
        DoEventsNice(mPump);
        // An open menu may have blocked the pump past the time limit, so input that arrived
        // meanwhile is checked before the time-out applies.
        late = mClock.Ticks() > limit;
    }
}

bool SerialLink::EndWanted() const {
    return mFlags.mblnCloseRequested || mFlags.mblnAbortFlash || mView.Gone();
}

void SerialLink::Wait(std::int16_t ms) {
    CDelay delay(mClock, mPump);
    delay.Waiting = [this](bool& cancel) { cancel = mView.Gone(); };
    delay.Delay(ms);
}

}  // namespace vantor
