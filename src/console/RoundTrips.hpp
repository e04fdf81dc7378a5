// Measures the round trips of the indicator's replies, from the traffic on the line only.
// Distinguishes adapter latency from a slow line, and summarises a session.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/Traffic.hpp"
#include "platform/Clock.hpp"

namespace vantor {

/// What a session has done so far.
struct SessionCounts {
    std::uint64_t lines = 0;  ///< lines of the image sent, each counted once
    std::uint64_t acknowledged = 0;
    std::uint64_t resends = 0;
    std::uint64_t lateReplies = 0;         ///< replies to lines that the speed does not explain
    std::optional<std::int64_t> medianMs;  ///< from the sending of a line to its reply
    std::optional<std::int64_t> longestMs;
    std::int64_t wireMs = 0;   ///< what all bytes of both ways take at their speeds
    std::uint32_t portMs = 0;  ///< from the first opening of the port to its last closing
};

/// Follows one session. An image line starts with its first byte sent and ends with the reply that
/// the session accepts for it, or with the input that the session discards.
class RoundTrips : public TrafficListener {
public:
    /// This many first replies to image lines decide whether replies are late. Their median
    /// is used: a busy machine, or an indicator that erases its memory after the first line,
    /// shifts a mean but not a median; ten of these may be outliers.
    static constexpr std::size_t kFirstReplies = 21;
    /// Excess over the wire time from which a reply is late. Half the 16 ms latency timer of
    /// common adapters, because part of that time may have passed before the reply arrives;
    /// more than an indicator needs to check a line and a system to wake a process.
    static constexpr std::int64_t kLateUs = 8000;

    /// `clock` must outlive the object.
    explicit RoundTrips(const Clock& clock) : mClock(clock) {}

    /// By how many whole milliseconds replies are late; empty before that is known, when they are
    /// not late, and after the first call that returned a value.
    std::optional<std::int64_t> TakeLateness();

    SessionCounts Counts() const;

    /// Summary of the session so far, for a transcript: one line each for the image lines,
    /// the round trips, and the times.
    std::vector<std::string> Summary() const;

    void Opened(const std::string& name, const LineSettings& line) override;
    void Closed() override;
    void Sent(std::string_view bytes) override;
    void Received(std::string_view bytes) override;
    void Discarded(std::string_view bytes) override;

private:
    enum class Stage : std::uint8_t { Handshake, Image, Over };

    void BeginSend();
    void EndSend();
    void LookForReply();
    void Measure(std::uint32_t roundTripMs);
    void Count(std::string_view bytes);

    const Clock& mClock;
    Stage mStage = Stage::Handshake;
    LineSettings mLine;
    std::string mSend;  // the command or line being sent, or the last one
    bool mSending = false;
    bool mAwaiting = false;
    bool mRefused = false;  // the last image line is not accepted yet
    std::string mReply;
    std::uint32_t mSentAt = 0;

    std::optional<std::uint32_t> mBegun;
    std::uint32_t mLastAt = 0;
    // Bits in both directions, by bits per second. Divided only once, because a character may take
    // a fractional number of microseconds.
    std::map<std::uint32_t, std::uint64_t> mBits;
    std::uint64_t mLines = 0;
    std::uint64_t mAcknowledged = 0;
    std::uint64_t mRetries = 0;
    std::uint64_t mLateReplies = 0;
    std::vector<std::uint32_t> mRoundTripsMs;
    std::vector<std::int64_t> mExcessUs;  // of the first replies
    std::optional<std::int64_t> mLatenessMs;
};

}  // namespace vantor
