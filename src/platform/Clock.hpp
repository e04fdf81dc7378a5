// Time sources: one wrapping millisecond clock and the wall clock.
#pragma once

#include <cstdint>
#include <string>

namespace vantor {

/// A local calendar time, to the second.
struct DateTime {
    int year = 0;
    int month = 0;  ///< 1 to 12
    int day = 0;    ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The time sources of the process. Used from one thread; no operation fails.
class Clock {
public:
    virtual ~Clock() = default;

    /// Milliseconds since system start, wrapping at 2^32 (Windows: timeGetTime).
    virtual std::uint32_t Milliseconds() const = 0;

    /// Blocks the thread for at least `ms` milliseconds (Windows: Sleep).
    virtual void Sleep(std::uint32_t ms) = 0;

    /// The local date and time of day.
    virtual DateTime Now() const = 0;

    /// The same time in milliseconds since the local midnight at the start of 1 January 1970. It
    /// jumps when the clock is set and when daylight saving time begins or ends.
    virtual std::int64_t LocalMilliseconds() const = 0;

    /// The clock as the 32-bit signed number that intervals are computed with. It turns negative
    /// 24.8 days after system start; interval arithmetic checks for that overflow.
    std::int32_t Ticks() const { return static_cast<std::int32_t>(Milliseconds()); }
};

}  // namespace vantor
