// Timing, UART pacing and fault injection around the boot monitor.
#include "simulator/VirtualIndicator.hpp"

#include <algorithm>
#include <utility>

namespace vantor {

namespace {

constexpr Nanos kNanosPerMicro = 1'000;
constexpr Nanos kNanosPerMilli = 1'000'000;
constexpr Nanos kReopenGrace = 10'000 * kNanosPerMilli;
constexpr Nanos kSplitGap = 30 * kNanosPerMilli;
constexpr Nanos kVerdictGap = 100 * kNanosPerMilli;
constexpr std::size_t kVerdictPiece = 3;
// Longer than any record; bounds the buffer when a host never sends CR.
constexpr std::size_t kLongestLine = 1024;
// Stray bytes of a noisy line. No '?': next to half of a "??" it would complete a refusal.
constexpr std::string_view kNoise = "~\x15#\xF1 \x80|";

Nanos ToNanos(Micros micros) {
    return micros * kNanosPerMicro;
}

bool IsBlank(std::string_view line) {
    return line.find_first_not_of(' ') == std::string_view::npos;
}

}  // namespace

// The combined faults for one arrival of a line.
struct VirtualIndicator::LineFaults {
    bool hangup = false;
    bool silent = false;
    bool refuse = false;
    bool drop = false;
    bool garble = false;
    bool noise = false;
    Nanos late = 0;
    Delivery delivery;
    std::optional<Answer> instead;

    void Add(const Fault& fault);
    // The line as received. Both kinds of corruption hit the middle, where every record has
    // digits: a missing or changed digit must fail the monitor's checks.
    std::string Damaged(std::string line) const;
};

void VirtualIndicator::LineFaults::Add(const Fault& fault) {
    switch (fault.kind) {
        case FaultKind::Nak:
            refuse = true;
            break;
        case FaultKind::Silent:
            silent = true;
            break;
        case FaultKind::Late:
            late += fault.lateMs * kNanosPerMilli;
            break;
        case FaultKind::Drop:
            drop = true;
            break;
        case FaultKind::Garble:
            garble = true;
            break;
        case FaultKind::Noise:
            noise = true;
            break;
        case FaultKind::Split:
            delivery = {1, kSplitGap};
            break;
        case FaultKind::Done:
            instead = Answer::Done;
            break;
        case FaultKind::Verify:
            instead = Answer::VerifyFailed;
            break;
        case FaultKind::Hangup:
            hangup = true;
            break;
        default:
            break;
    }
}

std::string VirtualIndicator::LineFaults::Damaged(std::string line) const {
    if (garble) line[line.size() / 2] = static_cast<char>(line[line.size() / 2] ^ 1);
    if (drop) line.erase(line.size() / 2, 1);
    return line;
}

VirtualIndicator::VirtualIndicator(IndicatorOptions options)
    : mOptions(std::move(options)),
      mMonitor(mOptions.bitsPerSecond, std::move(mOptions.expected)),
      mFaultUses(mOptions.faults.size()) {}

void VirtualIndicator::HostLine(const LineSettings& line, Micros now) {
    Advance(ToNanos(now));
    if (!mHostOpen) TakeDue(ToNanos(now));  // sent to a closed port, hence lost
    mHostLine = line;
    mHostOpen = true;
    mReopenBy.reset();
}

void VirtualIndicator::HostClosed(Micros now) {
    Advance(ToNanos(now));
    mHostOpen = false;
    const Nanos last = mIncoming.empty() ? ToNanos(now) : mIncoming.back().at;
    mIncoming.push_back({std::max(last, ToNanos(now)), '\0', 0, true});
    Advance(ToNanos(now));
}

void VirtualIndicator::Receive(std::string_view bytes, Micros now) {
    if (mHungUp) return;
    Advance(ToNanos(now));
    const std::uint32_t speed = mHostLine.bitsPerSecond;
    for (const char byte : bytes) {
        const Nanos at = mInPacing.Next(ToNanos(now), CharacterBits(speed), speed);
        mIncoming.push_back({at, byte, speed, false});
    }
    Advance(ToNanos(now));
}

std::string VirtualIndicator::Transmit(Micros now) {
    Advance(ToNanos(now));
    std::string due = TakeDue(ToNanos(now));
    return mHostOpen ? due : std::string{};
}

void VirtualIndicator::Arise(const Fault& fault) {
    if (fault.kind <= FaultKind::Hangup) {
        mArisen.push_back(fault);
    } else {
        mOptions.faults.push_back(fault);
        mFaultUses.push_back(0);
    }
}

std::optional<Micros> VirtualIndicator::NextDue() const {
    std::optional<Nanos> next = mVerdictAt;
    const auto consider = [&](Nanos at) { next = next ? std::min(*next, at) : at; };
    if (mReopenBy) consider(*mReopenBy);
    if (!mOutgoing.empty()) consider(mOutgoing.front().at);
    // Bytes within a line have no visible effect: the caller may sleep until the line end.
    const auto acted = std::find_if(mIncoming.begin(), mIncoming.end(), [](const Incoming& i) {
        return i.closed || i.byte == '\r' || i.byte == '\n';
    });
    if (acted != mIncoming.end()) consider(acted->at);
    if (!next) return std::nullopt;
    return (*next + kNanosPerMicro - 1) / kNanosPerMicro;
}

// Processes all events due by `now` in time order.
void VirtualIndicator::Advance(Nanos now) {
    for (;;) {
        const auto due = [&](const std::optional<Nanos>& at) {
            return at && *at <= now && (mIncoming.empty() || *at < mIncoming.front().at);
        };
        if (due(mVerdictAt)) {
            GiveVerdict(*std::exchange(mVerdictAt, std::nullopt));
        } else if (due(mReopenBy)) {
            PowerCycle();
        } else if (!mIncoming.empty() && mIncoming.front().at <= now) {
            const Incoming incoming = mIncoming.front();
            mIncoming.pop_front();
            if (incoming.closed) {
                CloseArrived(incoming.at);
            } else {
                Hear(incoming);
            }
        } else {
            return;
        }
    }
}

void VirtualIndicator::Hear(const Incoming& incoming) {
    const char byte = incoming.byte;
    const bool rightSpeed = incoming.bitsPerSecond == mMonitor.BitsPerSecond();
    if (!rightSpeed || (byte != ' ' && byte != '\r')) BeginSession();
    // Tested before the speed: a line feed after BOOT arrives at a speed no longer in force, but
    // the violation to report is the line feed.
    if (byte == '\n') {
        if (!std::exchange(mLineFeedNoted, true)) {
            mViolations.emplace_back("The host sent a line feed; a line ends with a single CR.");
        }
        return;
    }
    if (!rightSpeed) {
        NoteWrongSpeed(incoming.bitsPerSecond);
        return;
    }
    mWrongSpeedNoted = false;
    if (byte == '\r') {
        TakeLine(std::exchange(mLine, {}), incoming.at);
    } else if (mLine.size() < kLongestLine) {
        mLine += byte;
    }
}

void VirtualIndicator::TakeLine(const std::string& line, Nanos at) {
    using State = BootMonitor::State;
    const State state = mMonitor.CurrentState();
    if (state == State::Verified && line != "BOOT") {
        mViolations.push_back("After the verdict DONE the host sent \"" + line +
                              "\" instead of BOOT.");
    }
    if (IsBlank(line)) return;  // gets no reply, so no fault applies to it
    if (state == State::Image || state == State::Writing) {
        TakeImageLine(line, at);
    } else {
        TakeCommand(line, at);
    }
}

void VirtualIndicator::TakeCommand(const std::string& line, Nanos at) {
    using State = BootMonitor::State;
    const State before = mMonitor.CurrentState();
    LineFaults faults;
    AddArisen(faults);
    if (faults.hangup) return HangUp();
    // The reply to BAUD goes out at the old speed.
    const std::uint32_t speed = mMonitor.BitsPerSecond();
    const Nanos ready = at + ToNanos(mOptions.think);
    if (const Fault* const refusal = RefusalOf(line)) {
        faults.silent |= refusal->silent;
        faults.refuse = true;
    }
    if (faults.silent || faults.refuse) mMonitor.HeardHost();
    if (faults.silent) return;
    Say(faults, AnswerTo(line, faults), ready, speed);
    if (mMonitor.CurrentState() == State::Image) {
        mPrevious.reset();
        mLineNumber = 0;
    }
    if (before == State::Verified && mMonitor.CurrentState() == State::Idle) EndSession(true);
}

void VirtualIndicator::TakeImageLine(const std::string& line, Nanos at) {
    using State = BootMonitor::State;
    const LineFaults faults = FaultsOf(line);
    if (faults.hangup) return HangUp();
    if (faults.silent) return;

    const bool imageOpen = mMonitor.CurrentState() == State::Image;
    const Answer answer = AnswerTo(line, faults);
    const Nanos ready = at + ToNanos(mOptions.think);
    const Nanos said = Say(faults, answer, ready, mMonitor.BitsPerSecond());
    // Writing begins when the acknowledgement is out, so that the verdict cannot overtake a late
    // one.
    if (imageOpen && mMonitor.CurrentState() == State::Writing) {
        mVerdictAt = said + ToNanos(mOptions.writeFlash);
    }
}

Answer VirtualIndicator::AnswerTo(const std::string& line, const LineFaults& faults) {
    Answer answer = Answer::Refused;
    if (!faults.refuse) answer = mMonitor.TakeLine(faults.Damaged(line));
    return faults.instead.value_or(answer);
}

VirtualIndicator::LineFaults VirtualIndicator::FaultsOf(const std::string& line) {
    if (mPrevious && *mPrevious != line) ++mLineNumber;
    mPrevious = line;
    LineFaults faults;
    for (std::size_t i = 0; i < mOptions.faults.size(); ++i) {
        const Fault& fault = mOptions.faults[i];
        if (fault.line != mLineNumber || mFaultUses[i] == fault.times) continue;
        ++mFaultUses[i];
        faults.Add(fault);
    }
    AddArisen(faults);
    return faults;
}

void VirtualIndicator::AddArisen(LineFaults& faults) {
    for (Fault& fault : mArisen) {
        faults.Add(fault);
        --fault.times;
    }
    std::erase_if(mArisen, [](const Fault& fault) { return fault.times == 0; });
}

const Fault* VirtualIndicator::Find(FaultKind kind) const {
    const auto found = std::find_if(mOptions.faults.begin(), mOptions.faults.end(),
                                    [&](const Fault& fault) { return fault.kind == kind; });
    return found == mOptions.faults.end() ? nullptr : &*found;
}

const Fault* VirtualIndicator::RefusalOf(std::string_view command) const {
    if (command == "TRAV") return Find(FaultKind::NoTrav);
    if (command.starts_with("BAUD")) return Find(FaultKind::NoBaud);
    if (command == "SYSLOAD") return Find(FaultKind::NoSysload);
    return nullptr;
}

Nanos VirtualIndicator::Say(const LineFaults& faults, Answer answer, Nanos ready,
                            std::uint32_t speed) {
    std::string text(AnswerText(answer));
    if (faults.noise) text.insert(0, kNoise);
    return Say(text, ready + faults.late, speed, faults.delivery);
}

// Queues `text` from `ready` on, after pending output. Returns the time of its last byte.
Nanos VirtualIndicator::Say(std::string_view text, Nanos ready, std::uint32_t speed,
                            Delivery delivery) {
    Nanos out = ready;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const Nanos start = ready + static_cast<Nanos>(i / delivery.piece) * delivery.gap;
        out = mOutPacing.Next(start, CharacterBits(speed), speed);
        mOutgoing.push_back({out, text[i]});
    }
    return out;
}

void VirtualIndicator::GiveVerdict(Nanos at) {
    if (Find(FaultKind::NoVerdict)) return;
    const Answer verdict = mMonitor.FinishWriting(Find(FaultKind::VerifyFailed) != nullptr);
    const Delivery delivery =
        Find(FaultKind::SplitVerdict) ? Delivery{kVerdictPiece, kVerdictGap} : Delivery{};
    Say(AnswerText(verdict), at, mMonitor.BitsPerSecond(), delivery);
    ++mVerdicts;
}

void VirtualIndicator::CloseArrived(Nanos at) {
    if (mMonitor.AwaitsNewSpeed()) {
        if (!mHostOpen) mReopenBy = at + kReopenGrace;
        return;
    }
    if (mMonitor.CurrentState() == BootMonitor::State::Verified && !mLine.empty()) {
        mViolations.push_back("After the verdict DONE the host sent \"" + mLine +
                              "\" and closed without ending the line.");
    }
    PowerCycle();
}

void VirtualIndicator::PowerCycle() {
    mMonitor.PowerCycle();
    mLine.clear();
    mOutgoing.clear();
    mOutPacing = {};
    mVerdictAt.reset();
    mReopenBy.reset();
    if (mSessionBegun) EndSession(false);
}

void VirtualIndicator::HangUp() {
    PowerCycle();
    mIncoming.clear();
    mHungUp = true;
}

void VirtualIndicator::BeginSession() {
    if (std::exchange(mSessionBegun, true)) return;
    mSessionOver = false;
    mBooted = false;
    mLineFeedNoted = false;
}

void VirtualIndicator::EndSession(bool booted) {
    mSessionBegun = false;
    mSessionOver = true;
    mBooted = booted;
    mWrongSpeedNoted = false;
}

void VirtualIndicator::NoteWrongSpeed(std::uint32_t bitsPerSecond) {
    if (std::exchange(mWrongSpeedNoted, true)) return;
    mViolations.push_back("The host sent at " + std::to_string(bitsPerSecond) +
                          " bit/s while the monitor listens at " +
                          std::to_string(mMonitor.BitsPerSecond()) + " bit/s.");
}

// 0 (no time) when the line is not paced.
std::uint32_t VirtualIndicator::CharacterBits(std::uint32_t bitsPerSecond) const {
    return mOptions.paced && bitsPerSecond != 0 ? BitsPerCharacter(mHostLine) : 0;
}

std::string VirtualIndicator::TakeDue(Nanos now) {
    std::string due;
    while (!mOutgoing.empty() && mOutgoing.front().at <= now) {
        due += mOutgoing.front().byte;
        mOutgoing.pop_front();
    }
    return due;
}

}  // namespace vantor
