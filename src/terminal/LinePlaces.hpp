// Which received bytes a line of the screen came from, roughly: enough to keep the place when the
// view mode changes.
#pragma once

#include <cstdint>
#include <deque>

namespace vantor {

/// Pairs of a line and an offset, noted as bytes arrive; in between is interpolated.
class LinePlaces {
public:
    /// The cursor was in `line` when all bytes before `offset` had been shown. Ignored unless both
    /// are greater than before. Keeps the newest `kMost` pairs.
    void Add(std::int64_t line, std::int64_t offset);
    void Clear() { mPlaces.clear(); }

    std::int64_t OffsetOf(std::int64_t line) const;
    std::int64_t LineOf(std::int64_t offset) const;

private:
    static constexpr std::size_t kMost = 16'384;
    struct Place {
        std::int64_t line;
        std::int64_t offset;
    };
    std::deque<Place> mPlaces;  // both numbers ascend
};

}  // namespace vantor
