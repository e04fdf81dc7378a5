// Receive path of a USB serial adapter: buffers bytes from the line and delivers them to the
// computer in packets. Has no clock; the caller passes the time.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/UartPacing.hpp"

namespace vantor {

class LatencyTimer {
public:
    /// Payload that fills a packet: 64 bytes less the two status bytes of the common chip.
    static constexpr std::size_t kPacket = 62;

    /// The buffer is flushed `hold` after its first byte, or earlier when a packet is full.
    explicit LatencyTimer(Micros hold) : mHold(hold) {}

    /// Buffers `bytes` (may be empty) from the line; returns what the computer receives by `now`.
    std::string Pass(std::string_view bytes, Micros now);
    /// When `Pass` next returns bytes without new input; none while the buffer is empty.
    std::optional<Micros> NextDue() const;
    /// Discards the buffer, as a close of the port does.
    void Clear() { mHeld.clear(); }

private:
    Micros mHold;
    Micros mDue = 0;  // flush time of `mHeld`, valid while it is not empty
    std::string mHeld;
};

}  // namespace vantor
