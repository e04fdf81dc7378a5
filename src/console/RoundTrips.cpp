#include "console/RoundTrips.hpp"

#include <algorithm>
#include <utility>

#include "flash/SerialLink.hpp"

namespace vantor {
namespace {

constexpr std::int64_t kMicrosPerMilli = 1000;
constexpr std::int64_t kMicrosPerSecond = 1'000'000;
// "OK" and CR. The wait ends with the K, but an adapter that forwards replies immediately does so
// at the CR. The line feed arrives while the next line is sent.
constexpr std::size_t kReplyCharacters = 3;

/// The lower of the two middle values when the count is even.
template <typename Number>
Number Median(std::vector<Number> numbers) {
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>((numbers.size() - 1) / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return *middle;
}

std::int64_t WireUs(std::uint64_t bits, std::uint32_t bitsPerSecond) {
    return static_cast<std::int64_t>(bits * kMicrosPerSecond / bitsPerSecond);
}

}  // namespace

std::optional<std::int64_t> RoundTrips::TakeLateness() {
    return std::exchange(mLatenessMs, std::nullopt);
}

SessionCounts RoundTrips::Counts() const {
    SessionCounts counts{.lines = mLines,
                         .acknowledged = mAcknowledged,
                         .resends = mRetries,
                         .lateReplies = mLateReplies,
                         .medianMs = {},
                         .longestMs = {},
                         .wireMs = 0,
                         .portMs = mLastAt - mBegun.value_or(mLastAt)};
    if (!mRoundTripsMs.empty()) {
        counts.medianMs = Median(mRoundTripsMs);
        counts.longestMs = *std::ranges::max_element(mRoundTripsMs);
    }
    std::int64_t wireUs = 0;
    for (const auto& [bitsPerSecond, bits] : mBits) wireUs += WireUs(bits, bitsPerSecond);
    counts.wireMs = wireUs / kMicrosPerMilli;
    return counts;
}

std::vector<std::string> RoundTrips::Summary() const {
    const SessionCounts counts = Counts();
    std::string replies = "round trip: no replies";
    if (counts.medianMs && counts.longestMs)
        replies = "round trip median " + std::to_string(*counts.medianMs) + " ms, maximum " +
                  std::to_string(*counts.longestMs) + " ms, replies " +
                  std::to_string(mRoundTripsMs.size());
    return {"lines " + std::to_string(counts.lines) + ", acknowledged " +
                std::to_string(counts.acknowledged) + ", retries " + std::to_string(counts.resends),
            replies,
            "wire time both ways " + std::to_string(counts.wireMs) + " ms, total time " +
                std::to_string(counts.portMs) + " ms"};
}

void RoundTrips::Opened(const std::string& /*name*/, const LineSettings& line) {
    mLine = line;
    mLastAt = mClock.Milliseconds();
    if (!mBegun) mBegun = mLastAt;
}

void RoundTrips::Closed() {
    mSending = false;
    mAwaiting = false;
    mLastAt = mClock.Milliseconds();
}

void RoundTrips::Sent(std::string_view bytes) {
    Count(bytes);
    if (!mSending) BeginSend();
    // The driver may have accepted only part of it.
    mSend += bytes;
    if (mSend.ends_with('\r')) EndSend();
}

void RoundTrips::BeginSend() {
    // Input after the reply to a line is discarded before the next send, so "DONE" is still here
    // only when the session waited for a verdict. What it sends after that is not an image line.
    if (mStage == Stage::Image && mReply.find("DONE") != std::string::npos) mStage = Stage::Over;
    mSending = true;
    mAwaiting = false;
    mSend.clear();
    mReply.clear();
    mSentAt = mClock.Milliseconds();
}

void RoundTrips::EndSend() {
    mSending = false;
    mAwaiting = true;
    if (mStage == Stage::Image) {
        ++(mRefused ? mRetries : mLines);
        mRefused = true;
    }
    LookForReply();
}

void RoundTrips::Received(std::string_view bytes) {
    Count(bytes);
    mReply += bytes;
    LookForReply();
}

void RoundTrips::LookForReply() {
    if (!mAwaiting) return;
    const std::optional<SendResult> result = ReplyIn(mReply);
    if (!result) return;
    mAwaiting = false;
    mReply.clear();
    const bool accepted = *result == SendResult::SendOK;
    if (mStage == Stage::Handshake) {
        if (accepted && mSend == "SYSLOAD\r") mStage = Stage::Image;
    } else if (mStage == Stage::Image) {
        mRefused = *result == SendResult::SendFailed;
        if (accepted) ++mAcknowledged;
        Measure(mLastAt - mSentAt);
    }
}

void RoundTrips::Measure(std::uint32_t roundTripMs) {
    mRoundTripsMs.push_back(roundTripMs);
    const std::uint64_t bits = (mSend.size() + kReplyCharacters) * BitsPerCharacter(mLine);
    const std::int64_t excess = roundTripMs * kMicrosPerMilli - WireUs(bits, mLine.bitsPerSecond);
    if (excess >= kLateUs) ++mLateReplies;
    if (mExcessUs.size() == kFirstReplies) return;
    mExcessUs.push_back(excess);
    if (mExcessUs.size() < kFirstReplies) return;
    const std::int64_t excessUs = Median(mExcessUs);
    if (excessUs >= kLateUs) mLatenessMs = excessUs / kMicrosPerMilli;
}

void RoundTrips::Discarded(std::string_view bytes) {
    Count(bytes);
    mAwaiting = false;
    mReply.clear();
}

void RoundTrips::Count(std::string_view bytes) {
    mBits[mLine.bitsPerSecond] += std::uint64_t{bytes.size()} * BitsPerCharacter(mLine);
    mLastAt = mClock.Milliseconds();
}

}  // namespace vantor
