// The receiving half of a USB adapter: it gathers what comes off the serial line and hands it to
// the computer in packets. Knows no clock of its own.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/UartPacing.hpp"

namespace vantor {

class LatencyTimer {
public:
    /// Bytes that go on at once: a packet of 64 less the two with which the common chip opens it.
    static constexpr std::size_t kPacket = 62;

    /// Bytes are held for `hold` from the first one that waits, unless a packet is full before.
    explicit LatencyTimer(Micros hold) : mHold(hold) {}

    /// `bytes`, or none, have come off the line; returns what the computer gets by `now`.
    std::string Pass(std::string_view bytes, Micros now);
    /// When `Pass` will next return something without new bytes; none while nothing waits.
    std::optional<Micros> NextDue() const;
    /// The computer has closed the port: what waits is lost.
    void Clear() { mHeld.clear(); }

private:
    Micros mHold;
    Micros mDue = 0;  // of what is held
    std::string mHeld;
};

}  // namespace vantor
