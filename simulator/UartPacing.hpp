// When characters have passed one direction of an asynchronous line, one after the other. Only
// arithmetic: it holds no bytes and knows no clock.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace vantor {

using Nanos = std::int64_t;   ///< nanoseconds on the caller's clock
using Micros = std::int64_t;  ///< microseconds on the caller's clock, never going back

class UartPacing {
public:
    /// The next character of `bits` bits at `bitsPerSecond`, ready to go at `ready`, has passed
    /// at the returned time: one character time after `ready` or after the character before,
    /// whichever is later. An idle line earns no credit. 0 bits: characters take no time.
    ///
    /// A run without a pause is counted from its start and rounded up once: at 115200 bit/s a
    /// character is no whole number of nanoseconds, and adding rounded ones would drift.
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
