// Serial ports in memory: each is a wire to a far end in the same process. For tests, and for
// practising without hardware.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Clock.hpp"
#include "platform/PolledPump.hpp"
#include "platform/SerialPort.hpp"
#include "simulator/VirtualIndicator.hpp"

namespace vantor {

/// What is at the other end of a wire.
class FarEnd {
public:
    virtual ~FarEnd() = default;
    virtual void Opened(const LineSettings& line) = 0;
    virtual void Closed() = 0;
    virtual void Receive(std::string_view bytes) = 0;
    /// Bytes that have come out since the last call.
    virtual std::string Transmit() = 0;
    /// True when the device has gone away.
    virtual bool HungUp() const = 0;
};

/// A virtual indicator as a far end, on the time of `clock`.
class IndicatorFarEnd : public FarEnd {
public:
    /// Both outlive the far end.
    IndicatorFarEnd(VirtualIndicator& indicator, const Clock& clock)
        : mIndicator(indicator), mClock(clock) {}

    void Opened(const LineSettings& line) override { mIndicator.HostLine(line, Now()); }
    void Closed() override { mIndicator.HostClosed(Now()); }
    void Receive(std::string_view bytes) override { mIndicator.Receive(bytes, Now()); }
    std::string Transmit() override { return mIndicator.Transmit(Now()); }
    bool HungUp() const override { return mIndicator.HungUp(); }

private:
    Micros Now() const { return Micros{mClock.Milliseconds()} * 1000; }

    VirtualIndicator& mIndicator;
    const Clock& mClock;
};

class HeadlessSerialPorts : public SerialPorts {
public:
    explicit HeadlessSerialPorts(PolledPump& pump) : mPump(pump) {}

    /// The port `name` exists from now on and leads to `farEnd`, which outlives its use.
    void Plug(const std::string& name, FarEnd& farEnd) { mSockets[name].farEnd = &farEnd; }
    /// The port disappears, under an open line too.
    void Unplug(const std::string& name) { mSockets.erase(name); }
    /// Another program holds the port, or gives it back.
    void Hold(const std::string& name, bool held) { mSockets[name].busy = held; }
    bool IsOpen(const std::string& name) const;
    /// Most bytes that one write takes, to imitate a driver whose buffer is full.
    void LimitWrites(std::size_t bytes) { mWriteLimit = bytes; }

    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override;
    std::vector<SerialPortInfo> List() const override;

private:
    friend class HeadlessSerialPort;
    struct Socket {
        FarEnd* farEnd = nullptr;
        bool busy = false;
        bool open = false;
    };

    PolledPump& mPump;
    std::map<std::string, Socket> mSockets;
    std::size_t mWriteLimit = static_cast<std::size_t>(-1);
};

}  // namespace vantor
