// How long the indicator's replies take, learnt from what passes over the line alone. It tells
// an adapter that holds replies back from a line that is merely slow, and sums a session up.
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

/// Follows one session. An image line begins with its first byte out and ends with the reply
/// that the session would take for its own, or with the input that the session throws away.
class RoundTrips : public TrafficListener {
public:
    /// So many first replies to image lines decide whether replies arrive late. It is their
    /// median that does: a machine that was busy for a moment, or an indicator that erased its
    /// memory behind the first line, moves a mean and not a median; ten of these may be odd.
    static constexpr std::size_t kFirstReplies = 21;
    /// How much later than the wire explains is late. Half the 16 ms to which common adapters
    /// set their timer, since part of that time can have run before the reply comes; more than
    /// what an indicator takes to check a line and a system to wake a program.
    static constexpr std::int64_t kLateUs = 8000;

    /// `clock` outlives the object.
    explicit RoundTrips(const Clock& clock) : mClock(clock) {}

    /// By how many whole milliseconds the replies arrive late, once it is known; told once.
    /// None when they do not, and after it was told.
    std::optional<std::int64_t> TakeLateness();

    /// The session so far, for those who read a transcript: a line each for the image's lines,
    /// the round trips, and the times.
    std::vector<std::string> Summary() const;

    void Opened(const std::string& name, const LineSettings& line) override;
    void Closed() override;
    void Sent(std::string_view bytes) override;
    void Received(std::string_view bytes) override;
    void Discarded(std::string_view bytes) override;

private:
    enum class Phase : std::uint8_t { Handshake, Image, Over };

    void BeginSend();
    void EndSend();
    void LookForReply();
    void Measure(std::uint32_t roundTripMs);
    void Count(std::string_view bytes);

    const Clock& mClock;
    Phase mPhase = Phase::Handshake;
    LineSettings mLine;
    std::string mSend;  // the command or line that is going out, or was the last one
    bool mSending = false;
    bool mAwaiting = false;
    bool mRefused = false;  // the last image line has not been taken, so far
    std::string mReply;
    std::uint32_t mSentAt = 0;

    std::optional<std::uint32_t> mBegun;
    std::uint32_t mLastAt = 0;
    // Both ways, by bits per second, and divided once: a character need not take a whole number
    // of microseconds.
    std::map<std::uint32_t, std::uint64_t> mBits;
    std::uint64_t mLines = 0;
    std::uint64_t mAcknowledged = 0;
    std::uint64_t mRetries = 0;
    std::vector<std::uint32_t> mRoundTripsMs;
    std::vector<std::int64_t> mExcessUs;  // of the first replies
    std::optional<std::int64_t> mLatenessMs;
};

}  // namespace vantor
