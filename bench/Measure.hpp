// What the measurements share.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

namespace vantor::bench {

using SteadyClock = std::chrono::steady_clock;

inline double SecondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

inline double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

struct Pair {
    double ours;
    double theirs;
};

/// Medians of `rounds` runs of both, taken in turns so that the machine's moods hit both alike.
inline Pair SideBySide(std::size_t rounds, const std::function<double()>& ours,
                       const std::function<double()>& theirs) {
    std::vector<double> a;
    std::vector<double> b;
    for (std::size_t i = 0; i < rounds; ++i) {
        a.push_back(ours());
        b.push_back(theirs());
    }
    return {Median(a), Median(b)};
}

}  // namespace vantor::bench
