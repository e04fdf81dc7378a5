// State transitions and replies of the boot monitor.
#include "simulator/BootMonitor.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>
#include <utility>

#include "simulator/SerialRecord.hpp"

namespace vantor {

namespace {

constexpr std::string_view kBaud = "BAUD ";
constexpr std::array<std::uint32_t, 8> kSpeeds{1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

}  // namespace

std::string_view AnswerText(Answer answer) {
    switch (answer) {
        case Answer::None:
            return "";
        case Answer::Ok:
            return "OK\r\n";
        case Answer::Refused:
            return "??\r\n";
        case Answer::Done:
            return "DONE\r\n";
        case Answer::VerifyFailed:
            return "VERIFY FAILED\r\n";
    }
    return "";
}

BootMonitor::BootMonitor(std::uint32_t firstSpeed, std::optional<FlashMemory> expected)
    : mFirstSpeed(firstSpeed), mExpected(std::move(expected)), mBitsPerSecond(firstSpeed) {}

Answer BootMonitor::TakeLine(std::string_view line) {
    if (line.find_first_not_of(' ') == std::string_view::npos) return Answer::None;
    switch (mState) {
        case State::Idle:
        case State::Ready:
            return TakeCommand(line);
        case State::Image:
        case State::Writing:
            return TakeRecord(line);
        case State::Verified:
            if (line != "BOOT") return Answer::Refused;
            PowerCycle();
            return Answer::None;
    }
    return Answer::None;
}

Answer BootMonitor::FinishWriting(bool fail) {
    const bool whole = !mExpected || mMemory == *mExpected;
    const bool done = whole && !fail;
    mState = done ? State::Verified : State::Ready;
    return done ? Answer::Done : Answer::VerifyFailed;
}

void BootMonitor::PowerCycle() {
    mState = State::Idle;
    mBitsPerSecond = mFirstSpeed;
    mAwaitsNewSpeed = false;
}

Answer BootMonitor::TakeCommand(std::string_view line) {
    HeardHost();
    if (line == "TRAV") {
        mState = State::Ready;
        return Answer::Ok;
    }
    if (mState == State::Idle) return Answer::Refused;
    if (line.starts_with(kBaud)) return ChangeSpeed(line.substr(kBaud.size()));
    if (line != "SYSLOAD") return Answer::Refused;
    mMemory.Clear();
    mState = State::Image;
    return Answer::Ok;
}

Answer BootMonitor::ChangeSpeed(std::string_view digits) {
    std::uint32_t speed = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, speed);
    const bool known = std::find(kSpeeds.begin(), kSpeeds.end(), speed) != kSpeeds.end();
    if (error != std::errc{} || stop != end || !known) return Answer::Refused;
    mBitsPerSecond = speed;
    mAwaitsNewSpeed = true;
    return Answer::Ok;
}

Answer BootMonitor::TakeRecord(std::string_view line) {
    const auto record = SerialRecord::Parse(line);
    if (!record) return Answer::Refused;
    if (record->IsEnd()) {
        mState = State::Writing;
        return Answer::Ok;
    }
    // Records after the end record are not part of the image.
    if (mState == State::Writing) return Answer::Refused;
    if (record->IsData()) mMemory.Write(record->address, record->data);
    return Answer::Ok;
}

}  // namespace vantor
