// Computes when characters leave one direction of an asynchronous serial line. Holds no bytes and
// has no clock.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace vantor {

using Nanos = std::int64_t;   ///< nanoseconds on the caller's clock
using Micros = std::int64_t;  ///< microseconds on the caller's clock, monotonic

class UartPacing {
public:
    /// Returns the time at which the next character, of `bits` bits at `bitsPerSecond` and ready
    /// at `ready`, is complete: one character time after `ready` or after the previous character,
    /// whichever is later. Idle time is not credited. 0 bits: characters take no time.
    ///
    /// A burst is timed from its start and rounded up once: at 115200 bit/s the character time is
    /// not a whole number of nanoseconds, and summing rounded times would drift.
    Nanos Next(Nanos ready, std::uint32_t bits, std::uint32_t bitsPerSecond) {
        if (ready > mEnd || bits != mBits || bitsPerSecond != mBitsPerSecond) {
            mRunStart = std::max(ready, mEnd);
            mRunBits = 0;
            mBits = bits;
            mBitsPerSecond = bitsPerSecond;
        }
        mRunBits += bits;
        mEnd = mRunStart;
        if (bits != 0) mEnd += (mRunBits * kNanosPerSecond + bitsPerSecond - 1) / bitsPerSecond;
        return mEnd;
    }

private:
    static constexpr Nanos kNanosPerSecond = 1'000'000'000;

    Nanos mEnd = std::numeric_limits<Nanos>::min();
    Nanos mRunStart = 0;
    std::int64_t mRunBits = 0;
    std::uint32_t mBits = 0;
    std::uint32_t mBitsPerSecond = 0;
};

}  // namespace vantor
