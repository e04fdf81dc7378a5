#include "tests/faults/FaultyLine.hpp"

#include <algorithm>
#include <limits>

namespace vantor {
namespace {

constexpr std::size_t kSplitBytes = 16;
constexpr std::uint32_t kEndOfTime = std::numeric_limits<std::uint32_t>::max();

}  // namespace

void FaultyLine::Add(const LineFault& fault) {
    std::vector<LineFault>& faults = mLanes.at(fault.direction).faults;
    faults.push_back(fault);
    if (fault.kind == LineFaultKind::Split)
        for (std::size_t i = 1; i <= kSplitBytes; ++i)
            faults.push_back({LineFaultKind::Delay, fault.direction, fault.byte + i, fault.ms});
    UnplugIfDue();
}

void FaultyLine::Opened(const LineSettings& line) {
    mOpen = true;
    mLanes.at(Direction::ToHost).bytes.clear();
    mDevice.Opened(line);
}

void FaultyLine::Closed() {
    // After an unplug the device has already been closed.
    if (!mOpen) return;
    Deliver(kEndOfTime);
    if (!mOpen) return;
    mOpen = false;
    mDevice.Closed();
}

void FaultyLine::Receive(std::string_view bytes) {
    if (mUnplugged) return;
    Deliver(mClock.Milliseconds());
    Pass(Direction::ToDevice, bytes);
    Deliver(mClock.Milliseconds());
}

std::string FaultyLine::Transmit() {
    if (mUnplugged) return {};
    Deliver(mClock.Milliseconds());
    Pass(Direction::ToHost, mDevice.Transmit());
    if (mUnplugged) return {};
    return Arrived(Direction::ToHost, mClock.Milliseconds());
}

void FaultyLine::Pass(Direction direction, std::string_view bytes) {
    Lane& lane = mLanes.at(direction);
    for (const char byte : bytes) {
        if (mUnplugged) return;
        PassByte(lane, byte);
        ++lane.passed;
        UnplugIfDue();
    }
}

void FaultyLine::PassByte(Lane& lane, char byte) {
    using enum LineFaultKind;
    int copies = 1;
    lane.freeAt = std::max(lane.freeAt, mClock.Milliseconds());
    for (const LineFault& fault : lane.faults) {
        if (fault.byte != lane.passed) continue;
        if (fault.kind == Drop) copies = 0;
        if (fault.kind == Double) copies *= 2;
        if (fault.kind == Garble) byte = static_cast<char>(byte ^ 1);
        if (fault.kind == Delay) lane.freeAt += fault.ms;
    }
    lane.bytes.insert(lane.bytes.end(), static_cast<std::size_t>(copies), {lane.freeAt, byte});
}

// Bytes still in transit are lost with the connection.
void FaultyLine::UnplugIfDue() {
    for (const auto& [direction, lane] : mLanes)
        for (const LineFault& fault : lane.faults)
            if (fault.kind == LineFaultKind::Unplug && fault.byte <= lane.passed) mUnplugged = true;
    if (!mUnplugged || !mOpen) return;
    mOpen = false;
    mDevice.Closed();
}

std::string FaultyLine::Arrived(Direction direction, std::uint32_t by) {
    std::deque<Underway>& bytes = mLanes.at(direction).bytes;
    std::string arrived;
    while (!bytes.empty() && bytes.front().at <= by) {
        arrived += bytes.front().byte;
        bytes.pop_front();
    }
    return arrived;
}

void FaultyLine::Deliver(std::uint32_t by) {
    const std::string arrived = Arrived(Direction::ToDevice, by);
    if (!arrived.empty() && mOpen) mDevice.Receive(arrived);
}

}  // namespace vantor
