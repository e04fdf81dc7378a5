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

std::vector<std::string> RoundTrips::Summary() const {
    std::string replies = "round trip: no replies";
    if (!mRoundTripsMs.empty())
        replies = "round trip median " + std::to_string(Median(mRoundTripsMs)) + " ms, maximum " +
                  std::to_string(*std::ranges::max_element(mRoundTripsMs)) + " ms, replies " +
                  std::to_string(mRoundTripsMs.size());
    std::int64_t wireUs = 0;
    for (const auto& [bitsPerSecond, bits] : mBits) wireUs += WireUs(bits, bitsPerSecond);
    const std::uint32_t totalMs = mLastAt - mBegun.value_or(mLastAt);
    return {"lines " + std::to_string(mLines) + ", acknowledged " + std::to_string(mAcknowledged) +
                ", retries " + std::to_string(mRetries),
            replies,
            "wire time both ways " + std::to_string(wireUs / kMicrosPerMilli) + " ms, total time " +
                std::to_string(totalMs) + " ms"};
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
    if (mExcessUs.size() == kFirstReplies) return;
    const std::uint64_t bits = (mSend.size() + kReplyCharacters) * BitsPerCharacter(mLine);
    mExcessUs.push_back(roundTripMs * kMicrosPerMilli - WireUs(bits, mLine.bitsPerSecond));
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
