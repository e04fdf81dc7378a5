// The bytes that a terminal has received, as many as its scrollback keeps, with their arrival.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantor {

/// Offsets count from the first byte ever received. The oldest bytes are dropped when there are
/// more than `kMostBytes`, or more than `kMostRuns` that arrived at different times.
class ReceivedBytes {
public:
    static constexpr std::size_t kMostBytes = 4 * 1024 * 1024;
    static constexpr std::size_t kMostRuns = 512 * 1024;

    explicit ReceivedBytes(std::size_t mostBytes = kMostBytes, std::size_t mostRuns = kMostRuns)
        : mMostBytes(mostBytes), mMostRuns(mostRuns) {}

    /// Takes memory only for bytes that have arrived.
    void Append(std::string_view bytes, std::int64_t timeMs);
    /// Drops all bytes; the offsets go on.
    void Clear();

    // The bytes from First to End (exclusive) are kept.
    std::int64_t First() const { return mFirst; }
    std::int64_t End() const { return mEnd; }

    /// The byte at an offset that is kept.
    char At(std::int64_t offset) const { return mRing[InRing(offset)]; }
    /// The bytes from `from` to `to` (exclusive), or those of them that are kept.
    std::string Read(std::int64_t from, std::int64_t to) const;
    /// When the byte at `offset` arrived; empty for a byte that is not kept.
    std::optional<std::int64_t> TimeAt(std::int64_t offset) const;

private:
    struct Run {
        std::int64_t offset;  // of its first byte
        std::int64_t timeMs;
    };

    std::size_t InRing(std::int64_t offset) const {
        return static_cast<std::size_t>(offset) % mMostBytes;
    }
    void Store(std::string_view bytes);
    void Drop();

    std::size_t mMostBytes;
    std::size_t mMostRuns;
    std::vector<char> mRing;
    std::int64_t mFirst = 0;
    std::int64_t mEnd = 0;
    std::deque<Run> mRuns;
};

}  // namespace vantor
