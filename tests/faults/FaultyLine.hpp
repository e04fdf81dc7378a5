// Fault injection for a serial line: forwards both directions between a headless port and its far
// end, and injects faults at given bytes. It does not interpret the bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/headless/HeadlessSerial.hpp"

namespace vantor {

enum class Direction : std::uint8_t { ToDevice, ToHost };

enum class LineFaultKind : std::uint8_t {
    Drop,    ///< the byte is lost
    Double,  ///< the byte is duplicated
    Garble,  ///< the lowest bit of the byte is inverted
    Delay,   ///< the byte, and what follows it, arrives `ms` later
    Split,   ///< the byte and the next 15 arrive one by one, `ms` apart
    Unplug,  ///< once so many bytes have passed, the device is lost for good
};

struct LineFault {
    LineFaultKind kind = LineFaultKind::Drop;
    Direction direction = Direction::ToDevice;
    /// Index of the byte in its direction, from 0, counted as sent since construction,
    /// over all openings. A byte that has already passed is not affected, except that `Unplug` at
    /// such a one acts at once.
    std::size_t byte = 0;
    std::uint32_t ms = 0;  ///< `Delay`, `Split`: 0 to 3,600,000

    friend bool operator==(const LineFault&, const LineFault&) = default;
};

/// Used from one thread. Order is preserved: no byte overtakes a delayed one.
/// Bytes move when the host writes or polls. When the host closes, bytes in transit to the device
/// are delivered first; those in transit to the host are then lost.
class FaultyLine : public FarEnd {
public:
    /// Both outlive the line.
    FaultyLine(FarEnd& device, const Clock& clock) : mDevice(device), mClock(clock) {}

    void Add(const LineFault& fault);
    /// Bytes sent in `direction` so far.
    std::size_t Passed(Direction direction) const { return mLanes.at(direction).passed; }

    void Opened(const LineSettings& line) override;
    void Closed() override;
    void Receive(std::string_view bytes) override;
    std::string Transmit() override;
    bool HungUp() const override { return mUnplugged || mDevice.HungUp(); }

private:
    struct Underway {
        std::uint32_t at;
        char byte;
    };
    struct Lane {
        std::size_t passed = 0;
        std::vector<LineFault> faults;
        std::deque<Underway> bytes;
        std::uint32_t freeAt = 0;  // earliest arrival of the next byte
    };

    void Pass(Direction direction, std::string_view bytes);
    void PassByte(Lane& lane, char byte);
    void UnplugIfDue();
    std::string Arrived(Direction direction, std::uint32_t by);
    void Deliver(std::uint32_t by);

    FarEnd& mDevice;
    const Clock& mClock;
    std::map<Direction, Lane> mLanes = {{Direction::ToDevice, {}}, {Direction::ToHost, {}}};
    bool mOpen = false;
    bool mUnplugged = false;
};

}  // namespace vantor
