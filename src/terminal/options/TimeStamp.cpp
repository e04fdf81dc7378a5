#include "terminal/options/TimeStamp.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace vantor {
namespace {

constexpr std::int64_t kDayMs = 24 * 60 * 60 * 1000;

std::string SinceText(std::int64_t ms) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "+%lld.%03d ", static_cast<long long>(ms / 1000),
                  static_cast<int>(ms % 1000));
    return text.data();
}

std::string TimeOfDayText(int ms) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d ", ms / 3'600'000,
                  ms / 60'000 % 60, ms / 1000 % 60, ms % 1000);
    return text.data();
}

}  // namespace

std::string StampText(TimeStamps kind, std::int64_t timeMs, std::int64_t previousMs) {
    if (kind == TimeStamps::TimeOfDay)
        return TimeOfDayText(static_cast<int>((timeMs % kDayMs + kDayMs) % kDayMs));
    if (kind == TimeStamps::SincePrevious)
        return SinceText(std::max<std::int64_t>(timeMs - previousMs, 0));
    return {};
}

}  // namespace vantor
