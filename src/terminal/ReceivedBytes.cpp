#include "terminal/ReceivedBytes.hpp"

#include <algorithm>
#include <cstring>

namespace vantor {

void ReceivedBytes::Append(std::string_view bytes, std::int64_t timeMs) {
    if (bytes.empty()) return;
    if (mRuns.empty() || mRuns.back().timeMs != timeMs) mRuns.push_back({mEnd, timeMs});
    if (bytes.size() > mMostBytes) {
        const std::size_t surplus = bytes.size() - mMostBytes;
        mEnd += static_cast<std::int64_t>(surplus);
        bytes.remove_prefix(surplus);
    }
    Store(bytes);
    Drop();
}

/// Copies `bytes`, at most as many as the ring has, to the end.
void ReceivedBytes::Store(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t at = InRing(mEnd);
        const std::size_t count = std::min(bytes.size(), mMostBytes - at);
        if (mRing.size() < at + count) mRing.resize(at + count);
        std::memcpy(mRing.data() + at, bytes.data(), count);
        mEnd += static_cast<std::int64_t>(count);
        bytes.remove_prefix(count);
    }
}

void ReceivedBytes::Drop() {
    mFirst = std::max(mFirst, mEnd - static_cast<std::int64_t>(mMostBytes));
    if (mRuns.size() > mMostRuns) mFirst = std::max(mFirst, mRuns[1].offset);
    while (mRuns.size() > 1 && mRuns[1].offset <= mFirst) mRuns.pop_front();
}

void ReceivedBytes::Clear() {
    mFirst = mEnd;
    mRuns.clear();
}

std::string ReceivedBytes::Read(std::int64_t from, std::int64_t to) const {
    from = std::max(from, mFirst);
    to = std::min(to, mEnd);
    std::string bytes;
    while (from < to) {
        const std::size_t at = InRing(from);
        const std::size_t count = std::min(static_cast<std::size_t>(to - from), mMostBytes - at);
        bytes.append(mRing.data() + at, count);
        from += static_cast<std::int64_t>(count);
    }
    return bytes;
}

std::optional<std::int64_t> ReceivedBytes::TimeAt(std::int64_t offset) const {
    if (offset < mFirst || offset >= mEnd) return {};
    const auto after = std::ranges::upper_bound(mRuns, offset, {}, &Run::offset);
    return std::prev(after)->timeMs;
}

}  // namespace vantor
