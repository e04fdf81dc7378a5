#include "console/IndicatorWait.hpp"

#include "app/base/modSupport.hpp"
#include "flash/SerialLink.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kReplyMs = 1500;
// A reply that arrives after the session has begun would be taken for the answer to another
// command.
constexpr std::uint32_t kQuietMs = 500;
constexpr int kMostPauses = 10;  // a device that goes on sending is no boot monitor
constexpr std::uint32_t kPauseMs = 500;
constexpr std::uint32_t kRestMs = 10;
constexpr int kSilencesOfOneGone = 2;

}  // namespace

bool WaitMustEnd(Console& console) {
    return console.TakeInterrupt() || console.ReaderGone();
}

IndicatorWait::IndicatorWait(SerialPorts& ports, MessagePump& pump, Clock& clock, Console& console,
                             const std::string& portName, const std::string& line)
    : mPump(pump), mClock(clock), mConsole(console), mPort(ports) {
    mPort.name = portName;
    mPort.settings = line;
}

IndicatorWait::Result IndicatorWait::UntilReady(std::optional<std::uint64_t> limitMs,
                                                const std::function<void(Stage)>& show) {
    std::optional<Stage> shown;
    std::uint64_t waitedMs = 0;
    std::uint32_t last = mClock.Milliseconds();
    for (;;) {
        const Found found = Call();
        if (found == Found::Interrupted) return Result::Interrupted;
        if (found == Found::BootMonitor) return Result::Ready;
        const Stage stage = found == Found::NoPort ? Stage::Port : Stage::Indicator;
        if (shown != stage) show(stage);
        shown = stage;
        const std::uint32_t now = mClock.Milliseconds();
        waitedMs += now - last;
        last = now;
        if (limitMs && waitedMs >= *limitMs)
            return stage == Stage::Port ? Result::NoPort : Result::NoAnswer;
        if (!Pause(kPauseMs)) return Result::Interrupted;
    }
}

IndicatorWait::Result IndicatorWait::UntilGone() {
    for (int silences = 0; silences < kSilencesOfOneGone;) {
        const Found found = Call();
        if (found == Found::Interrupted) return Result::Interrupted;
        if (found == Found::NoPort) return Result::Ready;
        silences = found == Found::Silence ? silences + 1 : 0;
        if (mConsole.LineWaits()) {
            mConsole.ReadLine();
            return Result::Ready;
        }
        if (!Pause(kPauseMs)) return Result::Interrupted;
    }
    return Result::Ready;
}

IndicatorWait::Found IndicatorWait::Call() {
    mPort.Open({});
    if (!mPort.IsOpen()) return Found::NoPort;
    mPort.Output(" \r \rTRAV\r");
    std::string reply;
    const std::uint32_t start = mClock.Milliseconds();
    while (!ReplyIn(reply) && mPort.IsOpen() && mClock.Milliseconds() - start < kReplyMs) {
        Rest();
        reply += mPort.Input();
        if (WaitMustEnd(mConsole)) {
            mPort.Close();
            return Found::Interrupted;
        }
    }
    if (!mPort.IsOpen()) return Found::NoPort;
    const bool answered = ReplyIn(reply) == SendResult::SendOK;
    bool ready = false;
    for (int pauses = 0; answered && !ready && pauses < kMostPauses; ++pauses) {
        if (!Pause(kQuietMs)) {
            mPort.Close();
            return Found::Interrupted;
        }
        ready = mPort.Input().empty();
    }
    mPort.Close();
    if (ready) return Found::BootMonitor;
    return reply.empty() ? Found::Silence : Found::OtherReply;
}

bool IndicatorWait::Pause(std::uint32_t ms) {
    const std::uint32_t start = mClock.Milliseconds();
    while (mClock.Milliseconds() - start < ms) {
        Rest();
        if (WaitMustEnd(mConsole)) return false;
    }
    return true;
}

// It may wait for hours, and not every pump sleeps.
void IndicatorWait::Rest() {
    DoEventsNice(mPump);
    mClock.Sleep(kRestMs);
}

}  // namespace vantor
