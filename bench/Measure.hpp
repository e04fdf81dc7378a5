// Timing helpers for the benchmarks.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>

namespace vantor::bench {

using SteadyClock = std::chrono::steady_clock;

inline double SecondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

struct Pair {
    double ours;
    double theirs;
};

/// The minimum of `rounds` runs of both, interleaved so that other load affects both alike. The
/// minimum, because other load and thread migration between cores only add time.
inline Pair SideBySide(std::size_t rounds, const std::function<double()>& ours,
                       const std::function<double()>& theirs) {
    Pair least{ours(), theirs()};
    for (std::size_t i = 1; i < rounds; ++i) {
        least.ours = std::min(least.ours, ours());
        least.theirs = std::min(least.theirs, theirs());
    }
    return least;
}

}  // namespace vantor::bench
