// A break on a serial line, without blocking.
#pragma once

#include <cstdint>
#include <optional>

#include "controls/BufferedPort.hpp"
#include "platform/Clock.hpp"

namespace vantor {

/// A break of 250 ms. It waits until the output is on the line, because it would destroy that, but
/// not longer than 500 ms: a break is also the means to wake a far end that holds the line. Nothing
/// may be sent while it is active. The owner calls `Advance` until it is not.
class LineBreak {
public:
    /// Both outlive the break.
    LineBreak(BufferedPort& port, const Clock& clock) : mPort(port), mClock(clock) {}

    /// Does nothing while a break is active.
    void Start();
    void Advance();
    /// Ends it at once.
    void Stop();
    bool Active() const { return mSince.has_value(); }

private:
    BufferedPort& mPort;
    const Clock& mClock;
    std::optional<std::uint32_t> mSince;  // the start of waiting or of the break, by the clock
    bool mOn = false;
};

}  // namespace vantor
