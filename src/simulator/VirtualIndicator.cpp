// Timing, UART pacing and fault injection around the boot monitor.
#include "simulator/VirtualIndicator.hpp"

#include <algorithm>
#include <bitset>
#include <utility>

#include "support/text/Text.hpp"

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

}  // namespace

// The combined faults for one arrival of a line.
struct VirtualIndicator::LineFaults {
    std::bitset<16> kinds;
    Nanos late = 0;
    std::optional<std::string_view> instead;  // the reply in place of the monitor's

    void Add(const Fault& fault);
    bool Has(FaultKind kind) const { return kinds.test(static_cast<std::size_t>(kind)); }
    // The line as received. Both kinds of corruption hit the middle, where every record has
    // digits: a missing or changed digit must fail the monitor's checks.
    std::string Damaged(std::string line) const;
};

void VirtualIndicator::LineFaults::Add(const Fault& fault) {
    kinds.set(static_cast<std::size_t>(fault.kind));
    if (fault.kind == FaultKind::Late) late += fault.lateMs * kNanosPerMilli;
    if (fault.kind == FaultKind::Done) instead = kReplyDone;
    if (fault.kind == FaultKind::Verify) instead = kReplyVerifyFailed;
}

std::string VirtualIndicator::LineFaults::Damaged(std::string line) const {
    if (Has(FaultKind::Garble))
        line[line.size() / 2] = static_cast<char>(line[line.size() / 2] ^ 1);
    if (Has(FaultKind::Drop)) line.erase(line.size() / 2, 1);
    return line;
}

VirtualIndicator::VirtualIndicator(IndicatorOptions options)
    : mOptions(std::move(options)),
      mMonitor(mOptions.bitsPerSecond, std::move(mOptions.expected)) {}

void VirtualIndicator::HostLine(const LineSettings& line, Micros now) {
    Advance(ToNanos(now));
    if (!mHostOpen) TakeDue(ToNanos(now));  // sent to a closed port, hence lost
    LineSettings sameFrame = mHostLine;
    sameFrame.bitsPerSecond = line.bitsPerSecond;
    if (mMonitor.AwaitsNewSpeed() && line != sameFrame)
        mViolations.emplace_back(
            "The host changed parity, data bits or stop bits together with the speed.");
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
    (IsLineFault(fault.kind) ? mArisen : mOptions.faults).push_back(fault);
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
    const State before = mMonitor.CurrentState();
    if (before == State::Verified && line != "BOOT") {
        mViolations.push_back("After the verdict DONE the host sent \"" + line +
                              "\" instead of BOOT.");
    }
    if (TrimBlanks(line).empty()) return;  // gets no reply, so no fault applies to it
    const bool ofImage = before == State::Image || before == State::Writing;
    LineFaults faults = ofImage ? FaultsOfImageLine(line) : FaultsOfCommand(line);
    AddArisen(faults);
    if (faults.Has(FaultKind::Hangup)) return HangUp();

    // The reply to BAUD goes out at the old speed.
    const std::uint32_t speed = mMonitor.BitsPerSecond();
    std::string_view reply = kReplyRefused;
    if (faults.Has(FaultKind::Silent) || faults.Has(FaultKind::Nak)) {
        mMonitor.HeardHost();
        if (faults.Has(FaultKind::Silent)) return;
    } else {
        reply = mMonitor.TakeLine(faults.Damaged(line));
    }
    const Nanos said =
        Say(faults, faults.instead.value_or(reply), at + ToNanos(mOptions.think), speed);
    const State after = mMonitor.CurrentState();
    if (after == before) return;
    if (after == State::Image) {
        mPrevious.reset();
        mLineNumber = 0;
    }
    // Writing begins when the acknowledgement is out, so that the verdict cannot overtake a late
    // one.
    if (after == State::Writing) mVerdictAt = said + ToNanos(mOptions.writeFlash);
    if (before == State::Verified) EndSession(true);
}

VirtualIndicator::LineFaults VirtualIndicator::FaultsOfImageLine(const std::string& line) {
    if (mPrevious && *mPrevious != line) ++mLineNumber;
    mPrevious = line;
    LineFaults faults;
    for (Fault& fault : mOptions.faults) {
        if (fault.line != mLineNumber || fault.times == 0) continue;
        --fault.times;
        faults.Add(fault);
    }
    return faults;
}

VirtualIndicator::LineFaults VirtualIndicator::FaultsOfCommand(std::string_view command) const {
    LineFaults faults;
    const Fault* refusal = nullptr;
    if (command == "TRAV") refusal = Find(FaultKind::NoTrav);
    if (command.starts_with("BAUD")) refusal = Find(FaultKind::NoBaud);
    if (command == "SYSLOAD") refusal = Find(FaultKind::NoSysload);
    if (refusal) faults.Add({.kind = refusal->silent ? FaultKind::Silent : FaultKind::Nak});
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

Nanos VirtualIndicator::Say(const LineFaults& faults, std::string_view reply, Nanos ready,
                            std::uint32_t speed) {
    std::string text(reply);
    if (faults.Has(FaultKind::Noise)) text.insert(0, kNoise);
    const Delivery delivery = faults.Has(FaultKind::Split) ? Delivery{1, kSplitGap} : Delivery{};
    return Say(text, ready + faults.late, speed, delivery);
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
    const std::string_view verdict =
        mMonitor.FinishWriting(Find(FaultKind::VerifyFailed) != nullptr);
    const Delivery delivery =
        Find(FaultKind::SplitVerdict) ? Delivery{kVerdictPiece, kVerdictGap} : Delivery{};
    Say(verdict, at, mMonitor.BitsPerSecond(), delivery);
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
