// Fault injection for a serial line: forwards both directions between a headless port and its far
// end, and injects faults at given bytes. It does not interpret the bytes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
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
    std::size_t byte = 0;  ///< in its direction, the next one is 0
    std::uint32_t ms = 0;  ///< `Delay`, `Split`: 0 to 3,600,000
};

/// Used from one thread. Order is preserved: no byte overtakes a delayed one.
/// Bytes move when the host writes or polls. When the host closes, bytes in transit to the device
/// are delivered first; those in transit to the host are then lost.
class FaultyLine : public FarEnd {
public:
    /// Both outlive the line.
    FaultyLine(FarEnd& device, const Clock& clock) : mDevice(device), mClock(clock) {}

    void Add(LineFault fault) {
        Lane& lane = fault.direction == Direction::ToDevice ? mToDevice : mToHost;
        fault.byte += lane.passed;
        lane.faults.push_back(fault);
        UnplugIfDue(lane);
    }

    void Opened(const LineSettings& line) override {
        mOpen = true;
        mToHost.bytes.clear();
        mDevice.Opened(line);
    }
    void Closed() override {
        // After an unplug the device has already been closed.
        if (!mOpen) return;
        Deliver(std::numeric_limits<std::uint32_t>::max());
        mOpen = false;
        mDevice.Closed();
    }
    void Receive(std::string_view bytes) override {
        Pass(mToDevice, bytes);
        Deliver(mClock.Milliseconds());
    }
    std::string Transmit() override {
        Deliver(mClock.Milliseconds());
        if (!mUnplugged) Pass(mToHost, mDevice.Transmit());
        return mUnplugged ? "" : Arrived(mToHost, mClock.Milliseconds());
    }
    bool HungUp() const override { return mUnplugged || mDevice.HungUp(); }

private:
    struct Lane {
        std::size_t passed = 0;
        std::vector<LineFault> faults;
        std::deque<std::pair<std::uint32_t, char>> bytes;  // in transit, with their arrival
        std::uint32_t freeAt = 0;                          // earliest arrival of the next byte
    };

    void Pass(Lane& lane, std::string_view bytes) {
        for (const char byte : bytes) {
            if (mUnplugged) return;
            PassByte(lane, byte);
            ++lane.passed;
            UnplugIfDue(lane);
        }
    }

    void PassByte(Lane& lane, char byte) const {
        using enum LineFaultKind;
        std::size_t copies = 1;
        lane.freeAt = std::max(lane.freeAt, mClock.Milliseconds());
        for (const LineFault& fault : lane.faults) {
            if (fault.byte > lane.passed) continue;
            const std::size_t since = lane.passed - fault.byte;
            if (fault.kind == Split && since > 0 && since <= 16) lane.freeAt += fault.ms;
            if (since > 0) continue;
            if (fault.kind == Drop) copies = 0;
            if (fault.kind == Double) copies *= 2;
            if (fault.kind == Garble) byte = static_cast<char>(byte ^ 1);
            if (fault.kind == Delay) lane.freeAt += fault.ms;
        }
        lane.bytes.insert(lane.bytes.end(), copies, {lane.freeAt, byte});
    }

    // Bytes still in transit are lost with the connection.
    void UnplugIfDue(const Lane& lane) {
        for (const LineFault& fault : lane.faults)
            if (fault.kind == LineFaultKind::Unplug && fault.byte <= lane.passed) mUnplugged = true;
        if (!mUnplugged || !mOpen) return;
        mOpen = false;
        mDevice.Closed();
    }

    static std::string Arrived(Lane& lane, std::uint32_t by) {
        std::string arrived;
        for (; !lane.bytes.empty() && lane.bytes.front().first <= by; lane.bytes.pop_front())
            arrived += lane.bytes.front().second;
        return arrived;
    }

    void Deliver(std::uint32_t by) {
        const std::string arrived = Arrived(mToDevice, by);
        if (!arrived.empty() && mOpen) mDevice.Receive(arrived);
    }

    FarEnd& mDevice;
    const Clock& mClock;
    Lane mToDevice;
    Lane mToHost;
    bool mOpen = false;
    bool mUnplugged = false;
};

}  // namespace vantor
