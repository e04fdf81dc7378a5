#include "console/PortRow.hpp"

#include <utility>

#include "console/Json.hpp"
#include "console/image/Filled.hpp"
#include "platform/StringTable.hpp"
#include "support/Conversions.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr std::size_t kBarWidth = 20;

std::int64_t Number(const std::string& text) {
    return ParseInteger(text).value_or(0);
}

ExitStatus StatusOf(std::int64_t exit) {
    const bool known = exit >= 0 && exit <= static_cast<int>(ExitStatus::Aborted);
    return known ? static_cast<ExitStatus>(exit) : ExitStatus::UpdateFailure;
}

}  // namespace

PortRow::PortRow(std::string port, std::unique_ptr<ChildProcess> process,
                 const StringTable& strings)
    : mPort(std::move(port)),
      mProcess(std::move(process)),
      mStrings(strings),
      mState(strings.Text(Str::RowStarting)) {
    if (mProcess) return;
    mEnded = true;
    mLost = true;
    mState = Filled(strings.Text(Str::ProcessNotStarted), mPort);
}

std::string PortRow::Read(std::uint32_t nowMs) {
    if (mEnded) return {};
    const bool goesOn = mProcess->Read(mUnread);
    const std::size_t end = mUnread.rfind('\n') + 1;  // 0 without a complete line
    std::string lines = mUnread.substr(0, end);
    mUnread.erase(0, end);
    for (std::string_view rest = lines; !rest.empty();) {
        const std::size_t length = rest.find('\n');
        if (auto event = JsonMembers(rest.substr(0, length))) Take(*event, nowMs);
        rest.remove_prefix(length + 1);
    }
    if (!goesOn) Close();
    return lines;
}

void PortRow::Close() {
    constexpr int kInterrupted = 128 + 2;  // before it was ready to take the signal
    mEnded = true;
    const int exit = mProcess->ExitStatus();
    const ExitStatus status = exit == kInterrupted ? ExitStatus::Aborted : StatusOf(exit);
    mLost = !mTold;
    mStatus = mLost && status == ExitStatus::Done ? ExitStatus::UpdateFailure : status;
    if (!mLost) return;
    mState = status == ExitStatus::Aborted
                 ? OutcomeText(CodeOf(FlashOutcome::Aborted), status, mStrings)
                 : mStrings.Text(Str::ProcessEnded);
}

void PortRow::Interrupt() {
    if (!mEnded) mProcess->Interrupt();
}

void PortRow::EndWait() {
    if (!mEnded && mWaiting) mProcess->CloseOutput();
}

void PortRow::Take(std::map<std::string, std::string>& event, std::uint32_t nowMs) {
    const std::string& kind = event["event"];
    if (kind == "line") {
        const std::int64_t last = Number(event["total"]) - 1;
        const std::int64_t index = Number(event["index"]);
        mPercent = last > 0 ? static_cast<int>(index * 100 / last) : 100;
        mState = Filled(mStrings.Text(Str::RowLine), std::to_string(index), std::to_string(last));
        if (!std::exchange(mStreaming, true)) mImageStart = nowMs;
    } else if (kind == "stage") {
        if (event["stage"] == "verdict") mState = mStrings.Text(Str::RowVerdict);
        if (event["stage"] != "image" && event["stage"] != "verdict") mState = event["text"];
        mStreaming = false;
        mWaiting = event["stage"].starts_with("waiting-");
    } else if (kind == "warning" && event["code"] != "do-not-disconnect") {
        mMessages += mPort + ": " + event["text"] + "\n";
    } else if (kind == "end") {
        TakeEnd(event);
    }
}

void PortRow::TakeEnd(std::map<std::string, std::string>& event) {
    mTold = true;
    mStreaming = false;
    mStatus = StatusOf(Number(event["exit"]));
    if (mStatus == ExitStatus::Done) mPercent = 100;
    const std::string& outcome = event["outcome"];
    mState = OutcomeText(outcome, mStatus, mStrings);
    const bool lostRecord = outcome == "done" && mStatus != ExitStatus::Done;
    if (outcome == "refused" || outcome == "error" || lostRecord)
        mMessages += mPort + ": " + event["reason"] + "\n";
}

std::string PortRow::Row(std::size_t nameWidth, std::uint32_t nowMs) const {
    const std::size_t full = kBarWidth * static_cast<std::size_t>(mPercent) / 100;
    return FixedWidth(mPort, nameWidth) + " [" + std::string(full, '#') +
           std::string(kBarWidth - full, '-') + "] " + mState + TimeLeft(nowMs);
}

std::string PortRow::TimeLeft(std::uint32_t nowMs) const {
    if (!mStreaming || mPercent <= 0 || mPercent >= 100) return {};
    const std::uint64_t elapsedMs = nowMs - mImageStart;
    const auto left = static_cast<std::int32_t>(elapsedMs * static_cast<unsigned>(100 - mPercent) /
                                                static_cast<unsigned>(mPercent) / 1000);
    return "  " + Filled(mStrings.Text(Str::TimeLeft), TimeOfDay(left));
}

std::string PortRow::TakeMessages() {
    return std::exchange(mMessages, {});
}

}  // namespace vantor
