// State transitions and replies of the boot monitor.
#include "simulator/BootMonitor.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "simulator/SerialRecord.hpp"
#include "support/text/Text.hpp"

namespace vantor {

namespace {

constexpr std::string_view kBaud = "BAUD ";
constexpr std::array<std::int64_t, 8> kSpeeds{1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

}  // namespace

BootMonitor::BootMonitor(std::uint32_t firstSpeed, std::optional<FlashMemory> expected)
    : mFirstSpeed(firstSpeed), mExpected(std::move(expected)), mBitsPerSecond(firstSpeed) {}

std::string_view BootMonitor::TakeLine(std::string_view line) {
    if (TrimBlanks(line).empty()) return {};
    switch (mState) {
        case State::Idle:
        case State::Ready:
            return TakeCommand(line);
        case State::Image:
        case State::Writing:
            return TakeRecord(line);
        case State::Verified:
            if (line != "BOOT") return kReplyRefused;
            PowerCycle();
            return {};
    }
    return {};
}

std::string_view BootMonitor::FinishWriting(bool fail) {
    const bool whole = !mExpected || mMemory == *mExpected;
    const bool done = whole && !fail;
    mState = done ? State::Verified : State::Ready;
    return done ? kReplyDone : kReplyVerifyFailed;
}

void BootMonitor::PowerCycle() {
    mState = State::Idle;
    mBitsPerSecond = mFirstSpeed;
    mAwaitsNewSpeed = false;
}

std::string_view BootMonitor::TakeCommand(std::string_view line) {
    HeardHost();
    if (line == "TRAV") {
        mState = State::Ready;
        return kReplyOk;
    }
    if (mState == State::Idle) return kReplyRefused;
    if (line.starts_with(kBaud)) return ChangeSpeed(line.substr(kBaud.size()));
    if (line != "SYSLOAD") return kReplyRefused;
    mMemory.Clear();
    mState = State::Image;
    return kReplyOk;
}

std::string_view BootMonitor::ChangeSpeed(std::string_view digits) {
    const auto speed = ParseInteger(digits);
    if (!speed || std::ranges::find(kSpeeds, *speed) == kSpeeds.end()) return kReplyRefused;
    mBitsPerSecond = static_cast<std::uint32_t>(*speed);
    mAwaitsNewSpeed = true;
    return kReplyOk;
}

std::string_view BootMonitor::TakeRecord(std::string_view line) {
    const auto record = SerialRecord::Parse(line);
    if (!record) return kReplyRefused;
    if (record->IsEnd()) {
        mState = State::Writing;
        return kReplyOk;
    }
    // Records after the end record are not part of the image.
    if (mState == State::Writing) return kReplyRefused;
    if (record->IsData()) mMemory.Write(record->address, record->data);
    return kReplyOk;
}

}  // namespace vantor
