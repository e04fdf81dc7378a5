#include "tests/faults/FaultySession.hpp"

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <set>

#include "app/frmMain.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "support/Timer.hpp"
#include "tests/faults/Images.hpp"
#include "tests/faults/Judge.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

constexpr const char* kPath = "/home/tech/m40.run";
/// From this image line on, an abort is not possible.
constexpr unsigned kFirstLateLine = kDataLines - 10;
/// While a report is open, in message pumps of one millisecond.
constexpr int kReadingTime = 200;
constexpr std::uint32_t kLongestSession = 7'200'000;

/// Main window, its user, the virtual indicator and the faulty line of one run. Is the end of the
/// line at the program, and notes the traffic there.
class SessionRun : FarEnd {
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
        mHeadless.boxes.whileOpen = [this](const MessageBoxRequest& request) { Read(request); };
        mHeadless.peers.onChange = [this](const Control& control, Property) {
            if (control.Name() == "lblMessage" && !mRecord.InFinalStage()) Note("");
        };
    }
    ~SessionRun() override {
        mHeadless.peers.onChange = {};
        mWindow->Session().Flags().mblnFlashing = false;
        mWindow->Unload();
    }

    Judgement Run() {
        Judgement judgement = RunOnce();
        if (judgement.gone || !judgement.violation.empty()) return judgement;
        // New indicator and line, no faults.
        mPlan = {.line = mPlan.line};
        const Judgement next = RunOnce();
        judgement.Require(next.outcome == FlashOutcome::Done && next.violation.empty(),
                          "the next session: " + OutcomeName(next.outcome) + ", " + next.violation);
        return judgement;
    }

private:
    void Opened(const LineSettings& line) override {
        mRecord.opened.push_back(line);
        mLine->Opened(line);
    }
    void Closed() override {
        // A closed window does not open the port again.
        if (mRecord.opened.size() == 1 && !mRecord.exchanges.empty() &&
            mRecord.exchanges.back().ChangesSpeed() && !mWindow->Gone())
            Begin(kReopened);
        mLine->Closed();
    }
    void Receive(std::string_view bytes) override {
        Note(bytes);
        // The start of the stage may have triggered an unplug fault.
        if (!mLine->HungUp()) mLine->Receive(bytes);
    }
    std::string Transmit() override {
        std::string text = mLine->Transmit();
        if (mRecord.exchanges.empty()) return text;
        Exchange& exchange = mRecord.exchanges.back();
        if (!exchange.Answered()) exchange.answeredAt = mHeadless.clock.Ticks();
        exchange.reply += text;
        return text;
    }
    bool HungUp() const override { return mLine->HungUp(); }

    /// A send, or without bytes the start of the final stage.
    void Note(std::string_view bytes) {
        mRecord.exchanges.push_back({std::string(bytes), mHeadless.clock.Ticks()});
        for (std::size_t stage = 0; stage < std::size(kStages); ++stage)
            if (kStages[stage].sends == bytes) Begin(stage);
    }

    Judgement RunOnce() {
        Plug();
        Timer watch(mHeadless.pump, 1000, [this] { Watch(); });
        watch.Enabled(true);
        Begin(kOpening);
        mHeadless.dialogs.choices = {kPath};
        mWindow->cmdFlash.Press();
        mActs.clear();

        mRecord.endedAt += mHeadless.clock.Ticks();
        mRecord.hungUp = mLine->HungUp();
        mRecord.complaints = mIndicator->Violations();
        mRecord.told = Told(mHeadless);
        mRecord.beeps = mHeadless.boxes.beeps;
        mJudgement.outcome = mWindow->Session().Outcome();
        mJudgement.gone = mWindow->Gone();
        mJudgement.memoryWhole =
            mIndicator->Memory() == FlashMemory::FromRecords(ImageOf(kDataLines));
        Judge(mPlan, mRecord, mHeadless.strings, mJudgement);
        Require(mJudgement.gone == mCloseWanted, "the window is open, or closed, against the wish");
        Require(State() == (mJudgement.gone ? "" : mIdle), "left behind: " + State());
        return mJudgement;
    }

    /// What a session has to leave as it was: the open windows, what is held of the system, and of
    /// the window two letters a control: enabled or disabled, visible or hidden. The abort button
    /// stays as the last lines set it.
    std::string State() const {
        std::string state;
        for (const std::string& window : mHeadless.peers.open) state += window + " ";
        if (mHeadless.ports.IsOpen("COM1")) state += "port ";
        if (mHeadless.peers.pointer != MousePointer::Default) state += "pointer ";
        state += mHeadless.peers.held;
        if (mWindow->Gone()) return state;
        if (mWindow->Session().AwaitsVerdict()) state += "timer ";
        for (const Control* control : mWindow->Controls())
            if (control != &mWindow->cmdFlashAbort)
                state += {control->Enabled() ? 'e' : 'd', control->Visible() ? 'v' : 'h'};
        return state + mHeadless.registry.Export();
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
        mHeadless.ports.Plug("COM1", *this);
        mHeadless.boxes.shown.clear();
        mHeadless.boxes.beeps = 0;
        mBegun.clear();
        mCloseWanted = false;
        mRecord = {};
        mRecord.begunAt = mHeadless.clock.Ticks();
        mJudgement = {};
    }

    void Begin(std::size_t stage) {
        if (stage != kOpening) {
            Require(!mHeadless.peers.held.empty(), "the system may sleep");
            Require(Waits() == (stage < kVerdict), "wrong pointer");
        }
        if (!mBegun.insert(stage).second) return;
        for (const Mishap& mishap : mPlan.mishaps)
            if (mishap.stage == stage)
                std::visit([this](const auto& what) { Happen(what); }, mishap.what);
    }

    void Happen(const LineFault& fault) { mLine->Add(fault); }
    void Happen(const Fault& fault) { mIndicator->Arise(fault); }
    void Happen(const UserAct& act) {
        Timer& timer =
            mActs.emplace_back(mHeadless.pump, act.afterMs, [this, act, index = mActs.size()] {
                mActs[index].Enabled(false);
                Act(act.close);
            });
        timer.Enabled(true);
    }

    void Act(bool close) {
        mCloseWanted |= close;
        if (close)
            mWindow->Unload();
        else
            mWindow->cmdFlashAbort.Press();
        const std::int32_t now = mHeadless.clock.Ticks();
        if (mRecord.InFinalStage() || mRecord.WaitsForUser(now) || mRecord.wanted) return;
        if (close || mRecord.LinesSent() <= kFirstLateLine)
            mRecord.wanted = {now, mRecord.exchanges.size()};
    }

    bool Waits() const { return mHeadless.peers.pointer == MousePointer::Hourglass; }

    /// The user reads a report for a while. Whatever arrives meanwhile, nothing is sent.
    void Read(const MessageBoxRequest& request) {
        // Only the report of a refused line opens under the wait pointer.
        Require(Waits() == (request.title == "Update Failure" && !mRecord.InFinalStage()),
                "wrong pointer");
        Require(request.owner == mOwner && mHeadless.peers.open == Texts{"frmMain"},
                "a box over another window");
        if (request.icon == BoxIcon::Question) return;
        mActs.clear();
        const std::size_t sent = mRecord.exchanges.size();
        for (int i = 0; i < kReadingTime; ++i) mHeadless.pump.PumpPending();
        mRecord.endedAt -= kReadingTime;
        Require(mRecord.exchanges.size() == sent, "sent while a box was open");
    }

    /// Ends the wait that only the user can end, and a session that exceeds the time limit.
    void Watch() {
        if (mRecord.WaitsForUser(mHeadless.clock.Ticks())) {
            mCloseWanted = true;
            mWindow->Unload();
        }
        if (mHeadless.clock.Milliseconds() < kLongestSession) return;
        Require(false, "does not end");
        mWindow->Session().Flags() = {.mblnFlashing = false, .mblnAbortFlash = true};
    }

    void Require(bool holds, const std::string& otherwise) { mJudgement.Require(holds, otherwise); }

    Plan mPlan;
    ReportingPlatform mHeadless;
    std::optional<VirtualIndicator> mIndicator;
    std::optional<IndicatorFarEnd> mDevice;
    std::optional<FaultyLine> mLine;
    std::shared_ptr<frmMain> mWindow =
        std::make_shared<frmMain>(mHeadless.manager, mHeadless.platform);
    NativeWindow mOwner = 0;
    std::string mIdle;  ///< `State` before the first session
    std::set<std::size_t> mBegun;
    std::deque<Timer> mActs;
    bool mCloseWanted = false;
    Record mRecord;
    Judgement mJudgement;
};

}  // namespace

Judgement RunSession(const Plan& plan) {
    return SessionRun(plan).Run();
}

}  // namespace vantor
