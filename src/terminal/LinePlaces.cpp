#include "terminal/LinePlaces.hpp"

#include <algorithm>

namespace vantor {
namespace {

/// The value at `x` on the line through two points, of which the second has the greater x.
std::int64_t Between(std::int64_t x, std::int64_t x1, std::int64_t y1, std::int64_t x2,
                     std::int64_t y2) {
    return y1 + (x - x1) * (y2 - y1) / (x2 - x1);
}

}  // namespace

void LinePlaces::Add(std::int64_t line, std::int64_t offset) {
    if (!mPlaces.empty() && (line <= mPlaces.back().line || offset <= mPlaces.back().offset))
        return;
    mPlaces.push_back({line, offset});
    if (mPlaces.size() > kMost) mPlaces.pop_front();
}

std::int64_t LinePlaces::OffsetOf(std::int64_t line) const {
    const auto after = std::ranges::lower_bound(mPlaces, line, {}, &Place::line);
    if (after == mPlaces.end()) return mPlaces.empty() ? 0 : mPlaces.back().offset;
    if (after == mPlaces.begin()) return after->offset;
    const auto before = std::prev(after);
    return Between(line, before->line, before->offset, after->line, after->offset);
}

std::int64_t LinePlaces::LineOf(std::int64_t offset) const {
    const auto after = std::ranges::lower_bound(mPlaces, offset, {}, &Place::offset);
    if (after == mPlaces.end()) return mPlaces.empty() ? 0 : mPlaces.back().line;
    if (after == mPlaces.begin()) return after->line;
    const auto before = std::prev(after);
    return Between(offset, before->offset, before->line, after->offset, after->line);
}

}  // namespace vantor
