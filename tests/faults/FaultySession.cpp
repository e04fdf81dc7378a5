#include "tests/faults/FaultySession.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "app/frmMain.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "tests/faults/Images.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

constexpr unsigned kDataLines = 24;
constexpr unsigned kMiddleLine = 8;
constexpr unsigned kLateLine = 18;
constexpr const char* kPath = "/home/tech/m40.run";

// Documented waits in milliseconds. The program may take a few message pumps longer.
constexpr std::int32_t kSlack = 5;
constexpr std::int32_t kReply = 20000;
constexpr std::int32_t kSpeedChange = 4000;
constexpr std::int32_t kVerdictLimit = 60000;
/// From this image line on, an abort is not possible.
constexpr unsigned kFirstLateLine = kDataLines - 10;
/// While a report is open, in message pumps of one millisecond.
constexpr int kReadingTime = 200;
constexpr std::uint32_t kLongestSession = 7'200'000;

/// Of each outcome: its name, and the message box that reports it.
constexpr struct {
    const char* name;
    Str box = {};
} kEnds[] = {{"none"},
             {"declined"},
             {"port not open", Str::PortNotOpened},
             {"no monitor", Str::NotInBootMonitor},
             {"no system load", Str::SystemLoadRefused},
             {"line refused", Str::FlashFailure},
             {"aborted", Str::FlashAborted},
             {"nothing accepted"},
             {"awaiting"},
             {"done", Str::DownloadComplete},
             {"verify failed", Str::CriticalFlashFailure},
             {"no verdict", Str::FlashFailure}};

const auto& EndOf(FlashOutcome outcome) {
    return kEnds[static_cast<std::size_t>(outcome)];
}

/// One send of the program and the bytes read before the next one.
struct Exchange {
    std::string sent;
    std::int32_t at;
    std::string reply;
    std::int32_t answeredAt = 0;

    bool OfImage() const { return sent.starts_with('S') && sent != "SYSLOAD\r"; }
    bool Holds(const char* word) const { return reply.find(word) != std::string::npos; }
    bool HasVerdict() const { return Holds("VERIFY FAILED") || Holds("DONE"); }
    bool Accepted() const { return !HasVerdict() && Holds("OK"); }
    bool Answered() const { return HasVerdict() || Accepted() || Holds("??"); }
    bool ChangesSpeed() const { return sent == "BAUD 115200\r" && Accepted(); }
};

/// The expected result, derived from the exchanges alone.
struct Due {
    FlashOutcome outcome = FlashOutcome::None;
    std::vector<Str> boxes;
    std::string wrongSend;
};

/// Wraps the line at the program's end; records the traffic. Calls `reached` before the send, or
/// the close for the speed change, that begins a stage.
class Wiretap : public FarEnd {
public:
    Wiretap(FarEnd& line, const Clock& clock, std::function<void(Stage)> reached)
        : mLine(line), mClock(clock), mReached(std::move(reached)) {}

    void Opened(const LineSettings& line) override {
        opened.push_back(line);
        mLine.Opened(line);
    }
    void Closed() override {
        if (opened.size() == 1 && !exchanges.empty() && exchanges.back().ChangesSpeed())
            mReached(Stage::Reopened);
        mLine.Closed();
    }
    void Receive(std::string_view bytes) override {
        exchanges.push_back({std::string(bytes), mClock.Ticks(), {}});
        const auto stage = mStages.find(exchanges.back().sent);
        if (stage != mStages.end()) mReached(stage->second);
        // The start of the stage may have triggered an unplug fault.
        if (!mLine.HungUp()) mLine.Receive(bytes);
    }
    std::string Transmit() override {
        std::string text = mLine.Transmit();
        if (exchanges.empty()) return text;
        Exchange& exchange = armed ? verdict : exchanges.back();
        const bool answered = armed ? exchange.HasVerdict() : exchange.Answered();
        exchange.reply += text;
        if (!answered) exchange.answeredAt = mClock.Ticks();
        return text;
    }
    bool HungUp() const override { return mLine.HungUp(); }

    /// Number of different image lines sent; they do not repeat within the image.
    unsigned LinesSent() const {
        unsigned count = 0;
        for (std::size_t i = 0; i < exchanges.size(); ++i)
            if (exchanges[i].OfImage() && exchanges[i].sent != exchanges[i - 1].sent) ++count;
        return count;
    }
    /// All lines have been answered, none of them with OK: only the user ends this wait. It begins
    /// after the message pump that follows the last line.
    bool WaitsForUser() const {
        return LinesSent() == kDataLines + 1 && exchanges.back().Answered() &&
               mClock.Ticks() > exchanges.back().answeredAt + 1 &&
               std::ranges::none_of(exchanges, [](const Exchange& exchange) {
                   return exchange.OfImage() && exchange.Accepted();
               });
    }

    std::vector<LineSettings> opened;
    bool armed = false;
    std::vector<Exchange> exchanges;
    Exchange verdict;  ///< what is read in the final stage

private:
    const std::map<std::string, Stage> mStages = {
        {" \r", Stage::WakeUp},
        {"TRAV\r", Stage::Trav},
        {"BAUD 115200\r", Stage::Baud},
        {"SYSLOAD\r", Stage::Sysload},
        {"BOOT\r", Stage::Boot},
        {DataRecord(0) + "\r", Stage::FirstLine},
        {DataRecord(kMiddleLine) + "\r", Stage::MiddleLine},
        {DataRecord(kLateLine) + "\r", Stage::LateLine},
        {std::string(kEndRecord) + "\r", Stage::LastLine}};

    FarEnd& mLine;
    const Clock& mClock;
    std::function<void(Stage)> mReached;
};

/// Replays the protocol rules over the recorded exchanges.
class Judge {
public:
    Judge(const Wiretap& tap, bool endWanted) : mTap(tap), mEndWanted(endWanted) {}

    Due Decide() {
        mDue.outcome = Predict();
        if (mEndWanted && mDue.outcome != FlashOutcome::PortNotOpen)
            mDue.outcome = Ends(FlashOutcome::Aborted);
        if (mNext < mTap.exchanges.size() && mDue.wrongSend.empty())
            mDue.wrongSend = "sent \"" + mTap.exchanges[mNext].sent + "\" beyond the end";
        return mDue;
    }

private:
    enum class Word : std::uint8_t { Ok, Failed, Verdict, NotSent };

    FlashOutcome Predict() {
        if (mTap.opened.empty()) return Ends(FlashOutcome::PortNotOpen);
        Take(" \r");
        Take(" \r");
        if (Take("TRAV\r") != Word::Ok) return Ends(FlashOutcome::NotInBootMonitor);
        Take("BAUD 115200\r");
        if (Take("SYSLOAD\r") != Word::Ok) return Ends(FlashOutcome::SystemLoadRefused);
        bool accepted = false;
        for (unsigned i = 0; i <= kDataLines; ++i) {
            const Word word = TakeLine((i < kDataLines ? DataRecord(i) : kEndRecord) + "\r");
            if (word == Word::NotSent) return FlashOutcome::Aborted;
            if (word == Word::Failed) return Ends(FlashOutcome::LineRefused);
            accepted |= word == Word::Ok;
        }
        if (!accepted) return FlashOutcome::NothingAccepted;
        if (mEndWanted) return FlashOutcome::AwaitingVerdict;
        if (mTap.verdict.Holds("DONE")) {
            Take("BOOT\r");
            return Ends(FlashOutcome::Done);
        }
        if (mTap.verdict.Holds("VERIFY FAILED")) return Ends(FlashOutcome::VerifyFailed);
        return Ends(FlashOutcome::NoVerdict);
    }

    Word TakeLine(const std::string& line) {
        for (int attempt = 1; attempt <= 4; ++attempt) {
            const Word word = Take(line);
            // Nothing is sent to a lost device, and the line fails. An abort or close by the user
            // takes effect before the next send.
            if (word == Word::NotSent)
                return mTap.HungUp() && !mEndWanted ? Word::Failed : Word::NotSent;
            if (word != Word::Failed) return word;
        }
        return Word::Failed;
    }

    Word Take(const std::string& text) {
        if (mNext == mTap.exchanges.size()) return Word::NotSent;
        const Exchange& exchange = mTap.exchanges[mNext];
        if (exchange.sent != text) {
            if (mDue.wrongSend.empty())
                mDue.wrongSend = "sent \"" + exchange.sent + "\" where \"" + text + "\" was due";
            return Word::NotSent;
        }
        ++mNext;
        if (exchange.HasVerdict()) return Word::Verdict;
        return exchange.Accepted() ? Word::Ok : Word::Failed;
    }

    FlashOutcome Ends(FlashOutcome outcome) {
        mDue.boxes.push_back(EndOf(outcome).box);
        return outcome;
    }

    const Wiretap& mTap;
    bool mEndWanted;
    std::size_t mNext = 0;
    Due mDue;
};

/// Main window, virtual indicator and faulty line of one run.
class SessionRun {
public:
    explicit SessionRun(const Plan& plan) : mPlan(plan) {
        const LineSettings& line = plan.line;
        const char parity = "NOE"[static_cast<std::size_t>(line.parity)];
        mHeadless.registry.Import(
            RegistryWith("Settings", "\"Baud\"=\"" + std::to_string(line.bitsPerSecond) +
                                         "\"\n\"Parity\"=\"" + parity + "\"\n\"DataBits\"=\"" +
                                         std::to_string(line.dataBits) + "\"\n"));
        mHeadless.files.Add(kPath, ImageOf(kDataLines));
        mWindow->Load();
        mWindow->Show();
        mOwner = mHeadless.peers.Active();
        mIdle = State();
    }
    ~SessionRun() {
        mHeadless.peers.onChange = {};
        mWindow->Session().Flags().mblnFlashing = false;
        mWindow->Unload();
    }
    SessionRun(const SessionRun&) = delete;
    SessionRun& operator=(const SessionRun&) = delete;

    Judgement Run() {
        Judgement judgement = RunOnce();
        if (!judgement.gone && judgement.violation.empty()) {
            // New indicator and line, no faults.
            mPlan = {.line = mPlan.line};
            const Judgement next = RunOnce();
            if (next.outcome != FlashOutcome::Done || !next.violation.empty())
                judgement.violation =
                    "the next session: " + OutcomeName(next.outcome) + ", " + next.violation;
        }
        return judgement;
    }

private:
    Judgement RunOnce() {
        Plug();
        const TimerId watch = mHeadless.pump.StartTimer(1000, [this] { Watch(); });
        const std::int32_t start = mHeadless.clock.Ticks();
        Begin(Stage::Opening);
        mHeadless.dialogs.choices = {kPath};
        mWindow->cmdFlash.Press();
        mHeadless.pump.StopTimer(watch);
        mHeadless.peers.onChange = {};
        for (const TimerId act : std::exchange(mActs, {})) mHeadless.pump.StopTimer(act);

        Judgement judgement;
        judgement.outcome = mWindow->Session().Outcome();
        judgement.gone = mWindow->Gone();
        judgement.memoryWhole =
            mIndicator->Memory() == FlashMemory::FromRecords(ImageOf(kDataLines));
        CheckTimes(start, CheckReport(judgement));
        CheckSuccess(judgement);
        CheckIndicator();
        Require(judgement.gone == mCloseWanted, "the window is open, or closed, against the wish");
        Require(Held() == (judgement.gone ? "" : "frmMain "), "left behind: " + Held());
        Require(judgement.gone || State() == mIdle, "not restored: " + State());
        judgement.violation = std::exchange(mViolation, {});
        return judgement;
    }

    /// The open windows, and what a session has to give back to the system.
    std::string Held() const {
        std::string held;
        for (const std::string& window : mHeadless.peers.open) held += window + " ";
        if (mHeadless.ports.IsOpen("COM1")) held += "port ";
        if (mHeadless.peers.pointer != MousePointer::Default) held += "pointer ";
        return held + mHeadless.peers.held;
    }

    /// What a session has to leave as it was, with two letters a control: enabled or disabled,
    /// visible or hidden. The abort button stays as the last lines set it.
    std::string State() const {
        std::string state = mHeadless.registry.Export();
        if (mWindow->Session().AwaitsVerdict()) state += "awaits the verdict\n";
        for (const Control* control : mWindow->Controls())
            if (control != &mWindow->cmdFlashAbort)
                state += {control->Enabled() ? 'e' : 'd', control->Visible() ? 'v' : 'h'};
        return state;
    }

    void Plug() {
        IndicatorOptions options;
        options.think = mPlan.thinkUs;
        options.writeFlash = mPlan.writeFlashUs;
        options.bitsPerSecond = mPlan.line.bitsPerSecond;
        if (mPlan.compares) options.expected = FlashMemory::FromRecords(ImageOf(kDataLines));
        mIndicator.emplace(std::move(options));
        mDevice.emplace(*mIndicator, mHeadless.clock);
        mLine.emplace(*mDevice, mHeadless.clock);
        mTap.emplace(*mLine, mHeadless.clock, [this](Stage stage) { Begin(stage); });
        mHeadless.ports.Plug("COM1", *mTap);
        mHeadless.boxes.shown.clear();
        mHeadless.boxes.beeps = 0;
        mHeadless.boxes.whileOpen = [this](const MessageBoxRequest& request) { Read(request); };
        mBegun = {};
        mEndWanted = false;
        mCloseWanted = false;
        mClosedInHandshake = false;
        mReadingMs = 0;
        mHeadless.peers.onChange = [this](const Control& control, Property) {
            if (control.Name() != "lblMessage" || mTap->armed) return;
            mTap->armed = true;
            mArmedAt = mHeadless.clock.Ticks();
            Begin(Stage::Verdict);
        };
    }

    void Begin(Stage stage) {
        if (stage != Stage::Opening) {
            Require(!mHeadless.peers.held.empty(), "the system may sleep");
            Require(stage == Stage::Reopened || Waits() != mTap->armed, "wrong pointer");
        }
        if (std::exchange(mBegun.at(static_cast<std::size_t>(stage)), true)) return;
        for (const Mishap& mishap : mPlan.mishaps)
            if (mishap.stage == stage)
                std::visit([this](const auto& what) { Happen(what); }, mishap.what);
    }

    void Happen(LineFault fault) {
        fault.byte += mLine->Passed(fault.direction);
        mLine->Add(fault);
    }
    void Happen(const Fault& fault) { mIndicator->Arise(fault); }
    void Happen(const UserAct& act) {
        const auto timer = std::make_shared<TimerId>();
        *timer = mHeadless.pump.StartTimer(act.afterMs, [this, act, timer] {
            mHeadless.pump.StopTimer(*timer);
            mCloseWanted |= act.close;
            if (act.close)
                mWindow->Unload();
            else
                mWindow->cmdFlashAbort.Press();
            if (mTap->armed || mTap->WaitsForUser()) return;
            mClosedInHandshake |= act.close && mTap->LinesSent() == 0;
            if (mEndWanted) return;
            mEndWanted = act.close || mTap->LinesSent() <= kFirstLateLine;
            mSentBeforeEnd = mTap->exchanges.size();
            mEndWantedAt = mHeadless.clock.Ticks();
        });
        mActs.push_back(*timer);
    }

    bool Waits() const { return mHeadless.peers.pointer == MousePointer::Hourglass; }

    /// The user reads a report for a while. Whatever arrives meanwhile, nothing is sent.
    void Read(const MessageBoxRequest& request) {
        // Only the report of a refused line opens under the wait pointer.
        Require(Waits() == (request.title == "Update Failure" && !mTap->armed), "wrong pointer");
        Require(request.owner == mOwner && mHeadless.peers.open == Texts{"frmMain"},
                "a box over another window");
        if (request.icon == BoxIcon::Question) return;
        for (const TimerId act : std::exchange(mActs, {})) mHeadless.pump.StopTimer(act);
        const std::size_t sent = mTap->exchanges.size();
        for (int i = 0; i < kReadingTime; ++i) mHeadless.pump.PumpPending();
        mReadingMs += kReadingTime;
        Require(mTap->exchanges.size() == sent, "sent while a box was open");
    }

    /// Ends the wait that only the user can end, and a session that exceeds the time limit.
    void Watch() {
        if (!mTap->armed && mTap->WaitsForUser()) {
            mCloseWanted = true;
            mWindow->Unload();
        }
        if (mHeadless.clock.Milliseconds() < kLongestSession) return;
        Violated("does not end");
        mWindow->Session().Flags() = {.mblnFlashing = false, .mblnAbortFlash = true};
    }

    /// Returns the outcome that was due.
    FlashOutcome CheckReport(const Judgement& judgement) {
        Due due = Judge(*mTap, mEndWanted).Decide();
        if (!due.wrongSend.empty()) Violated(due.wrongSend);
        if (mEndWanted && mTap->exchanges.size() > mSentBeforeEnd)
            Violated("sent \"" + mTap->exchanges[mSentBeforeEnd].sent +
                     "\" after the end was wanted");
        Require(judgement.outcome == due.outcome, "outcome " + OutcomeName(judgement.outcome) +
                                                      ", due was " + OutcomeName(due.outcome));
        // A session whose window is closed shows no message boxes.
        if (mClosedInHandshake) due.boxes.clear();
        CheckLine();
        const Texts told = Told(mHeadless);
        const auto says = [this](const std::string& box, Str text) {
            return box.find(mHeadless.strings.Text(text)) != std::string::npos;
        };
        if (std::ranges::equal(told, due.boxes, says)) return due.outcome;
        std::string texts = "boxes:";
        for (const std::string& box : told) texts += " <" + box + ">";
        Violated(texts);
        return due.outcome;
    }

    /// Two opens exactly when BAUD was accepted, the second one at the new speed; a beep for each
    /// image line that was answered by a verdict.
    void CheckLine() {
        std::vector<LineSettings> due = {mPlan.line};
        LineSettings fast = mPlan.line;
        fast.bitsPerSecond = 115200;
        int beeps = 0;
        for (const Exchange& exchange : mTap->exchanges) {
            if (exchange.ChangesSpeed() && !(mClosedInHandshake && mTap->opened.size() == 1))
                due.push_back(fast);
            if (exchange.OfImage() && exchange.HasVerdict()) ++beeps;
        }
        Require(mHeadless.boxes.beeps == beeps, std::to_string(mHeadless.boxes.beeps) + " beeps");
        if (mTap->opened.empty()) due.clear();
        // An adapter that is lost while the port is closed cannot be opened again.
        if (mTap->HungUp() && mTap->opened.size() + 1 == due.size()) due.pop_back();
        Require(mTap->opened == due, "opened " + std::to_string(mTap->opened.size()) +
                                         " times, or with another line than due");
    }

    /// Faults can make the host speak at a wrong speed, or repeat a line after the verdict.
    void CheckIndicator() {
        for (const std::string& violation : mIndicator->Violations())
            Require(!mPlan.mishaps.empty() && (violation.find("bit/s") != std::string::npos ||
                                               violation.starts_with("After the verdict")),
                    violation);
    }

    void CheckTimes(std::int32_t start, FlashOutcome due) {
        const std::int32_t end = mHeadless.clock.Ticks() - mReadingMs;
        std::int32_t from = start;
        std::int32_t least = 0;
        // What ends a wait early: the user, or the loss of the line.
        const bool early = mEndWanted || mTap->HungUp();
        const auto until = [&](std::int32_t at, const std::string& what) {
            if (at - from > least + kSlack || (at - from < least && !early))
                Violated(std::to_string(at - from) + " ms before " + what);
            from = at;
        };
        for (const Exchange& exchange : mTap->exchanges) {
            if (exchange.sent == "BOOT\r") break;
            until(exchange.at, exchange.sent);
            least = exchange.Answered() ? exchange.answeredAt - exchange.at : kReply;
            if (exchange.sent == " \r") least = 0;
            if (exchange.ChangesSpeed()) least += kSpeedChange;
        }
        using enum FlashOutcome;
        Require(mTap->armed == (due == Done || due == VerifyFailed || due == NoVerdict),
                "a final stage too many or too few");
        if (mTap->armed) {
            until(mArmedAt, "the final stage");
            least = due == NoVerdict ? kVerdictLimit : mTap->verdict.answeredAt - mArmedAt;
        }
        if (due != NothingAccepted) until(end, "the end");
        // The pause after the speed change ends only with the window.
        const std::int32_t pause = mTap->LinesSent() == 0 ? kSpeedChange : 0;
        Require(!mEndWanted || end - mEndWantedAt <= pause + kSlack, "ends late");
    }

    void CheckSuccess(const Judgement& judgement) {
        if (judgement.outcome != FlashOutcome::Done) return;
        Require(mTap->armed && mTap->verdict.Holds("DONE"),
                "success without DONE in the final stage");
        Require(judgement.memoryWhole || (!mPlan.compares && LossUnseen()),
                "success without the whole image");
    }

    /// A line can be lost undetected when the indicator replies to it with a verdict, which the
    /// program ignores, or when corruption hits the record type, which the checksum does not
    /// cover. Only an indicator that compares its memory detects these.
    bool LossUnseen() const {
        const auto garbles = [](const Mishap& mishap) {
            const auto* const fault = std::get_if<LineFault>(&mishap.what);
            return fault && fault->kind == LineFaultKind::Garble &&
                   fault->direction == Direction::ToDevice;
        };
        return std::ranges::any_of(mTap->exchanges, &Exchange::HasVerdict) ||
               std::ranges::any_of(mPlan.mishaps, garbles);
    }

    void Violated(const std::string& what) {
        if (mViolation.find(what) == std::string::npos) mViolation += what + "\n";
    }
    void Require(bool holds, const std::string& otherwise) {
        if (!holds) Violated(otherwise);
    }

    Plan mPlan;
    ReportingPlatform mHeadless;
    std::shared_ptr<frmMain> mWindow =
        std::make_shared<frmMain>(mHeadless.manager, mHeadless.platform);
    std::optional<VirtualIndicator> mIndicator;
    std::optional<IndicatorFarEnd> mDevice;
    std::optional<FaultyLine> mLine;
    std::optional<Wiretap> mTap;
    std::array<bool, kStageNames.size()> mBegun{};
    std::vector<TimerId> mActs;
    std::int32_t mArmedAt = 0;
    std::int32_t mReadingMs = 0;
    bool mEndWanted = false;
    bool mCloseWanted = false;
    bool mClosedInHandshake = false;
    std::size_t mSentBeforeEnd = 0;
    std::int32_t mEndWantedAt = 0;
    NativeWindow mOwner = 0;
    std::string mIdle;  ///< `State` before the first session
    std::string mViolation;
};

}  // namespace

std::string OutcomeName(FlashOutcome outcome) {
    return EndOf(outcome).name;
}

Judgement RunSession(const Plan& plan) {
    return SessionRun(plan).Run();
}

}  // namespace vantor
