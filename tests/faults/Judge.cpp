#include "tests/faults/Judge.hpp"

#include <algorithm>
#include <set>

#include "tests/faults/Images.hpp"

namespace vantor {
namespace {

// Documented waits in milliseconds. The program may take a few message pumps longer.
constexpr std::int32_t kSlack = 5;
constexpr std::int32_t kReply = 20000;
constexpr std::int32_t kSpeedChange = 4000;
constexpr std::int32_t kVerdictLimit = 60000;

/// Of each outcome: its name, and the message box that reports it.
constexpr struct {
    const char* name;
    Str box = Str::None;
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

/// Replays the rules of the protocol over the exchanges of a session.
class Replay {
public:
    Replay(const Plan& plan, const Record& record, Judgement& judgement)
        : mPlan(plan), mRecord(record), mJudgement(judgement), mSince(record.begunAt) {}

    void Run(const StringTable& strings) {
        FlashOutcome due = Predict();
        if (mNext < mRecord.exchanges.size())
            Violated("sent \"" + mRecord.exchanges[mNext].sent + "\" beyond the end");
        std::vector<Str> boxes = {EndOf(due).box};
        if (mRecord.wanted) {
            due = FlashOutcome::Aborted;
            boxes.push_back(EndOf(due).box);
        }
        // A session whose window is closed before the first line shows no message boxes.
        if (ClosedInHandshake()) boxes.clear();
        std::erase(boxes, Str::None);
        Require(mJudgement.outcome == due,
                "outcome " + OutcomeName(mJudgement.outcome) + ", due was " + OutcomeName(due));
        CheckBoxes(boxes, strings);
        CheckOpens();
        Require(mRecord.beeps == mBeeps, std::to_string(mRecord.beeps) + " beeps");
        if (due != FlashOutcome::NothingAccepted) CheckWait(mRecord.endedAt, "the end");
        if (mRecord.wanted) CheckEnd(*mRecord.wanted);
        if (due == FlashOutcome::Done)
            Require(mJudgement.memoryWhole || (!mPlan.compares && LossUnseen()),
                    "success without the whole image");
        CheckComplaints();
    }

private:
    enum class Word : std::uint8_t { Ok, Failed, Verdict, NotSent };

    FlashOutcome Predict() {
        using enum FlashOutcome;
        if (mRecord.opened.empty()) return PortNotOpen;
        Take(" \r");
        Take(" \r");
        if (Take("TRAV\r") != Word::Ok) return NotInBootMonitor;
        mReopens = Take("BAUD 115200\r") == Word::Ok;
        if (Take("SYSLOAD\r") != Word::Ok) return SystemLoadRefused;
        bool accepted = false;
        for (unsigned i = 0; i <= kDataLines; ++i) {
            const Word word = TakeLine((i < kDataLines ? DataRecord(i) : kEndRecord) + "\r");
            if (word == Word::NotSent) return None;
            if (word == Word::Failed) return LineRefused;
            if (word == Word::Verdict) ++mBeeps;
            accepted |= word == Word::Ok;
        }
        if (!accepted) return NothingAccepted;
        if (mRecord.wanted) return AwaitingVerdict;
        if (Take("") != Word::Verdict) return NoVerdict;
        if (!mRecord.exchanges[mNext - 1].Holds("DONE")) return VerifyFailed;
        Take("BOOT\r");
        return Done;
    }

    Word TakeLine(const std::string& line) {
        for (int attempt = 1; attempt <= 4; ++attempt) {
            const Word word = Take(line);
            // Nothing is sent to a lost device, and the line fails. An abort or close by the user
            // takes effect before the next send.
            if (word == Word::NotSent) return mRecord.wanted ? Word::NotSent : Word::Failed;
            if (word != Word::Failed) return word;
        }
        return Word::Failed;
    }

    Word Take(const std::string& due) {
        if (mNext == mRecord.exchanges.size()) {
            Require(mRecord.wanted || (mRecord.hungUp && !due.empty()), "did not send " + due);
            return Word::NotSent;
        }
        const Exchange& exchange = mRecord.exchanges[mNext];
        if (exchange.sent != due) {
            Violated("sent \"" + exchange.sent + "\" where \"" + due + "\" was due");
            return Word::NotSent;
        }
        ++mNext;
        CheckWait(exchange.at, exchange.sent);
        mWait = exchange.Wait();
        if (exchange.HasVerdict()) return Word::Verdict;
        return exchange.Accepted() ? Word::Ok : Word::Failed;
    }

    /// The user, or the loss of the line, ends a wait early.
    void CheckWait(std::int32_t until, const std::string& what) {
        const std::int32_t waited = until - mSince;
        const bool early = mRecord.wanted || mRecord.hungUp;
        Require(waited <= mWait + kSlack && (waited >= mWait || early),
                std::to_string(waited) + " ms before " + what);
        mSince = until;
    }

    /// The pause after the speed change ends only with the window.
    void CheckEnd(const Record::End& wanted) {
        Require(mRecord.exchanges.size() == wanted.sends, "sent after the end was wanted");
        const std::int32_t pause = mRecord.LinesSent() == 0 ? kSpeedChange : 0;
        Require(mRecord.endedAt - wanted.at <= pause + kSlack, "ends late");
    }

    void CheckBoxes(const std::vector<Str>& due, const StringTable& strings) {
        std::string told = "boxes:";
        for (const std::string& box : mRecord.told) told += " <" + box + ">";
        const auto says = [&strings](const std::string& box, Str text) {
            return box.find(strings.Text(text)) != std::string::npos;
        };
        Require(std::ranges::equal(mRecord.told, due, says), told);
    }

    /// Two opens exactly when BAUD was accepted, the second one at the new speed.
    void CheckOpens() {
        std::vector<LineSettings> due(mReopens ? 2 : 1, mPlan.line);
        if (mReopens) due[1].bitsPerSecond = 115200;
        // A lost adapter cannot be opened, and a closed window does not open it again.
        if ((mRecord.hungUp || ClosedInHandshake()) && mRecord.opened.size() < due.size())
            due.pop_back();
        Require(mRecord.opened == due, "opened " + std::to_string(mRecord.opened.size()) +
                                           " times, or with another line than due");
    }

    bool ClosedInHandshake() const { return mJudgement.gone && mRecord.LinesSent() == 0; }

    /// Faults can make the host speak at a wrong speed, or repeat a line after the verdict.
    void CheckComplaints() {
        for (const std::string& complaint : mRecord.complaints)
            Require(!mPlan.mishaps.empty() && (complaint.find("bit/s") != std::string::npos ||
                                               complaint.starts_with("After the verdict")),
                    complaint);
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
        return mBeeps > 0 || std::ranges::any_of(mPlan.mishaps, garbles);
    }

    void Violated(const std::string& what) { Require(false, what); }
    void Require(bool holds, const std::string& otherwise) { mJudgement.Require(holds, otherwise); }

    const Plan& mPlan;
    const Record& mRecord;
    Judgement& mJudgement;
    std::size_t mNext = 0;
    std::int32_t mSince;     ///< the last send, or the start
    std::int32_t mWait = 0;  ///< how long the program has to wait from then on
    bool mReopens = false;
    int mBeeps = 0;  ///< image lines answered by a verdict
};

}  // namespace

std::int32_t Exchange::Wait() const {
    if (sent == " \r" || sent == "BOOT\r") return 0;
    if (!Answered()) return Final() ? kVerdictLimit : kReply;
    return answeredAt - at + (ChangesSpeed() ? kSpeedChange : 0);
}

std::size_t Record::LinesSent() const {
    std::set<std::string> lines;
    for (const Exchange& exchange : exchanges)
        if (exchange.OfImage()) lines.insert(exchange.sent);
    return lines.size();
}

bool Record::InFinalStage() const {
    return std::ranges::any_of(exchanges, &Exchange::Final);
}

bool Record::WaitsForUser(std::int32_t now) const {
    return LinesSent() == kDataLines + 1 && exchanges.back().Answered() &&
           now > exchanges.back().answeredAt + 1 &&
           std::ranges::none_of(exchanges, [](const Exchange& exchange) {
               return exchange.OfImage() && exchange.Accepted();
           });
}

void Judge(const Plan& plan, const Record& record, const StringTable& strings,
           Judgement& judgement) {
    Replay(plan, record, judgement).Run(strings);
}

std::string OutcomeName(FlashOutcome outcome) {
    return EndOf(outcome).name;
}

}  // namespace vantor
